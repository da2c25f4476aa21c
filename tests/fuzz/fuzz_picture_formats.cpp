// The photo decoder on pictures of today's phones and cameras, as the Ready to Send list and the
// paint window read them: a HEIC (libheif, its "irot"/"imir" boxes walked by our own reader, the
// EXIF block and the colour profile), a WebP, a PNG or a TIFF. The header read, the decode whole
// and at a reduced size, and the conversion onto the list as a JPEG.
// fuzz-options: -max_len=131072 -rss_limit_mb=4096
#include "FuzzSupport.h"
#include "PictureDecoder.h"
#include "PictureSizing.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>

namespace {

// What the decoder promises of every picture it gives: eight bits a channel, at most budget bytes.
bool eightBit(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied:
    case QImage::Format_RGB888:
    case QImage::Format_Grayscale8:
        return true;
    default:
        return false;
    }
}

// Files of the list's folder other than the ones named: a conversion leaves nothing half made.
QStringList strayFiles(const QString &folder, const QStringList &allowed)
{
    QStringList stray;
    const QStringList names =
        QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString &name : names) {
        if (!allowed.contains(name))
            stray.append(name);
    }
    return stray;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    // The first byte picks the name the picture has and the size a copy asks for.
    static const char *const names[] = {"in.heic", "IMG_0001.HEIC", "in.heif", "in.webp",
                                        "in.png",  "in.tif",        "in.tiff", "in.jpg"};
    const QString name = QString::fromLatin1(names[data[0] & 7]);
    const int wanted = 1 + (data[0] >> 3) * 4;
    const QString folder = Fuzz::home() + QStringLiteral("/formats");
    const QString list = Fuzz::home() + QStringLiteral("/list");
    QDir(list).removeRecursively();
    QDir().mkpath(list);
    const QString source = folder + QLatin1Char('/') + name;
    Fuzz::writeFile(source, Fuzz::bytes(data + 1, size - 1));

    // A budget that keeps each input quick and small; a larger picture is refused with a message.
    constexpr qint64 budget = 64LL * 1024 * 1024;
    const PictureHeader header = ReadPictureHeader(source);
    FUZZ_CHECK(header.ok() == header.error.isEmpty());
    if (header.ok())
        FUZZ_CHECK(header.stored.isValid());

    const DecodedPicture whole = DecodePicture(source, QSize(), budget);
    if (!header.ok())
        FUZZ_CHECK(!whole.ok());
    if (whole.ok()) {
        FUZZ_CHECK(!whole.image.isNull() && eightBit(whole.image));
        FUZZ_CHECK(qint64(whole.image.sizeInBytes()) <= budget);
        if (!header.reducesWhileDecoding)
            FUZZ_CHECK_MSG(whole.image.size() == header.upright(),
                           QStringLiteral("%1x%2 decoded, %3x%4 in the header")
                               .arg(whole.image.width())
                               .arg(whole.image.height())
                               .arg(header.upright().width())
                               .arg(header.upright().height()));
    } else {
        FUZZ_CHECK(!whole.error.isEmpty() && whole.image.isNull());
    }

    const DecodedPicture reduced = DecodePicture(source, QSize(wanted, wanted), budget);
    if (reduced.ok())
        FUZZ_CHECK(eightBit(reduced.image) && qint64(reduced.image.sizeInBytes()) <= budget);

    // Onto the list only what the budget above lets through, so that no input takes the
    // decoder's full allowance.
    if (!header.ok() || qint64(header.stored.width()) * header.stored.height() * 4 > budget)
        return 0;
    const QString target = list + QStringLiteral("/00050_") + ReadyListName(name);
    const QString message = CopyToReadyList(source, target);
    if (!message.isEmpty()) {
        FUZZ_CHECK_MSG(strayFiles(list, {}).isEmpty(), strayFiles(list, {}).join(u' '));
        return 0;
    }
    FUZZ_CHECK_MSG(strayFiles(list, {QFileInfo(target).fileName()}).isEmpty(),
                   strayFiles(list, {QFileInfo(target).fileName()}).join(u' '));
    if (IsConvertedSource(name)) {
        QImageReader copy(target);
        FUZZ_CHECK(copy.format() == "jpeg");
        FUZZ_CHECK(copy.size() == header.upright());
    }
    return 0;
}
