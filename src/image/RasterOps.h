#pragma once

#include <QImage>

#include <cstdint>

// Combines a w x h part of source (from sx, sy) into dest at (dx, dy), scan line by scan line,
// with a raster operation: 0xCC0020 copy, 0x660046 XOR, 0x8800C6 AND, 0xEE0086 OR (any other
// copies). The part is clipped to both pictures. Both must be Format_RGB32; the unused byte of
// dest stays 0xFF.
void BlitRaster(QImage &dest, int dx, int dy, const QImage &source, int sx, int sy, int w, int h,
                std::uint32_t rasterOp);
