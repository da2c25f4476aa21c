#include "mdlFilter.h"

#include <QRandomGenerator>

#include <array>
#include <cmath>

namespace {

// Rounds num / den (both at least 0) to the nearest integer, halves to even.
inline int roundDivide(int num, int den)
{
    const int q = num / den;
    const int r2 = 2 * (num % den);
    if (r2 > den || (r2 == den && (q & 1)))
        return q + 1;
    return q;
}

inline int clip255(int v)
{
    return v > 255 ? 255 : v;
}

inline int redOf(QRgb p)
{
    return int((p >> 16) & 255);
}
inline int greenOf(QRgb p)
{
    return int((p >> 8) & 255);
}
inline int blueOf(QRgb p)
{
    return int(p & 255);
}
inline QRgb pixel(int r, int g, int b)
{
    return 0xFF000000u | (QRgb(r) << 16) | (QRgb(g) << 8) | QRgb(b);
}

inline QRgb *row(QImage &image, int y)
{
    return reinterpret_cast<QRgb *>(image.scanLine(y));
}
inline const QRgb *row(const QImage &image, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y));
}

// The region being filtered, with a copy of its old pixels where a filter reads neighbours.
struct Region
{
    int x1, y1, x2, y2;
    QImage old; // old pixels of the region, (0, 0) standing for (x1, y1)
    const QRgb *oldRow(int y) const { return row(old, y - y1) - x1; }
};

// Applies a 256-entry table to every channel of the region.
void channelTable(QImage &picture, const Region &r, const std::array<uchar, 256> &table,
                  bool parallel, const FilterProgress &progress, bool &cancelled)
{
    cancelled = !ForRows(
        r.y1, r.y2,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                QRgb *line = row(picture, y);
                for (int x = r.x1; x <= r.x2; ++x) {
                    const QRgb p = line[x];
                    line[x] = pixel(table[redOf(p)], table[greenOf(p)], table[blueOf(p)]);
                }
            }
        },
        parallel, 4, r.y2, progress);
}

// Each pixel from a function of itself alone.
template <typename F>
void perPixel(QImage &picture, const Region &r, bool parallel, const FilterProgress &progress,
              bool &cancelled, F f)
{
    cancelled = !ForRows(
        r.y1, r.y2,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                QRgb *line = row(picture, y);
                for (int x = r.x1; x <= r.x2; ++x)
                    line[x] = f(line[x]);
            }
        },
        parallel, 4, r.y2, progress);
}

void blur(QImage &picture, const Region &r, bool parallel, const FilterProgress &progress,
          bool &cancelled)
{
    if (r.x2 - r.x1 < 2 || r.y2 - r.y1 < 2)
        return;
    // The nine-pixel sum of a channel is at most 2295; a table turns it into round(sum / 10).
    static const std::array<uchar, 2296> tenth = [] {
        std::array<uchar, 2296> t{};
        for (int s = 0; s < 2296; ++s)
            t[size_t(s)] = uchar(clip255(roundDivide(s, 10)));
        return t;
    }();
    const int width = r.x2 - r.x1 + 1;
    cancelled = !ForRows(
        r.y1 + 1, r.y2 - 1,
        [&](int begin, int end) {
            // Column sums of three rows, the three channels in 16-bit lanes of one number.
            std::vector<std::uint64_t> column(size_t(width), 0);
            for (int y = begin; y < end; ++y) {
                const QRgb *above = r.oldRow(y - 1);
                const QRgb *middle = r.oldRow(y);
                const QRgb *below = r.oldRow(y + 1);
                const auto lanes = [](QRgb p) {
                    return std::uint64_t(p & 255) | (std::uint64_t((p >> 8) & 255) << 16) |
                           (std::uint64_t((p >> 16) & 255) << 32);
                };
                for (int x = r.x1; x <= r.x2; ++x)
                    column[size_t(x - r.x1)] = lanes(above[x]) + lanes(middle[x]) + lanes(below[x]);
                QRgb *out = row(picture, y);
                for (int x = r.x1 + 1; x <= r.x2 - 1; ++x) {
                    const std::size_t i = size_t(x - r.x1);
                    const std::uint64_t s = column[i - 1] + column[i] + column[i + 1];
                    out[x] = pixel(tenth[(s >> 32) & 0xFFFF], tenth[(s >> 16) & 0xFFFF],
                                   tenth[s & 0xFFFF]);
                }
            }
        },
        parallel, 4, r.y2, progress);
}

