#include "TestMain.h"
#include "cDIBProcess.h"
#include "cDIBSection.h"
#include "mdlEffect.h"

#include <QRandomGenerator>

#include <cmath>

namespace {

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

double roundEven(double v)
{
    const double f = std::floor(v);
    const double rest = v - f;
    if (rest != 0.5)
        return rest > 0.5 ? f + 1 : f;
    return std::fmod(f, 2.0) == 0 ? f : f + 1;
}

} // namespace

class TestMdlEffect : public QObject
{
    Q_OBJECT
private slots:
    void flipsMirrorEveryPixel()
    {
        const QImage p = randomPicture(7, 5, 1);
        const auto h = ApplyImageEffect(EffectFlipHorizontal, p);
        const auto v = ApplyImageEffect(EffectFlipVertical, p);
        QVERIFY(h && v);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x) {
                QCOMPARE(h->pixel(x, y), p.pixel(6 - x, y));
                QCOMPARE(v->pixel(x, y), p.pixel(x, 4 - y));
            }
    }

    void invertIsXorWithWhite()
    {
        const QImage p = randomPicture(9, 4, 2);
        const auto inv = ApplyImageEffect(EffectInvert, p);
        QVERIFY(inv);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 9; ++x) {
                const QRgb a = p.pixel(x, y);
                QCOMPARE(inv->pixel(x, y), qRgb(255 - qRed(a), 255 - qGreen(a), 255 - qBlue(a)));
            }
    }

    void stretchScalesEachAxisByItsFactor()
    {
        QImage p(40, 30, QImage::Format_RGB32);
        p.fill(qRgb(10, 200, 30));
        EffectParameters params;
        params.factorX = 1.25f;
        params.factorY = 0.5f;
        const auto s = ApplyImageEffect(EffectStretch, p, params);
        QVERIFY(s);
        QCOMPARE(s->size(), QSize(50, 15));
        QCOMPARE(s->pixel(49, 14), qRgb(10, 200, 30));
        params.factorX = params.factorY = 0.25f;
        QCOMPARE(
            ApplyImageEffect(EffectStretch, QImage(3, 3, QImage::Format_RGB32), params)->size(),
            QSize(1, 1));
        // A left half black and a right half white keeps its halves after doubling.
        QImage halves(4, 2, QImage::Format_RGB32);
        halves.fill(qRgb(255, 255, 255));
        halves.setPixel(0, 0, qRgb(0, 0, 0));
        halves.setPixel(1, 0, qRgb(0, 0, 0));
        halves.setPixel(0, 1, qRgb(0, 0, 0));
        halves.setPixel(1, 1, qRgb(0, 0, 0));
        params.factorX = params.factorY = 2.0f;
        const auto d = ApplyImageEffect(EffectStretch, halves, params);
        QCOMPARE(d->size(), QSize(8, 4));
        QCOMPARE(qGray(d->pixel(0, 0)), 0);
        QCOMPARE(qGray(d->pixel(7, 3)), 255);
        QVERIFY(!ApplyImageEffect(7, halves));
    }

    void rotatePictureFollowsItsPolarArithmetic_data()
    {
        QTest::addColumn<float>("angle");
        QTest::addColumn<bool>("clockwise");
        QTest::newRow("17 anticlockwise") << 17.0f << false;
        QTest::newRow("45 clockwise") << 45.0f << true;
        QTest::newRow("100 anticlockwise") << 100.0f << false;
    }
    void rotatePictureFollowsItsPolarArithmetic()
    {
        QFETCH(float, angle);
        QFETCH(bool, clockwise);
        const QImage source = randomPicture(21, 13, 3);
        QImage got(25, 25, QImage::Format_RGB32);
        got.fill(qRgb(1, 2, 3));
        QImage want = got.copy();
        QVERIFY(RotatePicture(source, got, angle, clockwise));

        float a = clockwise ? 360.0f - angle : angle;
        const float radians = float(double(a) * float(3.14159265358979) / 180.0);
        const int radius = int(std::ceil(std::sqrt(21.0 * 21 + 13.0 * 13) / 2));
        const auto copy = [&](int sx, int sy, int dx, int dy) {
            if (sx >= 0 && sy >= 0 && sx < 21 && sy < 13 && dx >= 0 && dy >= 0 && dx < 25 &&
                dy < 25)
                want.setPixel(dx, dy, source.pixel(sx, sy));
        };
        // One polar angle and distance per offset (i, j) serve its four mirror pixels.
        for (int i = 0; i <= radius; ++i)
            for (int j = 0; j <= radius; ++j) {
                const double polar = i == 0 ? 3.14159265358979 / 2 : std::atan(double(j) / i);
                const double distance = roundEven(std::sqrt(double(i) * i + double(j) * j));
                const int ax = int(roundEven(distance * std::cos(polar + radians)));
                const int ay = int(roundEven(distance * std::sin(polar + radians)));
                const int bx = int(roundEven(distance * std::cos(polar - radians)));
                const int by = int(roundEven(distance * std::sin(polar - radians)));
                copy(10 + ax, 6 + ay, 12 + i, 12 + j);
                copy(10 - ax, 6 - ay, 12 - i, 12 - j);
                copy(10 - bx, 6 + by, 12 - i, 12 + j);
                copy(10 + bx, 6 - by, 12 + i, 12 - j);
            }
        int differ = 0;
        for (int y = 0; y < 25; ++y)
            for (int x = 0; x < 25; ++x)
                differ += got.pixel(x, y) != want.pixel(x, y);
        QCOMPARE(differ, 0);
    }

    void rotateEffectGivesTheDiagonalSquareAnd180IsExact()
    {
        const QImage p = randomPicture(30, 40, 4);
        EffectParameters params;
        params.angle = 45.0f;
        const auto r = ApplyImageEffect(EffectRotate, p, params);
        QVERIFY(r);
        QCOMPARE(r->size(), QSize(50, 50));
        // The centre stays.
        QCOMPARE(r->pixel(25, 25), p.pixel(15, 20));
        params.angle = 180.0f;
        const auto half = ApplyImageEffect(EffectRotate, p, params);
        QCOMPARE(half->size(), p.size());
        QCOMPARE(half->pixel(0, 0), p.pixel(29, 39));
        QCOMPARE(half->pixel(29, 0), p.pixel(0, 39));
    }

    void rotateDibByRightAnglesLosesNothing()
    {
        const QImage p = randomPicture(7, 4, 5);
        cDIBSection source;
        QVERIFY(source.CreateFromImage(p, 0, 0, -1, -1));
        cDIBProcess process;
        cDIBSection turned;
        // -90: a quarter turn clockwise on screen.
        QVERIFY(process.RotateDIB(source, turned, -90));
        QCOMPARE(turned.hDIB().size(), QSize(4, 7));
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 4; ++x)
                QCOMPARE(turned.hDIB().pixel(x, y), p.pixel(y, 3 - x));
        QVERIFY(process.RotateDIB(source, turned, 90));
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 4; ++x)
                QCOMPARE(turned.hDIB().pixel(x, y), p.pixel(6 - y, x));
        QVERIFY(process.RotateDIB(source, turned, 180));
        QCOMPARE(turned.hDIB().size(), QSize(7, 4));
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 7; ++x)
                QCOMPARE(turned.hDIB().pixel(x, y), p.pixel(6 - x, 3 - y));
    }

    void rotateDibByOtherAnglesGrowsAndFillsTheCorners()
    {
        QImage p(100, 50, QImage::Format_RGB32);
        p.fill(qRgb(0, 0, 255));
        cDIBSection source;
        QVERIFY(source.CreateFromImage(p, 0, 0, -1, -1));
        cDIBProcess process;
        cDIBSection turned;
        QVERIFY(process.RotateDIB(source, turned, 30, 0x00FF00)); // green background
        const double c = std::cos(M_PI / 6), s = std::sin(M_PI / 6);
        QCOMPARE(turned.Width(), int(std::lrint(100 * c + 50 * s)));
        QCOMPARE(turned.Height(), int(std::lrint(100 * s + 50 * c)));
        QCOMPARE(turned.hDIB().pixel(0, 0), qRgb(0, 255, 0));
        QCOMPARE(turned.hDIB().pixel(turned.Width() / 2, turned.Height() / 2), qRgb(0, 0, 255));
        // 30 degrees anticlockwise: the top right corner rises to the top, at about x = 87 of
        // 112; turned the other way the top left one would be there, at about x = 25.
        QCOMPARE(turned.Width(), 112);
        QCOMPARE(turned.hDIB().pixel(86, 4), qRgb(0, 0, 255));
        QCOMPARE(turned.hDIB().pixel(25, 4), qRgb(0, 255, 0));
    }

    void processHelpers()
    {
        QCOMPARE(cDIBProcess::RedOf(0x123456), 0x56);
        QCOMPARE(cDIBProcess::GreenOf(0x123456), 0x34);
        QCOMPARE(cDIBProcess::BlueOf(0x123456), 0x12);
        QCOMPARE(cDIBProcess::TranslateColor(0x00ABCDEF), 0x00ABCDEF);
        const int window = cDIBProcess::TranslateColor(int(0x80000005u));
        const QColor base = QGuiApplication::palette().color(QPalette::Base);
        QCOMPARE(window, base.red() + 256 * base.green() + 65536 * base.blue());
        const double values[] = {3, -2, 7.5, 0};
        QCOMPARE(cDIBProcess::MaxOf(values), 7.5);
        QCOMPARE(cDIBProcess::MinOf(values), -2.0);
        cDIBSection s;
        QVERIFY(s.Create(3, 2));
        const auto view = cDIBProcess::ViewOf(s);
        view.at(2, 1) = qRgb(9, 8, 7);
        QCOMPARE(s.hDIB().pixel(2, 1), qRgb(9, 8, 7)); // the view is the surface's own pixels
    }

    void longEffectsCanBeCancelled()
    {
        const QImage p = randomPicture(200, 200, 6);
        EffectParameters params;
        params.progress = [](int, int) { return false; };
        QVERIFY(!ApplyImageEffect(EffectInvert, p, params));
        QVERIFY(!ApplyImageEffect(EffectFlipHorizontal, p, params));
        params.angle = 30;
        QVERIFY(!ApplyImageEffect(EffectRotate, p, params));
        cDIBSection source, target;
        source.CreateFromImage(p, 0, 0, -1, -1);
        QVERIFY(!cDIBProcess().RotateDIB(source, target, 30, 0, params.progress));
    }
};

TARNWICK_TEST_MAIN(TestMdlEffect)
#include "test_mdleffect.moc"
