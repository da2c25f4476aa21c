#include "cDIBSection.h"

#include "PictureDecoder.h"
#include "RasterOps.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPainter>
#include <QtEndian>

#include <cmath>
#include <cstring>

namespace {

std::function<void(const QString &)> &noticeHandler()
{
    static std::function<void(const QString &)> handler;
    return handler;
}

void notice(const QString &text)
{
    if (noticeHandler())
        noticeHandler()(text);
    else
        qWarning("%s", qPrintable(text));
}

template <typename T> void put(char *&p, T value)
{
    value = qToLittleEndian(value);
    std::memcpy(p, &value, sizeof(T));
    p += sizeof(T);
}

template <typename T> T get(const uchar *p)
{
    return qFromLittleEndian<T>(p);
}

// A JPEG file ends with the end-of-image mark (FF D9), perhaps followed by a camera's own data;
// a file cut short has none in its last megabyte, and the decoder would fill the rest with grey.
bool hasJpegEnd(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const qint64 tail = std::min<qint64>(file.size(), 1024 * 1024);
    file.seek(file.size() - tail);
    const QByteArray bytes = file.read(tail);
    return bytes.contains(QByteArray("\xFF\xD9", 2));
}

} // namespace

bool cDIBSection::SizeAllowed(qint64 width, qint64 height)
{
    return width > 0 && height > 0 && width <= MaxSide && height <= MaxSide &&
           width * height <= MaxPixels;
}

void cDIBSection::setNoticeHandler(std::function<void(const QString &)> handler)
{
    noticeHandler() = std::move(handler);
}

int cDIBSection::BytesPerScanLine() const
{
    if (m_header.width <= 0)
        return 0;
    return int(((qint64(m_header.width) * m_header.bitCount + 31) / 32) * 4);
}

void cDIBSection::ClearUp()
{
    m_image = QImage();
}

bool cDIBSection::CreateDIB(int width, int height, QImage &out)
{
    m_header.size = 40;
    m_header.width = width;
    m_header.height = height;
    m_header.planes = 1;
    m_header.bitCount = 32;
    m_header.compression = 0;
    m_header.sizeImage = std::uint32_t(BytesPerScanLine()) * std::uint32_t(std::max(height, 0));
    m_header.xPelsPerMeter = m_header.yPelsPerMeter = 0;
    m_header.clrUsed = m_header.clrImportant = 0;
    if (!SizeAllowed(width, height)) {
        m_lastError = QStringLiteral("A picture of %1 x %2 pixels is too large; the largest is "
                                     "%3 megapixels, %4 pixels a side.")
                          .arg(width)
                          .arg(height)
                          .arg(MaxPixels / (1024 * 1024))
                          .arg(MaxSide);
        return false;
    }
    out = QImage(width, height, QImage::Format_RGB32);
    if (out.isNull()) {
        m_lastError = QStringLiteral("There is not enough memory for a picture of %1 x %2 pixels.")
                          .arg(width)
                          .arg(height);
        return false;
    }
    out.fill(0xFF000000u);
    return true;
}

bool cDIBSection::Create(int width, int height)
{
    ClearUp();
    QImage made;
    if (!CreateDIB(width, height, made))
        return false;
    m_image = std::move(made);
    m_lastError.clear();
    return true;
}

bool cDIBSection::adopt(const QImage &image, int srcX, int srcY, int width, int height)
{
    if (image.isNull()) {
        m_lastError = QStringLiteral("There is no picture.");
        return false;
    }
    if (width < 0 || height < 0) {
        width = image.width();
        height = image.height();
    }
    const QImage source = image.format() == QImage::Format_RGB32
                              ? image
                              : image.convertToFormat(QImage::Format_RGB32);
    if (source.isNull()) {
        m_lastError = QStringLiteral("There is not enough memory to convert the picture.");
        return false;
    }
    if (!Create(width, height))
        return false;
    LoadPictureBlt(source, 0, 0, width, height, srcX, srcY, SrcCopy);
    return true;
}

bool cDIBSection::CreateFromHandle(const QImage &bitmap, int srcX, int srcY, int width, int height)
{
    return adopt(bitmap, srcX, srcY, width, height);
}

bool cDIBSection::CreateFromImage(const QImage &bitmap, int srcX, int srcY, int width, int height)
{
    return adopt(bitmap, srcX, srcY, width, height);
}

bool cDIBSection::CreateFromPicture(const QImage &picture, int srcX, int srcY, int width,
                                    int height)
{
    return adopt(picture, srcX, srcY, width, height);
}

