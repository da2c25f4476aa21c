#include "PictureSizing.h"

#include "GifFile.h"
#include "PhotoPage.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>

#include <cmath>
#include <optional>

namespace {

qint64 bytesOf(QSize size)
{
    return qint64(size.width()) * size.height() * 4;
}

bool tooLarge(QSize size)
{
    return !size.isValid() || size.width() > 65535 || size.height() > 65535 ||
           bytesOf(size) > PictureMemoryBudget;
}

bool swapsSides(const QImageReader &reader)
{
    return reader.transformation() & QImageIOHandler::TransformationRotate90;
}

// The reader's reason, made readable, with the file's name.
QString readError(const QImageReader &reader, const QString &path)
{
    QString reason = reader.errorString();
    if (reader.error() == QImageReader::UnknownError || reason.isEmpty() ||
        reason == QLatin1String("Unknown error"))
        reason = QStringLiteral("The file is damaged or is not a picture");
    return reason + QStringLiteral(" (") + QFileInfo(path).fileName() + QLatin1Char(')');
}

QString tooLargeText(QSize size)
{
    return QStringLiteral("The picture is too large to be sized (%1 x %2 pixels).")
        .arg(size.width())
        .arg(size.height());
}

// Writes image at path in format through a temporary file beside it, which replaces path only
// once it is complete; quality -1 is the writer's default. Returns the writer's error, if any.
struct WriteError
{
    int number = 0;
    QString text;
};
std::optional<WriteError> writeWhole(const QImage &image, const QString &path, const char *format,
                                     int quality = -1)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return WriteError{int(QImageWriter::DeviceError), file.errorString()};
    QImageWriter writer(&file, format);
    writer.setQuality(quality);
    if (!writer.write(image)) {
        file.cancelWriting();
        return WriteError{int(writer.error()), writer.errorString()};
    }
    if (!file.commit())
        return WriteError{int(QImageWriter::DeviceError), file.errorString()};
    return std::nullopt;
}

SaveResult saveJpeg(const QImage &image, const QString &path)
{
    std::optional<WriteError> error;
    // A writer that refuses a quality is given the next lower one; normally 100 is taken.
    for (int quality = 100; quality >= 50; --quality) {
        error = writeWhole(image, path, "jpeg", quality);
        if (!error)
            return {};
    }
    QFile::remove(path);
    return {false, QStringLiteral("Error in file conversion. Retry.( Error %1 - %2)")
                       .arg(error->number)
                       .arg(error->text)};
}

} // namespace

QSize ScaledSize(QSize size, double percent)
{
    const auto side = [percent](int length) {
        return std::max(1, int(std::lround(double(length) * percent / 100.0)));
    };
    return QSize(side(size.width()), side(size.height()));
}

QSize PictureSize(const QString &path, QString *error)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    QSize size = reader.size();
    if (!size.isValid()) {
        if (error)
            *error = readError(reader, path);
        return QSize();
    }
    return swapsSides(reader) ? size.transposed() : size;
}

PictureResult LoadPicture(const QString &path, QSize atLeast)
{
    if (!QFileInfo(path).isFile())
        return {QImage(), QStringLiteral("File not found: ") + path};
    QImageReader reader(path);
    // The content decides: a ".dib" is a bitmap, and a file may carry the wrong extension.
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    reader.setAllocationLimit(int(PictureMemoryBudget / (1024 * 1024)));
    const QSize stored = reader.size();
    if (!stored.isValid())
        return {QImage(), readError(reader, path)};
    const bool swap = swapsSides(reader);
    QSize decoded = stored;
    if (atLeast.isValid() && reader.supportsOption(QImageIOHandler::ScaledSize)) {
        QSize wanted = (swap ? atLeast.transposed() : atLeast).boundedTo(stored);
        // The JPEG decoder scales by 1/2, 1/4 or 1/8 while it decodes (the whole part of the
        // ratio, rounded down to one of these) and smooths the rest of the way.
        int factor = std::min(stored.width() / wanted.width(), stored.height() / wanted.height());
        factor = factor >= 8 ? 8 : factor >= 4 ? 4 : factor >= 2 ? 2 : 1;
        const auto atFactor = [&stored](int f) {
            return QSize((stored.width() + f - 1) / f, (stored.height() + f - 1) / f);
        };
        if (bytesOf(atFactor(factor)) > PictureMemoryBudget) {
            // Decoding at that scale would not fit: decode smaller and let the caller scale up
            // the last step.
            while (factor < 8 && bytesOf(atFactor(factor)) > PictureMemoryBudget)
                factor *= 2;
            wanted =
                QSize(std::max(1, stored.width() / factor), std::max(1, stored.height() / factor));
        }
        reader.setScaledSize(wanted);
        reader.setQuality(100);
        decoded = atFactor(factor);
    }
    if (tooLarge(decoded))
        return {QImage(), tooLargeText(swap ? decoded.transposed() : decoded)};
    QImage image = reader.read();
    if (image.isNull())
        return {QImage(), readError(reader, path)};
    return {image, QString()};
}

