#include "ImageRotation.h"
#include "ScriptedUi.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

// Rotate Left && Copy and Rotate Right && Copy: quarter turns of real picture files.
class TestImageRotation : public QObject
{
    Q_OBJECT

private:
    // A picture whose corners can be told apart: red top left, green top right, blue bottom
    // left, white bottom right.
    static QImage corners(int width, int height)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.fillRect(0, 0, 20, 20, Qt::red);
        painter.fillRect(width - 20, 0, 20, 20, Qt::green);
        painter.fillRect(0, height - 20, 20, 20, Qt::blue);
        painter.fillRect(width - 20, height - 20, 20, 20, Qt::white);
        return image;
    }
    static bool near(QRgb a, QColor b)
    {
        return qAbs(qRed(a) - b.red()) < 40 && qAbs(qGreen(a) - b.green()) < 40 &&
               qAbs(qBlue(a) - b.blue()) < 40;
    }

private slots:
    void aQuarterTurnSwapsTheSides_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<bool>("parallelogram");
        QTest::newRow("jpg") << ".jpg" << true;
        QTest::newRow("bmp") << ".bmp" << true;
        QTest::newRow("gif") << ".gif" << true;
        QTest::newRow("jpg, bitmap route") << ".jpg" << false;
        QTest::newRow("bmp, bitmap route") << ".bmp" << false;
        QTest::newRow("gif, bitmap route") << ".gif" << false;
    }
    void aQuarterTurnSwapsTheSides()
    {
        QFETCH(QString, extension);
        QFETCH(bool, parallelogram);
        QTemporaryDir folder;
        const QString source = folder.filePath(QStringLiteral("Tree") + extension);
        const QString target = folder.filePath(QStringLiteral("Tree_Left") + extension);
        const QString back = folder.filePath(QStringLiteral("Tree_Back") + extension);
        const QByteArray format =
            extension.mid(1).toLatin1() == "jpg" ? "JPEG" : extension.mid(1).toUpper().toLatin1();
        if (format == "GIF") {
            // Qt reads GIF but can't write it: the program's own writer makes the fixture.
            ScriptedUi ui;
            QVERIFY(corners(640, 480).save(folder.filePath(QStringLiteral("c.bmp"))));
            QVERIFY(RotateRight(folder.filePath(QStringLiteral("c.bmp")),
                                folder.filePath(QStringLiteral("r.gif")), ui)
                        .ok);
            QVERIFY(RotateLeft(folder.filePath(QStringLiteral("r.gif")), source, ui).ok);
        } else {
            QVERIFY(corners(640, 480).save(source, format.constData(), 95));
        }

        ScriptedUi ui;
        const RotationResult left = RotateLeft(source, target, ui, {parallelogram});
        QVERIFY2(left.ok, qPrintable(left.error));
        const QImage turned(target);
        QCOMPARE(turned.size(), QSize(480, 640));
        // Turned to the left the top right corner comes to the top left.
        QVERIFY(near(turned.pixel(5, 5), Qt::green));
        QVERIFY(near(turned.pixel(5, 634), Qt::red));
        QVERIFY(near(turned.pixel(474, 5), Qt::white));
        // The time is told for a turn to the left on the parallelogram route only.
        QCOMPARE(ui.messages.size(), parallelogram ? 1 : 0);
        if (parallelogram)
            QVERIFY(ui.messages.at(0).text.startsWith(QStringLiteral("Time = ")));
        // The bitmap route leaves no temporary bitmap behind.
        QVERIFY(!QFileInfo::exists(RotateTempPath(source)));
        QVERIFY(!QFileInfo::exists(RotateTempPath(target)));

        ScriptedUi quiet;
        QVERIFY(RotateRight(target, back, quiet, {parallelogram}).ok);
        QVERIFY(quiet.messages.isEmpty());
        const QImage again(back);
        QCOMPARE(again.size(), QSize(640, 480));
        QVERIFY(near(again.pixel(5, 5), Qt::red));
        QVERIFY(near(again.pixel(634, 474), Qt::white));
    }

    // The turned picture is converted through "<target>_tmp.jpg" or "<target>_tmp.gif": a
    // folder standing under that name stops the conversion with its message, and a stale file
    // of that name is gone after a turn.
    void theTurnIsConvertedThroughTheTmpNames_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<bool>("parallelogram");
        QTest::newRow("jpg") << ".jpg" << true;
        QTest::newRow("jpg, bitmap route") << ".jpg" << false;
        QTest::newRow("gif") << ".gif" << true;
    }
    void theTurnIsConvertedThroughTheTmpNames()
    {
        QFETCH(QString, extension);
        QFETCH(bool, parallelogram);
        QTemporaryDir folder;
        const QString source = folder.filePath(QStringLiteral("Tree.bmp"));
        QVERIFY(corners(64, 48).save(source));
        const QString target = folder.filePath(QStringLiteral("Tree_Left") + extension);
        const QString temp = folder.filePath(QStringLiteral("Tree_Left_tmp") + extension);

        QFile stale(temp);
        QVERIFY(stale.open(QIODevice::WriteOnly) && stale.write("stale") == 5);
        stale.close();
        ScriptedUi ui;
        QVERIFY(RotateLeft(source, target, ui, {parallelogram}).ok);
        QVERIFY(!QFileInfo::exists(temp));
        QCOMPARE(QImage(target).size(), QSize(48, 64));

        QVERIFY(QFile::remove(target));
        QVERIFY(QDir().mkpath(temp));
        ScriptedUi blocked;
        const RotationResult result = RotateLeft(source, target, blocked, {parallelogram});
        QVERIFY(!result.ok);
        if (extension == QStringLiteral(".jpg")) {
            QVERIFY(result.error.startsWith(QStringLiteral("Error in file conversion. Retry.( "
                                                           "Error ")));
            QVERIFY(!QFileInfo::exists(target));
        } else {
            // No GIF: the bitmap stays under the ".gif" name.
            QVERIFY(QFileInfo::exists(target));
        }
    }

    void theTurnMovesEveryPixelUnchanged()
    {
        QImage image(7, 3, QImage::Format_RGB32);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 7; ++x)
                image.setPixel(x, y, qRgb(x * 30, y * 80, 7));
        const QImage left = RotateImageLeft(image);
        QCOMPARE(left.size(), QSize(3, 7));
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 7; ++x)
                QCOMPARE(left.pixel(y, 6 - x), image.pixel(x, y));
        QCOMPARE(RotateImageRight(left), image);
        QCOMPARE(RotateImageLeft(RotateImageLeft(RotateImageLeft(left))), image);
    }

    void otherFormatsAreRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("parallelogram");
        QTest::newRow("png") << "a.png" << true;
        QTest::newRow("png, bitmap route") << "a.png" << false;
        QTest::newRow("jpeg spelled long") << "a.jpeg" << true;
        QTest::newRow("dib, bitmap route") << "a.dib" << false;
    }
    void otherFormatsAreRefused()
    {
        QFETCH(QString, name);
        QFETCH(bool, parallelogram);
        QTemporaryDir folder;
        QVERIFY(corners(64, 48).save(folder.filePath(name), "PNG"));
        ScriptedUi ui;
        const RotationResult result = RotateLeft(
            folder.filePath(name), folder.filePath(QStringLiteral("out.jpg")), ui, {parallelogram});
        QVERIFY(!result.ok);
        QVERIFY(result.unsupportedFormat);
        QCOMPARE(ui.messages.size(), 1);
        QCOMPARE(ui.messages.at(0).text,
                 QStringLiteral("This is not a photo file format handled by this program for "
                                "rotation."));
        QVERIFY(!QFileInfo::exists(folder.filePath(QStringLiteral("out.jpg"))));
    }

    void anUnreadablePictureIsTold()
    {
        QTemporaryDir folder;
        QFile broken(folder.filePath(QStringLiteral("broken.jpg")));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("this is no picture");
        broken.close();
        for (const bool parallelogram : {true, false}) {
            ScriptedUi ui;
            const RotationResult result =
                RotateRight(broken.fileName(), folder.filePath(QStringLiteral("broken_Right.jpg")),
                            ui, {parallelogram});
            QVERIFY(!result.ok);
            QCOMPARE(ui.messages.size(), 1);
            QCOMPARE(ui.messages.at(0).text, QStringLiteral("Error, Unable To Load Bitmap"));
            QCOMPARE(ui.messages.at(0).title, QStringLiteral("Bitmap Load Error"));
            QVERIFY(!QFileInfo::exists(folder.filePath(QStringLiteral("broken_tmp.bmp"))));
        }
    }

    void theTemporaryBitmapName_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("temp");
        QTest::newRow("jpg") << "/p/Tree.jpg"
                             << "/p/Tree_tmp.bmp";
        QTest::newRow("upper case") << "/p/Tree.JPG"
                                    << "/p/Tree_tmp.bmp";
        QTest::newRow("gif") << "/p/a.b.gif"
                             << "/p/a.b_tmp.bmp";
        QTest::newRow("bmp") << "/p/x.bmp"
                             << "/p/x_tmp.bmp";
        QTest::newRow("png") << "/p/x.png"
                             << "";
    }
    void theTemporaryBitmapName()
    {
        QFETCH(QString, source);
        QFETCH(QString, temp);
        QCOMPARE(RotateTempPath(source), temp);
    }
};

TARNWICK_TEST_MAIN(TestImageRotation)
#include "test_imagerotation.moc"