bool cDIBSection::CreateFromFile(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (!info.isFile() || !info.isReadable()) {
        m_lastError = QStringLiteral("The file %1 is not there.").arg(fileName);
        return false;
    }
    // The photo decoder: bitmaps, JPEG, GIF, PNG, WebP, TIFF (16-bit too) and HEIC, turned
    // upright as the file says and in sRGB.
    const PictureHeader header = ReadPictureHeader(fileName);
    if (!header.ok()) {
        m_lastError = QStringLiteral("The file is corrupt or not a picture (%1).").arg(header.error);
        return false;
    }
    const QSize size = header.upright();
    if (!SizeAllowed(size.width(), size.height())) {
        m_lastError = QStringLiteral("The picture is %1 x %2 pixels, too large to open; the "
                                     "largest is %3 megapixels, %4 pixels a side.")
                          .arg(size.width())
                          .arg(size.height())
                          .arg(MaxPixels / (1024 * 1024))
                          .arg(MaxSide);
        return false;
    }
    if (header.reducesWhileDecoding && !hasJpegEnd(fileName)) {
        m_lastError = QStringLiteral("The picture file is cut short.");
        return false;
    }
    const DecodedPicture decoded = DecodePicture(fileName, QSize(), MaxPixels * 4);
    if (!decoded.ok()) {
        m_lastError = QStringLiteral("The file is corrupt or not a picture (%1).").arg(decoded.error);
        return false;
    }
    if (!SizeAllowed(decoded.image.width(), decoded.image.height())) {
        m_lastError = QStringLiteral("The picture is too large to open.");
        return false;
    }
    // A transparent picture is laid on white, as the photo copies are.
    if (decoded.image.hasAlphaChannel()) {
        QImage flat(decoded.image.size(), QImage::Format_RGB32);
        if (flat.isNull()) {
            m_lastError = QStringLiteral("There is not enough memory to convert the picture.");
            return false;
        }
        flat.fill(Qt::white);
        QPainter painter(&flat);
        painter.drawImage(0, 0, decoded.image);
        painter.end();
        return adopt(flat, 0, 0, -1, -1);
    }
    return adopt(decoded.image, 0, 0, -1, -1);
}

bool cDIBSection::CreateFromPackedDIBPointer(const uchar *packed, qsizetype size)
{
    if (!packed || size < 40 || get<std::uint32_t>(packed) < 40) {
        m_lastError = QStringLiteral("The block is not a packed bitmap.");
        return false;
    }
    InfoHeader h;
    h.size = 40;
    h.width = get<std::int32_t>(packed + 4);
    h.height = get<std::int32_t>(packed + 8);
    h.planes = get<std::uint16_t>(packed + 12);
    h.bitCount = get<std::uint16_t>(packed + 14);
    h.compression = get<std::uint32_t>(packed + 16);
    h.sizeImage = get<std::uint32_t>(packed + 20);
    h.clrUsed = get<std::uint32_t>(packed + 32);
    const std::uint32_t headerSize = get<std::uint32_t>(packed);
    m_header = h;
    if (h.bitCount < 16 || h.compression != 0 || h.clrUsed != 0 ||
        (h.bitCount != 16 && h.bitCount != 24 && h.bitCount != 32)) {
        m_lastError = QStringLiteral("Only packed bitmaps of 16, 24 or 32 bits are read.");
        return false;
    }
    const int width = h.width;
    const int height = std::abs(h.height);
    const qint64 stride = ((qint64(width) * h.bitCount + 31) / 32) * 4;
    if (width <= 0 || height <= 0 || qint64(headerSize) + stride * height > size) {
        m_lastError = QStringLiteral("The packed bitmap is shorter than its header says.");
        return false;
    }
    const std::uint16_t bits = h.bitCount;
    if (!Create(width, height))
        return false;
    const uchar *pixels = packed + headerSize;
    for (int row = 0; row < height; ++row) {
        const int y = h.height > 0 ? height - 1 - row : row;
        const uchar *in = pixels + stride * row;
        auto *out = reinterpret_cast<QRgb *>(m_image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            if (bits == 32) {
                out[x] = qRgb(in[4 * x + 2], in[4 * x + 1], in[4 * x]);
            } else if (bits == 24) {
                out[x] = qRgb(in[3 * x + 2], in[3 * x + 1], in[3 * x]);
            } else {
                const std::uint16_t v = get<std::uint16_t>(in + 2 * x);
                const auto five = [](int c) { return (c << 3) | (c >> 2); };
                out[x] = qRgb(five((v >> 10) & 31), five((v >> 5) & 31), five(v & 31));
            }
        }
    }
    return true;
}

