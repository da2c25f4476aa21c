#include "GifFile.h"

#include <QHash>
#include <QImage>
#include <QSaveFile>

#include <gif_lib.h>

#include <memory>
#include <vector>

namespace {

// An 8-bit picture and its colours, ready for the encoder. transparent is -1 when none.
struct PalettedImage
{
    QList<QRgb> colours;
    std::vector<GifByteType> pixels; // width * height indexes, row by row
    int transparent = -1;
};

bool isTransparent(QRgb pixel)
{
    return qAlpha(pixel) < 128;
}

// Every visible colour of image when there are at most `limit` of them.
bool collectExactColours(const QImage &argb, int limit, QList<QRgb> *colours, bool *anyTransparent)
{
    QHash<QRgb, int> seen;
    *anyTransparent = false;
    for (int y = 0; y < argb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            if (isTransparent(line[x])) {
                *anyTransparent = true;
                continue;
            }
            const QRgb opaque = line[x] | 0xff000000u;
            if (seen.contains(opaque))
                continue;
            if (seen.size() == limit)
                return false;
            seen.insert(opaque, int(seen.size()));
            colours->append(opaque);
        }
    }
    return !(*anyTransparent && colours->size() >= 256);
}

PalettedImage exactPalette(const QImage &argb, const QList<QRgb> &colours, bool anyTransparent)
{
    PalettedImage result;
    result.colours = colours;
    QHash<QRgb, int> index;
    for (int i = 0; i < colours.size(); ++i)
        index.insert(colours.at(i), i);
    if (anyTransparent) {
        result.transparent = int(result.colours.size());
        result.colours.append(qRgb(0, 0, 0));
    }
    result.pixels.resize(size_t(argb.width()) * size_t(argb.height()));
    GifByteType *out = result.pixels.data();
    for (int y = 0; y < argb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            *out++ = GifByteType(isTransparent(line[x]) ? result.transparent
                                                        : index.value(line[x] | 0xff000000u));
        }
    }
    return result;
}

// Too many colours: Qt's colour cube (216 entries) with error diffusion, which leaves room for
// a transparent entry behind the cube.
PalettedImage quantisedPalette(const QImage &argb, bool anyTransparent)
{
    const QImage rgb = argb.convertToFormat(QImage::Format_RGB32);
    const QImage indexed =
        rgb.convertToFormat(QImage::Format_Indexed8, Qt::ColorOnly | Qt::DiffuseDither);
    PalettedImage result;
    result.colours = indexed.colorTable();
    if (anyTransparent) {
        // The cube leaves entries unused; the first of them becomes the transparent colour.
        std::vector<bool> used(256, false);
        for (int y = 0; y < indexed.height(); ++y) {
            const uchar *indexes = indexed.constScanLine(y);
            for (int x = 0; x < indexed.width(); ++x)
                used[indexes[x]] = true;
        }
        for (int i = 0; i < 256; ++i) {
            if (!used[size_t(i)]) {
                result.transparent = i;
                break;
            }
        }
        while (result.colours.size() <= result.transparent)
            result.colours.append(qRgb(0, 0, 0));
    }
    result.pixels.resize(size_t(argb.width()) * size_t(argb.height()));
    GifByteType *out = result.pixels.data();
    for (int y = 0; y < argb.height(); ++y) {
        const uchar *indexes = indexed.constScanLine(y);
        const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            const bool clear = result.transparent >= 0 && isTransparent(line[x]);
            *out++ = GifByteType(clear ? result.transparent : indexes[x]);
        }
    }
    return result;
}

PalettedImage toPalette(const QImage &image)
{
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    QList<QRgb> colours;
    bool anyTransparent = false;
    if (collectExactColours(argb, 256, &colours, &anyTransparent))
        return exactPalette(argb, colours, anyTransparent);
    if (!anyTransparent) {
        for (int y = 0; y < argb.height() && !anyTransparent; ++y) {
            const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
            for (int x = 0; x < argb.width(); ++x) {
                if (isTransparent(line[x])) {
                    anyTransparent = true;
                    break;
                }
            }
        }
    }
    return quantisedPalette(argb, anyTransparent);
}

