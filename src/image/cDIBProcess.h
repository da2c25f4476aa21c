#pragma once

#include "RowWork.h"

#include <QImage>

#include <span>

class cDIBSection;

// The arithmetic for turning a cDIBSection, with its small helpers.
class cDIBProcess
{
public:
    // The blue, green and red byte of a colour number after TranslateColor.
    static int BlueOf(int colour);
    static int GreenOf(int colour);
    static int RedOf(int colour);

    // A two-dimensional view over a surface's own pixels (no copy): at(x, y), rows top down.
    struct PixelView
    {
        QRgb *bits = nullptr;
        int width = 0;
        int height = 0;
        qsizetype stride = 0; // in pixels
        QRgb &at(int x, int y) const { return bits[qsizetype(y) * stride + x]; }
        bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    };
    static PixelView ViewOf(cDIBSection &surface);

    // A colour whose top byte is 128 stands for the system colour of its low byte (window,
    // window text, button face ...); any other colour is itself.
    static int TranslateColor(int colour);

    static double MaxOf(std::span<const double> values);
    static double MinOf(std::span<const double> values);

    // Turns source by angle degrees (anticlockwise on screen for a positive angle) into target,
    // which is made at the size that holds the turned picture; the corners are filled with
    // background (a colour number). Each target pixel is mapped back to the source and copied
    // when it falls inside, so turns by multiples of 90 degrees lose nothing. False when target
    // can't be made or the turn was cancelled.
    bool RotateDIB(cDIBSection &source, cDIBSection &target, double angle,
                   int background = 0xFFFFFF, const FilterProgress &progress = {},
                   bool parallel = true);
};