void cDIBSection::GetBestFitInfo(int boxWidth, int boxHeight, int &left, int &top, int &width,
                                 int &height, bool force) const
{
    width = Width();
    height = Height();
    if (!(width <= boxWidth && height <= boxHeight && !force) && width > 0 && height > 0) {
        const float rx = float(boxWidth) / float(width);
        const float ry = float(boxHeight) / float(height);
        // Rounded to the nearest integer, halves to even.
        if (rx >= ry) {
            height = boxHeight;
            width = int(std::lrint(ry * float(Width())));
        } else {
            width = boxWidth;
            height = int(std::lrint(rx * float(Height())));
        }
    }
    left = (boxWidth - width) / 2;
    top = (boxHeight - height) / 2;
}

void cDIBSection::LoadPictureBlt(const QImage &source, int destX, int destY, int width, int height,
                                 int srcX, int srcY, std::uint32_t rasterOp)
{
    if (m_image.isNull())
        return;
    if (width < 0)
        width = Width();
    if (height < 0)
        height = Height();
    if (source.format() != QImage::Format_RGB32) {
        BlitRaster(m_image, destX, destY, source.convertToFormat(QImage::Format_RGB32), srcX, srcY,
                   width, height, rasterOp);
        return;
    }
    BlitRaster(m_image, destX, destY, source, srcX, srcY, width, height, rasterOp);
}

bool cDIBSection::PaintPicture(QImage &dest, int mode, int destX, int destY, int width, int height,
                               int srcX, int srcY, int srcWidth, int srcHeight,
                               std::uint32_t rasterOp)
{
    if (mode < 1 || mode > 4 || m_image.isNull() || dest.isNull())
        return false;
    if (width < 0)
        width = Width();
    if (height < 0)
        height = Height();
    if (srcWidth < 0)
        srcWidth = Width();
    if (srcHeight < 0)
        srcHeight = Height();
    if (dest.format() != QImage::Format_RGB32)
        dest = dest.convertToFormat(QImage::Format_RGB32);
    if (mode <= 2) {
        BlitRaster(dest, destX, destY, m_image, srcX, srcY, width, height, rasterOp);
        return true;
    }
    if (width == 0 || height == 0)
        return true;
    const QImage part = m_image.copy(srcX, srcY, srcWidth, srcHeight)
                            .scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                            .convertToFormat(QImage::Format_RGB32);
    BlitRaster(dest, destX, destY, part, 0, 0, width, height, rasterOp);
    return true;
}

bool cDIBSection::CopyToClipboard(int destX, int destY, int width, int height, bool asDIB)
{
    if (width < 0)
        width = Width();
    if (height < 0)
        height = Height();
    if (asDIB) {
        notice(QStringLiteral("Copy as bitmap and retry"));
        return true;
    }
    if (!m_image.isNull() && width > 0 && height > 0) {
        QImage part(width, height, QImage::Format_RGB32);
        if (!part.isNull()) {
            part.fill(0xFF000000u);
            PaintPicture(part, 1, destX, destY, width, height);
            if (QClipboard *clipboard = QGuiApplication::clipboard())
                clipboard->setImage(part);
        }
    }
    // Callers can't tell a failure: the copy is offered, not promised.
    return true;
}

bool cDIBSection::SaveBitmap(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;

    const std::uint32_t data =
        std::uint32_t(BytesPerScanLine()) * std::uint32_t(m_image.isNull() ? 0 : m_image.height());
    char fileHeader[14];
    char *p = fileHeader;
    *p++ = 'B';
    *p++ = 'M';
    put<std::uint32_t>(p, data + 54);
    put<std::uint32_t>(p, 0);
    put<std::uint32_t>(p, 54);

    InfoHeader h = m_header;
    h.sizeImage = data;
    char info[40];
    p = info;
    put(p, h.size);
    put(p, h.width);
    put(p, h.height);
    put(p, h.planes);
    put(p, h.bitCount);
    put(p, h.compression);
    put(p, h.sizeImage);
    put(p, h.xPelsPerMeter);
    put(p, h.yPelsPerMeter);
    put(p, h.clrUsed);
    put(p, h.clrImportant);

    bool ok = file.write(fileHeader, 14) == 14 && file.write(info, 40) == 40;
    if (ok && !m_image.isNull()) {
        // Bottom-up rows, as the format has them.
        const qint64 line = BytesPerScanLine();
        for (int y = m_image.height() - 1; ok && y >= 0; --y)
            ok = file.write(reinterpret_cast<const char *>(m_image.constScanLine(y)), line) == line;
    }
    ok = file.flush() && ok;
    file.close();
    return ok && file.error() == QFileDevice::NoError;
}
