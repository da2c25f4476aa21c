#include "PictureSizing.h"

#include "GifFile.h"
#include "Helpers.h"
#include "PhotoPage.h"
#include "PictureDecoder.h"
#include "Resample.h"

#include <QColorSpace>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>
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

QString tooLargeText(QSize size)
{
    return QStringLiteral("The picture is too large to be sized (%1 x %2 pixels).")
        .arg(size.width())
        .arg(size.height());
}

struct WriteError
{
    int number = 0;
    QString text;
};

// Writes image to path in format; quality -1 is the writer's default. A file that is only
// partly written is removed. Returns the writer's error, if any.
std::optional<WriteError> writeFile(const QImage &image, const QString &path, const char *format,
                                    int quality = -1, bool progressive = false)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return WriteError{int(QImageWriter::DeviceError), file.errorString()};
    QImageWriter writer(&file, format);
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(progressive);
    if (!writer.write(image)) {
        file.close();
        file.remove();
        return WriteError{int(writer.error()), writer.errorString()};
    }
    file.close();
    if (file.error() != QFileDevice::NoError) {
        file.remove();
        return WriteError{int(QImageWriter::DeviceError), file.errorString()};
    }
    return std::nullopt;
}

// Puts the finished temporary file in place of path.
bool replaceWith(const QString &temp, const QString &path)
{
    DoKill(path);
    if (QFile::rename(temp, path))
        return true;
    const bool copied = QFile::copy(temp, path);
    DoKill(temp);
    return copied;
}

// A JPEG holds no transparency: a transparent picture is laid on white first.
QImage onWhite(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return image;
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    flat.setColorSpace(image.colorSpace());
    QPainter painter(&flat);
    painter.drawImage(0, 0, image);
    painter.end();
    return flat;
}

// The JPEG step: written as the part of path before ".jpg" followed by "_tmp.jpg", at the first
// quality from jpeg.quality down to 50 that the writer takes, then put in place of path.
SaveResult saveJpeg(const QImage &image, const QString &path, qsizetype at, JpegOptions jpeg)
{
    const QString temp = path.left(at) + QStringLiteral("_tmp.jpg");
    const QImage flat = onWhite(image);
    const bool progressive = jpeg.progressive && jpeg.quality < 100;
    std::optional<WriteError> error;
    // A writer that refuses a quality is given the next lower one; normally the first is taken.
    for (int quality = std::clamp(jpeg.quality, 50, 100); quality >= 50; --quality) {
        error = writeFile(flat, temp, "jpeg", quality, progressive);
        if (!error)
            break;
    }
    if (error) {
        DoKill(temp);
        DoKill(path);
        return {false, QStringLiteral("Error in file conversion. Retry.( Error %1 - %2)")
                           .arg(error->number)
                           .arg(error->text)};
    }
    if (!replaceWith(temp, path))
        return {false, QStringLiteral("Error in file conversion. Retry.( Error %1 - %2)")
                           .arg(int(QImageWriter::DeviceError))
                           .arg(QStringLiteral("The copy could not be put in place"))};
    return {};
}

// The GIF step: written as the part of path before ".gif" followed by "_tmp.gif", then put in
// place of path. A GIF that can't be made leaves the bitmap under the ".gif" name, silently.
SaveResult saveGif(const QImage &image, const QString &path, qsizetype at)
{
    const QString temp = path.left(at) + QStringLiteral("_tmp.gif");
    if (WriteGifFile(image, temp) && replaceWith(temp, path))
        return {};
    DoKill(temp);
    writeFile(image, path, "bmp");
    return {false, QString()};
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
    const PictureHeader header = ReadPictureHeader(path);
    if (!header.ok()) {
        if (error)
            *error = header.error;
        return QSize();
    }
    return header.upright();
}

PictureResult LoadPicture(const QString &path, QSize atLeast)
{
    DecodedPicture decoded = DecodePicture(path, atLeast, PictureMemoryBudget);
    return {std::move(decoded.image), decoded.error};
}

QImage ScaleTo(const QImage &image, QSize size)
{
    if (image.size() == size)
        return image;
    return ResampleLanczos(image, size);
}

QImage ApplyEffect(const QImage &image, double percent)
{
    if (image.isNull() || !(percent > 0))
        return QImage();
    return ScaleTo(image, ScaledSize(image.size(), percent));
}

SaveResult savepic(const QImage &image, const QString &path, JpegOptions jpeg)
{
    if (image.isNull())
        return {false, QStringLiteral("Error in file conversion. Retry.( Error 0 - No picture)")};
    const QString lower = path.toLower();
    // The name is searched, not just its end: "a.jpg.d/b.bmp" is written as a JPEG too.
    const qsizetype gif = lower.indexOf(QLatin1String(".gif"));
    if (gif >= 0)
        return saveGif(image, path, gif);
    const qsizetype jpg = lower.indexOf(QLatin1String(".jpg"));
    if (jpg >= 0)
        return saveJpeg(image, path, jpg, jpeg);
    if (writeFile(image, path, "bmp"))
        return {false, QString()};
    return {};
}

