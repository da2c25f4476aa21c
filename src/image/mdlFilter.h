#pragma once

#include "RowWork.h"

#include <QImage>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

// The per-pixel filters of the paint window's Filter menu and of the filter brush.
//
// A colour is a number with red in the low byte, then green, then blue. Filters work in place on
// a Format_RGB32 picture, scan line by scan line; where a new value depends on old neighbours
// they read from a copy of the region. Rows are split across cores only where that changes no
// output pixel.

// Filter numbers (9 is unused and does nothing, as does any number above 13).
enum FilterNumber : int
{
    FilterBlacknWhite = 0,
    FilterBlur = 1,
    FilterBrightness = 2,
    FilterCrease = 3,
    FilterDarkness = 4,
    FilterDiffuse = 5,
    FilterEmboss = 6,
    FilterGrayBlacknWhite = 7,
    FilterGrayscale = 8,
    FilterReplaceColors = 10,
    FilterSharpen = 11,
    FilterSnow = 12,
    FilterWave = 13,
};

// One entry of the Filter menu: its number, the menu item's name and caption.
struct FilterMenuEntry
{
    int number;
    const char *menuName;
    const char *caption;
};
const std::vector<FilterMenuEntry> &FilterMenu();

// red = colour AND 255; green = (colour \ 256) AND 255; blue = colour \ 65536.
void SplitRGB(int colour, int &red, int &green, int &blue);
// A colour number from channels, each clipped above 255 to 255 (and below 0 to 0).
int RGBColor(int red, int green, int blue);
// The colour number of a pixel, and back.
int ColorOfPixel(QRgb pixel);
QRgb PixelOfColor(int colour);

struct FilterOptions
{
    // Filter 10: the colour to replace and the colour to replace it with (colour numbers).
    int replaceFrom = 0;
    int replaceTo = 0;
    // Diffuse's random draws: a fixed seed repeats them; none draws a fresh seed.
    std::optional<std::uint64_t> seed;
    // Progress and Cancel; not called for a small region.
    FilterProgress progress;
    bool parallel = true;
};

enum class FilterResult
{
    Done,
    Cancelled,
    NotAFilter
};

// Applies filter to the region x1..x2, y1..y2 (inclusive) of picture. All four at -1 stand for
// the whole picture, and are set to 0, 0, width - 1, height - 1. A region reaching outside the
// picture is cut to it. Cancel leaves the rows done so far changed.
FilterResult ImageFilter(int filter, QImage &picture, int &x1, int &y1, int &x2, int &y2,
                         const FilterOptions &options = {});

// "Small": (y2 - y1) * (x2 - x1) < 256. A small region reports no progress and brightness and
// darkness step by 2 there instead of 32.
bool IsSmallRegion(int x1, int y1, int x2, int y2);

// A copy of a region's pixels, indexed by plane, x and y (x from 0 to x2, y from 0 to y2).
// Split form: planes 0 red, 1 green, 2 blue. Packed form: plane 3 holds the whole colour number
// (planes 0 to 2 read 0 and take no memory). Cells outside the region read 0.
class PixelArray
{
public:
    PixelArray() = default;
    PixelArray(int x2, int y2, bool packed);
    bool packed() const { return m_packed; }
    int upperX() const { return m_width - 1; }
    int upperY() const { return m_height - 1; }
    int at(int plane, int x, int y) const;
    void set(int plane, int x, int y, int value);

private:
    bool m_packed = false;
    int m_width = 0;
    int m_height = 0;
    std::vector<std::int32_t> m_cells;
};

// Fills a PixelArray with the region (inclusive bounds, cut to the picture). With showProgress,
// reports phase 5 ("Retrieving color information...") unless the region is small; an empty
// result means cancelled or a region outside the picture.
std::optional<PixelArray> ReadPixelArray(const QImage &picture, int x1, int y1, int x2, int y2,
                                         bool showProgress, bool packed,
                                         const FilterProgress &progress = {});
