#pragma once

#include <QImage>
#include <QString>

class JobUi;

// "Rotate Left && Copy" and "Rotate Right && Copy": a picture file turned by a quarter turn and
// written to another file. Two routes give the same pixels: the parallelogram route reads the
// picture itself, the bitmap route first converts it to a bitmap beside it (RotateTempPath) and
// deletes that bitmap at the end. Every call keeps the event loop live between its steps and
// tells the user through ui what went wrong.
struct RotationResult
{
    bool ok = false;
    bool unsupportedFormat = false;
    QString error;
};

inline const QString RotationFormatMessage =
    QStringLiteral("This is not a photo file format handled by this program for rotation.");

// The parallelogram route is the one of this system; the bitmap route stays for comparison.
struct RotationOptions
{
    bool useParallelogram = true;
};

// Reads source, turns it a quarter turn to the left (counter-clockwise) and writes target in
// the format its extension asks for (".jpg" JPEG, ".gif" GIF, else a bitmap). On the
// parallelogram route the time taken is shown at the end ("Time = " seconds).
RotationResult RotateLeft(const QString &source, const QString &target, JobUi &ui,
                          RotationOptions options = {});
// The same turned to the right (clockwise), without the time.
RotationResult RotateRight(const QString &source, const QString &target, JobUi &ui,
                           RotationOptions options = {});

// The quarter turns of a picture: a 640 x 480 picture comes back 480 x 640, every pixel moved
// and none changed.
QImage RotateImageLeft(const QImage &image);
QImage RotateImageRight(const QImage &image);

// The bitmap that the bitmap route makes of source: source less its ".jpg", ".gif" or ".bmp"
// (found in lower case from the end), followed by "_tmp.bmp"; "" for another extension.
QString RotateTempPath(const QString &source);
