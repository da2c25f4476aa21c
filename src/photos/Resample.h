#pragma once

#include <QImage>
#include <QSize>

// Scales image to exactly size (sides scaled independently) with a Lanczos filter of three
// lobes: rows first, then columns. When a side is reduced the filter is widened by the same
// factor, so every source pixel counts and fine detail neither aliases nor blurs more than it
// must. Channels are 8 bits with fixed-point weights.
//
// Formats kept as they are: RGB32, ARGB32_Premultiplied (colours kept within alpha), RGB888 and
// Grayscale8. ARGB32 comes back as ARGB32_Premultiplied; any other format is converted to RGB32,
// or ARGB32_Premultiplied when it has an alpha channel. A null image or an empty size gives a
// null image. The colour space goes with the pixels.
//
// Pure: touches nothing but its arguments, so it may run on any thread.
QImage ResampleLanczos(const QImage &image, QSize size);