QImage ScaleTo(const QImage &image, QSize size)
{
    if (image.size() == size)
        return image;
    QImage source = image;
    // Smooth scaling works on true-colour pixels; palette pictures (GIF) are converted first.
    if (source.format() == QImage::Format_Indexed8 || source.format() == QImage::Format_Mono ||
        source.format() == QImage::Format_MonoLSB)
        source = source.convertToFormat(source.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                 : QImage::Format_RGB32);
    return source.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage ApplyEffect(const QImage &image, double percent)
{
    if (image.isNull() || !(percent > 0))
        return QImage();
    return ScaleTo(image, ScaledSize(image.size(), percent));
}

SaveResult savepic(const QImage &image, const QString &path)
{
    if (image.isNull())
        return {false, QStringLiteral("Error in file conversion. Retry.( Error 0 - No picture)")};
    const QString lower = path.toLower();
    if (lower.contains(QStringLiteral(".gif"))) {
        if (WriteGifFile(image, path))
            return {};
        // As before a GIF was made, the bitmap stays under the ".gif" name.
        writeWhole(image, path, "bmp");
        return {false, QString()};
    }
    // The name is searched, not just its end: "a.jpg.d/b.bmp" is written as a JPEG too.
    if (lower.contains(QStringLiteral(".jpg")))
        return saveJpeg(image, path);
    if (writeWhole(image, path, "bmp"))
        return {false, QString()};
    return {};
}

SizeResult SizePhoto(const QString &source, const QString &largePath, double largePercent,
                     const QString &smallPath, double smallPercent)
{
    SizeResult result;
    if (!(largePercent > 0) || !(smallPercent > 0)) {
        result.loadError = QStringLiteral("Invalid procedure call or argument");
        return result;
    }
    QString error;
    const QSize full = PictureSize(source, &error);
    if (!full.isValid()) {
        result.loadError = error.isEmpty() ? QStringLiteral("File not found: ") + source : error;
        return result;
    }
    const QSize large = ScaledSize(full, largePercent);
    const QSize small = ScaledSize(full, smallPercent);
    if (tooLarge(large) || tooLarge(small)) {
        result.loadError = tooLargeText(tooLarge(large) ? large : small);
        return result;
    }
    // One decode at the larger copy's size; the smaller copy is scaled from that picture, never
    // from the written (and so already compressed) enlarged copy.
    const bool largeFirst = large.width() >= small.width();
    PictureResult picture = LoadPicture(source, largeFirst ? large : small);
    if (!picture.ok()) {
        result.loadError = picture.error;
        return result;
    }
    const QImage largeImage = ScaleTo(picture.image, large);
    const QImage smallImage = ScaleTo(largeFirst ? largeImage : picture.image, small);
    picture.image = QImage();
    result.largeMessage = savepic(largeImage, largePath).message;
    result.smallMessage = savepic(smallImage, smallPath).message;
    return result;
}

CopyResult SizeOneCopy(const QString &source, const QString &target, double percent)
{
    CopyResult result;
    if (!(percent > 0)) {
        result.loadError = QStringLiteral("Invalid procedure call or argument");
        return result;
    }
    QString error;
    const QSize full = PictureSize(source, &error);
    if (!full.isValid()) {
        result.loadError = error.isEmpty() ? QStringLiteral("File not found: ") + source : error;
        return result;
    }
    const QSize size = ScaledSize(full, percent);
    if (tooLarge(size)) {
        result.loadError = tooLargeText(size);
        return result;
    }
    const PictureResult picture = LoadPicture(source, size);
    if (!picture.ok()) {
        result.loadError = picture.error;
        return result;
    }
    result.message = savepic(ScaleTo(picture.image, size), target).message;
    return result;
}

QString LimitResizeText(const QString &text)
{
    const double number = NumericValue(text);
    if (number < 2)
        return QStringLiteral("2");
    if (number > 120)
        return QStringLiteral("120");
    return text;
}

QString ResizeSettingKey(int index)
{
    switch (index) {
    case 0:
        return QStringLiteral("sml_resize");
    case 1:
        return QStringLiteral("lrg_resize");
    case 2:
        return QStringLiteral("Blog_resize");
    default:
        return QString();
    }
}

QString ResizeDefault(int index)
{
    switch (index) {
    case 0:
        return QStringLiteral("15");
    case 1:
        return QStringLiteral("30");
    case 2:
        return QStringLiteral("15");
    default:
        return QString();
    }
}

const std::array<CameraPreset, 10> &CameraTable()
{
    static const std::array<CameraPreset, 10> table = {{
        {9, QStringLiteral("  2%                7%"), QStringLiteral("8 mega-pixel"), "2", "7", ""},
        {8, QStringLiteral("15%              25%"), QStringLiteral("5 mega-pixel"), "15", "25", ""},
        {7, QStringLiteral("20%              40%"), QStringLiteral("3 mega-pixel"), "20", "40", ""},
        {6, QStringLiteral("30%              75%"), QStringLiteral("1 mega-pixel"), "30", "75", ""},
        {5, QStringLiteral("40%            100%"), QStringLiteral(".5 mega-pixel"), "40", "100",
         ""},
        {0, QStringLiteral("7%"), QStringLiteral("8 mega-pixel"), "", "", "7"},
        {1, QStringLiteral("15%"), QStringLiteral("5 mega-pixel"), "", "", "15"},
        {2, QStringLiteral("25%"), QStringLiteral("3 mega-pixel"), "", "", "25"},
        {3, QStringLiteral("50%"), QStringLiteral("1 mega-pixel"), "", "", "50"},
        {4, QStringLiteral("100%"), QStringLiteral(".5 mega-pixel"), "", "", "100"},
    }};
    return table;
}

bool ApplyCameraPreset(int button, std::array<QString, 3> &boxes)
{
    for (const CameraPreset &preset : CameraTable()) {
        if (preset.button != button)
            continue;
        const QString values[3] = {preset.small, preset.large, preset.blog};
        for (int i = 0; i < 3; ++i) {
            if (!values[i].isEmpty())
                boxes[i] = values[i];
        }
        return true;
    }
    return false;
}
