#include "PictureLoader.h"

#include <QImageReader>

QImage LoadPicture(const QString &path)
{
    if (path.isEmpty())
        return QImage();
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    return reader.read();
}
