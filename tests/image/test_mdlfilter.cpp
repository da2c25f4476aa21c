#include "TestMain.h"
#include "mdlFilter.h"

#include <QRandomGenerator>

#include <cmath>
#include <functional>

// Every filter is checked against pixels that the test works out itself, with plain loops over
// a plain copy, from the filters' written arithmetic: a wrong channel, a wrong rounding or a
// touched frame pixel fails.

namespace {

struct Rgb
{
    int r, g, b;
    bool operator==(const Rgb &) const = default;
};

Rgb at(const QImage &image, int x, int y)
{
    const QRgb p = image.pixel(x, y);
    return {qRed(p), qGreen(p), qBlue(p)};
}
void put(QImage &image, int x, int y, Rgb c)
{
    const auto clip = [](int v) { return v > 255 ? 255 : v; };
    image.setPixel(x, y, qRgb(clip(c.r), clip(c.g), clip(c.b)));
}

// Rounding to the nearest integer, halves to even, worked out by hand.
double roundEven(double v)
{
    const double f = std::floor(v);
    const double rest = v - f;
    if (rest > 0.5)
        return f + 1;
    if (rest < 0.5)
        return f;
    return std::fmod(f, 2.0) == 0 ? f : f + 1;
}
int rnd(double v)
{
    return int(roundEven(v));
}

QImage randomPicture(int w, int h, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y,
                           qRgb(random.bounded(256), random.bounded(256), random.bounded(256)));
    return image;
}

QImage uniform(int w, int h, QRgb colour)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

using Reference =
    std::function<void(const QImage &old, QImage &out, int x1, int y1, int x2, int y2)>;

void referenceBlur(const QImage &old, QImage &out, int x1, int y1, int x2, int y2)
{
    for (int x = x1 + 1; x <= x2 - 1; ++x)
        for (int y = y1 + 1; y <= y2 - 1; ++y) {
            int r = 0, g = 0, b = 0;
            for (int i = -1; i <= 1; ++i)
                for (int j = -1; j <= 1; ++j) {
                    const Rgb c = at(old, x + i, y + j);
                    r += c.r;
                    g += c.g;
                    b += c.b;
                }
            put(out, x, y,
                {rnd(std::abs(r / 10.0)), rnd(std::abs(g / 10.0)), rnd(std::abs(b / 10.0))});
        }
}

Reference referenceAdd(int k)
{
    return [k](const QImage &old, QImage &out, int x1, int y1, int x2, int y2) {
        for (int x = x1; x <= x2; ++x)
            for (int y = y1; y <= y2; ++y) {
                const Rgb c = at(old, x, y);
                put(out, x, y,
                    {rnd(std::abs(k + c.r)), rnd(std::abs(k + c.g)), rnd(std::abs(k + c.b))});
            }
    };
}

Reference referenceShift(double a)
{
    return [a](const QImage &old, QImage &out, int x1, int y1, int x2, int y2) {
        for (int x = x1; x <= x2; ++x)
            for (int y = y1; y <= y2; ++y) {
                const int ty = rnd(y + a * std::sin(double(x)));
                if (ty >= 0 && ty < out.height())
                    out.setPixel(x, ty, old.pixel(x, y));
            }
    };
}

void referenceEmboss(const QImage &old, QImage &out, int x1, int y1, int x2, int y2)
{
    for (int x = x1; x <= x2 - 1; ++x)
        for (int y = y1; y <= y2 - 1; ++y) {
            const Rgb v = at(old, x, y);
            const Rgb n = at(old, x + 1, y + 1);
            put(out, x, y,
                {rnd(std::abs(-128 + (v.r - n.r))), rnd(std::abs(-128 + (v.g - n.g))),
                 rnd(std::abs(-128 + (v.b - n.b)))});
        }
}

void referenceThreshold(const QImage &old, QImage &out, int x1, int y1, int x2, int y2)
{
    for (int x = x1; x <= x2; ++x)
        for (int y = y1; y <= y2; ++y) {
            const Rgb c = at(old, x, y);
            const bool black = c.r < 192 && c.g < 192 && c.b < 192;
            put(out, x, y, black ? Rgb{0, 0, 0} : Rgb{255, 255, 255});
        }
}

