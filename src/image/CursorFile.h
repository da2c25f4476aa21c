#pragma once

#include <QImage>
#include <QPoint>
#include <QString>

// The paint tools' cursor files: Windows cursor files (.cur) of one image, 32 bits a pixel with
// alpha and an AND mask, or 1 bit a pixel (black, white, transparent and inverted, the inverted
// pixels shown black). The hot spot is the pixel the cursor points with.
struct CursorImage
{
    QImage image; // Format_ARGB32
    QPoint hotSpot;
    QString error; // why the file could not be read; empty when it was
    bool ok() const { return error.isEmpty(); }
};

CursorImage ReadCursorFile(const QString &path);
// Parses the bytes of a cursor file.
CursorImage ParseCursor(const QByteArray &bytes);

// Writes image (at most 256 x 256) as a 32-bit cursor with its hot spot. False when the file
// can't be written.
bool WriteCursorFile(const QImage &image, QPoint hotSpot, const QString &path);
QByteArray CursorBytes(const QImage &image, QPoint hotSpot);
