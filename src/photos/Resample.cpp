#include "Resample.h"

#include <QColorSpace>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

// Weights are fixed point with this many fraction bits: an 8-bit sample times a weight, summed
// over the taps, stays within 32 bits even with the filter's negative lobes.
constexpr int PrecisionBits = 32 - 8 - 2;
constexpr qint32 Half = qint32(1) << (PrecisionBits - 1);

double lanczos3(double x)
{
    if (x == 0.0)
        return 1.0;
    if (x <= -3.0 || x >= 3.0)
        return 0.0;
    const double px = M_PI * x;
    return 3.0 * std::sin(px) * std::sin(px / 3.0) / (px * px);
}

// For each output position: the first source position it reads and its weights.
struct Taps
{
    int stride = 0; // weights per output position, the unused ones zero
    std::vector<int> first;
    std::vector<int> count;
    std::vector<qint32> weights;
};

Taps taps(int inSize, int outSize)
{
    const double scale = double(inSize) / outSize;
    const double widen = std::max(scale, 1.0);
    const double support = 3.0 * widen;
    Taps t;
    t.stride = int(std::ceil(support)) * 2 + 1;
    t.first.resize(size_t(outSize));
    t.count.resize(size_t(outSize));
    t.weights.assign(size_t(outSize) * size_t(t.stride), 0);
    std::vector<double> w(size_t(t.stride));
    for (int o = 0; o < outSize; ++o) {
        // Pixel centres: output pixel o covers source [o * scale, (o + 1) * scale).
        const double centre = (o + 0.5) * scale;
        const int first = std::max(0, int(centre - support + 0.5));
        const int last = std::min(inSize, int(centre + support + 0.5));
        const int n = std::min(last - first, t.stride);
        double total = 0;
        for (int k = 0; k < n; ++k) {
            w[size_t(k)] = lanczos3((first + k - centre + 0.5) / widen);
            total += w[size_t(k)];
        }
        qint32 *out = &t.weights[size_t(o) * size_t(t.stride)];
        for (int k = 0; k < n; ++k)
            out[k] = qint32(std::lround(w[size_t(k)] / total * double(1 << PrecisionBits)));
        t.first[size_t(o)] = first;
        t.count[size_t(o)] = n;
    }
    return t;
}

inline uchar clamp8(qint32 sum)
{
    const qint32 value = sum >> PrecisionBits;
    return uchar(value < 0 ? 0 : value > 255 ? 255 : value);
}

// How the bytes of a pixel are treated: Channels of Bpp bytes are filtered; a fourth byte that
// is not filtered is set opaque; premultiplied colours are held within their alpha.
template <int Bpp, int Channels, bool Premultiplied>
void finishPixel(uchar *pixel)
{
    if constexpr (Bpp == 4 && Channels == 3)
        pixel[3] = 0xff;
    if constexpr (Premultiplied) {
        for (int c = 0; c < 3; ++c)
            pixel[c] = std::min(pixel[c], pixel[3]);
    }
}

template <int Bpp, int Channels, bool Premultiplied>
void resampleRows(const QImage &in, QImage &out, const Taps &t)
{
    const int width = out.width();
    for (int y = 0; y < in.height(); ++y) {
        const uchar *source = in.constScanLine(y);
        uchar *target = out.scanLine(y);
        for (int x = 0; x < width; ++x) {
            const uchar *p = source + size_t(t.first[size_t(x)]) * Bpp;
            const qint32 *w = &t.weights[size_t(x) * size_t(t.stride)];
            const int n = t.count[size_t(x)];
            qint32 sum[Channels];
            for (int c = 0; c < Channels; ++c)
                sum[c] = Half;
            for (int k = 0; k < n; ++k) {
                for (int c = 0; c < Channels; ++c)
                    sum[c] += qint32(p[k * Bpp + c]) * w[k];
            }
            uchar *pixel = target + size_t(x) * Bpp;
            for (int c = 0; c < Channels; ++c)
                pixel[c] = clamp8(sum[c]);
            finishPixel<Bpp, Channels, Premultiplied>(pixel);
        }
    }
}

template <int Bpp, int Channels, bool Premultiplied>
void resampleColumns(const QImage &in, QImage &out, const Taps &t)
{
    const size_t bytes = size_t(out.width()) * Bpp;
    std::vector<qint32> sum(bytes);
    for (int y = 0; y < out.height(); ++y) {
        std::fill(sum.begin(), sum.end(), Half);
        const qint32 *w = &t.weights[size_t(y) * size_t(t.stride)];
        const int first = t.first[size_t(y)];
        for (int k = 0; k < t.count[size_t(y)]; ++k) {
            const uchar *row = in.constScanLine(first + k);
            const qint32 weight = w[k];
            qint32 *s = sum.data();
            for (size_t i = 0; i < bytes; ++i)
                s[i] += qint32(row[i]) * weight;
        }
        uchar *target = out.scanLine(y);
        for (size_t i = 0; i < bytes; ++i)
            target[i] = clamp8(sum[i]);
        if constexpr ((Bpp == 4 && Channels == 3) || Premultiplied) {
            for (int x = 0; x < out.width(); ++x)
                finishPixel<Bpp, Channels, Premultiplied>(target + size_t(x) * Bpp);
        }
    }
}

template <int Bpp, int Channels, bool Premultiplied>
QImage resample(const QImage &image, QSize size)
{
    QImage current = image;
    if (size.width() != current.width()) {
        QImage rows(size.width(), current.height(), current.format());
        if (rows.isNull())
            return QImage();
        resampleRows<Bpp, Channels, Premultiplied>(current, rows, taps(current.width(),
                                                                       size.width()));
        current = rows;
    }
    if (size.height() != current.height()) {
        QImage columns(size.width(), size.height(), current.format());
        if (columns.isNull())
            return QImage();
        resampleColumns<Bpp, Channels, Premultiplied>(current, columns,
                                                       taps(current.height(), size.height()));
        current = columns;
    }
    current.setColorSpace(image.colorSpace());
    return current;
}

} // namespace

QImage ResampleLanczos(const QImage &image, QSize size)
{
    if (image.isNull() || size.isEmpty())
        return QImage();
    if (image.size() == size)
        return image;
    QImage source = image;
    switch (source.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied:
    case QImage::Format_RGB888:
    case QImage::Format_Grayscale8:
        break;
    default:
        source = source.convertToFormat(source.hasAlphaChannel()
                                            ? QImage::Format_ARGB32_Premultiplied
                                            : QImage::Format_RGB32);
        break;
    }
    switch (source.format()) {
    case QImage::Format_RGB32:
        return resample<4, 3, false>(source, size);
    case QImage::Format_ARGB32_Premultiplied:
        return resample<4, 4, true>(source, size);
    case QImage::Format_RGB888:
        return resample<3, 3, false>(source, size);
    default:
        return resample<1, 1, false>(source, size);
    }
}
