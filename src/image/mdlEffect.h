#pragma once

#include "RowWork.h"

#include <QImage>

#include <optional>

// The effects that work on a whole picture: flip, stretch, rotate by any angle, invert. Each is
// a function from a picture and its parameters to a new picture (Format_RGB32).

enum EffectNumber : int
{
    EffectFlipHorizontal = 0, // mirror left to right
    EffectFlipVertical = 1,   // mirror top to bottom
    EffectStretch = 2,
    EffectRotate = 3,
    EffectInvert = 4,
};

struct EffectParameters
{
    // Stretch: the factors for width and height.
    float factorX = 1.0f;
    float factorY = 1.0f;
    // Rotate: degrees, and the direction.
    float angle = 0.0f;
    bool clockwise = true;
    // What a turned picture's new corners are filled with (a QRgb).
    QRgb background = 0xFFFFFFFFu;
    FilterProgress progress;
    bool parallel = true;
};

// The result of effect on source; nothing for an unknown effect number, a cancel, or a result
// too large to make. A stretch gives round(width * factorX) x round(height * factorY), at least
// 1 x 1, smoothly scaled. A rotation gives a square canvas of the picture's diagonal with the
// picture turned about its centre (RotatePicture); exactly 180 degrees turns it without loss.
//
// Flips and invert work in place when source is the only holder of its pixels (pass it with
// std::move), and on a copy otherwise.
std::optional<QImage> ApplyImageEffect(int effect, QImage source,
                                       const EffectParameters &parameters = {});

// Turns source by angle degrees about its centre into destination (whose size the caller
// chooses and whose pixels outside the turned picture stay as they are). Anticlockwise on
// screen unless clockwise is set. Works by polar offsets from the centres: for each offset
// (i, j) up to half the source's diagonal, one rounded distance and angle serve the four
// pixels (+-i, +-j). Returns false when cancelled.
bool RotatePicture(const QImage &source, QImage &destination, float angle, bool clockwise,
                   const FilterProgress &progress = {}, bool parallel = true);
