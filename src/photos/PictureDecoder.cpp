#include "PictureDecoder.h"

#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>

#include <jpeglib.h>

namespace {

qint64 bytesOf(QSize size)
{
    return qint64(size.width()) * size.height() * 4;
}

QString damaged(const QString &path, const QString &reason = QString())
{
    return (reason.isEmpty() ? QStringLiteral("The file is damaged or is not a picture") : reason) +
           QStringLiteral(" (") + QFileInfo(path).fileName() + QLatin1Char(')');
}

// The reader's reason, made readable, with the file's name.
QString readError(const QImageReader &reader, const QString &path)
{
    QString reason = reader.errorString();
    if (reader.error() == QImageReader::UnknownError || reason.isEmpty() ||
        reason == QLatin1String("Unknown error"))
        reason.clear();
    return damaged(path, reason);
}

QString tooLargeText(QSize size)
{
    return QStringLiteral("The picture is too large to be sized (%1 x %2 pixels).")
        .arg(size.width())
        .arg(size.height());
}

// Mirrors, then turns a quarter clockwise, as the file's orientation asks.
QImage applyTransformation(QImage image, QImageIOHandler::Transformations transformation)
{
    if (transformation == QImageIOHandler::TransformationNone)
        return image;
    const bool mirror = transformation.testFlag(QImageIOHandler::TransformationMirror);
    const bool flip = transformation.testFlag(QImageIOHandler::TransformationFlip);
    if (mirror || flip)
        image = std::move(image).mirrored(mirror, flip);
    if (transformation.testFlag(QImageIOHandler::TransformationRotate90))
        image = image.transformed(QTransform().rotate(90));
    return image;
}

// Colours converted to sRGB from the space the picture carries; pictures without a profile, or
// with one that can't be converted, are taken as sRGB already.
QImage toSRgb(QImage image)
{
    const QColorSpace space = image.colorSpace();
    const QColorSpace sRgb(QColorSpace::SRgb);
    if (space.isValid() && space != sRgb)
        image.convertToColorSpace(sRgb);
    image.setColorSpace(sRgb);
    return image;
}

// Eight-bit channels, opaque pictures as RGB32 and others premultiplied: what the resampler and
// the writers take.
QImage toEightBit(QImage image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied:
    case QImage::Format_RGB888:
    case QImage::Format_Grayscale8:
        return image;
    default:
        return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
    }
}

// libjpeg reports errors by a jump back to the call that set it up. The functions that set
// the jump hold only plain data, so nothing with a destructor is skipped.
struct JpegErrorManager
{
    jpeg_error_mgr manager;
    std::jmp_buf jump;
    char message[JMSG_LENGTH_MAX];
};

void jpegError(j_common_ptr info)
{
    auto *error = reinterpret_cast<JpegErrorManager *>(info->err);
    (*info->err->format_message)(info, error->message);
    std::longjmp(error->jump, 1);
}

void jpegSilent(j_common_ptr, int) {}

struct JpegDecoder
{
    jpeg_decompress_struct info;
    JpegErrorManager error;
    bool created = false;
    JOCTET *icc = nullptr;
    unsigned int iccLength = 0;
    // Where the rows go: the first byte of the picture and the bytes of a line.
    uchar *rows = nullptr;
    qsizetype bytesPerLine = 0;

    ~JpegDecoder()
    {
        if (created)
            jpeg_destroy_decompress(&info);
        std::free(icc);
    }
};

// Reads the header: size, colour model and the embedded profile. false with error.message set
// when the data isn't a JPEG libjpeg can read.
bool jpegHeader(JpegDecoder &d, const uchar *data, unsigned long size)
{
    d.info.err = jpeg_std_error(&d.error.manager);
    d.error.manager.error_exit = jpegError;
    d.error.manager.emit_message = jpegSilent;
    d.error.message[0] = 0;
    if (setjmp(d.error.jump))
        return false;
    jpeg_create_decompress(&d.info);
    d.created = true;
    jpeg_mem_src(&d.info, data, size);
    jpeg_save_markers(&d.info, JPEG_APP0 + 2, 0xffff);
    jpeg_read_header(&d.info, TRUE);
    if (!jpeg_read_icc_profile(&d.info, &d.icc, &d.iccLength)) {
        d.icc = nullptr;
        d.iccLength = 0;
    }
    return true;
}

