#include "CursorFile.h"

#include <QFile>
#include <QSaveFile>
#include <QtEndian>

#include <cstring>

namespace {

constexpr int DirectorySize = 6;
constexpr int EntrySize = 16;
constexpr int InfoHeaderSize = 40;

quint16 word(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<quint16>(b.constData() + at);
}
quint32 dword(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<quint32>(b.constData() + at);
}
qint32 sdword(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<qint32>(b.constData() + at);
}

void putWord(QByteArray &b, quint16 v)
{
    char bytes[2];
    qToLittleEndian(v, bytes);
    b.append(bytes, 2);
}
void putDword(QByteArray &b, quint32 v)
{
    char bytes[4];
    qToLittleEndian(v, bytes);
    b.append(bytes, 4);
}

CursorImage failure(const QString &why)
{
    CursorImage result;
    result.error = why;
    return result;
}

int maskStride(int width)
{
    return ((width + 31) / 32) * 4;
}

} // namespace

CursorImage ParseCursor(const QByteArray &bytes)
{
    if (bytes.size() < DirectorySize + EntrySize)
        return failure(QStringLiteral("too short for a cursor file"));
    if (word(bytes, 0) != 0 || word(bytes, 2) != 2 || word(bytes, 4) < 1)
        return failure(QStringLiteral("not a cursor file"));
    const qsizetype entry = DirectorySize;
    CursorImage result;
    result.hotSpot = QPoint(word(bytes, entry + 4), word(bytes, entry + 6));
    const quint32 length = dword(bytes, entry + 8);
    const quint32 offset = dword(bytes, entry + 12);
    if (offset > quint32(bytes.size()) || length > quint32(bytes.size()) - offset ||
        length < quint32(InfoHeaderSize))
        return failure(QStringLiteral("the cursor's image lies outside the file"));
    const QByteArray dib = bytes.mid(offset, length);
    if (dword(dib, 0) < quint32(InfoHeaderSize))
        return failure(QStringLiteral("the cursor's image has no header"));
    const qint32 width = sdword(dib, 4);
    const qint32 doubleHeight = sdword(dib, 8);
    const quint16 bits = word(dib, 14);
    const quint32 compression = dword(dib, 16);
    if (width <= 0 || width > 256 || doubleHeight <= 0 || doubleHeight > 512 ||
        doubleHeight % 2 != 0 || compression != 0)
        return failure(QStringLiteral("the cursor's image has a size or form not known"));
    const int height = doubleHeight / 2;
    const qsizetype header = dword(dib, 0);
    const int paletteSize = bits == 1 ? 2 : 0;
    if (bits != 32 && bits != 1)
        return failure(QStringLiteral("the cursor has %1 bits a pixel").arg(bits));
    const qsizetype colourStride = bits == 32 ? qsizetype(width) * 4 : maskStride(width);
    const qsizetype colours = header + qsizetype(paletteSize) * 4;
    const qsizetype mask = colours + colourStride * height;
    if (mask + qsizetype(maskStride(width)) * height > dib.size())
        return failure(QStringLiteral("the cursor file is cut short"));
    if (result.hotSpot.x() >= width || result.hotSpot.y() >= height)
        return failure(QStringLiteral("the hot spot lies outside the cursor"));

    QImage image(width, height, QImage::Format_ARGB32);
    bool anyAlpha = false;
    for (int y = 0; y < height; ++y) {
        const int row = height - 1 - y; // stored bottom up
        const auto *in =
            reinterpret_cast<const uchar *>(dib.constData()) + colours + colourStride * row;
        const auto *andBits = reinterpret_cast<const uchar *>(dib.constData()) + mask +
                              qsizetype(maskStride(width)) * row;
        auto *out = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const bool transparent = (andBits[x / 8] >> (7 - x % 8)) & 1;
            if (bits == 32) {
                const uchar *p = in + x * 4;
                out[x] = qRgba(p[2], p[1], p[0], p[3]);
                anyAlpha = anyAlpha || p[3] != 0;
                if (transparent && p[3] == 0)
                    out[x] = 0;
            } else {
                const bool white = (in[x / 8] >> (7 - x % 8)) & 1;
                const uchar *entryColour =
                    reinterpret_cast<const uchar *>(dib.constData()) + header + (white ? 4 : 0);
                const QRgb colour = qRgb(entryColour[2], entryColour[1], entryColour[0]);
                if (!transparent)
                    out[x] = colour;
                else
                    out[x] = white ? qRgb(0, 0, 0) : 0u; // inverted pixels shown black
            }
        }
    }
    if (bits == 32 && !anyAlpha) {
        // An old 32-bit cursor without alpha: the AND mask says what shows.
        for (int y = 0; y < height; ++y) {
            const auto *andBits = reinterpret_cast<const uchar *>(dib.constData()) + mask +
                                  qsizetype(maskStride(width)) * (height - 1 - y);
            auto *out = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < width; ++x)
                out[x] = ((andBits[x / 8] >> (7 - x % 8)) & 1) ? 0u : (out[x] | 0xFF000000u);
        }
    }
    result.image = image;
    return result;
}

CursorImage ReadCursorFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(QStringLiteral("%1 is missing").arg(path));
    return ParseCursor(file.readAll());
}

QByteArray CursorBytes(const QImage &source, QPoint hotSpot)
{
    const QImage image = source.convertToFormat(QImage::Format_ARGB32);
    const int w = image.width();
    const int h = image.height();
    const qsizetype pixelBytes = qsizetype(w) * 4 * h;
    const qsizetype maskBytes = qsizetype(maskStride(w)) * h;
    const auto length = quint32(InfoHeaderSize + pixelBytes + maskBytes);

    QByteArray b;
    putWord(b, 0);
    putWord(b, 2); // a cursor
    putWord(b, 1);
    b.append(char(w >= 256 ? 0 : w));
    b.append(char(h >= 256 ? 0 : h));
    b.append(char(0));
    b.append(char(0));
    putWord(b, quint16(hotSpot.x()));
    putWord(b, quint16(hotSpot.y()));
    putDword(b, length);
    putDword(b, DirectorySize + EntrySize);

    putDword(b, InfoHeaderSize);
    putDword(b, quint32(w));
    putDword(b, quint32(2 * h)); // the colours and the mask
    putWord(b, 1);
    putWord(b, 32);
    putDword(b, 0);
    putDword(b, quint32(pixelBytes + maskBytes));
    for (int i = 0; i < 4; ++i)
        putDword(b, 0);
    for (int y = h - 1; y >= 0; --y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            const QRgb p = line[x];
            b.append(char(qBlue(p)));
            b.append(char(qGreen(p)));
            b.append(char(qRed(p)));
            b.append(char(qAlpha(p)));
        }
    }
    for (int y = h - 1; y >= 0; --y) {
        QByteArray row(maskStride(w), '\0');
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < w; ++x)
            if (qAlpha(line[x]) == 0)
                row[x / 8] = char(uchar(row[x / 8]) | (0x80u >> (x % 8)));
        b.append(row);
    }
    return b;
}

bool WriteCursorFile(const QImage &image, QPoint hotSpot, const QString &path)
{
    if (image.isNull() || image.width() > 256 || image.height() > 256)
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(CursorBytes(image, hotSpot));
    return file.commit();
}
