#include "PictureFixtures.h"
#include "PictureSizing.h"
#include "TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImageReader>
#include <QTemporaryDir>

using namespace Fixtures;

namespace {

QSize sizeOf(const QString &path)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    return reader.read().size();
}

} // namespace

class TestPictureSizing : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void limitsOfThePercentBoxes_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept");
        QTest::newRow("1") << "1"
                           << "2";
        QTest::newRow("121") << "121"
                             << "120";
        QTest::newRow("120") << "120"
                             << "120";
        QTest::newRow("2") << "2"
                           << "2";
        QTest::newRow("15") << "15"
                            << "15";
        QTest::newRow("empty") << ""
                               << "2";
        QTest::newRow("letters") << "abc"
                                 << "2";
        QTest::newRow("1.5") << "1.5"
                             << "2";
        QTest::newRow("120.5") << "120.5"
                               << "120";
        QTest::newRow("negative") << "-5"
                                  << "2";
    }
    void limitsOfThePercentBoxes()
    {
        QFETCH(QString, typed);
        QFETCH(QString, kept);
        QCOMPARE(LimitResizeText(typed), kept);
    }

    void settingKeysAndDefaults()
    {
        QCOMPARE(ResizeSettingKey(0), QString("sml_resize"));
        QCOMPARE(ResizeSettingKey(1), QString("lrg_resize"));
        QCOMPARE(ResizeSettingKey(2), QString("Blog_resize"));
        QCOMPARE(ResizeDefault(0), QString("15"));
        QCOMPARE(ResizeDefault(1), QString("30"));
    }

    void cameraTable_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("small");
        QTest::addColumn<QString>("large");
        QTest::addColumn<QString>("blog");
        QTest::newRow("9") << 9 << "2"
                           << "7"
                           << "b";
        QTest::newRow("8") << 8 << "15"
                           << "25"
                           << "b";
        QTest::newRow("7") << 7 << "20"
                           << "40"
                           << "b";
        QTest::newRow("6") << 6 << "30"
                           << "75"
                           << "b";
        QTest::newRow("5") << 5 << "40"
                           << "100"
                           << "b";
        QTest::newRow("0") << 0 << "s"
                           << "l"
                           << "7";
        QTest::newRow("1") << 1 << "s"
                           << "l"
                           << "15";
        QTest::newRow("2") << 2 << "s"
                           << "l"
                           << "25";
        QTest::newRow("3") << 3 << "s"
                           << "l"
                           << "50";
        QTest::newRow("4") << 4 << "s"
                           << "l"
                           << "100";
    }
    void cameraTable()
    {
        QFETCH(int, button);
        QFETCH(QString, small);
        QFETCH(QString, large);
        QFETCH(QString, blog);
        std::array<QString, 3> boxes = {"s", "l", "b"};
        QVERIFY(ApplyCameraPreset(button, boxes));
        QCOMPARE(boxes[0], small);
        QCOMPARE(boxes[1], large);
        QCOMPARE(boxes[2], blog);
    }

    void cameraCaptions()
    {
        QCOMPARE(CameraTable().size(), size_t(10));
        QCOMPARE(CameraTable()[0].caption, QString("  2%                7%"));
        QCOMPARE(CameraTable()[0].rowLabel, QString("8 mega-pixel"));
        QCOMPARE(CameraTable()[4].caption, QString("40%            100%"));
        QCOMPARE(CameraTable()[4].rowLabel, QString(".5 mega-pixel"));
        std::array<QString, 3> boxes;
        QVERIFY(!ApplyCameraPreset(13, boxes));
        QVERIFY(!ApplyCameraPreset(-1, boxes));
        // Today's cameras: buttons 10 to 12 beside the table's own.
        QCOMPARE(TodaysCameraRows()[0].rowLabel, QString("12 mega-pixel"));
        QVERIFY(ApplyCameraPreset(12, boxes));
        QCOMPARE(boxes[0], QString("5"));
        QCOMPARE(boxes[1], QString("10"));
    }

    void scaledSizeKeepsTheSidesRatio_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<double>("percent");
        QTest::addColumn<QSize>("scaled");
        QTest::newRow("15%") << QSize(400, 300) << 15.0 << QSize(60, 45);
        QTest::newRow("30%") << QSize(400, 300) << 30.0 << QSize(120, 90);
        QTest::newRow("100%") << QSize(400, 300) << 100.0 << QSize(400, 300);
        QTest::newRow("120%") << QSize(400, 300) << 120.0 << QSize(480, 360);
        QTest::newRow("1x1") << QSize(1, 1) << 2.0 << QSize(1, 1);
        QTest::newRow("18 MP") << QSize(4896, 3672) << 15.0 << QSize(734, 551);
    }
    void scaledSizeKeepsTheSidesRatio()
    {
        QFETCH(QSize, size);
        QFETCH(double, percent);
        QFETCH(QSize, scaled);
        QCOMPARE(ScaledSize(size, percent), scaled);
    }

    void applyEffect()
    {
        const QImage image = halves(200, 100);
        const QImage scaled = ApplyEffect(image, 25);
        QCOMPARE(scaled.size(), QSize(50, 25));
        QCOMPARE(QColor(scaled.pixel(2, 10)), QColor(Qt::red));
        QCOMPARE(QColor(scaled.pixel(47, 10)), QColor(Qt::blue));
        QVERIFY(ApplyEffect(image, 0).isNull());
        QVERIFY(ApplyEffect(QImage(), 50).isNull());
    }

    void exifOrientationIsApplied_data()
    {
        QTest::addColumn<int>("orientation");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("redOnTop");
        QTest::newRow("1 as stored") << 1 << QSize(80, 40) << false;
        QTest::newRow("6 quarter turn right") << 6 << QSize(40, 80) << true;
        QTest::newRow("8 quarter turn left") << 8 << QSize(40, 80) << false;
    }
    void exifOrientationIsApplied()
    {
        QFETCH(int, orientation);
        QFETCH(QSize, size);
        QFETCH(bool, redOnTop);
        const QString file = path(QString("turned%1.jpg").arg(orientation));
        QVERIFY(writeFile(file, withOrientation(jpegBytes(halves(80, 40), 95), orientation)));
        QCOMPARE(PictureSize(file), size);
        const PictureResult picture = LoadPicture(file);
        QVERIFY2(picture.ok(), qPrintable(picture.error));
        QCOMPARE(picture.image.size(), size);
        if (orientation != 1) {
            const QColor top(picture.image.pixel(20, 5));
            QCOMPARE(top.red() > 200, redOnTop);
            QCOMPARE(top.blue() > 200, !redOnTop);
        }
        // The scaled read keeps the orientation too.
        const QString small = path(QString("turned%1_small.jpg").arg(orientation));
        const QString large = path(QString("turned%1_large.jpg").arg(orientation));
        const SizeResult result = SizePhoto(file, large, 50, small, 25);
        QVERIFY(result.loadError.isEmpty());
        QCOMPARE(sizeOf(large), size / 2);
        QCOMPARE(sizeOf(small), size / 4);
    }

    void scaledReadDecodesSmall()
    {
        const QString file = path("wide.jpg");
        QVERIFY(writeJpeg(file, halves(1600, 1200)));
        const PictureResult picture = LoadPicture(file, QSize(200, 150));
        QVERIFY(picture.ok());
        QVERIFY(picture.image.width() >= 200 && picture.image.width() <= 1600 / 4 + 1);
        QCOMPARE(QColor(picture.image.pixel(5, 5)).red() > 200, true);
    }

    // A copy wants twice its size from the decoder, which reduces by halves only: a 30% copy of
    // a 1600 x 1200 JPEG is decoded whole, not at 5/8 or 6/8, whose transforms leave aliasing
    // behind; a 25% copy at half size.
    void jpegIsDecodedByHalvesWithRoomToFilter()
    {
        const QString file = path("eighths.jpg");
        QVERIFY(writeJpeg(file, halves(1600, 1200)));
        QCOMPARE(LoadPicture(file, QSize(480, 360)).image.size(), QSize(1600, 1200));
        QCOMPARE(LoadPicture(file, QSize(400, 300)).image.size(), QSize(800, 600));
        QCOMPARE(LoadPicture(file, QSize(90, 60)).image.size(), QSize(200, 150));
        QCOMPARE(LoadPicture(file, QSize(1000, 750)).image.size(), QSize(1600, 1200));
        QCOMPARE(LoadPicture(file).image.size(), QSize(1600, 1200));
    }

    // Stripes one pixel wide, reduced by 3.3: the filter averages them out evenly instead of
    // picking some stripes and dropping others.
    void reductionDoesNotAlias()
    {
        QImage stripes(1000, 40, QImage::Format_RGB32);
        for (int x = 0; x < stripes.width(); ++x)
            for (int y = 0; y < stripes.height(); ++y)
                stripes.setPixel(x, y, x % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
        const QImage scaled = ScaleTo(stripes, QSize(300, 12));
        QCOMPARE(scaled.size(), QSize(300, 12));
        for (int x = 3; x < scaled.width() - 3; ++x) {
            const int grey = qGray(scaled.pixel(x, 6));
            QVERIFY2(grey > 117 && grey < 138, qPrintable(QString("%1 at %2").arg(grey).arg(x)));
        }
    }

    // A plain picture stays the same colour, and a step from black to white stays a step: the
    // edge lies where it was, it is no wider than the filter reaches, and the rest is untouched.
    void reductionKeepsFlatAreasAndEdges()
    {
        QImage flat(640, 480, QImage::Format_RGB32);
        flat.fill(QColor(12, 150, 230));
        const QImage plain = ScaleTo(flat, QSize(193, 145));
        for (int y = 0; y < plain.height(); y += 7)
            for (int x = 0; x < plain.width(); x += 5)
                QCOMPARE(QColor(plain.pixel(x, y)), QColor(12, 150, 230));

        QImage step(800, 10, QImage::Format_RGB32);
        step.fill(Qt::black);
        for (int y = 0; y < 10; ++y)
            for (int x = 400; x < 800; ++x)
                step.setPixel(x, y, qRgb(255, 255, 255));
        const QImage scaled = ScaleTo(step, QSize(200, 10));
        QCOMPARE(qGray(scaled.pixel(90, 5)), 0);
        QCOMPARE(qGray(scaled.pixel(110, 5)), 255);
        QVERIFY(qAbs(qGray(scaled.pixel(99, 5)) + qGray(scaled.pixel(100, 5)) - 255) <= 12);
        for (int x = 1; x < 200; ++x)
            QVERIFY(qAbs(qGray(scaled.pixel(x, 5)) - qGray(scaled.pixel(x - 1, 5))) <= 255);
        int changing = 0;
        for (int x = 1; x < 200; ++x)
            changing += scaled.pixel(x, 5) != scaled.pixel(x - 1, 5);
        QVERIFY2(changing <= 8, qPrintable(QString::number(changing)));
    }

    void enlargingAndOtherFormats()
    {
        const QImage up = ScaleTo(halves(50, 20), QSize(60, 24));
        QCOMPARE(up.size(), QSize(60, 24));
        QCOMPARE(QColor(up.pixel(2, 10)), QColor(Qt::red));
        QCOMPARE(QColor(up.pixel(57, 10)), QColor(Qt::blue));
        const QImage grey = ScaleTo(halves(80, 40).convertToFormat(QImage::Format_Grayscale8),
                                    QSize(40, 20));
        QCOMPARE(grey.format(), QImage::Format_Grayscale8);
        const QImage rgb = ScaleTo(halves(80, 40).convertToFormat(QImage::Format_RGB888),
                                   QSize(40, 20));
        QCOMPARE(rgb.format(), QImage::Format_RGB888);
        QCOMPARE(QColor(rgb.pixel(37, 10)), QColor(Qt::blue));
        // Half-transparent red over clear: the colours stay within their alpha.
        QImage clear(100, 100, QImage::Format_ARGB32);
        clear.fill(Qt::transparent);
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 50; ++x)
                clear.setPixel(x, y, qRgba(255, 0, 0, 128));
        const QImage blended = ScaleTo(clear, QSize(33, 33));
        QCOMPARE(blended.format(), QImage::Format_ARGB32_Premultiplied);
        for (int x = 0; x < 33; ++x) {
            const QRgb pixel = blended.pixel(x, 16);
            QVERIFY(qRed(pixel) <= qAlpha(pixel) || qAlpha(pixel) == 0);
        }
        QCOMPARE(qAlpha(blended.pixel(2, 16)), 128);
        QCOMPARE(qAlpha(blended.pixel(30, 16)), 0);
    }

    // A JPEG holds no transparency: what is clear comes out white.
    void transparentPictureIsLaidOnWhiteInAJpeg()
    {
        QImage clear(40, 40, QImage::Format_ARGB32);
        clear.fill(Qt::transparent);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 20; ++x)
                clear.setPixel(x, y, qRgb(0, 0, 200));
        QVERIFY(savepic(clear, path("clear.jpg")).ok);
        QImageReader reader(path("clear.jpg"));
        const QImage read = reader.read();
        QVERIFY(qGray(read.pixel(35, 20)) > 245);
        QVERIFY(qBlue(read.pixel(5, 20)) > 180 && qRed(read.pixel(5, 20)) < 40);
    }

    // The JPEG is made as "<name>_tmp.jpg" beside the copy and then put in its place; a GIF as
    // "<name>_tmp.gif". Whatever stood under those names is gone afterwards.
    void conversionGoesThroughTheTmpNames()
    {
        QVERIFY(QDir().mkpath(path("tmpnames")));
        QVERIFY(writeFile(path("tmpnames/stale_tmp.jpg"), "left from before"));
        QVERIFY(savepic(halves(30, 20), path("tmpnames/stale.jpg")).ok);
        QVERIFY(!QFile::exists(path("tmpnames/stale_tmp.jpg")));
        QVERIFY(isJpeg(readFile(path("tmpnames/stale.jpg"))));

        // With a folder in the way of the temporary name, no JPEG can be made: the conversion
        // message comes, and neither the copy nor the temporary file is left.
        QVERIFY(QDir().mkpath(path("tmpnames/blocked_tmp.jpg")));
        QVERIFY(writeFile(path("tmpnames/blocked.jpg"), "old copy"));
        const SaveResult blocked = savepic(halves(30, 20), path("tmpnames/blocked.jpg"));
        QVERIFY(!blocked.ok);
        QVERIFY(blocked.message.startsWith("Error in file conversion. Retry.( Error "));
        QVERIFY(!QFile::exists(path("tmpnames/blocked.jpg")));

        QVERIFY(writeFile(path("tmpnames/anim_tmp.gif"), "left from before"));
        QVERIFY(savepic(halves(30, 20), path("tmpnames/anim.gif")).ok);
        QVERIFY(!QFile::exists(path("tmpnames/anim_tmp.gif")));
        QVERIFY(isGif(readFile(path("tmpnames/anim.gif"))));
        QVERIFY(QDir().mkpath(path("tmpnames/still_tmp.gif")));
        const SaveResult still = savepic(halves(30, 20), path("tmpnames/still.gif"));
        QVERIFY(!still.ok);
        QVERIFY(still.message.isEmpty());
        QVERIFY(isBitmap(readFile(path("tmpnames/still.gif"))));

        // "a.jpg.d/b.bmp" is a JPEG made beside the folder, as "a_tmp.jpg".
        QVERIFY(QDir().mkpath(path("tmpnames/a.jpg.d")));
        QVERIFY(QDir().mkpath(path("tmpnames/a_tmp.jpg")));
        QVERIFY(!savepic(halves(30, 20), path("tmpnames/a.jpg.d/b.bmp")).ok);
    }

    // Below 100 the copies are progressive; at 100 they are the baseline files of before.
    void jpegQualityAndProgressiveCopies()
    {
        const QImage image = halves(64, 64);
        QVERIFY(savepic(image, path("q100.jpg"), JpegOptions{100, true}).ok);
        QCOMPARE(readFile(path("q100.jpg")), jpegBytes(image, 100));
        QVERIFY(savepic(image, path("q85.jpg"), JpegOptions{85, true}).ok);
        const QByteArray progressive = readFile(path("q85.jpg"));
        QVERIFY(progressive.contains(QByteArray("\xFF\xC2", 2)));
        QVERIFY(progressive.size() < readFile(path("q100.jpg")).size());
        QVERIFY(savepic(image, path("q85b.jpg"), JpegOptions{85, false}).ok);
        QVERIFY(!readFile(path("q85b.jpg")).contains(QByteArray("\xFF\xC2", 2)));
    }

    void savepicPicksTheFormatByName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("format");
        QTest::newRow("jpg") << "a.jpg"
                             << "jpeg";
        QTest::newRow("JPG") << "b.JPG"
                             << "jpeg";
        QTest::newRow("gif") << "c.gif"
                             << "gif";
        QTest::newRow("bmp") << "d.bmp"
                             << "bmp";
        QTest::newRow("dib") << "e.dib"
                             << "bmp";
        QTest::newRow("jpeg is no jpg") << "f.jpeg"
                                        << "bmp";
        QTest::newRow("jpg inside a folder name") << "g.jpg.d/h.bmp"
                                                  << "jpeg";
    }
    void savepicPicksTheFormatByName()
    {
        QFETCH(QString, name);
        QFETCH(QString, format);
        QDir().mkpath(QFileInfo(path(name)).path());
        const SaveResult result = savepic(halves(30, 20), path(name));
        QVERIFY(result.ok);
        const QByteArray bytes = readFile(path(name));
        if (format == "jpeg")
            QVERIFY(isJpeg(bytes));
        else if (format == "gif")
            QVERIFY(isGif(bytes));
        else
            QVERIFY(isBitmap(bytes));
        QImageReader reader(path(name));
        reader.setDecideFormatFromContent(true);
        QCOMPARE(reader.read().size(), QSize(30, 20));
        // No temporary file is left behind, beside the copy or beside its folder.
        for (const QString &folder : {QFileInfo(path(name)).path(), path(QString())}) {
            const QStringList left =
                QDir(folder).entryList({"*_tmp*", "*.tmp", "*.new"}, QDir::Files);
            QVERIFY2(left.isEmpty(), qPrintable(left.join(",")));
        }
    }

    void jpegIsWrittenAtTheBestQuality()
    {
        const QImage image = halves(64, 64);
        QVERIFY(savepic(image, path("best.jpg")).ok);
        QCOMPARE(readFile(path("best.jpg")), jpegBytes(image, 100));
    }

    void unwritableJpegGivesTheConversionMessage()
    {
        const QString file = path("no/such/folder/x.jpg");
        const SaveResult result = savepic(halves(10, 10), file);
        QVERIFY(!result.ok);
        QVERIFY2(result.message.startsWith("Error in file conversion. Retry.( Error "),
                 qPrintable(result.message));
        QVERIFY(result.message.endsWith(")"));
        QVERIFY(!QFile::exists(file));
    }

    void unwritableGifIsSilent()
    {
        const SaveResult result = savepic(halves(10, 10), path("no/such/folder/x.gif"));
        QVERIFY(!result.ok);
        QVERIFY(result.message.isEmpty());
    }

    void unreadablePictures_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("zero bytes") << QByteArray();
        QTest::newRow("not a picture") << QByteArray("this is text, not a JPEG");
        QTest::newRow("cut JPEG header") << jpegBytes(halves(50, 50)).left(20);
    }
    void unreadablePictures()
    {
        QFETCH(QByteArray, bytes);
        const QString file = path("bad.jpg");
        QVERIFY(writeFile(file, bytes));
        const SizeResult result = SizePhoto(file, path("L_bad.jpg"), 30, path("S_bad.jpg"), 15);
        QVERIFY(!result.loadError.isEmpty());
        QVERIFY(!QFile::exists(path("L_bad.jpg")));
        QVERIFY(!QFile::exists(path("S_bad.jpg")));
        QCOMPARE(readFile(file), bytes);
    }

    void missingPictureIsAnError()
    {
        const SizeResult result = SizePhoto(path("none.jpg"), path("L.jpg"), 30, path("S.jpg"), 15);
        QVERIFY(!result.loadError.isEmpty());
    }

    void onePixelPicture()
    {
        const QString file = path("dot.jpg");
        QVERIFY(writeJpeg(file, halves(1, 1)));
        const SizeResult result = SizePhoto(file, path("L_dot.jpg"), 30, path("S_dot.jpg"), 15);
        QVERIFY(result.loadError.isEmpty());
        QCOMPARE(sizeOf(path("L_dot.jpg")), QSize(1, 1));
        QCOMPARE(sizeOf(path("S_dot.jpg")), QSize(1, 1));
    }

    void hugePictureIsSizedWithinTheMemoryBudget()
    {
        const QString file = path("huge.jpg");
        QElapsedTimer timer;
        timer.start();
        QVERIFY(writeHugeFlatJpeg(file, 20000, 20000));
        qInfo("made a 20000 x 20000 JPEG of %lld bytes in %lld ms", QFileInfo(file).size(),
              timer.restart());
        QCOMPARE(PictureSize(file), QSize(20000, 20000));
        SizeResult result = SizePhoto(file, path("L_huge.jpg"), 7, path("S_huge.jpg"), 2);
        QVERIFY2(result.loadError.isEmpty(), qPrintable(result.loadError));
        QCOMPARE(sizeOf(path("L_huge.jpg")), QSize(1400, 1400));
        QCOMPARE(sizeOf(path("S_huge.jpg")), QSize(400, 400));
        // At 30% the decoder's own 1/2 would need 400 MB: it decodes at 1/4 and scales up.
        result = SizePhoto(file, path("L_huge30.jpg"), 30, path("S_huge15.jpg"), 15);
        QVERIFY2(result.loadError.isEmpty(), qPrintable(result.loadError));
        QCOMPARE(sizeOf(path("S_huge15.jpg")), QSize(3000, 3000));
        qInfo("sized in %lld ms", timer.restart());
        // A copy larger than the budget is refused with a reason.
        result = SizePhoto(file, path("L_huge120.jpg"), 120, path("S_huge100.jpg"), 100);
        QVERIFY(result.loadError.contains("too large"));
        QVERIFY(!QFile::exists(path("L_huge120.jpg")));
    }

    void gifAndBitmapSources()
    {
        const QImage indexed = halves(40, 40).convertToFormat(QImage::Format_Indexed8);
        QVERIFY(indexed.save(path("src.gif"), "GIF") || savepic(indexed, path("src.gif")).ok);
        QVERIFY(halves(40, 40).save(path("src.bmp"), "BMP"));
        SizeResult result =
            SizePhoto(path("src.gif"), path("L_src.gif"), 50, path("S_src.gif"), 25);
        QVERIFY2(result.loadError.isEmpty(), qPrintable(result.loadError));
        QVERIFY(isGif(readFile(path("L_src.gif"))));
        QCOMPARE(sizeOf(path("S_src.gif")), QSize(10, 10));
        result = SizePhoto(path("src.bmp"), path("L_src.bmp"), 50, path("S_src.bmp"), 25);
        QVERIFY(result.loadError.isEmpty());
        QVERIFY(isBitmap(readFile(path("L_src.bmp"))));
        QCOMPARE(sizeOf(path("L_src.bmp")), QSize(20, 20));
    }

    void oneCopyForTheWebLog()
    {
        const QString file = path("blog.jpg");
        QVERIFY(writeFile(file, withOrientation(jpegBytes(halves(200, 100)), 6)));
        CopyResult result = SizeOneCopy(file, path("Sml_blog.jpg"), 15);
        QVERIFY(result.loadError.isEmpty() && result.message.isEmpty());
        QCOMPARE(sizeOf(path("Sml_blog.jpg")), QSize(15, 30));
        result = SizeOneCopy(path("none.jpg"), path("Sml_none.jpg"), 15);
        QVERIFY(!result.loadError.isEmpty());
        QVERIFY(!QFile::exists(path("Sml_none.jpg")));
        result = SizeOneCopy(file, path("Sml_zero.jpg"), 0);
        QVERIFY(!result.loadError.isEmpty());
    }

    void concurrentNamesDoNotMeet()
    {
        // "a.jpg" and "a_tmp.jpg" side by side: each copy lands under its own name.
        QVERIFY(savepic(halves(30, 20), path("Lrg_a.jpg")).ok);
        QVERIFY(savepic(halves(60, 40), path("Lrg_a_tmp.jpg")).ok);
        QCOMPARE(sizeOf(path("Lrg_a.jpg")), QSize(30, 20));
        QCOMPARE(sizeOf(path("Lrg_a_tmp.jpg")), QSize(60, 40));
    }

    void fullSizeCopyIsReencoded()
    {
        const QString file = path("same.jpg");
        QVERIFY(writeJpeg(file, halves(120, 80), 60));
        const SizeResult result = SizePhoto(file, path("L_same.jpg"), 100, path("S_same.jpg"), 15);
        QVERIFY(result.loadError.isEmpty());
        QCOMPARE(sizeOf(path("L_same.jpg")), QSize(120, 80));
        QVERIFY(readFile(path("L_same.jpg")) != readFile(file));
    }
};

TARNWICK_TEST_MAIN(TestPictureSizing)
#include "test_picture_sizing.moc"