int writeToBuffer(GifFileType *gif, const GifByteType *data, int length)
{
    auto *buffer = static_cast<QByteArray *>(gif->UserData);
    buffer->append(reinterpret_cast<const char *>(data), length);
    return length;
}

struct MapDeleter
{
    void operator()(ColorMapObject *map) const { GifFreeMapObject(map); }
};

QString gifError(int code)
{
    const char *text = GifErrorString(code);
    return text ? QString::fromLatin1(text) : QStringLiteral("GIF error %1").arg(code);
}

bool encode(const QImage &image, const PalettedImage &picture, QByteArray *bytes, QString *why)
{
    int mapSize = 2;
    while (mapSize < picture.colours.size())
        mapSize *= 2;
    std::vector<GifColorType> entries(size_t(mapSize), GifColorType{0, 0, 0});
    for (int i = 0; i < picture.colours.size(); ++i) {
        const QRgb c = picture.colours.at(i);
        entries[size_t(i)] =
            GifColorType{GifByteType(qRed(c)), GifByteType(qGreen(c)), GifByteType(qBlue(c))};
    }
    std::unique_ptr<ColorMapObject, MapDeleter> map(GifMakeMapObject(mapSize, entries.data()));
    if (!map) {
        *why = QStringLiteral("no memory for the colour table");
        return false;
    }

    int code = 0;
    GifFileType *gif = EGifOpen(bytes, writeToBuffer, &code);
    if (!gif) {
        *why = gifError(code);
        return false;
    }
    EGifSetGifVersion(gif, true);
    bool ok = EGifPutScreenDesc(gif, image.width(), image.height(), map->BitsPerPixel, 0,
                                map.get()) == GIF_OK;
    if (ok && picture.transparent >= 0) {
        GraphicsControlBlock control{};
        control.DisposalMode = DISPOSAL_UNSPECIFIED;
        control.UserInputFlag = false;
        control.DelayTime = 0;
        control.TransparentColor = picture.transparent;
        GifByteType extension[4];
        const size_t length = EGifGCBToExtension(&control, extension);
        ok = EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(length), extension) == GIF_OK;
    }
    if (ok)
        ok = EGifPutImageDesc(gif, 0, 0, image.width(), image.height(), false, nullptr) == GIF_OK;
    for (int y = 0; ok && y < image.height(); ++y) {
        auto *line =
            const_cast<GifByteType *>(picture.pixels.data() + size_t(y) * size_t(image.width()));
        ok = EGifPutLine(gif, line, image.width()) == GIF_OK;
    }
    if (!ok)
        *why = gifError(gif->Error);
    int closeCode = 0;
    if (EGifCloseFile(gif, &closeCode) != GIF_OK && ok) {
        *why = gifError(closeCode);
        ok = false;
    }
    return ok;
}

bool fail(QString *error, const QString &text)
{
    if (error)
        *error = text;
    return false;
}

} // namespace

bool WriteGifFile(const QImage &image, const QString &path, QString *error)
{
    if (image.isNull())
        return fail(error, QStringLiteral("There is no picture to save as %1.").arg(path));
    if (image.width() > 65535 || image.height() > 65535)
        return fail(error, QStringLiteral("The picture is too large to save as GIF: %1 x %2.")
                               .arg(image.width())
                               .arg(image.height()));

    const PalettedImage picture = toPalette(image);
    QByteArray bytes;
    QString why;
    if (!encode(image, picture, &bytes, &why))
        return fail(error, QStringLiteral("Could not make the GIF picture %1: %2").arg(path, why));

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return fail(error, QStringLiteral("Could not write %1: %2").arg(path, file.errorString()));
    return true;
}
