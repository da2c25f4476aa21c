// The paint tools on a large picture, in the real paint window (offscreen):
//
//   tarnwick_painttools_bench WIDTH HEIGHT [fill-only]
//
// fill:   the Fill tool's scan-line fill of the whole picture (a white picture inside a black
//         frame, filled from a point inside), best and median of 5.
// pencil: 1,000 mouse moves of the Pencil across the picture, each sent to picPaint and
//         followed by the repaint it asks for; the longest move, the median, and the area
//         repainted against the whole picture's.
// hand:   at the largest zoom that does not pass 10x, 300 moves of the Hand, each followed by
//         its repaint; the longest and the median.
// Each move is timed from the mouse event to the end of its repaint (processEvents).
#include "FloodFill.h"
#include "frmPaint.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

int over(const std::vector<double> &v, double limit)
{
    return int(std::count_if(v.begin(), v.end(), [limit](double t) { return t > limit; }));
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// Adds up the area that picPaint repaints.
class PaintCounter : public QObject
{
public:
    qint64 area = 0;
    int events = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            ++events;
            for (const QRect &r : static_cast<QPaintEvent *>(event)->region())
                area += qint64(r.width()) * r.height();
        }
        return false;
    }
};

void send(QWidget *target, QEvent::Type type, QPoint at, Qt::MouseButtons held)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, QPointF(at), QPointF(target->mapToGlobal(at)), button, held, {});
    QApplication::sendEvent(target, &event);
}

// White with a black frame 3 pixels wide; with the diagonal for the pencil, without it for the
// fill, which then fills all inside the frame.
QImage startPicture(int w, int h, bool diagonal = true)
{
    QImage picture(w, h, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter p(&picture);
    p.setPen(QPen(Qt::black, 3));
    p.drawRect(QRect(10, 10, w - 20, h - 20));
    if (diagonal)
        p.drawLine(0, h / 3, w, h / 2);
    return picture;
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s WIDTH HEIGHT [fill-only]\n", argv[0]);
        return 2;
    }
    const int w = std::atoi(argv[1]);
    const int h = std::atoi(argv[2]);
    const bool fillOnly = argc > 3 && QByteArray(argv[3]) == "fill-only";
    std::printf("picture %d x %d (%.1f MP)\n", w, h, w * double(h) / 1e6);

    // --- Flood fill
    {
        std::vector<double> times;
        for (int run = 0; run < 5; ++run) {
            QImage picture = startPicture(w, h, false);
            QElapsedTimer timer;
            timer.start();
            const QRect filled =
                FloodFillSurface(picture, QPoint(w / 2, h / 4), qRgb(255, 0, 0), SolidPattern);
            times.push_back(timer.nsecsElapsed() / 1e6);
            if (filled.width() < w - 30 || filled.height() < h - 30)
                return 1;
        }
        std::printf("fill: best %.1f ms, median %.1f ms\n",
                    *std::min_element(times.begin(), times.end()), median(times));
    }
    if (fillOnly)
        return 0;

    // --- Pencil in the window
    frmPaint *window = frmPaint::OpenPaint(QString());
    window->resize(1280, 900);
    window->show();
    window->document().setClipboard(startPicture(w, h));
    window->document().mnuPaste_Click();
    window->document().mnuCrop_Click(); // the picture is now w x h
    app.processEvents();
    auto *pic = window->findChild<QWidget *>(QStringLiteral("picPaint"));
    auto *area = window->findChild<QScrollArea *>(QStringLiteral("picPaintArea"));
    PaintCounter counter;
    pic->installEventFilter(&counter);
    window->findChild<QAbstractButton *>(QStringLiteral("optTools_4"))->click();
    app.processEvents();
    {
        std::vector<double> times;
        counter.area = 0;
        counter.events = 0;
        const QPoint start(200, 200);
        send(pic, QEvent::MouseButtonPress, start, Qt::LeftButton);
        app.processEvents();
        QElapsedTimer timer;
        for (int i = 1; i <= 1000; ++i) {
            // A zig-zag within the view, a few pixels a move.
            const QPoint at(200 + (i * 7) % 800, 200 + (i * 3) % 500);
            timer.start();
            send(pic, QEvent::MouseMove, at, Qt::LeftButton);
            app.processEvents();
            times.push_back(timer.nsecsElapsed() / 1e6);
        }
        send(pic, QEvent::MouseButtonRelease, QPoint(500, 500), Qt::NoButton);
        timer.start();
        app.processEvents();
        const double releaseMs = timer.nsecsElapsed() / 1e6;
        std::printf("pencil: 1000 moves, longest %.2f ms, median %.2f ms, %d over 16 ms; release "
                    "(records the stroke) %.1f ms\n",
                    *std::max_element(times.begin(), times.end()), median(times), over(times, 16.0),
                    releaseMs);
        std::printf("pencil: %d repaints of picPaint, %.0f pixels in all, %.4f%% of the "
                    "picture's area at each repaint on average\n",
                    counter.events, double(counter.area),
                    100.0 * counter.area / std::max(1, counter.events) / (double(w) * h));
    }

    // --- Hand at the largest zoom up to 10x
    {
        PaintDocument &doc = window->document();
        while (doc.ZoomFactor() * 1.25 <= 10.0) {
            const double before = doc.ZoomFactor();
            doc.zoomAt(QPoint(w / 2, h / 2), false);
            if (doc.ZoomFactor() == before)
                break;
        }
        window->findChild<QAbstractButton *>(QStringLiteral("optTools_17"))->click();
        app.processEvents();
        QScrollBar *hs = area->horizontalScrollBar();
        QScrollBar *vs = area->verticalScrollBar();
        hs->setValue(hs->maximum() / 2);
        vs->setValue(vs->maximum() / 2);
        app.processEvents();
        std::vector<double> times;
        counter.area = 0;
        counter.events = 0;
        QElapsedTimer timer;
        const QPoint origin = pic->mapFromGlobal(area->viewport()->mapToGlobal(QPoint(600, 400)));
        send(pic, QEvent::MouseButtonPress, origin, Qt::LeftButton);
        const int h0 = hs->value();
        for (int i = 1; i <= 300; ++i) {
            // The mouse keeps its place on the screen's terms while the picture moves under it.
            const QPoint screenDelta((i % 100) * 3, (i % 50) * 2);
            const QPoint at =
                pic->mapFromGlobal(area->viewport()->mapToGlobal(QPoint(600, 400)) + screenDelta);
            timer.start();
            send(pic, QEvent::MouseMove, at, Qt::LeftButton);
            app.processEvents();
            times.push_back(timer.nsecsElapsed() / 1e6);
        }
        send(pic, QEvent::MouseButtonRelease, origin, Qt::NoButton);
        std::printf("hand at %.0f%% zoom: 300 moves, longest %.2f ms, median %.2f ms, %d over "
                    "16 ms (scrolled from %d to %d)\n",
                    doc.ZoomFactor() * 100, *std::max_element(times.begin(), times.end()),
                    median(times), over(times, 16.0), h0, hs->value());
        std::printf("hand: %d repaints of picPaint, %.0f pixels each on average (the view is %d x "
                    "%d)\n",
                    counter.events, double(counter.area) / std::max(1, counter.events),
                    area->viewport()->width(), area->viewport()->height());
    }
    delete window;
    return 0;
}