void referenceGrayBlackAndWhite(const QImage &old, QImage &out, int x1, int y1, int x2, int y2)
{
    for (int x = x1; x <= x2; ++x)
        for (int y = y1; y <= y2; ++y) {
            int r = 0, g = 0, b = 0;
            const QRgb p = old.pixel(x, y);
            SplitRGB(qRed(p) + 256 * qGreen(p) + 65536 * qBlue(p), r, g, b);
            r = rnd(std::abs((2 * g - b + r) * r) / 256.0);
            g = rnd(std::abs((2 * b - g + r) * r) / 256.0);
            b = rnd(std::abs((2 * b - g + r) * g) / 256.0);
            SplitRGB(RGBColor(r, g, b), r, g, b);
            const int grey = rnd((r + g + b) / 3.0);
            put(out, x, y, {grey, grey, grey});
        }
}

void referenceGrayscale(const QImage &old, QImage &out, int x1, int y1, int x2, int y2)
{
    const float w = 0.32f;
    for (int x = x1; x <= x2; ++x)
        for (int y = y1; y <= y2; ++y) {
            const Rgb c = at(old, x, y);
            const float sum = w * float(c.g) + w * float(c.r) + w * float(c.b);
            const int grey = rnd(std::fabs(double(sum)));
            put(out, x, y, {grey, grey, grey});
        }
}

Reference referenceReplace(Rgb from, Rgb to)
{
    return [from, to](const QImage &old, QImage &out, int x1, int y1, int x2, int y2) {
        for (int x = x1; x <= x2; ++x)
            for (int y = y1; y <= y2; ++y)
                if (at(old, x, y) == from)
                    put(out, x, y, to);
    };
}

Reference referenceGain(double k)
{
    return [k](const QImage &old, QImage &out, int x1, int y1, int x2, int y2) {
        for (int x = x1 + 1; x <= x2; ++x)
            for (int y = y1 + 1; y <= y2; ++y) {
                const Rgb v = at(old, x, y);
                const Rgb p = at(old, x - 1, y - 1);
                put(out, x, y,
                    {std::abs(rnd(v.r + k * (v.r - p.r))), std::abs(rnd(v.g + k * (v.g - p.g))),
                     std::abs(rnd(v.b + k * (v.b - p.b)))});
            }
    };
}

// Compares every pixel, naming the first that differs.
bool samePixels(const QImage &got, const QImage &want, QString *where)
{
    for (int y = 0; y < want.height(); ++y)
        for (int x = 0; x < want.width(); ++x)
            if ((got.pixel(x, y) & 0xFFFFFF) != (want.pixel(x, y) & 0xFFFFFF)) {
                *where = QStringLiteral("(%1, %2): got %3, want %4")
                             .arg(x)
                             .arg(y)
                             .arg(got.pixel(x, y) & 0xFFFFFF, 6, 16, QLatin1Char('0'))
                             .arg(want.pixel(x, y) & 0xFFFFFF, 6, 16, QLatin1Char('0'));
                return false;
            }
    return true;
}

} // namespace

Q_DECLARE_METATYPE(QRect)

class TestMdlFilter : public QObject
{
    Q_OBJECT
private slots:
    void splitRgb()
    {
        int r = 0, g = 0, b = 0;
        SplitRGB(0x123456, r, g, b);
        QCOMPARE(r, 0x56);
        QCOMPARE(g, 0x34);
        QCOMPARE(b, 0x12);
        QCOMPARE(RGBColor(300, 1, 2), 255 + 256 + 2 * 65536);
    }