SizeResult SizePhoto(const QString &source, const QString &largePath, double largePercent,
                     const QString &smallPath, double smallPercent, JpegOptions jpeg)
{
    SizeResult result;
    if (!(largePercent > 0) || !(smallPercent > 0)) {
        result.loadError = QStringLiteral("Invalid procedure call or argument");
        return result;
    }
    QString error;
    const QSize full = PictureSize(source, &error);
    if (!full.isValid()) {
        result.loadError = error;
        return result;
    }
    const QSize large = ScaledSize(full, largePercent);
    const QSize small = ScaledSize(full, smallPercent);
    if (tooLarge(large) || tooLarge(small)) {
        result.loadError = tooLargeText(tooLarge(large) ? large : small);
        return result;
    }
    // One decode for both copies, at the larger copy's size; the smaller copy is scaled from the
    // larger one in memory, never from the written (and so already compressed) file.
    const bool largeFirst = large.width() >= small.width();
    PictureResult picture = LoadPicture(source, largeFirst ? large : small);
    if (!picture.ok()) {
        result.loadError = picture.error;
        return result;
    }
    const QImage largeImage = ScaleTo(picture.image, large);
    const QImage smallImage = ScaleTo(largeFirst ? largeImage : picture.image, small);
    picture.image = QImage();
    result.largeMessage = savepic(largeImage, largePath, jpeg).message;
    result.smallMessage = savepic(smallImage, smallPath, jpeg).message;
    return result;
}

CopyResult SizeOneCopy(const QString &source, const QString &target, double percent,
                       JpegOptions jpeg)
{
    CopyResult result;
    if (!(percent > 0)) {
        result.loadError = QStringLiteral("Invalid procedure call or argument");
        return result;
    }
    QString error;
    const QSize full = PictureSize(source, &error);
    if (!full.isValid()) {
        result.loadError = error;
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
    result.message = savepic(ScaleTo(picture.image, size), target, jpeg).message;
    return result;
}

bool IsConvertedSource(const QString &name)
{
    static const QStringList extensions = {
        QStringLiteral("heic"), QStringLiteral("heif"), QStringLiteral("webp"),
        QStringLiteral("png"),  QStringLiteral("tif"),  QStringLiteral("tiff")};
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot >= 0 && extensions.contains(name.mid(dot + 1).toLower());
}

QString ReadyListName(const QString &sourceName)
{
    if (!IsConvertedSource(sourceName))
        return sourceName;
    return sourceName.left(sourceName.lastIndexOf(QLatin1Char('.'))) + QStringLiteral(".jpg");
}

QString FindSourceOf(const QString &folder, const QString &name)
{
    if (QFileInfo(folder + QLatin1Char('/') + name).isFile())
        return folder + QLatin1Char('/') + name;
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot < 0 || name.mid(dot).compare(QLatin1String(".jpg"), Qt::CaseInsensitive) != 0)
        return QString();
    const QString base = name.left(dot);
    const QStringList candidates =
        QDir(folder).entryList({base + QStringLiteral(".*")}, QDir::Files, QDir::Name);
    for (const QString &candidate : candidates) {
        if (IsConvertedSource(candidate) &&
            candidate.left(candidate.lastIndexOf(QLatin1Char('.'))) == base)
            return folder + QLatin1Char('/') + candidate;
    }
    return QString();
}

QString CopyToReadyList(const QString &source, const QString &target)
{
    if (!IsConvertedSource(QFileInfo(source).fileName())) {
        if (!QFileInfo(source).isFile())
            return QStringLiteral("File not found: ") + source;
        DoKill(target);
        return QFile::copy(source, target) ? QString()
                                           : QStringLiteral("The file could not be copied: ") +
                                                 QDir::toNativeSeparators(target);
    }
    const PictureResult picture = LoadPicture(source);
    if (!picture.ok())
        return picture.error;
    // Written under a hidden name beside the target and put in place once whole: the list, read
    // while other pictures are still being converted, never shows a copy half made.
    const QFileInfo info(target);
    const QString staging = info.path() + QStringLiteral("/.") + info.fileName();
    const SaveResult saved = savepic(picture.image, staging);
    if (!saved.ok) {
        DoKill(staging);
        return saved.message.isEmpty() ? QStringLiteral("The copy could not be written: ") +
                                             QDir::toNativeSeparators(target)
                                       : saved.message;
    }
    if (!replaceWith(staging, target)) {
        DoKill(staging);
        return QStringLiteral("The copy could not be put in place: ") +
               QDir::toNativeSeparators(target);
    }
    return QString();
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

const std::array<CameraPreset, 3> &TodaysCameraRows()
{
    // 4032 x 3024, 6000 x 4000 and 8064 x 6048 pixels.
    static const std::array<CameraPreset, 3> rows = {{
        {10, QStringLiteral("  9%              20%"), QStringLiteral("12 mega-pixel"), "9", "20", ""},
        {11, QStringLiteral("  6%              14%"), QStringLiteral("24 mega-pixel"), "6", "14", ""},
        {12, QStringLiteral("  5%              10%"), QStringLiteral("48 mega-pixel"), "5", "10", ""},
    }};
    return rows;
}

bool ApplyCameraPreset(int button, std::array<QString, 3> &boxes)
{
    const auto apply = [&](const CameraPreset &preset) {
        const QString values[3] = {preset.small, preset.large, preset.blog};
        for (int i = 0; i < 3; ++i) {
            if (!values[i].isEmpty())
                boxes[i] = values[i];
        }
    };
    for (const CameraPreset &preset : CameraTable()) {
        if (preset.button == button) {
            apply(preset);
            return true;
        }
    }
    for (const CameraPreset &preset : TodaysCameraRows()) {
        if (preset.button == button) {
            apply(preset);
            return true;
        }
    }
    return false;
}

QString LimitJpegQualityText(const QString &text)
{
    bool ok = false;
    const double number = text.trimmed().toDouble(&ok);
    if (!ok)
        return JpegQualityDefault;
    return QString::number(std::clamp(int(std::lround(number)), 50, 100));
}

JpegOptions JpegOptionsFor(const QString &qualityText)
{
    return JpegOptions{LimitJpegQualityText(qualityText).toInt(), true};
}
