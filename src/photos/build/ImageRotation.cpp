#include "ImageRotation.h"

#include "Helpers.h"
#include "JobUi.h"
#include "PictureSizing.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QLocale>
#include <QTransform>

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

enum class Turn
{
    Left,
    Right
};

// The extension the rotators take, in lower case ("" for one they refuse).
QString handledExtension(const QString &path, bool parallelogram)
{
    const QString lower = path.toLower();
    QStringList handled = {QStringLiteral(".jpg"), QStringLiteral(".gif"), QStringLiteral(".bmp")};
    if (parallelogram)
        handled << QStringLiteral(".dib");
    for (const QString &extension : handled) {
        if (lower.endsWith(extension))
            return extension;
    }
    return QString();
}

QImage readPicture(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    return reader.read();
}

// The bitmap route's first step: the picture as a bitmap beside it.
bool makeTempBitmap(const QString &source, const QString &temp)
{
    DoKill(temp);
    if (source.toLower().endsWith(QLatin1String(".bmp")))
        return QFile::copy(source, temp);
    const QImage picture = readPicture(source);
    return !picture.isNull() && picture.save(temp, "BMP");
}

RotationResult rotate(const QString &source, const QString &target, JobUi &ui,
                      RotationOptions options, Turn turn)
{
    RotationResult result;
    QElapsedTimer clock;
    clock.start();

    if (handledExtension(source, options.useParallelogram).isEmpty()) {
        ui.Message(RotationFormatMessage, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Information);
        result.unsupportedFormat = true;
        result.error = RotationFormatMessage;
        return result;
    }

    QString temp;
    QImage picture;
    if (options.useParallelogram) {
        picture = readPicture(source);
    } else {
        temp = RotateTempPath(source);
        if (makeTempBitmap(source, temp))
            picture = readPicture(temp);
    }
    ui.ProcessEvents();
    if (picture.isNull()) {
        DoKill(temp);
        result.error = QStringLiteral("Error, Unable To Load Bitmap");
        ui.Message(result.error, QStringLiteral("Bitmap Load Error"), JobUi::Buttons::Ok,
                   JobUi::Icon::Warning);
        return result;
    }

    const QImage turned = turn == Turn::Left ? RotateImageLeft(picture) : RotateImageRight(picture);
    ui.ProcessEvents();

    const SaveResult saved = savepic(turned, target);
    DoKill(temp);
    ui.ProcessEvents();
    if (!saved.ok) {
        result.error = saved.message.isEmpty() ? QStringLiteral("The turned picture could not be "
                                                                "written.")
                                               : saved.message;
        ui.Message(result.error, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return result;
    }
    result.ok = true;

    if (options.useParallelogram && turn == Turn::Left) {
        const double seconds = double(clock.elapsed()) / 1000.0;
        ui.Message(QStringLiteral("Time = ") + QLocale::c().toString(seconds, 'f', 3), Tarnwick,
                   JobUi::Buttons::Ok, JobUi::Icon::Information);
    }
    return result;
}

} // namespace

QImage RotateImageLeft(const QImage &image)
{
    // A quarter turn moves whole pixels: no filtering takes place.
    return image.transformed(QTransform().rotate(-90));
}

QImage RotateImageRight(const QImage &image)
{
    return image.transformed(QTransform().rotate(90));
}

QString RotateTempPath(const QString &source)
{
    const QString lower = source.toLower();
    for (const char *extension : {".jpg", ".gif", ".bmp"}) {
        const qsizetype at = lower.lastIndexOf(QLatin1String(extension));
        if (at >= 0 && at == lower.size() - 4)
            return source.left(at) + QStringLiteral("_tmp.bmp");
    }
    return QString();
}

RotationResult RotateLeft(const QString &source, const QString &target, JobUi &ui,
                          RotationOptions options)
{
    return rotate(source, target, ui, options, Turn::Left);
}

RotationResult RotateRight(const QString &source, const QString &target, JobUi &ui,
                           RotationOptions options)
{
    return rotate(source, target, ui, options, Turn::Right);
}
