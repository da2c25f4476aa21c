#include "ReadyToSendRotate.h"

#include "GifFile.h"

#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>
#include <QTransform>

namespace {

RotateResult writeTurned(const QString &source, const QString &target, qreal degrees)
{
    RotateResult result;
    const QString suffix = QFileInfo(target).suffix().toLower();
    const QString sourceSuffix = QFileInfo(source).suffix().toLower();
    const QStringList handled = {QStringLiteral("jpg"), QStringLiteral("gif"),
                                 QStringLiteral("bmp"), QStringLiteral("dib")};
    if (!handled.contains(suffix) || !handled.contains(sourceSuffix)) {
        result.unsupportedFormat = true;
        result.error = RotateFormatMessage;
        return result;
    }

    QImageReader reader(source);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull()) {
        result.error = reader.errorString();
        return result;
    }
    image = image.transformed(QTransform().rotate(degrees));

    if (suffix == QStringLiteral("gif")) {
        result.ok = WriteGifFile(image, target, &result.error);
        return result;
    }

    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly)) {
        result.error = file.errorString();
        return result;
    }
    QImageWriter writer(&file, suffix == QStringLiteral("jpg") ? "jpg" : "bmp");
    if (suffix == QStringLiteral("jpg")) {
        writer.setQuality(100);
        image = image.convertToFormat(QImage::Format_RGB32);
    }
    if (!writer.write(image)) {
        result.error = writer.errorString();
        file.cancelWriting();
        return result;
    }
    result.ok = file.commit();
    if (!result.ok)
        result.error = file.errorString();
    return result;
}

} // namespace

RotateResult RotateLeft(const QString &source, const QString &target)
{
    return writeTurned(source, target, -90);
}

RotateResult RotateRight(const QString &source, const QString &target)
{
    return writeTurned(source, target, 90);
}
