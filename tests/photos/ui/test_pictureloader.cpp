#include "PickerFixtures.h"
#include "PictureLoader.h"
#include "TestMain.h"

#include <QTemporaryDir>

class TestPictureLoader : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;

    static bool redAbove(const QImage &image)
    {
        const QColor top = image.pixelColor(image.width() / 2, image.height() / 8);
        const QColor bottom = image.pixelColor(image.width() / 2, image.height() * 7 / 8);
        return top.red() > 200 && top.blue() < 80 && bottom.blue() > 200 && bottom.red() < 80;
    }
    static bool redLeft(const QImage &image)
    {
        const QColor left = image.pixelColor(image.width() / 8, image.height() / 2);
        const QColor right = image.pixelColor(image.width() * 7 / 8, image.height() / 2);
        return left.red() > 200 && left.blue() < 80 && right.blue() > 200 && right.red() < 80;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(WriteTestJpeg(m_dir.filePath(QStringLiteral("plain.jpg")), 800, 400));
        QVERIFY(WriteTestJpeg(m_dir.filePath(QStringLiteral("turned.jpg")), 800, 400, 6));
        QVERIFY(WriteTestJpeg(m_dir.filePath(QStringLiteral("upside.jpg")), 800, 400, 3));
        QVERIFY(WriteTextFile(m_dir.filePath(QStringLiteral("text.jpg")), "no picture"));
    }

    void sizes_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QSize>("size");
        QTest::newRow("plain") << "plain.jpg" << QSize(800, 400);
        QTest::newRow("turned a quarter") << "turned.jpg" << QSize(400, 800);
        QTest::newRow("upside down") << "upside.jpg" << QSize(800, 400);
        QTest::newRow("no picture") << "text.jpg" << QSize();
        QTest::newRow("missing") << "gone.jpg" << QSize();
    }
    void sizes()
    {
        QFETCH(QString, name);
        QFETCH(QSize, size);
        QCOMPARE(ReadPictureSize(m_dir.filePath(name)), size);
        const QImage picture = ReadPicture(m_dir.filePath(name));
        QCOMPARE(picture.isNull(), !size.isValid());
        if (size.isValid())
            QCOMPARE(picture.size(), size);
    }

    void wholePictureUpright()
    {
        QVERIFY(redLeft(ReadPicture(m_dir.filePath(QStringLiteral("plain.jpg")))));
        QVERIFY(redAbove(ReadPicture(m_dir.filePath(QStringLiteral("turned.jpg")))));
        const QImage upside = ReadPicture(m_dir.filePath(QStringLiteral("upside.jpg")));
        QVERIFY(redLeft(upside.mirrored(true, false)));
    }

    void scaled_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QSize>("wanted");
        QTest::addColumn<QSize>("expected");
        QTest::newRow("plain smaller") << "plain.jpg" << QSize(200, 100) << QSize(200, 100);
        QTest::newRow("turned smaller") << "turned.jpg" << QSize(100, 200) << QSize(100, 200);
        QTest::newRow("larger than the picture")
            << "plain.jpg" << QSize(1600, 800) << QSize(800, 400);
        QTest::newRow("no picture") << "text.jpg" << QSize(10, 10) << QSize();
    }
    void scaled()
    {
        QFETCH(QString, name);
        QFETCH(QSize, wanted);
        QFETCH(QSize, expected);
        const QImage image = ReadPictureScaled(m_dir.filePath(name), wanted);
        QCOMPARE(image.isNull(), !expected.isValid());
        if (expected.isValid())
            QCOMPARE(image.size(), expected);
        if (name == QStringLiteral("turned.jpg"))
            QVERIFY(redAbove(image));
        if (name == QStringLiteral("plain.jpg"))
            QVERIFY(redLeft(image));
    }
};

TARNWICK_TEST_MAIN(TestPictureLoader)
#include "test_pictureloader.moc"
