#pragma once

#include <QImage>
#include <QImageIOHandler>
#include <QSize>
#include <QString>

// Reading picture files for sizing: what a file holds, and its pixels upright and in sRGB.
// Pure functions of files: safe on worker threads; they never touch the event loop or the user.

// What a picture file holds, read from its header without decoding the picture.
struct PictureHeader
{
    QSize stored;                                   // the pixels as stored
    QImageIOHandler::Transformations transformation; // what turns them upright
    bool reducesWhileDecoding = false; // the decoder can give a smaller picture directly (JPEG)
    bool heif = false;                 // a HEIF container (HEIC): libheif turns it upright
    QString error;                     // why the file can't be read; empty when it can

    bool ok() const { return error.isEmpty(); }
    // The size as shown: sides swapped when the picture is turned a quarter.
    QSize upright() const
    {
        return transformation.testFlag(QImageIOHandler::TransformationRotate90)
                   ? stored.transposed()
                   : stored;
    }
};
PictureHeader ReadPictureHeader(const QString &path);

struct DecodedPicture
{
    QImage image;
    QString error; // empty on success
    bool ok() const { return error.isEmpty(); }
};

// How much larger than the wanted size a reduced decode stays, so that the filter that takes it
// the rest of the way has room to work: a decoder's own reduction is a coarse one.
inline constexpr double DecodeHeadroom = 2.0;

// The picture at path, upright (the file's orientation applied once), its colours converted to
// sRGB from the profile the file carries. When atLeast (upright) is valid and the format can
// decode at a reduced size, it is decoded at the smallest scale that still holds DecodeHeadroom
// times atLeast on both sides (never more than the whole picture); other formats are decoded
// whole. A decoded picture may take at most budgetBytes (4 bytes a pixel): a JPEG is then
// decoded smaller still, anything else is refused. Transparency is kept.
DecodedPicture DecodePicture(const QString &path, QSize atLeast, qint64 budgetBytes);

// The size at which DecodePicture decodes path for atLeast (upright), without decoding it;
// invalid when the file can't be read.
QSize DecodedSize(const PictureHeader &header, QSize atLeast, qint64 budgetBytes);