// Crease and wave: the old colour at (x, y) goes to (x, round(y + amplitude * sin(x))).
void columnShift(QImage &picture, const Region &r, double amplitude, bool parallel,
                 const FilterProgress &progress, bool &cancelled)
{
    const int height = picture.height();
    std::vector<double> shift(size_t(r.x2 - r.x1 + 1));
    for (int x = r.x1; x <= r.x2; ++x)
        shift[size_t(x - r.x1)] = amplitude * std::sin(double(x));
    // Columns are independent, so bands of columns may run side by side.
    cancelled = !ForRows(
        r.x1, r.x2,
        [&](int begin, int end) {
            for (int y = r.y1; y <= r.y2; ++y) {
                const QRgb *in = r.oldRow(y);
                for (int x = begin; x < end; ++x) {
                    const double target = std::nearbyint(double(y) + shift[size_t(x - r.x1)]);
                    if (target >= 0 && target < height)
                        row(picture, int(target))[x] = in[x];
                }
            }
        },
        parallel, 4, r.x2, progress);
}

// SplitMix64: a small generator with a seed of its own per row, so rows may run side by side
// and a fixed seed gives the same picture whatever the number of cores.
struct RowRandom
{
    std::uint64_t state;
    std::uint64_t next()
    {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    // Rnd: uniform from 0 up to but not including 1.
    double rnd() { return double(next() >> 11) * 0x1.0p-53; }
    // Int(Rnd * 5 - 2): -2 to 2.
    int d() { return int(std::floor(rnd() * 5.0 - 2.0)); }
};

void diffuse(QImage &picture, const Region &r, std::uint64_t seed, bool parallel,
             const FilterProgress &progress, bool &cancelled)
{
    cancelled = !ForRows(
        r.y1 + 2, r.y2 - 3,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                RowRandom random{seed ^ (std::uint64_t(std::uint32_t(y)) * 0xD1B54A32D192ED03ull)};
                QRgb *out = row(picture, y);
                for (int x = r.x1 + 2; x <= r.x2 - 3; ++x) {
                    const int red = redOf(r.oldRow(y + random.d())[x]);
                    const int green = greenOf(r.oldRow(y)[x + random.d()]);
                    const int dx = random.d();
                    const int blue = blueOf(r.oldRow(y + random.d())[x + dx]);
                    out[x] = pixel(red, green, blue);
                }
            }
        },
        parallel, 4, r.y2, progress);
}

void emboss(QImage &picture, const Region &r, bool parallel, const FilterProgress &progress,
            bool &cancelled)
{
    // round(abs(-128 + (v(x, y) - v(x+1, y+1)))), indexed by the difference + 255.
    std::array<uchar, 511> table{};
    for (int d = -255; d <= 255; ++d)
        table[size_t(d + 255)] = uchar(clip255(std::abs(-128 + d)));
    cancelled = !ForRows(
        r.y1, r.y2 - 1,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                const QRgb *here = r.oldRow(y);
                const QRgb *next = r.oldRow(y + 1);
                QRgb *out = row(picture, y);
                for (int x = r.x1; x <= r.x2 - 1; ++x) {
                    const QRgb a = here[x];
                    const QRgb b = next[x + 1];
                    out[x] = pixel(table[size_t(redOf(a) - redOf(b) + 255)],
                                   table[size_t(greenOf(a) - greenOf(b) + 255)],
                                   table[size_t(blueOf(a) - blueOf(b) + 255)]);
                }
            }
        },
        parallel, 4, r.y2, progress);
}

void diagonalGain(QImage &picture, const Region &r, double k, bool parallel,
                  const FilterProgress &progress, bool &cancelled)
{
    // abs(round(v + k * (v - p))) clipped, for every pair of the value and its upper-left one.
    std::vector<uchar> table(65536);
    for (int v = 0; v < 256; ++v) {
        for (int p = 0; p < 256; ++p) {
            const double value = std::nearbyint(double(v) + k * double(v - p));
            table[size_t(v * 256 + p)] = uchar(std::min(255.0, std::fabs(value)));
        }
    }
    cancelled = !ForRows(
        r.y1 + 1, r.y2,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                const QRgb *here = r.oldRow(y);
                const QRgb *above = r.oldRow(y - 1);
                QRgb *out = row(picture, y);
                for (int x = r.x1 + 1; x <= r.x2; ++x) {
                    const QRgb v = here[x];
                    const QRgb p = above[x - 1];
                    out[x] = pixel(table[size_t(redOf(v) * 256 + redOf(p))],
                                   table[size_t(greenOf(v) * 256 + greenOf(p))],
                                   table[size_t(blueOf(v) * 256 + blueOf(p))]);
                }
            }
        },
        parallel, 4, r.y2, progress);
}

