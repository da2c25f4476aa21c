#include "PictureLoader.h"

#include <QImageReader>

namespace {

bool turnsQuarter(QImageIOHandler::Transformations transformation)
{
    return transformation.testFlag(QImageIOHandler::TransformationRotate90);
}

} // namespace

QImage ReadPicture(const QString &path)
{
    if (path.isEmpty())
        return QImage();
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    return reader.read();
}

QSize ReadPictureSize(const QString &path)
{
    if (path.isEmpty())
        return QSize();
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QSize raw = reader.size();
    if (!raw.isValid())
        return QSize();
    return turnsQuarter(reader.transformation()) ? raw.transposed() : raw;
}

QImage ReadPictureScaled(const QString &path, const QSize &size)
{
    if (path.isEmpty() || !size.isValid() || size.isEmpty())
        return QImage();
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    const QSize raw = reader.size();
    // The reader scales before it turns the picture upright.
    const QSize wanted = turnsQuarter(reader.transformation()) ? size.transposed() : size;
    if (raw.isValid() && wanted.width() < raw.width() && wanted.height() < raw.height())
        reader.setScaledSize(wanted);
    return reader.read();
}
