#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <array>

// Reading, scaling and writing the pictures of a photo page and of a Web Log's sections. Pure
// functions of files and images: safe to call from a worker thread, never touch the event loop or
// the user.
//
// Every picture is read upright (the file's orientation applied once) with its colours in sRGB.
// A decoded picture may take at most this many bytes; a larger one is read at a reduced scale or
// refused.
inline constexpr qint64 PictureMemoryBudget = 256LL * 1024 * 1024;

// The size of a copy at percent of size, sides scaled alike, at least one pixel each.
QSize ScaledSize(QSize size, double percent);

struct PictureResult
{
    QImage image;
    QString error; // empty on success
    bool ok() const { return error.isEmpty(); }
};

// The picture's size as shown (orientation applied); invalid when it can't be read.
QSize PictureSize(const QString &path, QString *error = nullptr);
// Reads the picture at path, upright and in sRGB. When atLeast is valid, a JPEG is decoded at
// the smallest of n/8 of its size (n from 1 to 8) that still holds twice atLeast on each side,
// so the full-size picture is never held in memory when a smaller copy is wanted, and the filter
// that takes it the rest of the way has room to work.
PictureResult LoadPicture(const QString &path, QSize atLeast = QSize());

// The picture scaled to percent of its size (Lanczos, see Resample.h).
QImage ApplyEffect(const QImage &image, double percent);
// The picture scaled to exactly size (Lanczos, see Resample.h).
QImage ScaleTo(const QImage &image, QSize size);

struct SaveResult
{
    bool ok = true;
    QString message; // the text to show the user; empty when the failure is a silent one
};

// How a JPEG copy is written: the first quality tried (the writer is given the next lower one
// down to 50 when it refuses one), and whether the file is progressive. At quality 100 the file
// is always a baseline one, the same bytes as ever.
struct JpegOptions
{
    int quality = 100;
    bool progressive = false;
};

// Writes image to path in the format that path asks for: a path holding ".gif" (any case) gets
// a GIF, one holding ".jpg" a JPEG (a transparent picture laid on white), anything else a
// bitmap. A JPEG is made as the part of the path before ".jpg" followed by "_tmp.jpg", a GIF
// likewise with "_tmp.gif", and then put in place of path. A JPEG that can't be written at any
// quality leaves neither file and gives "Error in file conversion. Retry.( Error n - text)"; a
// GIF that can't be written leaves the bitmap under the ".gif" name, without a message.
SaveResult savepic(const QImage &image, const QString &path, JpegOptions jpeg = {});

// One row of CopyPhotos: the enlarged copy at largePercent and the thumbnail at smallPercent of
// source, each scaled from the picture itself (the source is decoded once, at the scale the
// larger copy needs).
struct SizeResult
{
    QString loadError;    // the picture couldn't be read: nothing was written
    QString largeMessage; // savepic's message for the enlarged copy
    QString smallMessage; // and for the thumbnail
};
SizeResult SizePhoto(const QString &source, const QString &largePath, double largePercent,
                     const QString &smallPath, double smallPercent, JpegOptions jpeg = {});

// One copy of source at percent, written to target (the Web Log's section picture): decoded
// once at the scale the copy needs, scaled, and written by savepic with jpeg.
struct CopyResult
{
    QString loadError; // the picture couldn't be read: nothing was written
    QString message;   // savepic's message
};
CopyResult SizeOneCopy(const QString &source, const QString &target, double percent,
                       JpegOptions jpeg = {});

// The percentage boxes: a value below 2 becomes "2", one above 120 "120"; others stay as typed.
QString LimitResizeText(const QString &text);
// Setting key and default of box index (0 thumbnail, 1 enlarged copy, 2 Web Log picture).
QString ResizeSettingKey(int index);
QString ResizeDefault(int index);

// The camera short cuts: the buttons that fill the percentage boxes.
struct CameraPreset
{
    int button;       // index of the button
    QString caption;  // its caption
    QString rowLabel; // the camera beside it
    QString small;    // My_resize(0), or "" when the button leaves it
    QString large;    // My_resize(1)
    QString blog;     // My_resize(2)
};
const std::array<CameraPreset, 10> &CameraTable();
// Fills boxes (the texts of My_resize 0 to 2) as button index asks; false for an unknown button.
bool ApplyCameraPreset(int button, std::array<QString, 3> &boxes);
