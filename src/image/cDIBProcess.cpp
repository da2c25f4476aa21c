#include "cDIBProcess.h"

#include "cDIBSection.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <cmath>

int cDIBProcess::BlueOf(int colour)
{
    return (TranslateColor(colour) >> 16) & 255;
}
int cDIBProcess::GreenOf(int colour)
{
    return (TranslateColor(colour) >> 8) & 255;
}
int cDIBProcess::RedOf(int colour)
{
    return TranslateColor(colour) & 255;
}

cDIBProcess::PixelView cDIBProcess::ViewOf(cDIBSection &surface)
{
    PixelView view;
    QImage &image = surface.image();
    if (image.isNull())
        return view;
    view.bits = reinterpret_cast<QRgb *>(surface.DIBSectionBitsPtr());
    view.width = image.width();
    view.height = image.height();
    view.stride = image.bytesPerLine() / qsizetype(sizeof(QRgb));
    return view;
}

int cDIBProcess::TranslateColor(int colour)
{
    if (((unsigned(colour) >> 24) & 255) != 128)
        return colour;
    // The system colours that have a counterpart in the palette; others read as the window.
    QPalette::ColorRole role = QPalette::Window;
    switch (colour & 255) {
    case 5: // window
        role = QPalette::Base;
        break;
    case 6: // window frame
    case 8: // window text
        role = QPalette::Text;
        break;
    case 13: // highlight
        role = QPalette::Highlight;
        break;
    case 14: // highlighted text
        role = QPalette::HighlightedText;
        break;
    case 18: // button text
        role = QPalette::ButtonText;
        break;
    case 15: // button face
        role = QPalette::Button;
        break;
    default:
        break;
    }
    const QColor c = QGuiApplication::palette().color(role);
    return c.red() + 256 * c.green() + 65536 * c.blue();
}

double cDIBProcess::MaxOf(std::span<const double> values)
{
    return values.empty() ? 0.0 : *std::max_element(values.begin(), values.end());
}

double cDIBProcess::MinOf(std::span<const double> values)
{
    return values.empty() ? 0.0 : *std::min_element(values.begin(), values.end());
}

bool cDIBProcess::RotateDIB(cDIBSection &source, cDIBSection &target, double angle, int background,
                            const FilterProgress &progress, bool parallel)
{
    const int sw = source.hDIB().width();
    const int sh = source.hDIB().height();
    if (sw <= 0 || sh <= 0)
        return false;
    const double radians = angle * (std::atan(1.0) * 4) / -180.0;
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    const double xs[4] = {0, double(sw) * c, -double(sh) * s, double(sw) * c - double(sh) * s};
    const double ys[4] = {0, double(sw) * s, double(sh) * c, double(sw) * s + double(sh) * c};
    const int tw = std::max(1, int(std::lrint(MaxOf(xs) - MinOf(xs))));
    const int th = std::max(1, int(std::lrint(MaxOf(ys) - MinOf(ys))));
    if (!target.Create(tw, th))
        return false;
    const PixelView from = ViewOf(source);
    const PixelView to = ViewOf(target);
    const QRgb fill = 0xFF000000u | (QRgb(RedOf(background)) << 16) |
                      (QRgb(GreenOf(background)) << 8) | QRgb(BlueOf(background));
    const double scx = sw / 2.0;
    const double scy = sh / 2.0;
    const double tcx = tw / 2.0;
    const double tcy = th / 2.0;
    // Each target pixel's centre, turned back by the angle, picks the source pixel under it.
    return ForRows(
        0, th - 1,
        [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                const double v = y + 0.5 - tcy;
                QRgb *line = &to.at(0, y);
                for (int x = 0; x < tw; ++x) {
                    const double u = x + 0.5 - tcx;
                    const double sx = std::floor(scx + u * c + v * s);
                    const double sy = std::floor(scy - u * s + v * c);
                    if (sx >= 0 && sy >= 0 && sx < sw && sy < sh)
                        line[x] = from.at(int(sx), int(sy));
                    else
                        line[x] = fill;
                }
            }
        },
        parallel, 4, 0, progress);
}
