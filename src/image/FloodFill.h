#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

#include <array>
#include <cstdint>

// Fills the area of one colour around a point (the "surface" fill: every pixel reached from
// the point through its four neighbours that has the colour of the point), scan line by scan
// line, each pixel looked at a small number of times whatever the shape of the area.
//
// pattern is the 8 x 8 tile of the fill (row y, bit x, repeating from the picture's top left
// corner): where a bit is set the pixel takes fill, elsewhere it keeps its colour. A solid
// tile (every bit set) paints the whole area; an empty one paints nothing.
//
// picture must be Format_RGB32 (or ARGB32 with opaque pixels). Returns the bounding box of the
// area (empty when the point is outside the picture). An area that already has the fill colour
// under a solid tile is left as it is, and its box is still returned.
QRect FloodFillSurface(QImage &picture, QPoint seed, QRgb fill,
                       const std::array<std::uint8_t, 8> &pattern);

// The solid tile.
constexpr std::array<std::uint8_t, 8> SolidPattern = {0xFF, 0xFF, 0xFF, 0xFF,
                                                      0xFF, 0xFF, 0xFF, 0xFF};
