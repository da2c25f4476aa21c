#include "GifFile.h"
#include "TestMain.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>

namespace {

QImage readBack(const QString &path, QByteArray *format = nullptr)
{
    QImageReader reader(path);
    if (format)
        *format = reader.format();
    return reader.read().convertToFormat(QImage::Format_ARGB32);
}

QImage gradient(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y,
                           qRgb(x * 255 / (width - 1), y * 255 / (height - 1), (x + y) % 256));
    return image;
}

} // namespace

class TestGifFile : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void fewColoursAreKeptExactly_data()
    {
        QTest::addColumn<int>("colours");
        QTest::newRow("one colour") << 1;
        QTest::newRow("two colours") << 2;
        QTest::newRow("fifteen colours") << 15;
        QTest::newRow("exactly 256 colours") << 256;
    }
    void fewColoursAreKeptExactly()
    {
        QFETCH(int, colours);
        QImage image(37, 23, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const int i = (x + y * image.width()) % colours;
                image.setPixel(x, y, qRgb(i, 255 - i, (i * 7) % 256));
            }
        QString error;
        QVERIFY2(WriteGifFile(image, path("few.gif"), &error), qPrintable(error));
        QByteArray format;
        const QImage back = readBack(path("few.gif"), &format);
        QCOMPARE(format, QByteArray("gif"));
        QCOMPARE(back.size(), image.size());
        QCOMPARE(back, image.convertToFormat(QImage::Format_ARGB32));
    }

    void photoIsReducedButClose()
    {
        const QImage image = gradient(120, 90);
        QString error;
        QVERIFY2(WriteGifFile(image, path("photo.gif"), &error), qPrintable(error));
        const QImage back = readBack(path("photo.gif"));
        QCOMPARE(back.size(), image.size());
        // Error diffusion keeps the average colour of a region close to the original.
        qint64 diff = 0;
        for (int by = 0; by < 90; by += 10)
            for (int bx = 0; bx < 120; bx += 10) {
                qint64 a[3] = {}, b[3] = {};
                for (int y = by; y < by + 10; ++y)
                    for (int x = bx; x < bx + 10; ++x) {
                        const QRgb p = image.pixel(x, y), q = back.pixel(x, y);
                        a[0] += qRed(p), a[1] += qGreen(p), a[2] += qBlue(p);
                        b[0] += qRed(q), b[1] += qGreen(q), b[2] += qBlue(q);
                    }
                for (int c = 0; c < 3; ++c)
                    diff = std::max(diff, std::abs(a[c] - b[c]) / 100);
            }
        QVERIFY2(diff <= 24, qPrintable(QString::number(diff)));
    }

    void transparentPixelsStayTransparent_data()
    {
        QTest::addColumn<bool>("rich");
        QTest::newRow("few colours") << false;
        QTest::newRow("many colours") << true;
    }
    void transparentPixelsStayTransparent()
    {
        QFETCH(bool, rich);
        QImage image = rich ? gradient(64, 64).convertToFormat(QImage::Format_ARGB32)
                            : QImage(64, 64, QImage::Format_ARGB32);
        if (!rich)
            image.fill(qRgb(200, 10, 10));
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 32; ++x)
                image.setPixel(x, y, qRgba(0, 0, 0, 0));
        QString error;
        QVERIFY2(WriteGifFile(image, path("clear.gif"), &error), qPrintable(error));
        const QImage back = readBack(path("clear.gif"));
        QVERIFY(back.hasAlphaChannel());
        for (int y = 0; y < 64; y += 7) {
            QCOMPARE(qAlpha(back.pixel(5, y)), 0);
            QCOMPARE(qAlpha(back.pixel(50, y)), 255);
        }
        if (!rich)
            QCOMPARE(back.pixel(40, 40), qRgb(200, 10, 10));
    }

    void opaqueImageHasNoTransparentColour()
    {
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(Qt::black);
        QVERIFY(WriteGifFile(image, path("black.gif")));
        const QImage back = readBack(path("black.gif"));
        QCOMPARE(qAlpha(back.pixel(3, 3)), 255);
    }

    void indexedAndMonoImagesAreWritten_data()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("mono") << int(QImage::Format_Mono);
        QTest::newRow("indexed8") << int(QImage::Format_Indexed8);
        QTest::newRow("grayscale8") << int(QImage::Format_Grayscale8);
        QTest::newRow("rgb888") << int(QImage::Format_RGB888);
    }
    void indexedAndMonoImagesAreWritten()
    {
        QFETCH(int, format);
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.fillRect(5, 5, 20, 10, Qt::black);
        painter.end();
        const QImage converted = image.convertToFormat(QImage::Format(format));
        QVERIFY(WriteGifFile(converted, path("conv.gif")));
        const QImage back = readBack(path("conv.gif"));
        QCOMPARE(back.pixel(10, 10), qRgb(0, 0, 0));
        QCOMPARE(back.pixel(35, 25), qRgb(255, 255, 255));
    }

    void nullImageFailsWithMessage()
    {
        QString error;
        QVERIFY(!WriteGifFile(QImage(), path("none.gif"), &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!QFile::exists(path("none.gif")));
    }

    void unwritablePlaceFailsAndKeepsNothing()
    {
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(Qt::red);
        QString error;
        QVERIFY(!WriteGifFile(image, path("no-such-folder/x.gif"), &error));
        QVERIFY(error.contains(QStringLiteral("no-such-folder")));
    }

    void existingFileIsReplacedWhole()
    {
        QFile old(path("replace.gif"));
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(100000, 'x'));
        old.close();
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(Qt::blue);
        QVERIFY(WriteGifFile(image, path("replace.gif")));
        QVERIFY(QFileInfo(path("replace.gif")).size() < 1000);
        QCOMPARE(readBack(path("replace.gif")).pixel(1, 1), qRgb(0, 0, 255));
    }
};

TARNWICK_TEST_MAIN(TestGifFile)
#include "test_giffile.moc"
