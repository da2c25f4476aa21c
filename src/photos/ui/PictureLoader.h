#pragma once

#include <QImage>
#include <QSize>
#include <QString>

// Reads picture files the way every view of the program shows them: upright (the file's
// orientation applied once), colours in sRGB, HEIC, WebP, PNG and TIFF as well as JPEG, GIF and
// bitmaps. A file that is missing or isn't a picture gives a null image (or an invalid size);
// nothing is reported.

// The whole picture.
QImage ReadPicture(const QString &path);

// The picture's upright size, read from its header without decoding the picture.
QSize ReadPictureSize(const QString &path);

// The picture at size (upright; the caller keeps the picture's ratio). A JPEG is decoded at a
// reduced scale directly, which is far quicker for a preview of a large photo. A size larger
// than the picture gives the picture at its own size.
QImage ReadPictureScaled(const QString &path, const QSize &size);