QRgb grayBlackAndWhite(QRgb p)
{
    int r = redOf(p);
    int g = greenOf(p);
    int b = blueOf(p);
    r = roundDivide(std::abs((2 * g - b + r) * r), 256);
    g = roundDivide(std::abs((2 * b - g + r) * r), 256);
    b = roundDivide(std::abs((2 * b - g + r) * g), 256);
    const int grey = roundDivide(clip255(r) + clip255(g) + clip255(b), 3);
    return pixel(grey, grey, grey);
}

QRgb grayscale(QRgb p)
{
    constexpr float weight = 0.32f;
    const float sum =
        weight * float(greenOf(p)) + weight * float(redOf(p)) + weight * float(blueOf(p));
    const int grey = clip255(int(std::nearbyint(std::fabs(sum))));
    return pixel(grey, grey, grey);
}

} // namespace

const std::vector<FilterMenuEntry> &FilterMenu()
{
    static const std::vector<FilterMenuEntry> entries = {
        {FilterBlacknWhite, "mnuBlacknWhite", "Black and &White"},
        {FilterBlur, "mnuBlur", "&Blur"},
        {FilterBrightness, "mnuBrightness", "B&rightness"},
        {FilterCrease, "mnuCrease", "&Crease"},
        {FilterDarkness, "mnuDarkness", "&Darkness"},
        {FilterDiffuse, "mnuDiffuse", "D&iffuse"},
        {FilterEmboss, "mnuEmboss", "&Emboss"},
        {FilterGrayBlacknWhite, "mnuGrayBlacknWhite", "&Gray Black and White"},
        {FilterGrayscale, "mnuGrayscale", "Gr&ayscale"},
        {FilterReplaceColors, "mnuReplaceColors", "Re&place Colors"},
        {FilterSharpen, "mnuSharpen", "&Sharpen"},
        {FilterSnow, "mnuSnow", "S&now"},
        {FilterWave, "mnuWave", "Wa&ve"},
    };
    return entries;
}

void SplitRGB(int colour, int &red, int &green, int &blue)
{
    red = colour & 255;
    green = (colour / 256) & 255;
    blue = colour / 65536;
}

int RGBColor(int red, int green, int blue)
{
    const auto c = [](int v) { return v < 0 ? 0 : clip255(v); };
    return c(red) + 256 * c(green) + 65536 * c(blue);
}

int ColorOfPixel(QRgb p)
{
    return redOf(p) + 256 * greenOf(p) + 65536 * blueOf(p);
}

QRgb PixelOfColor(int colour)
{
    int r = 0;
    int g = 0;
    int b = 0;
    SplitRGB(colour, r, g, b);
    return pixel(r & 255, g, b & 255);
}

bool IsSmallRegion(int x1, int y1, int x2, int y2)
{
    return qint64(y2 - y1) * qint64(x2 - x1) < 256;
}

