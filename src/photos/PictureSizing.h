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
// The pictures sized or converted at once on worker threads hold no more than this much between
// them at their peak (one picture is always let through): a machine of many cores working on
// large photos stays within it.
inline constexpr qint64 SizingMemoryBudget = 320LL * 1024 * 1024;

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
// the smallest of 1/8, 1/4, 1/2 or all of its size that still holds twice atLeast on each side,
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

// Sources that the Ready to Send list takes as JPEG copies: pictures of today's phones and
// cameras (".heic", ".heif", ".webp", ".png", ".tif", ".tiff", in any case). Other pictures
// (".jpg", ".gif", ".bmp", ".dib") go onto the list as they are.
bool IsConvertedSource(const QString &name);
// The name a source picture takes on the Ready to Send list (without its group number): a
// converted source keeps its base name with ".jpg" ("IMG_0042.HEIC" gives "IMG_0042.jpg");
// any other keeps its name.
QString ReadyListName(const QString &sourceName);
// The picture in folder that gives the list entry name: name itself when it is there, else a
// converted source of the same base name (case ignored); empty when there is none.
QString FindSourceOf(const QString &folder, const QString &name);
// Puts source onto the list as target: a plain copy, or for a converted source a JPEG of
// quality 100 written through savepic, upright, in sRGB and on white. The JPEG is written under
// a hidden name in target's folder ("." and target's name) and renamed to target once whole, so
// that target is either the whole copy or untouched. Returns the message to show; empty on
// success. May take seconds for a large picture: call it off the event loop (several may run at
// once for different targets).
QString CopyToReadyList(const QString &source, const QString &target);

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
// Rows for today's cameras on the photo settings tab, beside the table's own (buttons 10 to 12:
// 12, 24 and 48 mega-pixels). Their percentages give thumbnails of about 360 to 400 pixels and
// enlarged copies of about 800 to 840 across, the widths the table's rows give their cameras.
const std::array<CameraPreset, 3> &TodaysCameraRows();
// Fills boxes (the texts of My_resize 0 to 2) as button index asks; false for an unknown button.
bool ApplyCameraPreset(int button, std::array<QString, 3> &boxes);

// The JPEG quality of the copies: setting "JpegQuality", a whole number from 50 to 100, "85"
// when absent. At 100 the copies are the baseline files of quality 100 they always were; below,
// they are progressive.
inline const QString JpegQualityKey = QStringLiteral("JpegQuality");
inline const QString JpegQualityDefault = QStringLiteral("85");
// The box's text held to 50 to 100; a text that isn't a number gives the default.
QString LimitJpegQualityText(const QString &text);
// How the copies are written for a quality text.
JpegOptions JpegOptionsFor(const QString &qualityText);
