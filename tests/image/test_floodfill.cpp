// The Fill tool's scan-line fill, against a plain fill pixel by pixel.

#include "FloodFill.h"
#include "TestMain.h"
#include "ToolDrawing.h"

#include <QPainter>
#include <QRandomGenerator>

#include <vector>

namespace {

// The area the fill must find: every pixel reached through four neighbours of the seed's
// colour, found one pixel at a time.
std::vector<bool> reference(const QImage &picture, QPoint seed)
{
    std::vector<bool> in(size_t(picture.width() * picture.height()), false);
    const QRgb target = picture.pixel(seed);
    std::vector<QPoint> todo{seed};
    while (!todo.empty()) {
        const QPoint p = todo.back();
        todo.pop_back();
        if (!picture.rect().contains(p))
            continue;
        const size_t i = size_t(p.y() * picture.width() + p.x());
        if (in[i] || picture.pixel(p) != target)
            continue;
        in[i] = true;
        todo.push_back(p + QPoint(1, 0));
        todo.push_back(p + QPoint(-1, 0));
        todo.push_back(p + QPoint(0, 1));
        todo.push_back(p + QPoint(0, -1));
    }
    return in;
}

// A maze of random walls with spirals and diagonals, so that the area turns back on itself.
QImage maze(int w, int h, quint32 seed)
{
    QImage picture(w, h, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QRandomGenerator random(seed);
    QPainter p(&picture);
    p.setPen(Qt::black);
    for (int i = 0; i < 60; ++i) {
        const QPoint a(random.bounded(w), random.bounded(h));
        const QPoint b(random.bounded(w), random.bounded(h));
        if (i % 3 == 0)
            p.drawRect(QRect(a, b).normalized());
        else
            p.drawLine(a, b);
    }
    p.end();
    return picture;
}

} // namespace

class TestFloodFill : public QObject
{
    Q_OBJECT
private slots:
    void fillsExactlyTheConnectedAreaOfTheSeedsColour()
    {
        for (quint32 seed = 1; seed <= 20; ++seed) {
            const QImage before = maze(160, 120, seed);
            const QPoint start(int(seed * 7) % 160, int(seed * 13) % 120);
            const std::vector<bool> area = reference(before, start);
            QImage after = before;
            const QRect box = FloodFillSurface(after, start, qRgb(255, 0, 0), SolidPattern);
            QRect expectedBox;
            for (int y = 0; y < before.height(); ++y)
                for (int x = 0; x < before.width(); ++x) {
                    const bool inside = area[size_t(y * before.width() + x)];
                    if (inside)
                        expectedBox |= QRect(x, y, 1, 1);
                    const QRgb want = inside ? qRgb(255, 0, 0) : before.pixel(x, y);
                    if (after.pixel(x, y) != want)
                        QFAIL(qPrintable(
                            QStringLiteral("maze %1: pixel %2,%3").arg(seed).arg(x).arg(y)));
                }
            QCOMPARE(box, expectedBox);
        }
    }

    void doesNotLeakThroughADiagonalGap()
    {
        QImage picture(20, 20, QImage::Format_RGB32);
        picture.fill(Qt::white);
        for (int i = 0; i < 20; ++i)
            picture.setPixel(i, 19 - i, qRgb(0, 0, 0)); // a diagonal wall, touching by corners
        const QRect box = FloodFillSurface(picture, QPoint(0, 0), qRgb(0, 0, 255), SolidPattern);
        QCOMPARE(box, QRect(0, 0, 19, 19));
        QCOMPARE(picture.pixel(19, 19), qRgb(255, 255, 255));
    }

    void aFillInTheAreasOwnColourChangesNothingButGivesTheArea()
    {
        QImage picture = maze(80, 60, 3);
        const QImage before = picture;
        const QRgb own = picture.pixel(40, 30);
        const QRect box = FloodFillSurface(picture, QPoint(40, 30), own, SolidPattern);
        QCOMPARE(picture, before);
        QVERIFY(box.contains(QPoint(40, 30)));
    }

    void aSeedOutsideThePictureFillsNothing()
    {
        QImage picture(10, 10, QImage::Format_RGB32);
        picture.fill(Qt::white);
        const QImage before = picture;
        QVERIFY(FloodFillSurface(picture, QPoint(-1, 3), qRgb(1, 2, 3), SolidPattern).isEmpty());
        QVERIFY(FloodFillSurface(picture, QPoint(3, 10), qRgb(1, 2, 3), SolidPattern).isEmpty());
        QCOMPARE(picture, before);
    }

    void aPatternFillsOnlyItsOwnPixelsOfTheArea()
    {
        QImage picture(64, 32, QImage::Format_RGB32);
        picture.fill(Qt::white);
        // Horizontal lines: one row in eight.
        const std::array<std::uint8_t, 8> rows = FillPatternRows(2);
        int rowsSet = 0;
        for (std::uint8_t r : rows) {
            QVERIFY(r == 0 || r == 0xFF);
            rowsSet += r == 0xFF;
        }
        QCOMPARE(rowsSet, 1);
        FloodFillSurface(picture, QPoint(10, 10), qRgb(0, 0, 0), rows);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 64; ++x) {
                const bool set = rows[size_t(y % 8)] & (1u << (x % 8));
                QCOMPARE(picture.pixel(x, y), set ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
            }
        // Transparent paints nothing.
        QImage untouched(16, 16, QImage::Format_RGB32);
        untouched.fill(Qt::white);
        const QImage copy = untouched;
        FloodFillSurface(untouched, QPoint(1, 1), qRgb(0, 0, 0), FillPatternRows(1));
        QCOMPARE(untouched, copy);
    }
};

TARNWICK_TEST_MAIN(TestFloodFill)
#include "test_floodfill.moc"
