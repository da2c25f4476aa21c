#include "RasterOps.h"

#include <algorithm>
#include <cstring>

void BlitRaster(QImage &dest, int dx, int dy, const QImage &source, int sx, int sy, int w, int h,
                std::uint32_t rasterOp)
{
    // Clip to the source, then to the destination, moving both origins together.
    if (sx < 0) {
        w += sx;
        dx -= sx;
        sx = 0;
    }
    if (sy < 0) {
        h += sy;
        dy -= sy;
        sy = 0;
    }
    if (dx < 0) {
        w += dx;
        sx -= dx;
        dx = 0;
    }
    if (dy < 0) {
        h += dy;
        sy -= dy;
        dy = 0;
    }
    w = std::min({w, source.width() - sx, dest.width() - dx});
    h = std::min({h, source.height() - sy, dest.height() - dy});
    if (w <= 0 || h <= 0)
        return;
    for (int y = 0; y < h; ++y) {
        const auto *in = reinterpret_cast<const QRgb *>(source.constScanLine(sy + y)) + sx;
        auto *out = reinterpret_cast<QRgb *>(dest.scanLine(dy + y)) + dx;
        switch (rasterOp) {
        case 0x660046:
            for (int x = 0; x < w; ++x)
                out[x] = (out[x] ^ in[x]) | 0xFF000000u;
            break;
        case 0x8800C6:
            for (int x = 0; x < w; ++x)
                out[x] = (out[x] & in[x]) | 0xFF000000u;
            break;
        case 0xEE0086:
            for (int x = 0; x < w; ++x)
                out[x] = out[x] | in[x] | 0xFF000000u;
            break;
        default:
            std::memcpy(out, in, size_t(w) * sizeof(QRgb));
            break;
        }
    }
}