// Decodes at scale scaleNum/8 into the rows that start() gives: it is called with the output
// size and sets d.rows and d.bytesPerLine (d.rows null: no memory).
template <typename Start>
bool jpegDecode(JpegDecoder &d, unsigned int scaleNum, Start start)
{
    if (setjmp(d.error.jump))
        return false;
    d.info.scale_num = scaleNum;
    d.info.scale_denom = 8;
    d.info.out_color_space = JCS_EXT_BGRA;
    d.info.dct_method = JDCT_ISLOW;
    jpeg_start_decompress(&d.info);
    start(d, int(d.info.output_width), int(d.info.output_height));
    if (!d.rows) {
        jpeg_abort_decompress(&d.info);
        std::snprintf(d.error.message, sizeof d.error.message, "Out of memory");
        return false;
    }
    while (d.info.output_scanline < d.info.output_height) {
        JSAMPROW row = d.rows + qsizetype(d.info.output_scanline) * d.bytesPerLine;
        jpeg_read_scanlines(&d.info, &row, 1);
    }
    jpeg_finish_decompress(&d.info);
    return true;
}

bool isJpeg(const QByteArray &data)
{
    return data.size() > 3 && uchar(data[0]) == 0xff && uchar(data[1]) == 0xd8 &&
           uchar(data[2]) == 0xff;
}

// The scales n/8 at which a JPEG is decoded. libjpeg can reduce by any n from 1 to 8, but its
// odd-sized transforms (3/8, 5/8, 7/8) leave visible aliasing that no later filter takes out: a
// 30% copy of a 17.9-megapixel photo decoded at 5/8 came out 5 dB further from a Lanczos
// reference than one decoded at 6/8 or 4/8.
constexpr unsigned int JpegScales[] = {1, 2, 4, 6, 8};

// The scale n/8 at which a JPEG of stored size is decoded for wanted (stored orientation)
// within budget bytes.
unsigned int jpegScale(QSize stored, QSize wanted, qint64 budget)
{
    const auto atScale = [stored](unsigned int n) {
        return QSize(int((qint64(stored.width()) * n + 7) / 8),
                     int((qint64(stored.height()) * n + 7) / 8));
    };
    int index = int(std::size(JpegScales)) - 1;
    if (wanted.isValid()) {
        const QSize room(int(std::ceil(wanted.width() * DecodeHeadroom)),
                         int(std::ceil(wanted.height() * DecodeHeadroom)));
        index = 0;
        while (index + 1 < int(std::size(JpegScales)) &&
               (atScale(JpegScales[index]).width() < room.width() ||
                atScale(JpegScales[index]).height() < room.height()))
            ++index;
    }
    while (index > 0 && bytesOf(atScale(JpegScales[index])) > budget)
        --index;
    return JpegScales[index];
}

QSize jpegOutput(QSize stored, unsigned int n)
{
    return QSize(int((qint64(stored.width()) * n + 7) / 8),
                 int((qint64(stored.height()) * n + 7) / 8));
}

