#pragma once

#include <QString>

// The quarter turns of "Rotate Left && Copy" and "Rotate Right && Copy": source is read with its
// EXIF orientation applied, turned by a quarter turn and written to target in the format that
// target's extension asks for (".jpg" as JPEG at the best quality the writer takes, ".gif" as
// GIF, ".bmp" and ".dib" as bitmaps). Any other extension is refused with the message below.
struct RotateResult
{
    bool ok = false;
    bool unsupportedFormat = false;
    QString error;
};

inline const QString RotateFormatMessage =
    QStringLiteral("This is not a photo file format handled by this program for rotation.");

RotateResult RotateLeft(const QString &source, const QString &target);
RotateResult RotateRight(const QString &source, const QString &target);
