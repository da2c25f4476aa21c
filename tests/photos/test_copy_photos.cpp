#include "CopyPhotos.h"
#include "JobState.h"
#include "PhotoPage.h"
#include "PictureFixtures.h"
#include "PictureSizing.h"
#include "ScriptedUi.h"
#include "TestMain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QImageReader>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

using namespace Fixtures;

namespace {

QSize sizeOf(const QString &path)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    return reader.read().size();
}

// Name and checksum of every file in folder.
QMap<QString, QByteArray> snapshot(const QString &folder)
{
    QMap<QString, QByteArray> files;
    const QStringList names = QDir(folder).entryList(QDir::Files);
    for (const QString &name : names)
        files.insert(name, QCryptographicHash::hash(readFile(folder + "/" + name),
                                                    QCryptographicHash::Sha1));
    return files;
}

// A camera-like picture: colour gradients under a grain of noise, so that the JPEG decoder has
// real work in every block.
QImage grainyPhoto(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, width, height);
    sky.setColorAt(0, QColor(40, 90, 200));
    sky.setColorAt(0.5, QColor(230, 200, 120));
    sky.setColorAt(1, QColor(30, 120, 40));
    painter.fillRect(image.rect(), sky);
    painter.end();
    QRandomGenerator random(7);
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int grain = int(random.bounded(48)) - 24;
            const QRgb pixel = line[x];
            line[x] =
                qRgb(qBound(0, qRed(pixel) + grain, 255), qBound(0, qGreen(pixel) + grain, 255),
                     qBound(0, qBlue(pixel) + grain, 255));
        }
    }
    return image;
}

// The longest time a 10 ms timer went without a tick while work ran, in milliseconds, the
// stretch from the last tick to the end of work included.
// The longest time between ticks of a 10 ms timer while work runs. Each tick also paints a
// window-sized area, as a repaint of the main window does: Qt's raster painting may hand a
// large fill to worker threads of the global pool.
qint64 longestGap(const std::function<void()> &work)
{
    QElapsedTimer clock;
    qint64 last = 0;
    qint64 longest = 0;
    QImage canvas(1280, 800, QImage::Format_RGB32);
    int ticks = 0;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        QPainter painter(&canvas);
        painter.fillRect(canvas.rect(), QColor::fromHsv(++ticks % 360, 90, 200, 128));
        painter.end();
        const qint64 now = clock.elapsed();
        longest = std::max(longest, now - last);
        last = now;
    });
    timer.start(10);
    clock.start();
    work();
    return std::max(longest, clock.elapsed() - last);
}

} // namespace

class TestCopyPhotos : public QObject
{
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_work;
    QString m_target;
    PhotoPage m_page;
    JobState m_state;

    CopyPhotosInput input() const
    {
        CopyPhotosInput in;
        in.ChoosenUploadPath = m_work;
        return in;
    }
    void picture(const QString &name, QSize size = QSize(400, 300))
    {
        QVERIFY(writeJpeg(m_work + "/" + name, halves(size.width(), size.height())));
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_work = m_dir->filePath("work");
        m_target = m_dir->filePath("work/images");
        QDir().mkpath(m_target);
        m_page = PhotoPage();
        m_state.reset();
    }