    void eachFilterMatchesItsArithmetic_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QRect>(
            "region"); // x1, y1, x2, y2 as left, top, right, bottom; null: whole
        const QSize sizes[2] = {QSize(13, 11), QSize(301, 203)};
        const int filters[] = {0, 1, 2, 3, 4, 6, 7, 8, 10, 11, 12, 13};
        for (const QSize size : sizes) {
            for (int f : filters) {
                QTest::addRow("filter %d on %dx%d, whole", f, size.width(), size.height())
                    << f << size << QRect();
                const QRect part(QPoint(3, 2), QPoint(size.width() - 4, size.height() - 3));
                QTest::addRow("filter %d on %dx%d, part", f, size.width(), size.height())
                    << f << size << part;
            }
        }
    }
    void eachFilterMatchesItsArithmetic()
    {
        QFETCH(int, filter);
        QFETCH(QSize, size);
        QFETCH(QRect, region);
        QImage picture = randomPicture(size.width(), size.height(), 7 + filter);
        // Some pixels of the colour that Replace looks for.
        const Rgb from{10, 20, 30};
        const Rgb to{200, 100, 50};
        for (int i = 0; i < size.width(); i += 3)
            put(picture, i, (i * 7) % size.height(), from);
        const QImage old = picture.copy();

        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        if (!region.isNull()) {
            x1 = region.left();
            y1 = region.top();
            x2 = region.right();
            y2 = region.bottom();
        }
        FilterOptions options;
        options.replaceFrom = from.r + 256 * from.g + 65536 * from.b;
        options.replaceTo = to.r + 256 * to.g + 65536 * to.b;
        QCOMPARE(ImageFilter(filter, picture, x1, y1, x2, y2, options), FilterResult::Done);
        if (region.isNull()) {
            QCOMPARE(QRect(QPoint(x1, y1), QPoint(x2, y2)),
                     QRect(QPoint(0, 0), QPoint(size.width() - 1, size.height() - 1)));
        }

        const bool small = (y2 - y1) * (x2 - x1) < 256;
        QImage want = old.copy();
        Reference reference;
        switch (filter) {
        case 0:
            reference = referenceThreshold;
            break;
        case 1:
            reference = referenceBlur;
            break;
        case 2:
            reference = referenceAdd(small ? 2 : 32);
            break;
        case 3:
            reference = referenceShift(512);
            break;
        case 4:
            reference = referenceAdd(small ? -2 : -32);
            break;
        case 6:
            reference = referenceEmboss;
            break;
        case 7:
            reference = referenceGrayBlackAndWhite;
            break;
        case 8:
            reference = referenceGrayscale;
            break;
        case 10:
            reference = referenceReplace(from, to);
            break;
        case 11:
            reference = referenceGain(0.5);
            break;
        case 12:
            reference = referenceGain(24);
            break;
        case 13:
            reference = referenceShift(4);
            break;
        }
        reference(old, want, x1, y1, x2, y2);
        QString where;
        QVERIFY2(samePixels(picture, want, &where), qPrintable(where));
        // The same on one core.
        QImage single = old.copy();
        options.parallel = false;
        ImageFilter(filter, single, x1, y1, x2, y2, options);
        QVERIFY2(samePixels(single, want, &where), qPrintable(where));
    }

    void blurOfUniform200Gives180InsideAndKeepsTheFrame()
    {
        QImage picture = uniform(6, 5, qRgb(200, 200, 200));
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterBlur, picture, x1, y1, x2, y2);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 6; ++x) {
                const bool frame = x == 0 || y == 0 || x == 5 || y == 4;
                QCOMPARE(at(picture, x, y), frame ? (Rgb{200, 200, 200}) : (Rgb{180, 180, 180}));
            }
    }

    void darknessOnZeroGives32AndInASmallRegion2()
    {
        QImage picture = uniform(20, 20, qRgb(0, 10, 255));
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterDarkness, picture, x1, y1, x2, y2);
        QCOMPARE(at(picture, 5, 5), (Rgb{32, 22, 223}));
        QImage small = uniform(20, 20, qRgb(0, 10, 255));
        x1 = 2, y1 = 2, x2 = 4, y2 = 4;
        ImageFilter(FilterDarkness, small, x1, y1, x2, y2);
        QCOMPARE(at(small, 3, 3), (Rgb{2, 8, 253}));
        QCOMPARE(at(small, 5, 5), (Rgb{0, 10, 255}));
        // Brightness clips at 255.
        x1 = y1 = x2 = y2 = -1;
        ImageFilter(FilterBrightness, small, x1, y1, x2, y2);
        QCOMPARE(at(small, 10, 10), (Rgb{32, 42, 255}));
    }

    void waveOfOneColumnMovesItByFourSine()
    {
        const int h = 40;
        QImage picture(20, h, QImage::Format_RGB32);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < 20; ++x)
                picture.setPixel(x, y, qRgb(x, y, 0));
        for (int column : {1, 2, 4, 5, 11}) {
            QImage p = picture.copy();
            int x1 = column, y1 = 0, x2 = column, y2 = h - 1;
            ImageFilter(FilterWave, p, x1, y1, x2, y2);
            const int shift = rnd(4 * std::sin(double(column)));
            QVERIFY(shift != 0);
            for (int y = 0; y < h; ++y) {
                const int source = y - shift;
                const Rgb want =
                    (source >= 0 && source < h) ? Rgb{column, source, 0} : Rgb{column, y, 0};
                QCOMPARE(at(p, column, y), want);
                QCOMPARE(at(p, column + 1, y), (Rgb{column + 1, y, 0}));
            }
        }
    }

    void thresholdTurnsAChannelOf192White()
    {
        QImage picture = uniform(4, 4, qRgb(191, 191, 191));
        picture.setPixel(1, 1, qRgb(10, 192, 10));
        picture.setPixel(2, 2, qRgb(191, 191, 192));
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterBlacknWhite, picture, x1, y1, x2, y2);
        QCOMPARE(at(picture, 0, 0), (Rgb{0, 0, 0}));
        QCOMPARE(at(picture, 1, 1), (Rgb{255, 255, 255}));
        QCOMPARE(at(picture, 2, 2), (Rgb{255, 255, 255}));
    }

    void replaceWithEqualColoursChangesNothing()
    {
        QImage picture = randomPicture(30, 30, 3);
        picture.setPixel(4, 4, qRgb(1, 2, 3));
        const QImage before = picture.copy();
        FilterOptions options;
        options.replaceFrom = options.replaceTo = 1 + 256 * 2 + 65536 * 3;
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterReplaceColors, picture, x1, y1, x2, y2, options);
        QCOMPARE(picture, before);
    }

    void numberNineAndAbove13DoNothing()
    {
        for (int filter : {9, 14, 99, -1}) {
            QImage picture = randomPicture(30, 30, 5);
            const QImage before = picture.copy();
            int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
            QCOMPARE(ImageFilter(filter, picture, x1, y1, x2, y2), FilterResult::NotAFilter);
            QCOMPARE(picture, before);
        }
    }

    void diffuseTakesNeighboursAndKeepsItsFrame()
    {
        // Each pixel's channels tell where they came from.
        const int w = 64, h = 48;
        QImage picture(w, h, QImage::Format_RGB32);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                picture.setPixel(x, y, qRgb(y, x, (x * 5 + y) & 255));
        const QImage old = picture.copy();
        FilterOptions options;
        options.seed = 42;
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterDiffuse, picture, x1, y1, x2, y2, options);
        int redOffsets[5] = {}, greenOffsets[5] = {};
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const bool frame = x < 2 || y < 2 || x > w - 4 || y > h - 4;
                const Rgb got = at(picture, x, y);
                if (frame) {
                    QCOMPARE(got, at(old, x, y));
                    continue;
                }
                const int dy = got.r - y; // red came from (x, y + d)
                const int dx = got.g - x; // green from (x + d, y)
                QVERIFY(dy >= -2 && dy <= 2);
                QVERIFY(dx >= -2 && dx <= 2);
                ++redOffsets[dy + 2];
                ++greenOffsets[dx + 2];
                bool blueFound = false;
                for (int i = -2; i <= 2 && !blueFound; ++i)
                    for (int j = -2; j <= 2 && !blueFound; ++j)
                        blueFound = at(old, x + i, y + j).b == got.b;
                QVERIFY(blueFound);
            }
        // A uniform draw: each of the five offsets about a fifth of the time.
        const int inside = (w - 5) * (h - 5);
        for (int i = 0; i < 5; ++i) {
            QVERIFY2(qAbs(redOffsets[i] - inside / 5) < inside / 20,
                     qPrintable(QString::number(redOffsets[i])));
            QVERIFY(qAbs(greenOffsets[i] - inside / 5) < inside / 20);
        }
        // The same seed gives the same picture, on one core too.
        QImage again = old.copy();
        options.parallel = false;
        ImageFilter(FilterDiffuse, again, x1, y1, x2, y2, options);
        QCOMPARE(again, picture);
    }

    void largeRegionsReportProgressAndCancel()
    {
        QImage picture = randomPicture(300, 300, 9);
        const QImage before = picture.copy();
        QList<int> filtering;
        int retrieving = 0;
        FilterOptions options;
        options.progress = [&](int phase, int percent) {
            if (phase == 4)
                filtering.append(percent);
            else if (phase == 5)
                ++retrieving;
            return true;
        };
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterBlur, picture, x1, y1, x2, y2, options);
        QVERIFY(filtering.size() > 10);
        QCOMPARE(retrieving, 1);
        QVERIFY(std::is_sorted(filtering.begin(), filtering.end()));
        QVERIFY(filtering.last() >= 99);

        // A region away from 0 starts its figures away from 0 too.
        filtering.clear();
        x1 = 0, y1 = 150, x2 = 299, y2 = 299;
        ImageFilter(FilterGrayscale, picture, x1, y1, x2, y2, options);
        QVERIFY(filtering.first() >= 50);

        // No progress for a small region.
        filtering.clear();
        retrieving = 0;
        x1 = 0, y1 = 0, x2 = 10, y2 = 10;
        ImageFilter(FilterBlur, picture, x1, y1, x2, y2, options);
        QVERIFY(filtering.isEmpty());
        QCOMPARE(retrieving, 0);

        // Cancel stops early: the bottom rows are untouched.
        picture = before.copy();
        int calls = 0;
        options.progress = [&calls](int phase, int) { return phase != 4 || ++calls < 3; };
        x1 = y1 = x2 = y2 = -1;
        QCOMPARE(ImageFilter(FilterGrayscale, picture, x1, y1, x2, y2, options),
                 FilterResult::Cancelled);
        QVERIFY(picture.pixel(5, 0) != before.pixel(5, 0) || qGray(before.pixel(5, 0)) == 0);
        QCOMPARE(picture.copy(0, 290, 300, 10), before.copy(0, 290, 300, 10));
    }

    void readPixelArrayInBothForms()
    {
        QImage picture = randomPicture(9, 7, 11);
        const auto split = ReadPixelArray(picture, 2, 1, 6, 5, false, false);
        QVERIFY(split);
        QCOMPARE(split->upperX(), 6);
        QCOMPARE(split->upperY(), 5);
        const auto packed = ReadPixelArray(picture, 2, 1, 6, 5, false, true);
        QVERIFY(packed);
        for (int x = 0; x <= 6; ++x)
            for (int y = 0; y <= 5; ++y) {
                const bool inside = x >= 2 && y >= 1;
                const QRgb p = picture.pixel(x, y);
                QCOMPARE(split->at(0, x, y), inside ? qRed(p) : 0);
                QCOMPARE(split->at(1, x, y), inside ? qGreen(p) : 0);
                QCOMPARE(split->at(2, x, y), inside ? qBlue(p) : 0);
                QCOMPARE(packed->at(3, x, y),
                         inside ? qRed(p) + 256 * qGreen(p) + 65536 * qBlue(p) : 0);
                QCOMPARE(packed->at(0, x, y), 0);
            }
        // Progress only when asked and not small.
        int calls = 0;
        const FilterProgress count = [&calls](int phase, int) {
            calls += phase == 5;
            return true;
        };
        QImage large = randomPicture(100, 100, 1);
        QVERIFY(ReadPixelArray(large, 0, 0, 99, 99, true, true, count));
        QVERIFY(calls > 0);
        calls = 0;
        QVERIFY(ReadPixelArray(large, 0, 0, 99, 99, false, true, count));
        QCOMPARE(calls, 0);
        QVERIFY(!ReadPixelArray(large, 0, 0, 99, 99, true, false, [](int, int) { return false; }));
    }
};

TARNWICK_TEST_MAIN(TestMdlFilter)
#include "test_mdlfilter.moc"
