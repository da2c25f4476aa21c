#include "PictureLoader.h"

#include "PictureDecoder.h"
#include "PictureSizing.h"

#include <QColorSpace>

// The views decode through the same reader as the sizing: every format the photo function
// takes (HEIC too), upright, in sRGB.

QImage ReadPicture(const QString &path)
{
    if (path.isEmpty())
        return QImage();
    return DecodePicture(path, QSize(), PictureMemoryBudget).image;
}

QSize ReadPictureSize(const QString &path)
{
    if (path.isEmpty())
        return QSize();
    const PictureHeader header = ReadPictureHeader(path);
    return header.ok() ? header.upright() : QSize();
}

QImage ReadPictureScaled(const QString &path, const QSize &size)
{
    if (path.isEmpty() || !size.isValid() || size.isEmpty())
        return QImage();
    const QImage picture = DecodePicture(path, size, PictureMemoryBudget).image;
    if (picture.isNull() || (picture.width() <= size.width() && picture.height() <= size.height()))
        return picture;
    // A preview: Qt's smooth scaling is good enough and quick.
    return picture.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}