    void defaultsMakeBothCopies()
    {
        picture("00050_Tree.jpg");
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_target, true, input(), m_page, ui, m_state));
        QCOMPARE(sizeOf(m_target + "/Sml_00050_Tree.jpg"), QSize(60, 45));
        QCOMPARE(sizeOf(m_target + "/Lrg_00050_Tree.jpg"), QSize(120, 90));
        QVERIFY(ui.messages.isEmpty());
        QCOMPARE(ui.statusTexts.value(0), QString("Sizing Photos"));
        QVERIFY(ui.stepTexts.contains("1 of 1"));
        QVERIFY(ui.processEventsCalls >= 4);
    }

    void madeLookingNamesAreSkipped()
    {
        picture("Sml_Old.jpg");
        picture("Lrg_Old.jpg");
        picture("00050_New.jpg");
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_target, true, input(), m_page, ui, m_state));
        QVERIFY(!QFile::exists(m_target + "/Sml_Sml_Old.jpg"));
        QVERIFY(!QFile::exists(m_target + "/Lrg_Sml_Old.jpg"));
        QVERIFY(!QFile::exists(m_target + "/Sml_Lrg_Old.jpg"));
        QVERIFY(QFile::exists(m_target + "/Sml_00050_New.jpg"));
        QVERIFY(ui.stepTexts.contains("3 of 3"));
    }

    void percentagesComeFromTheBoxes()
    {
        picture("00050_a.jpg");
        CopyPhotosInput in = input();
        in.My_resize_0 = "50";
        in.My_resize_1 = "100";
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_target, true, in, m_page, ui, m_state));
        QCOMPARE(sizeOf(m_target + "/Sml_00050_a.jpg"), QSize(200, 150));
        QCOMPARE(sizeOf(m_target + "/Lrg_00050_a.jpg"), QSize(400, 300));
    }

    void formatsFollowTheNames()
    {
        picture("00050_a.jpg");
        QVERIFY(halves(40, 40).save(m_work + "/00050_b.bmp", "BMP"));
        QVERIFY(halves(40, 40).save(m_work + "/00050_c.dib", "BMP"));
        QVERIFY(halves(40, 40).save(m_work + "/00050_d.gif", "GIF") ||
                writeFile(m_work + "/00050_d.gif", readFile(m_work + "/00050_b.bmp")));
        picture("00050_E.JPG");
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_target, true, input(), m_page, ui, m_state));
        QVERIFY(isJpeg(readFile(m_target + "/Lrg_00050_a.jpg")));
        QVERIFY(isBitmap(readFile(m_target + "/Lrg_00050_b.bmp")));
        QVERIFY(isBitmap(readFile(m_target + "/Sml_00050_c.dib")));
        QVERIFY(isGif(readFile(m_target + "/Lrg_00050_d.gif")));
        QVERIFY(isJpeg(readFile(m_target + "/Sml_00050_E.JPG")));
    }

    void unreadablePictureEndsTheRun_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("zero bytes") << QByteArray();
        QTest::newRow("corrupt") << QByteArray("\xFF\xD8\xFF\xE0 garbage, not a JPEG at all");
    }
    void unreadablePictureEndsTheRun()
    {
        QFETCH(QByteArray, bytes);
        picture("00050_a.jpg");
        QVERIFY(writeFile(m_work + "/00050_b.jpg", bytes));
        picture("00050_c.jpg");
        picture("00050_d.jpg");
        const auto before = snapshot(m_work);
        ScriptedUi ui;
        CopyPhotosInput in = input();
        in.threads = 2;
        QVERIFY(!CopyPhotos(m_target, true, in, m_page, ui, m_state));
        QCOMPARE(ui.messages.size(), 1);
        QVERIFY2(ui.messages.first().text.startsWith("Error copying file - "),
                 qPrintable(ui.messages.first().text));
        // The reason names the file and never reads "Unknown error".
        QVERIFY2(ui.messages.first().text.endsWith("(00050_b.jpg)"),
                 qPrintable(ui.messages.first().text));
        QVERIFY(!ui.messages.first().text.contains("Unknown error"));
        QCOMPARE(ui.messages.first().title, QString("Tarnwick"));
        QVERIFY(QFile::exists(m_target + "/Lrg_00050_a.jpg"));
        QVERIFY(!QFile::exists(m_target + "/Lrg_00050_b.jpg"));
        QVERIFY(!QFile::exists(m_target + "/Lrg_00050_c.jpg"));
        QVERIFY(!QFile::exists(m_target + "/Sml_00050_c.jpg"));
        QVERIFY(!QFile::exists(m_target + "/Lrg_00050_d.jpg"));
        QCOMPARE(snapshot(m_work), before);
    }

    void oldCopiesGoUnlessKept()
    {
        QVERIFY(writeFile(m_work + "/00050_bad.jpg", QByteArray()));
        QVERIFY(writeFile(m_target + "/Sml_00050_bad.jpg", "old"));
        ScriptedUi ui;
        QVERIFY(!CopyPhotos(m_target, true, input(), m_page, ui, m_state));
        QVERIFY(QFile::exists(m_target + "/Sml_00050_bad.jpg"));
        QVERIFY(!CopyPhotos(m_target, false, input(), m_page, ui, m_state));
        QVERIFY(!QFile::exists(m_target + "/Sml_00050_bad.jpg"));
    }

    void unwritableTargetShowsTheConversionMessageAndGoesOn()
    {
        picture("00050_a.jpg");
        picture("00050_b.jpg");
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_dir->filePath("missing"), true, input(), m_page, ui, m_state));
        QCOMPARE(ui.messages.size(), 4);
        for (const auto &shown : ui.messages)
            QVERIFY(shown.text.startsWith("Error in file conversion. Retry.( Error "));
    }

    void cancelStopsBetweenPictures_data()
    {
        QTest::addColumn<bool>("byFlag");
        QTest::newRow("cancel button") << true;
        QTest::newRow("skip answer") << false;
    }
    void cancelStopsBetweenPictures()
    {
        QFETCH(bool, byFlag);
        for (int i = 0; i < 6; ++i)
            picture(QString("00050_p%1.jpg").arg(i));
        ScriptedUi ui;
        ui.onProcessEvents = [&] {
            if (ui.stepTexts.contains("2 of 6")) {
                if (byFlag)
                    m_state.UploadCancelled = true;
                else
                    m_state.UserResponse = JobState::Skip;
            }
        };
        CopyPhotosInput in = input();
        in.threads = 1;
        QVERIFY(!CopyPhotos(m_target, true, in, m_page, ui, m_state));
        QVERIFY(QFile::exists(m_target + "/Lrg_00050_p0.jpg"));
        QVERIFY(!QFile::exists(m_target + "/Lrg_00050_p2.jpg"));
        QVERIFY(!ui.stepTexts.contains("3 of 6"));
        QVERIFY(ui.messages.isEmpty());
    }

    void eventLoopStaysServedWhileSizing()
    {
        // Four 24-megapixel photos, the enlarged copy at full size: each picture is a long
        // stretch of decoding, scaling and encoding.
        const QByteArray photo = jpegBytes(grainyPhoto(6000, 4000), 95);
        for (int i = 0; i < 4; ++i)
            QVERIFY(writeFile(m_work + QString("/00050_big%1.jpg").arg(i), photo));
        CopyPhotosInput in = input();
        in.My_resize_0 = "50";
        in.My_resize_1 = "100";
        in.threads = 2;
        const qint64 limit = 400;

        // One picture sized on this thread starves the timer for longer than the limit, so the
        // measure below does see a blocked event loop.
        const qint64 blocked = longestGap([&] {
            const SizeResult result =
                SizePhoto(m_work + "/00050_big0.jpg", m_dir->filePath("Lrg_alone.jpg"), 100,
                          m_dir->filePath("Sml_alone.jpg"), 50);
            QVERIFY(result.loadError.isEmpty());
        });
        QVERIFY2(blocked > limit, qPrintable(QString("sized on this thread: %1 ms").arg(blocked)));

        ScriptedUi ui;
        bool done = false;
        const qint64 gap =
            longestGap([&] { done = CopyPhotos(m_target, true, in, m_page, ui, m_state); });
        qInfo("longest gap between ticks while sizing: %lld ms; one picture sized on this "
              "thread: %lld ms",
              gap, blocked);
        QVERIFY(done);
        QVERIFY(ui.messages.isEmpty());
        for (int i = 0; i < 4; ++i)
            QCOMPARE(sizeOf(m_target + QString("/Lrg_00050_big%1.jpg").arg(i)), QSize(6000, 4000));
        QVERIFY2(gap < limit, qPrintable(QString("longest gap between ticks: %1 ms (one picture "
                                                 "sized on this thread: %2 ms)")
                                             .arg(gap)
                                             .arg(blocked)));
    }

    void namesWithBlanksCommasAndLetters()
    {
        const QStringList names = {"00050_My tree.jpg", "00050_a, b.jpg",
                                   QString::fromUtf8("00050_Straße süß.jpg")};
        for (const QString &name : names)
            picture(name);
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_target, true, input(), m_page, ui, m_state));
        for (const QString &name : names) {
            QCOMPARE(sizeOf(m_target + "/Sml_" + name), QSize(60, 45));
            QCOMPARE(sizeOf(m_target + "/Lrg_" + name), QSize(120, 90));
        }
    }

    void fourHundredAndOnePictures()
    {
        const QByteArray tiny = jpegBytes(halves(20, 20));
        for (int i = 0; i < 401; ++i)
            QVERIFY(writeFile(m_work + QString("/%1_p.jpg").arg(FormatGroup(QString::number(i))),
                              tiny));
        const auto before = snapshot(m_work);
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_target, true, input(), m_page, ui, m_state));
        QCOMPARE(QDir(m_target).entryList({"Sml_*"}, QDir::Files).size(), 401);
        QCOMPARE(QDir(m_target).entryList({"Lrg_*"}, QDir::Files).size(), 401);
        QVERIFY(ui.stepTexts.contains("401 of 401"));
        QCOMPARE(snapshot(m_work), before);
    }

    void pictureListMatchesWithoutCaseAndSortsIgnoringCase()
    {
        for (const char *name : {"b.JPG", "A.jpg", "c.gif", "D.bmp", "e.dib", "f.ddd", "g.png",
                                 "h.jpeg", "notes.txt", "Photos.htm"})
            QVERIFY(writeFile(m_work + "/" + QString(name), "x"));
        QDir().mkpath(m_work + "/folder.jpg");
        QCOMPARE(ListPictureFiles(m_work),
                 QStringList({"A.jpg", "b.JPG", "c.gif", "D.bmp", "e.dib", "f.ddd"}));
        QVERIFY(ListPictureFiles(QString()).isEmpty());
        QVERIFY(ListPictureFiles(m_dir->filePath("nowhere")).isEmpty());
    }

    void emptyFolderDoesNothing()
    {
        ScriptedUi ui;
        QVERIFY(CopyPhotos(m_target, true, input(), m_page, ui, m_state));
        CopyPhotosInput in = input();
        in.ChoosenUploadPath = m_dir->filePath("nowhere");
        QVERIFY(CopyPhotos(m_target, true, in, m_page, ui, m_state));
        QVERIFY(ui.messages.isEmpty());
    }
};

TARNWICK_TEST_MAIN(TestCopyPhotos)
#include "test_copy_photos.moc"
