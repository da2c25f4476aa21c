#include "CopyPhotos.h"
#include "JobState.h"
#include "PhotoPage.h"
#include "PictureDecoder.h"
#include "PictureFixtures.h"
#include "PictureSizing.h"
#include "ScriptedUi.h"
#include "TestMain.h"
#include "TodaysPictures.h"

#include <QDir>
#include <QImageReader>
#include <QTemporaryDir>

using namespace Fixtures;
using namespace TodaysPictures;

// Pictures of today's phones and cameras: HEIC, WebP, PNG and TIFF sources read upright and in
// sRGB, turned into JPEG copies for the Ready to Send list, and a 50-megapixel photo sized.
class TestPictureDecoder : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase()
    {
        QVERIFY2(!heifEncoder().isEmpty(), "heif-enc (libheif-examples) is needed");
        QString why;
        QVERIFY2(writeHeic(path("IMG_0042.HEIC"), 400, 300, &why), qPrintable(why));
        QVERIFY(scene(320, 240).save(path("Lake.webp"), "WEBP", 90));
        QVERIFY(transparentPicture(200, 100).save(path("Logo.png"), "PNG"));
        QVERIFY(deepScene(320, 240).save(path("Scan.tif"), "TIFF"));
        QVERIFY(writeFile(path("Broken.heic"), QByteArray("this is no picture at all").repeated(9)));
    }

    void theSourceListShowsTodaysFormatsInAnyCase()
    {
        QVERIFY(writeFile(path("Notes.txt"), "x"));
        const QStringList listed = ListSourcePictureFiles(m_dir.path());
        for (const char *name :
             {"IMG_0042.HEIC", "Lake.webp", "Logo.png", "Scan.tif", "Broken.heic"})
            QVERIFY2(listed.contains(QString::fromLatin1(name)), name);
        QVERIFY(!listed.contains("Notes.txt"));
        // The Ready to Send list itself holds what it always held.
        QVERIFY(!ListPictureFiles(m_dir.path()).contains("Logo.png"));
    }

    void listEntriesAreJpegsNamedAfterThePicture_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("entry");
        QTest::newRow("HEIC") << "IMG_0042.HEIC"
                              << "IMG_0042.jpg";
        QTest::newRow("heif") << "a.heif"
                              << "a.jpg";
        QTest::newRow("WebP") << "Lake.webp"
                              << "Lake.jpg";
        QTest::newRow("PNG") << "Logo.PNG"
                             << "Logo.jpg";
        QTest::newRow("TIFF") << "Scan.tiff"
                              << "Scan.jpg";
        QTest::newRow("tif") << "Scan.tif"
                             << "Scan.jpg";
        QTest::newRow("JPEG stays") << "Tree.JPG"
                                    << "Tree.JPG";
        QTest::newRow("GIF stays") << "Anim.gif"
                                   << "Anim.gif";
        QTest::newRow("two dots") << "my.trip.png"
                                  << "my.trip.jpg";
    }
    void listEntriesAreJpegsNamedAfterThePicture()
    {
        QFETCH(QString, source);
        QFETCH(QString, entry);
        QCOMPARE(ReadyListName(source), entry);
    }

    // The HEIC is stored on its side with EXIF orientation 6 and no boxes of its own for it: it
    // is turned once, and its Display P3 colours come out as a colour-managed converter
    // (LittleCMS) makes them.
    void heicIsTurnedOnceAndItsColoursConverted()
    {
        const PictureHeader header = ReadPictureHeader(path("IMG_0042.HEIC"));
        QVERIFY2(header.ok(), qPrintable(header.error));
        QVERIFY(header.heif);
        QCOMPARE(header.stored, QSize(300, 400));
        QCOMPARE(header.upright(), QSize(400, 300));
        QCOMPARE(PictureSize(path("IMG_0042.HEIC")), QSize(400, 300));

        const PictureResult picture = LoadPicture(path("IMG_0042.HEIC"));
        QVERIFY2(picture.ok(), qPrintable(picture.error));
        QCOMPARE(picture.image.size(), QSize(400, 300));
        // Upright: the white square in the top left, red above, blue below.
        QVERIFY(qGray(picture.image.pixel(10, 10)) > 240);
        QVERIFY(qRed(picture.image.pixel(100, 100)) > 180);
        QVERIFY(qBlue(picture.image.pixel(30, 250)) > 150);

        const QImage reference = referenceToSRgb(displayP3Scene(400, 300));
        const double converted = meanDeltaE(picture.image, reference);
        const double unconverted =
            meanDeltaE(scene(400, 300).convertToFormat(QImage::Format_RGB888), reference);
        qInfo("mean CIELAB difference to the reference: %.2f converted, %.2f as stored",
              converted, unconverted);
        QVERIFY2(converted < 2, qPrintable(QString::number(converted)));
        QVERIFY(unconverted > 2); // the test would see a missing conversion
    }

    // A HEIC turned by its own "irot" box, with an EXIF block that says the same: libheif turns
    // it, and the EXIF block is not applied a second time.
    void heicWithItsOwnTurnIsTurnedOnce()
    {
        const QString file = path("IMG_0043.HEIC");
        QVERIFY(writeHeicWithOwnTurn(file, 400, 300));
        const PictureHeader header = ReadPictureHeader(file);
        QVERIFY2(header.ok(), qPrintable(header.error));
        QCOMPARE(header.upright(), QSize(400, 300));
        QCOMPARE(header.transformation, QImageIOHandler::TransformationNone);
        const PictureResult picture = LoadPicture(file);
        QVERIFY2(picture.ok(), qPrintable(picture.error));
        QCOMPARE(picture.image.size(), QSize(400, 300));
        QVERIFY(qGray(picture.image.pixel(10, 10)) > 240);
        QVERIFY(qRed(picture.image.pixel(100, 100)) > 180);
        QVERIFY(qBlue(picture.image.pixel(30, 250)) > 150);
        QVERIFY(psnr(picture.image, scene(400, 300)) > 30);
    }

    void heicCopyForTheListIsAnUprightJpeg()
    {
        const QString target = path("00050_IMG_0042.jpg");
        QCOMPARE(CopyToReadyList(path("IMG_0042.HEIC"), target), QString());
        QVERIFY(isJpeg(readFile(target)));
        QImageReader reader(target);
        QCOMPARE(reader.size(), QSize(400, 300));
        const QImage copy = reader.read();
        QVERIFY(meanDeltaE(copy, referenceToSRgb(displayP3Scene(400, 300))) < 2);
        // No orientation is left in the copy to be applied a second time.
        QCOMPARE(reader.transformation(), QImageIOHandler::TransformationNone);
    }

    void transparentPngIsLaidOnWhite()
    {
        const QString target = path("00050_Logo.jpg");
        QCOMPARE(CopyToReadyList(path("Logo.png"), target), QString());
        const QImage copy(target);
        QCOMPARE(copy.size(), QSize(200, 100));
        QVERIFY(qGray(copy.pixel(180, 50)) > 245);
        QVERIFY(qBlue(copy.pixel(20, 50)) > 230 && qRed(copy.pixel(20, 50)) < 30);
    }

    void webpAndSixteenBitTiffAreRead_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("WebP") << "Lake.webp";
        QTest::newRow("16-bit TIFF") << "Scan.tif";
    }
    void webpAndSixteenBitTiffAreRead()
    {
        QFETCH(QString, name);
        const QString target = path("00050_" + ReadyListName(name));
        QCOMPARE(CopyToReadyList(path(name), target), QString());
        const QImage copy(target);
        QCOMPARE(copy.size(), QSize(320, 240));
        QVERIFY(psnr(copy, scene(320, 240)) > 30);
        const SizeResult sized =
            SizePhoto(path(name), path("L_" + name + ".jpg"), 50, path("S_" + name + ".jpg"), 25);
        QVERIFY2(sized.loadError.isEmpty(), qPrintable(sized.loadError));
        QCOMPARE(QImage(path("S_" + name + ".jpg")).size(), QSize(80, 60));
    }

    void junkNamedHeicGivesAMessageNamingIt()
    {
        const QString message = CopyToReadyList(path("Broken.heic"), path("00050_Broken.jpg"));
        QVERIFY(!message.isEmpty());
        QVERIFY2(message.contains("Broken.heic"), qPrintable(message));
        QVERIFY(!QFile::exists(path("00050_Broken.jpg")));
        QVERIFY(!ReadPictureHeader(path("Broken.heic")).ok());
    }

    // A History file names the list entry ("IMG_0042.jpg"); the picture behind it is the HEIC.
    void theSourceOfAnEntryIsFoundAgain()
    {
        QCOMPARE(FindSourceOf(m_dir.path(), "IMG_0042.jpg"), path("IMG_0042.HEIC"));
        QCOMPARE(FindSourceOf(m_dir.path(), "Lake.jpg"), path("Lake.webp"));
        QCOMPARE(FindSourceOf(m_dir.path(), "Logo.png"), path("Logo.png"));
        QVERIFY(FindSourceOf(m_dir.path(), "Nothing.jpg").isEmpty());
    }

    // 8192 x 6144 pixels: a 30% copy needs the picture decoded whole, which the budget of one
    // picture holds; a 15% copy is made from a decode at half size.
    void fiftyMegapixelsAreSizedWithinTheBudget()
    {
        const QString work = path("big");
        QVERIFY(QDir().mkpath(work + "/images"));
        QVERIFY(writeHugeFlatJpeg(work + "/00050_Big.jpg", 8192, 6144));
        const PictureHeader header = ReadPictureHeader(work + "/00050_Big.jpg");
        const QSize decoded = DecodedSize(header, ScaledSize(header.upright(), 30),
                                          PictureMemoryBudget);
        QCOMPARE(decoded, QSize(8192, 6144));
        QVERIFY(qint64(decoded.width()) * decoded.height() * 4 < PictureMemoryBudget);
        QCOMPARE(DecodedSize(header, ScaledSize(header.upright(), 15), PictureMemoryBudget),
                 QSize(4096, 3072));
        CopyPhotosInput input;
        input.ChoosenUploadPath = work;
        ScriptedUi ui;
        JobState state;
        PhotoPage page;
        QVERIFY(CopyPhotos(work + "/images", true, input, page, ui, state));
        QVERIFY(ui.messages.isEmpty());
        QCOMPARE(QImageReader(work + "/images/Lrg_00050_Big.jpg").size(), QSize(2458, 1843));
        QCOMPARE(QImageReader(work + "/images/Sml_00050_Big.jpg").size(), QSize(1229, 922));
    }
};

TARNWICK_TEST_MAIN(TestPictureDecoder)
#include "test_picture_decoder.moc"
