// Runs one filter or effect of the paint window on a picture file and writes the result, timing
// the work alone (the reading and writing around it are timed by the caller as a whole):
//
//   tarnwick_paint_bench INPUT OUTPUT OPERATION
//
// OPERATION: none, filter:N (N a filter number), flipH, flipV, stretch:F (both axes by F),
// rotate:A (the paint window's rotation by A degrees, anticlockwise), polar:A (the polar turn of
// the Effect menu's repeat), invert. Prints "work-ms N".
#include "cDIBProcess.h"
#include "cDIBSection.h"
#include "mdlEffect.h"
#include "mdlFilter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImageWriter>

#include <cstdio>
#include <cstdlib>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s INPUT OUTPUT OPERATION\n", argv[0]);
        return 2;
    }
    const QString input = QString::fromLocal8Bit(argv[1]);
    const QString output = QString::fromLocal8Bit(argv[2]);
    const QString operation = QString::fromLocal8Bit(argv[3]);
    const QString name = operation.section(QLatin1Char(':'), 0, 0);
    const double value = operation.section(QLatin1Char(':'), 1, 1).toDouble();

    cDIBSection picture;
    if (!picture.CreateFromFile(input)) {
        std::fprintf(stderr, "%s\n", qPrintable(picture.GetLastErrorMessage()));
        return 1;
    }
    // The picture's pixels, held by this image alone (as the paint window's work copy is).
    QImage image = picture.hDIB();
    picture.ClearUp();
    QElapsedTimer timer;
    timer.start();
    // An effect gives nothing for a result too large to make.
    const auto take = [&image](std::optional<QImage> result) {
        if (!result) {
            std::fprintf(stderr, "no result\n");
            std::exit(1);
        }
        image = std::move(*result);
    };
    if (name == QLatin1String("filter")) {
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        FilterOptions options;
        options.replaceFrom = 0xFFFFFF;
        options.replaceTo = 0xFF0000;
        ImageFilter(int(value), image, x1, y1, x2, y2, options);
    } else if (name == QLatin1String("flipH")) {
        take(ApplyImageEffect(EffectFlipHorizontal, std::move(image)));
    } else if (name == QLatin1String("flipV")) {
        take(ApplyImageEffect(EffectFlipVertical, std::move(image)));
    } else if (name == QLatin1String("stretch")) {
        EffectParameters p;
        p.factorX = p.factorY = float(value);
        take(ApplyImageEffect(EffectStretch, image, p));
    } else if (name == QLatin1String("rotate")) {
        cDIBSection source;
        source.CreateFromImage(image, 0, 0, -1, -1);
        cDIBSection turned;
        timer.restart();
        cDIBProcess().RotateDIB(source, turned, value, 0xFFFFFF);
        image = turned.hDIB();
    } else if (name == QLatin1String("polar")) {
        EffectParameters p;
        p.angle = float(value);
        p.clockwise = false;
        take(ApplyImageEffect(EffectRotate, image, p));
    } else if (name == QLatin1String("invert")) {
        take(ApplyImageEffect(EffectInvert, std::move(image)));
    } else if (name != QLatin1String("none")) {
        std::fprintf(stderr, "unknown operation %s\n", argv[3]);
        return 2;
    }
    const qint64 ms = timer.elapsed();
    QImageWriter writer(output);
    if (!writer.write(image)) {
        std::fprintf(stderr, "%s\n", qPrintable(writer.errorString()));
        return 1;
    }
    std::printf("work-ms %lld\n", static_cast<long long>(ms));
    return 0;
}
