#include "mdlEffect.h"

#include "cDIBSection.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double Pi = 3.14159265358979;

QImage rgb32(QImage &&image)
{
    if (image.format() == QImage::Format_RGB32)
        return std::move(image);
    return image.convertToFormat(QImage::Format_RGB32);
}

QImage rgb32(const QImage &image)
{
    return image.format() == QImage::Format_RGB32 ? image
                                                  : image.convertToFormat(QImage::Format_RGB32);
}

// Invert and flips work in place on a picture of their own: one that nobody else holds costs
// no copy.
std::optional<QImage> invert(QImage picture, const EffectParameters &p)
{
    QImage result = rgb32(std::move(picture));
    if (result.isNull() || !result.bits())
        return std::nullopt;
    // The source painted over a white picture with XOR.
    const int width = result.width();
    const bool done = ForRows(
        0, result.height() - 1,
        [&result, width](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
                for (int x = 0; x < width; ++x)
                    line[x] = (line[x] ^ 0x00FFFFFFu) | 0xFF000000u;
            }
        },
        p.parallel, 4, 0, p.progress);
    if (!done)
        return std::nullopt;
    return result;
}

std::optional<QImage> flip(QImage picture, bool horizontal, const EffectParameters &p)
{
    QImage result = rgb32(std::move(picture));
    if (result.isNull() || !result.bits())
        return std::nullopt;
    const int w = result.width();
    const int h = result.height();
    // Top to bottom: the upper half's rows change places with the lower half's.
    const int last = horizontal ? h - 1 : h / 2 - 1;
    const bool done = ForRows(
        0, last,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
                if (horizontal)
                    std::reverse(line, line + w);
                else
                    std::swap_ranges(line, line + w,
                                     reinterpret_cast<QRgb *>(result.scanLine(h - 1 - y)));
            }
        },
        p.parallel, 4, 0, p.progress);
    if (!done)
        return std::nullopt;
    return result;
}

} // namespace

bool RotatePicture(const QImage &source, QImage &destination, float angle, bool clockwise,
                   const FilterProgress &progress, bool parallel)
{
    if (clockwise)
        angle = 360.0f - angle;
    const float radians = float(double(angle) * float(Pi) / 180.0);
    const QImage in = rgb32(source);
    if (destination.format() != QImage::Format_RGB32)
        destination = destination.convertToFormat(QImage::Format_RGB32);
    // Columns are written from several threads: the pixels must be this picture's own first.
    destination.bits();
    const int sw = in.width();
    const int sh = in.height();
    const int dw = destination.width();
    const int dh = destination.height();
    const int scx = sw / 2;
    const int scy = sh / 2;
    const int dcx = dw / 2;
    const int dcy = dh / 2;
    const int radius = int(std::ceil(std::sqrt(double(sw) * sw + double(sh) * sh) / 2.0));
    const double cosA = std::cos(double(radians));
    const double sinA = std::sin(double(radians));

    const auto read = [&](int x, int y, QRgb &out) {
        if (x < 0 || y < 0 || x >= sw || y >= sh)
            return false;
        out = reinterpret_cast<const QRgb *>(in.constScanLine(y))[x];
        return true;
    };
    const auto write = [&](int x, int y, QRgb value) {
        if (x >= 0 && y >= 0 && x < dw && y < dh)
            reinterpret_cast<QRgb *>(destination.scanLine(y))[x] = value;
    };
    // Bands of i write the columns dcx + i and dcx - i alone, so they may run side by side.
    return ForRows(
        0, radius,
        [&](int begin, int end) {
            for (int i = begin; i < end; ++i) {
                for (int j = 0; j <= radius; ++j) {
                    // The polar angle atan(j / i) (pi / 2 for i = 0) enters by its cosine and
                    // sine, i / r and j / r, turned by the angle through the sum formulas.
                    const double r = std::sqrt(double(i) * i + double(j) * j);
                    const double cosP = i == 0 ? 0.0 : double(i) / r;
                    const double sinP = i == 0 ? 1.0 : double(j) / r;
                    const double distance = std::nearbyint(r);
                    const int ax = int(std::nearbyint(distance * (cosP * cosA - sinP * sinA)));
                    const int ay = int(std::nearbyint(distance * (sinP * cosA + cosP * sinA)));
                    const int bx = int(std::nearbyint(distance * (cosP * cosA + sinP * sinA)));
                    const int by = int(std::nearbyint(distance * (sinP * cosA - cosP * sinA)));
                    QRgb p;
                    if (read(scx + ax, scy + ay, p))
                        write(dcx + i, dcy + j, p);
                    if (read(scx - ax, scy - ay, p))
                        write(dcx - i, dcy - j, p);
                    if (read(scx - bx, scy + by, p))
                        write(dcx - i, dcy + j, p);
                    if (read(scx + bx, scy - by, p))
                        write(dcx + i, dcy - j, p);
                }
            }
        },
        parallel, 4, radius, progress);
}

std::optional<QImage> ApplyImageEffect(int effect, QImage source,
                                       const EffectParameters &parameters)
{
    if (source.isNull())
        return std::nullopt;
    switch (effect) {
    case EffectFlipHorizontal:
        return flip(std::move(source), true, parameters);
    case EffectFlipVertical:
        return flip(std::move(source), false, parameters);
    case EffectStretch: {
        const qint64 w =
            std::max<qint64>(1, std::llrint(double(source.width()) * parameters.factorX));
        const qint64 h =
            std::max<qint64>(1, std::llrint(double(source.height()) * parameters.factorY));
        if (!cDIBSection::SizeAllowed(w, h))
            return std::nullopt;
        QImage result = rgb32(source)
                            .scaled(int(w), int(h), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                            .convertToFormat(QImage::Format_RGB32);
        if (result.isNull())
            return std::nullopt;
        return result;
    }
    case EffectRotate: {
        if (parameters.angle == 180.0f) {
            QImage result = rgb32(source).mirrored(true, true);
            if (result.isNull())
                return std::nullopt;
            return result;
        }
        const double diagonal = std::sqrt(double(source.width()) * source.width() +
                                          double(source.height()) * source.height());
        const int side = int(std::lrint(diagonal));
        if (!cDIBSection::SizeAllowed(side, side))
            return std::nullopt;
        QImage result(side, side, QImage::Format_RGB32);
        if (result.isNull())
            return std::nullopt;
        result.fill(parameters.background | 0xFF000000u);
        if (!RotatePicture(source, result, parameters.angle, parameters.clockwise,
                           parameters.progress, parameters.parallel))
            return std::nullopt;
        return result;
    }
    case EffectInvert:
        return invert(std::move(source), parameters);
    default:
        return std::nullopt;
    }
}
