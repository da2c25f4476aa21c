#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QString>

// Real picture files for the photo tests, made on the spot.
namespace Fixtures {

// A picture with a red left half and a blue right half: its orientation can be read back.
inline QImage halves(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(0, 0, width / 2, height, Qt::red);
    painter.fillRect(width / 2, 0, width - width / 2, height, Qt::blue);
    return image;
}

inline QByteArray jpegBytes(const QImage &image, int quality = 90)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(quality);
    writer.write(image);
    return bytes;
}

// The JPEG with an EXIF segment whose Orientation tag is orientation (1 to 8), put right behind
// the start-of-image marker.
inline QByteArray withOrientation(const QByteArray &jpeg, quint16 orientation)
{
    QByteArray exif("Exif\0\0", 6);
    exif += QByteArray("MM\0\x2A\0\0\0\x08", 8);       // big-endian TIFF header, IFD0 at offset 8
    exif += QByteArray("\0\x01", 2);                   // one entry
    exif += QByteArray("\x01\x12\0\x03\0\0\0\x01", 8); // Orientation, SHORT, count 1
    exif += char(orientation >> 8);
    exif += char(orientation & 0xff);
    exif += QByteArray("\0\0", 2);     // value padding
    exif += QByteArray("\0\0\0\0", 4); // no next IFD
    const int length = int(exif.size()) + 2;
    QByteArray segment("\xFF\xE1", 2);
    segment += char(length >> 8);
    segment += char(length & 0xff);
    segment += exif;
    return jpeg.left(2) + segment + jpeg.mid(2);
}

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(bytes) == bytes.size();
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

inline bool writeJpeg(const QString &path, const QImage &image, int quality = 90)
{
    return writeFile(path, jpegBytes(image, quality));
}

// A flat one-bit picture of width x height written as a JPEG: a huge picture made without
// holding more than one bit a pixel in memory.
inline bool writeHugeFlatJpeg(const QString &path, int width, int height)
{
    QImage image(width, height, QImage::Format_Mono);
    if (image.isNull())
        return false;
    // Grey: the JPEG gets one component, a third of the work of a coloured one.
    image.setColor(0, qRgb(128, 128, 128));
    image.setColor(1, qRgb(128, 128, 128));
    image.fill(0);
    QImageWriter writer(path, "jpeg");
    writer.setQuality(50);
    return writer.write(image);
}

inline bool isJpeg(const QByteArray &bytes)
{
    return bytes.startsWith("\xFF\xD8");
}
inline bool isGif(const QByteArray &bytes)
{
    return bytes.startsWith("GIF8");
}
inline bool isBitmap(const QByteArray &bytes)
{
    return bytes.startsWith("BM");
}

} // namespace Fixtures
