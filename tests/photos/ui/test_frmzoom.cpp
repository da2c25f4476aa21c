#include "PickerFixtures.h"
#include "TestMain.h"
#include "TestWidgets.h"
#include "frmZoom.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QTemporaryDir>

class TestFrmZoom : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString m_wide;
    QString m_turned;

    static QLabel *image1(frmZoom &zoom) { return TestWidgets::child<QLabel>(zoom, "Image1"); }

private slots:
    void initTestCase()
    {
        m_wide = m_dir.filePath(QStringLiteral("wide.jpg"));
        m_turned = m_dir.filePath(QStringLiteral("turned.jpg"));
        QVERIFY(WriteTestJpeg(m_wide, 300, 200));
        QVERIFY(WriteTestJpeg(m_turned, 300, 200, 6));
    }

    void opensAtThreeQuartersOfTheScreen_data()
    {
        QTest::addColumn<double>("ratio");
        QTest::newRow("square") << 1.0;
        QTest::newRow("portrait") << 0.5;
        QTest::newRow("wider than the screen") << 3.0;
    }
    void opensAtThreeQuartersOfTheScreen()
    {
        QFETCH(double, ratio);
        frmZoom zoom(m_wide, ratio);
        const QScreen *screen = QGuiApplication::primaryScreen();
        QCOMPARE(zoom.windowTitle(), QStringLiteral("Zoom - Move edges to zoom"));
        QCOMPARE(zoom.height(), qRound(0.75 * screen->geometry().height()));
        QCOMPARE(zoom.width(),
                 std::min(qRound(zoom.height() * ratio), screen->availableGeometry().width()));
        QCOMPARE(image1(zoom)->pixmap().size(), QSize(300, 200));
        // The picture fills the window in its own ratio, centred.
        const QRect picture = image1(zoom)->geometry();
        QVERIFY(qAbs(picture.width() - picture.height() * ratio) <= 1);
        QVERIFY(picture.width() == zoom.width() || picture.height() == zoom.height());
        QVERIFY(qAbs(picture.center().x() - zoom.rect().center().x()) <= 1);
        QVERIFY(qAbs(picture.center().y() - zoom.rect().center().y()) <= 1);
    }

    void ratioFromThePictureWhenNotGiven()
    {
        frmZoom zoom(m_turned, 0);
        // Turned upright by its EXIF orientation: 200 wide, 300 high.
        QCOMPARE(image1(zoom)->pixmap().size(), QSize(200, 300));
        QCOMPARE(zoom.ZoomPictureRatio(), 200.0 / 300.0);
    }

    void keepsTheRatio_data()
    {
        QTest::addColumn<QSize>("formSize");
        QTest::addColumn<QRect>("expected");
        // Ratio 1.5. Width changed: the width leads unless the height can't follow.
        QTest::newRow("wider form") << QSize(600, 300) << QRect(75, 0, 450, 300);
        QTest::newRow("taller form") << QSize(300, 400) << QRect(0, 100, 300, 200);
        QTest::newRow("exact") << QSize(450, 300) << QRect(0, 0, 450, 300);
    }
    void keepsTheRatio()
    {
        QFETCH(QSize, formSize);
        QFETCH(QRect, expected);
        frmZoom zoom(m_wide, 1.5);
        zoom.show();
        QVERIFY(QTest::qWaitForWindowExposed(&zoom));
        zoom.resize(formSize);
        QTRY_COMPARE(zoom.size(), formSize);
        QCOMPARE(image1(zoom)->geometry(), expected);
    }

    void heightLeadsWhenOnlyTheHeightChanged()
    {
        frmZoom zoom(m_wide, 1.5);
        zoom.show();
        QVERIFY(QTest::qWaitForWindowExposed(&zoom));
        zoom.resize(450, 300);
        QTRY_COMPARE(image1(zoom)->geometry(), QRect(0, 0, 450, 300));
        // Same width, lower: the height leads, the picture narrows and is centred.
        zoom.resize(450, 200);
        QTRY_COMPARE(zoom.size(), QSize(450, 200));
        QCOMPARE(image1(zoom)->geometry(), QRect(75, 0, 300, 200));
    }

    void doubleClickOpensInPaint()
    {
        QString opened;
        frmZoom::setPaintOpener([&](const QString &path) { opened = path; });
        frmZoom zoom(m_wide, 1.5);
        QVERIFY(!image1(zoom)->toolTip().isEmpty());
        zoom.show();
        QTest::mouseDClick(image1(zoom), Qt::LeftButton);
        QCOMPARE(opened, m_wide);
        frmZoom::setPaintOpener({});
    }

    void noPaintWindowNoPromise()
    {
        frmZoom zoom(m_wide, 1.5);
        QVERIFY(image1(zoom)->toolTip().isEmpty());
        zoom.show();
        QTest::mouseDClick(image1(zoom), Qt::LeftButton);
        QVERIFY(zoom.isVisible());
    }

    void missingPictureLeavesItEmpty()
    {
        frmZoom zoom(m_dir.filePath(QStringLiteral("gone.jpg")), 0);
        QVERIFY(image1(zoom)->pixmap().isNull());
        zoom.show();
        zoom.resize(300, 300);
        QTest::mouseDClick(&zoom, Qt::LeftButton);
    }

    void showPictureDeletesOnClose()
    {
        QPointer<frmZoom> zoom = frmZoom::ShowPicture(m_wide, 1.5);
        QVERIFY(zoom->isVisible());
        zoom->close();
        QTRY_VERIFY(zoom.isNull());
    }
};

TARNWICK_TEST_MAIN(TestFrmZoom)
#include "test_frmzoom.moc"