FilterResult ImageFilter(int filter, QImage &picture, int &x1, int &y1, int &x2, int &y2,
                         const FilterOptions &options)
{
    if (x1 == -1 && y1 == -1 && x2 == -1 && y2 == -1) {
        x1 = 0;
        y1 = 0;
        x2 = picture.width() - 1;
        y2 = picture.height() - 1;
    }
    const bool known = (filter >= 0 && filter <= 13 && filter != 9);
    if (!known)
        return FilterResult::NotAFilter;
    if (picture.isNull())
        return FilterResult::Done;
    if (picture.format() != QImage::Format_RGB32)
        picture = picture.convertToFormat(QImage::Format_RGB32);

    Region r{std::max(0, x1), std::max(0, y1), std::min(picture.width() - 1, x2),
             std::min(picture.height() - 1, y2), QImage()};
    if (r.x1 > r.x2 || r.y1 > r.y2)
        return FilterResult::Done;
    const bool small = IsSmallRegion(x1, y1, x2, y2);
    const FilterProgress progress = small ? FilterProgress() : options.progress;
    const bool parallel = options.parallel && !small;

    const bool readsOld = filter == FilterBlur || filter == FilterCrease ||
                          filter == FilterDiffuse || filter == FilterEmboss ||
                          filter == FilterSharpen || filter == FilterSnow || filter == FilterWave;
    if (readsOld) {
        r.old = picture.copy(r.x1, r.y1, r.x2 - r.x1 + 1, r.y2 - r.y1 + 1);
        if (r.old.isNull())
            return FilterResult::Cancelled;
        if (progress && !progress(5, 100))
            return FilterResult::Cancelled;
    }

    bool cancelled = false;
    switch (filter) {
    case FilterBlacknWhite:
        perPixel(picture, r, parallel, progress, cancelled, [](QRgb p) {
            const bool dark = redOf(p) < 192 && greenOf(p) < 192 && blueOf(p) < 192;
            return dark ? pixel(0, 0, 0) : pixel(255, 255, 255);
        });
        break;
    case FilterBlur:
        blur(picture, r, parallel, progress, cancelled);
        break;
    case FilterBrightness:
    case FilterDarkness: {
        const int step = small ? 2 : 32;
        const int k = filter == FilterBrightness ? step : -step;
        std::array<uchar, 256> table{};
        for (int c = 0; c < 256; ++c)
            table[size_t(c)] = uchar(clip255(std::abs(k + c)));
        channelTable(picture, r, table, parallel, progress, cancelled);
        break;
    }
    case FilterCrease:
        columnShift(picture, r, 512.0, parallel, progress, cancelled);
        break;
    case FilterWave:
        columnShift(picture, r, 4.0, parallel, progress, cancelled);
        break;
    case FilterDiffuse:
        diffuse(picture, r, options.seed ? *options.seed : QRandomGenerator::global()->generate64(),
                parallel, progress, cancelled);
        break;
    case FilterEmboss:
        emboss(picture, r, parallel, progress, cancelled);
        break;
    case FilterGrayBlacknWhite:
        perPixel(picture, r, parallel, progress, cancelled, grayBlackAndWhite);
        break;
    case FilterGrayscale:
        perPixel(picture, r, parallel, progress, cancelled, grayscale);
        break;
    case FilterReplaceColors: {
        const QRgb from = PixelOfColor(options.replaceFrom) & 0xFFFFFFu;
        const QRgb to = PixelOfColor(options.replaceTo);
        perPixel(picture, r, parallel, progress, cancelled,
                 [from, to](QRgb p) { return (p & 0xFFFFFFu) == from ? to : p; });
        break;
    }
    case FilterSharpen:
        diagonalGain(picture, r, 0.5, parallel, progress, cancelled);
        break;
    case FilterSnow:
        diagonalGain(picture, r, 24.0, parallel, progress, cancelled);
        break;
    default:
        break;
    }
    return cancelled ? FilterResult::Cancelled : FilterResult::Done;
}

PixelArray::PixelArray(int x2, int y2, bool packed)
    : m_packed(packed), m_width(std::max(0, x2 + 1)), m_height(std::max(0, y2 + 1)),
      m_cells(size_t(m_width) * size_t(m_height) * (packed ? 1 : 3), 0)
{
}

int PixelArray::at(int plane, int x, int y) const
{
    if (x < 0 || y < 0 || x >= m_width || y >= m_height)
        return 0;
    if (m_packed) {
        return plane == 3 ? m_cells[size_t(y) * size_t(m_width) + size_t(x)] : 0;
    }
    if (plane < 0 || plane > 2)
        return 0;
    return m_cells[(size_t(plane) * size_t(m_height) + size_t(y)) * size_t(m_width) + size_t(x)];
}

void PixelArray::set(int plane, int x, int y, int value)
{
    if (x < 0 || y < 0 || x >= m_width || y >= m_height)
        return;
    if (m_packed) {
        if (plane == 3)
            m_cells[size_t(y) * size_t(m_width) + size_t(x)] = value;
        return;
    }
    if (plane >= 0 && plane <= 2)
        m_cells[(size_t(plane) * size_t(m_height) + size_t(y)) * size_t(m_width) + size_t(x)] =
            value;
}

std::optional<PixelArray> ReadPixelArray(const QImage &picture, int x1, int y1, int x2, int y2,
                                         bool showProgress, bool packed,
                                         const FilterProgress &progress)
{
    const int left = std::max(0, x1);
    const int top = std::max(0, y1);
    const int right = std::min(picture.width() - 1, x2);
    const int bottom = std::min(picture.height() - 1, y2);
    if (picture.isNull() || left > right || top > bottom)
        return std::nullopt;
    const QImage source = picture.format() == QImage::Format_RGB32
                              ? picture
                              : picture.convertToFormat(QImage::Format_RGB32);
    PixelArray array(x2, y2, packed);
    const bool report = showProgress && !IsSmallRegion(x1, y1, x2, y2);
    // Rows write distinct cells, so they may run side by side.
    const bool done = ForRows(
        top, bottom,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                const QRgb *line = row(source, y);
                for (int x = left; x <= right; ++x) {
                    const QRgb p = line[x];
                    if (packed) {
                        array.set(3, x, y, ColorOfPixel(p));
                    } else {
                        array.set(0, x, y, redOf(p));
                        array.set(1, x, y, greenOf(p));
                        array.set(2, x, y, blueOf(p));
                    }
                }
            }
        },
        true, 5, y2, report ? progress : FilterProgress());
    if (!done)
        return std::nullopt;
    return array;
}
