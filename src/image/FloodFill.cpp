#include "FloodFill.h"

#include <vector>

namespace {

// Paints in place: the fill colour differs from the area's, so a painted pixel is no longer
// inside and nothing is looked at twice.
struct PaintInPlace
{
    QImage &picture;
    QRgb target;
    QRgb fill;
    QRgb *line = nullptr;
    void row(int y) { line = reinterpret_cast<QRgb *>(picture.scanLine(y)); }
    bool in(int x) const { return line[x] == target; }
    void set(int x) { line[x] = fill; }
};

// Marks the area in a mask of its own and leaves the pixels alone, for a patterned fill or a
// fill in the area's own colour.
struct MarkInMask
{
    const QImage &picture;
    QRgb target;
    std::vector<std::uint8_t> &mask;
    int width;
    const QRgb *line = nullptr;
    std::uint8_t *marks = nullptr;
    void row(int y)
    {
        line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        marks = mask.data() + size_t(y) * size_t(width);
    }
    bool in(int x) const { return line[x] == target && marks[x] == 0; }
    void set(int x) { marks[x] = 1; }
};

// The span fill: each entry is a run of a row to look at, coming from the row dy before it.
// A run that reaches beyond its parent's ends sends a run back the other way, so an area of
// any shape is filled, and every pixel is looked at a small number of times.
template <class Area> QRect spanFill(Area &area, int w, int h, int sx, int sy)
{
    struct Run
    {
        int x1, x2, y, dy;
    };
    area.row(sy);
    if (!area.in(sx))
        return {};
    int minX = sx, maxX = sx, minY = sy, maxY = sy;
    std::vector<Run> runs;
    runs.reserve(1024);
    runs.push_back({sx, sx, sy, 1});
    runs.push_back({sx, sx, sy - 1, -1});
    while (!runs.empty()) {
        const Run r = runs.back();
        runs.pop_back();
        if (r.y < 0 || r.y >= h)
            continue;
        int x1 = r.x1;
        const int x2 = r.x2;
        const int y = r.y;
        const int dy = r.dy;
        area.row(y);
        int x = x1;
        if (area.in(x)) {
            while (x > 0 && area.in(x - 1)) {
                area.set(x - 1);
                --x;
            }
            if (x < x1)
                runs.push_back({x, x1 - 1, y - dy, -dy});
        }
        while (x1 <= x2) {
            while (x1 < w && area.in(x1)) {
                area.set(x1);
                ++x1;
            }
            if (x1 > x) {
                runs.push_back({x, x1 - 1, y + dy, dy});
                minX = std::min(minX, x);
                maxX = std::max(maxX, x1 - 1);
                minY = std::min(minY, y);
                maxY = std::max(maxY, y);
            }
            if (x1 - 1 > x2)
                runs.push_back({x2 + 1, x1 - 1, y - dy, -dy});
            ++x1;
            while (x1 < x2 && !area.in(x1))
                ++x1;
            x = x1;
        }
    }
    return QRect(QPoint(minX, minY), QPoint(maxX, maxY));
}

bool isSolid(const std::array<std::uint8_t, 8> &pattern)
{
    for (std::uint8_t row : pattern)
        if (row != 0xFF)
            return false;
    return true;
}

} // namespace

QRect FloodFillSurface(QImage &picture, QPoint seed, QRgb fill,
                       const std::array<std::uint8_t, 8> &pattern)
{
    const int w = picture.width();
    const int h = picture.height();
    if (!picture.rect().contains(seed))
        return {};
    const QRgb target = picture.pixel(seed);
    fill |= 0xFF000000u;
    if (isSolid(pattern) && fill != target) {
        PaintInPlace area{picture, target, fill};
        return spanFill(area, w, h, seed.x(), seed.y());
    }
    std::vector<std::uint8_t> mask(size_t(w) * size_t(h), 0);
    MarkInMask area{picture, target, mask, w};
    const QRect box = spanFill(area, w, h, seed.x(), seed.y());
    for (int y = box.top(); y <= box.bottom(); ++y) {
        const std::uint8_t bits = pattern[size_t(y & 7)];
        if (bits == 0)
            continue;
        auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        const std::uint8_t *marks = mask.data() + size_t(y) * size_t(w);
        for (int x = box.left(); x <= box.right(); ++x)
            if (marks[x] && (bits >> (x & 7) & 1))
                line[x] = fill;
    }
    return box;
}
