#include "mdlFilter.h"

#include <QRandomGenerator>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentMap>

#include <array>
#include <cmath>
#include <map>
#include <utility>

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

// The region being filtered.
struct Region
{
    int x1, y1, x2, y2;
};

// Applies a 256-entry table to every channel of the region.
void channelTable(QImage &picture, const Region &r, const std::array<uchar, 256> &table,
                  bool parallel, const FilterProgress &progress, bool &cancelled)
{
    // The bounds and the table are copied first: a pixel written through a QRgb pointer could be
    // any int or byte the loop reads, so the compiler would load them again for every pixel.
    const int x1 = r.x1;
    const int x2 = r.x2;
    const std::array<uchar, 256> t = table;
    cancelled = !ForRows(
        r.y1, r.y2,
        [&picture, x1, x2, t](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                QRgb *line = row(picture, y);
                for (int x = x1; x <= x2; ++x) {
                    const QRgb p = line[x];
                    line[x] = pixel(t[redOf(p)], t[greenOf(p)], t[blueOf(p)]);
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
    // The bounds are copied first, so that the loop over a row needs no load but the pixel's.
    const int x1 = r.x1;
    const int x2 = r.x2;
    cancelled = !ForRows(
        r.y1, r.y2,
        [&picture, x1, x2, f](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                QRgb *line = row(picture, y);
                for (int x = x1; x <= x2; ++x)
                    line[x] = f(line[x]);
            }
        },
        parallel, 4, r.y2, progress);
}

// Runs a filter whose pixels read old neighbours up to margin rows away, in place and without a
// copy of the picture: each worker keeps the old values of the rows it has already written in a
// small ring, and the rows that a neighbouring worker (or the next band) writes while another
// still reads them are saved before the band starts. kernel(y, rows, out) gets the old rows
// y - margin .. y + margin (null outside the region) and writes row y.
template <typename Kernel>
bool neighbourRows(QImage &picture, const Region &r, int first, int last, int margin, bool parallel,
                   const FilterProgress &progress, Kernel kernel)
{
    if (last < first)
        return true;
    const int width = r.x2 - r.x1 + 1;
    const int threads = parallel ? std::max(1, QThreadPool::globalInstance()->maxThreadCount()) : 1;
    const int rows = last - first + 1;
    const int band = std::max(16, rows / 64);
    std::map<int, std::vector<QRgb>> saved;
    const auto save = [&](int from, int to) {
        for (int y = std::max(from, first); y < std::min(to, last + 1); ++y) {
            if (saved.count(y))
                continue;
            const QRgb *line = row(std::as_const(picture), y) + r.x1;
            saved[y] = std::vector<QRgb>(line, line + width);
        }
    };

    for (int b = first; b <= last; b += band) {
        const int e = std::min(last + 1, b + band);
        std::vector<int> splits;
        const int parts = (threads > 1 && e - b >= 2 * threads) ? threads : 1;
        const int step = (e - b + parts - 1) / parts;
        for (int s = b; s < e; s += step)
            splits.push_back(s);
        splits.push_back(e);
        for (size_t i = 1; i + 1 < splits.size(); ++i)
            save(splits[i] - margin, splits[i] + margin);
        save(e - margin, e);

        const auto work = [&](std::pair<int, int> part) {
            const int s = part.first;
            const int t = part.second;
            std::vector<QRgb> ring(size_t(margin + 1) * size_t(width));
            std::array<const QRgb *, 5> around{};
            for (int y = s; y < t; ++y) {
                QRgb *out = row(picture, y);
                std::copy(out + r.x1, out + r.x1 + width,
                          ring.begin() + std::ptrdiff_t(y % (margin + 1)) * width);
                for (int i = -margin; i <= margin; ++i) {
                    const int at = y + i;
                    const QRgb *line = nullptr;
                    if (at < r.y1 || at > r.y2)
                        line = nullptr;
                    else if (at < first || at > last)
                        line = row(std::as_const(picture), at) + r.x1; // never written
                    else if (at >= s && at <= y)
                        line = ring.data() + std::ptrdiff_t(at % (margin + 1)) * width;
                    else if (at > y && at < t)
                        line = row(std::as_const(picture), at) + r.x1; // not written yet
                    else if (at >= e)
                        line = row(std::as_const(picture), at) + r.x1; // the next band's
                    else
                        line = saved.at(at).data();
                    around[size_t(i + margin)] = line ? line - r.x1 : nullptr;
                }
                kernel(y, around.data(), out);
            }
        };
        if (parts > 1) {
            std::vector<std::pair<int, int>> ranges;
            for (size_t i = 0; i + 1 < splits.size(); ++i)
                ranges.emplace_back(splits[i], splits[i + 1]);
            QtConcurrent::blockingMap(ranges, work);
        } else {
            work({b, e});
        }
        // Saved rows above this band are not read again.
        saved.erase(saved.begin(), saved.lower_bound(b - margin));
        if (progress && !progress(4, int(qint64(e - 1) * 100 / std::max(1, r.y2))))
            return false;
    }
    return true;
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
    cancelled =
        !neighbourRows(picture, r, r.y1 + 1, r.y2 - 1, 1, parallel, progress,
                       [&](int, const QRgb *const *rows, QRgb *out) {
                           // Column sums of three rows, the three channels in 16-bit lanes of one
                           // number.
                           thread_local std::vector<std::uint64_t> column;
                           column.resize(size_t(width));
                           const auto lanes = [](QRgb p) {
                               return std::uint64_t(p & 255) |
                                      (std::uint64_t((p >> 8) & 255) << 16) |
                                      (std::uint64_t((p >> 16) & 255) << 32);
                           };
                           for (int x = r.x1; x <= r.x2; ++x)
                               column[size_t(x - r.x1)] =
                                   lanes(rows[0][x]) + lanes(rows[1][x]) + lanes(rows[2][x]);
                           for (int x = r.x1 + 1; x <= r.x2 - 1; ++x) {
                               const std::size_t i = size_t(x - r.x1);
                               const std::uint64_t sum = column[i - 1] + column[i] + column[i + 1];
                               out[x] = pixel(tenth[(sum >> 32) & 0xFFFF],
                                              tenth[(sum >> 16) & 0xFFFF], tenth[sum & 0xFFFF]);
                           }
                       });
}

// Crease and wave: the old colour at (x, y) goes to (x, round(y + amplitude * sin(x))).
void columnShift(QImage &picture, const Region &r, double amplitude, bool parallel,
                 const FilterProgress &progress, bool &cancelled)
{
    const int height = picture.height();
    uchar *bits = picture.bits();
    const qsizetype stride = picture.bytesPerLine();
    const auto at = [bits, stride](int x, int y) -> QRgb & {
        return reinterpret_cast<QRgb *>(bits + stride * y)[x];
    };
    // Columns are independent, so bands of columns may run side by side. A column moves by
    // round(amplitude * sin(x)) as a whole, in place: downwards from its bottom, upwards from its
    // top, so that no pixel is read after it was written. Only where that fraction lies at a half
    // does the rounding of y + shift depend on y: such a column goes pixel by pixel from a copy.
    cancelled = !ForRows(
        r.x1, r.x2,
        [&](int begin, int end) {
            std::vector<std::pair<int, int>> down;
            std::vector<std::pair<int, int>> up;
            for (int x = begin; x < end; ++x) {
                const double shift = amplitude * std::sin(double(x));
                if (std::fabs(shift - std::floor(shift) - 0.5) < 1e-6) {
                    std::vector<QRgb> column;
                    for (int y = r.y1; y <= r.y2; ++y)
                        column.push_back(at(x, y));
                    for (int y = r.y1; y <= r.y2; ++y) {
                        const double target = std::nearbyint(double(y) + shift);
                        if (target >= 0 && target < height)
                            at(x, int(target)) = column[size_t(y - r.y1)];
                    }
                    continue;
                }
                const int d = int(std::nearbyint(shift));
                if (d > 0)
                    down.emplace_back(x, d);
                else if (d < 0)
                    up.emplace_back(x, d);
            }
            for (int y = r.y2; y >= r.y1 && !down.empty(); --y)
                for (const auto &[x, d] : down)
                    if (y + d < height)
                        at(x, y + d) = at(x, y);
            for (int y = r.y1; y <= r.y2 && !up.empty(); ++y)
                for (const auto &[x, d] : up)
                    if (y + d >= 0)
                        at(x, y + d) = at(x, y);
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
    cancelled = !neighbourRows(
        picture, r, r.y1 + 2, r.y2 - 3, 2, parallel, progress,
        [&](int y, const QRgb *const *rows, QRgb *out) {
            RowRandom random{seed ^ (std::uint64_t(std::uint32_t(y)) * 0xD1B54A32D192ED03ull)};
            for (int x = r.x1 + 2; x <= r.x2 - 3; ++x) {
                const int red = redOf(rows[2 + random.d()][x]);
                const int green = greenOf(rows[2][x + random.d()]);
                const int dx = random.d();
                const int blue = blueOf(rows[2 + random.d()][x + dx]);
                out[x] = pixel(red, green, blue);
            }
        });
}

void emboss(QImage &picture, const Region &r, bool parallel, const FilterProgress &progress,
            bool &cancelled)
{
    // round(abs(-128 + (v(x, y) - v(x+1, y+1)))), indexed by the difference + 255.
    std::array<uchar, 511> table{};
    for (int d = -255; d <= 255; ++d)
        table[size_t(d + 255)] = uchar(clip255(std::abs(-128 + d)));
    cancelled = !neighbourRows(picture, r, r.y1, r.y2 - 1, 1, parallel, progress,
                               [&](int, const QRgb *const *rows, QRgb *out) {
                                   const QRgb *here = rows[1];
                                   const QRgb *next = rows[2];
                                   for (int x = r.x1; x <= r.x2 - 1; ++x) {
                                       const QRgb a = here[x];
                                       const QRgb b = next[x + 1];
                                       out[x] = pixel(table[size_t(redOf(a) - redOf(b) + 255)],
                                                      table[size_t(greenOf(a) - greenOf(b) + 255)],
                                                      table[size_t(blueOf(a) - blueOf(b) + 255)]);
                                   }
                               });
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
    cancelled = !neighbourRows(picture, r, r.y1 + 1, r.y2, 1, parallel, progress,
                               [&](int, const QRgb *const *rows, QRgb *out) {
                                   const QRgb *here = rows[1];
                                   const QRgb *above = rows[0];
                                   for (int x = r.x1 + 1; x <= r.x2; ++x) {
                                       const QRgb v = here[x];
                                       const QRgb p = above[x - 1];
                                       out[x] = pixel(table[size_t(redOf(v) * 256 + redOf(p))],
                                                      table[size_t(greenOf(v) * 256 + greenOf(p))],
                                                      table[size_t(blueOf(v) * 256 + blueOf(p))]);
                                   }
                               });
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
             std::min(picture.height() - 1, y2)};
    if (r.x1 > r.x2 || r.y1 > r.y2)
        return FilterResult::Done;
    const bool small = IsSmallRegion(x1, y1, x2, y2);
    const FilterProgress progress = small ? FilterProgress() : options.progress;
    const bool parallel = options.parallel && !small;

    // Rows are written from several threads: the pixels must be this picture's own first.
    picture.bits();
    // The filters that read old neighbours keep the few old rows they need as they go.
    const bool readsOld = filter == FilterBlur || filter == FilterCrease ||
                          filter == FilterDiffuse || filter == FilterEmboss ||
                          filter == FilterSharpen || filter == FilterSnow || filter == FilterWave;
    if (readsOld && progress && !progress(5, 100))
        return FilterResult::Cancelled;

    bool cancelled = false;
    switch (filter) {
    case FilterBlacknWhite:
        perPixel(picture, r, parallel, progress, cancelled, [](QRgb p) {
            // Without branches: a photo's pixels fall on either side of the line at random.
            const unsigned dark =
                unsigned(redOf(p) < 192) & unsigned(greenOf(p) < 192) & unsigned(blueOf(p) < 192);
            return 0xFF000000u | (0x00FFFFFFu * (dark ^ 1u));
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