// A JPEG in YCbCr or grey, decoded by libjpeg at a reduced scale; nullopt for one that only the
// general reader handles (CMYK).
std::optional<DecodedPicture> decodeJpeg(const QString &path, const QByteArray &data,
                                         const PictureHeader &header, QSize atLeast,
                                         qint64 budget)
{
    JpegDecoder d;
    const auto *bytes = reinterpret_cast<const uchar *>(data.constData());
    if (!jpegHeader(d, bytes, static_cast<unsigned long>(data.size())))
        return DecodedPicture{QImage(), damaged(path, QString::fromLatin1(d.error.message))};
    if (d.info.jpeg_color_space != JCS_YCbCr && d.info.jpeg_color_space != JCS_GRAYSCALE &&
        d.info.jpeg_color_space != JCS_RGB)
        return std::nullopt;
    const QSize stored(int(d.info.image_width), int(d.info.image_height));
    const bool swap = header.transformation.testFlag(QImageIOHandler::TransformationRotate90);
    const QSize wanted = atLeast.isValid() ? (swap ? atLeast.transposed() : atLeast) : QSize();
    const unsigned int n = jpegScale(stored, wanted, budget);
    if (bytesOf(jpegOutput(stored, n)) > budget)
        return DecodedPicture{QImage(), tooLargeText(header.upright())};
    QImage image;
    const bool ok = jpegDecode(d, n, [&image](JpegDecoder &decoder, int width, int height) {
        image = QImage(width, height, QImage::Format_RGB32);
        decoder.rows = image.isNull() ? nullptr : image.bits();
        decoder.bytesPerLine = image.bytesPerLine();
    });
    if (!ok)
        return DecodedPicture{QImage(), damaged(path, QString::fromLatin1(d.error.message))};
    if (d.icc)
        image.setColorSpace(QColorSpace::fromIccProfile(
            QByteArray(reinterpret_cast<const char *>(d.icc), int(d.iccLength))));
    return DecodedPicture{image, QString()};
}

} // namespace

PictureHeader ReadPictureHeader(const QString &path)
{
    PictureHeader header;
    if (!QFileInfo(path).isFile()) {
        header.error = QStringLiteral("File not found: ") + path;
        return header;
    }
    QImageReader reader(path);
    // The content decides: a ".dib" is a bitmap, and a file may carry the wrong extension.
    reader.setDecideFormatFromContent(true);
    header.stored = reader.size();
    if (!header.stored.isValid()) {
        header.error = readError(reader, path);
        return header;
    }
    header.transformation = reader.transformation();
    header.reducesWhileDecoding = reader.format() == "jpeg";
    return header;
}

QSize DecodedSize(const PictureHeader &header, QSize atLeast, qint64 budgetBytes)
{
    if (!header.ok())
        return QSize();
    if (!header.reducesWhileDecoding)
        return header.upright();
    const bool swap = header.transformation.testFlag(QImageIOHandler::TransformationRotate90);
    const QSize wanted = atLeast.isValid() ? (swap ? atLeast.transposed() : atLeast) : QSize();
    const QSize out = jpegOutput(header.stored, jpegScale(header.stored, wanted, budgetBytes));
    return swap ? out.transposed() : out;
}

DecodedPicture DecodePicture(const QString &path, QSize atLeast, qint64 budgetBytes)
{
    const PictureHeader header = ReadPictureHeader(path);
    if (!header.ok())
        return {QImage(), header.error};
    if (header.stored.width() > 65535 || header.stored.height() > 65535)
        return {QImage(), tooLargeText(header.upright())};

    std::optional<DecodedPicture> decoded;
    if (header.reducesWhileDecoding) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {QImage(), damaged(path, file.errorString())};
        const QByteArray data = file.readAll();
        if (isJpeg(data))
            decoded = decodeJpeg(path, data, header, atLeast, budgetBytes);
    }
    if (!decoded) {
        if (bytesOf(header.stored) > budgetBytes)
            return {QImage(), tooLargeText(header.upright())};
        QImageReader reader(path);
        reader.setDecideFormatFromContent(true);
        reader.setAllocationLimit(int(std::max<qint64>(1, budgetBytes / (1024 * 1024) * 2)));
        QImage image = reader.read();
        if (image.isNull())
            return {QImage(), readError(reader, path)};
        decoded = DecodedPicture{image, QString()};
    }
    if (!decoded->ok())
        return *decoded;
    QImage image = toEightBit(toSRgb(std::move(decoded->image)));
    return {applyTransformation(std::move(image), header.transformation), QString()};
}
