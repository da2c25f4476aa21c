#include "CopyPhotos.h"
#include "JobState.h"
#include "PhotoPage.h"
#include "PictureFixtures.h"
#include "PictureSizing.h"
#include "ScriptedUi.h"
#include "TestMain.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDeadlineTimer>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <chrono>
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

// A timer standing in for the window's own events while a job runs: each tick paints a
// window-sized area, as a repaint of the main window does (Qt's raster painting may hand a large
// fill to worker threads of the global pool), and counts itself.
class RepaintTicks final : public QObject
{
public:
    RepaintTicks() : m_canvas(1280, 800, QImage::Format_RGB32)
    {
        QObject::connect(&m_timer, &QTimer::timeout, this, [this] {
            QPainter painter(&m_canvas);
            painter.fillRect(m_canvas.rect(), QColor::fromHsv(count % 360, 90, 200, 128));
            painter.end();
            ++count;
        });
        m_timer.start(5);
    }
    std::atomic<int> count{0};

    // Blocks the calling worker thread until the timer has ticked twice more: the event loop of
    // the test's thread has been served meanwhile. false if that never happens (the guard is
    // there so that a broken job fails the test instead of hanging it; it bounds a deadlock, not
    // the machine's speed).
    bool awaitTicks() const
    {
        const int seen = count.load();
        QDeadlineTimer guard(std::chrono::minutes(3));
        while (count.load() < seen + 2) {
            if (guard.hasExpired())
                return false;
            QThread::msleep(1);
        }
        return true;
    }

private:
    QImage m_canvas;
    QTimer m_timer;
};

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

    void eventLoopStaysServedWhileSizing_data()
    {
        QTest::addColumn<int>("threads");
        QTest::newRow("one worker") << 1;
        QTest::newRow("two workers") << 2;
        QTest::newRow("as many as cores") << 0;
    }
    void eventLoopStaysServedWhileSizing()
    {
        // Each picture waits on its worker until the test's timer has ticked, painting as a
        // repaint does, since the picture began. Sized on this thread, or on the pool that Qt's
        // painting borrows, no picture could ever finish: the loop must be served while every
        // picture is in hand.
        QFETCH(int, threads);
        for (int i = 0; i < 5; ++i)
            picture(QString("00050_p%1.jpg").arg(i));
        RepaintTicks ticks;
        std::atomic<int> served{0};
        std::atomic<int> starved{0};
        CopyPhotosInput in = input();
        in.threads = threads;
        in.sizer = [&](const QString &source, const QString &large, double largePercent,
                       const QString &small, double smallPercent, JpegOptions jpeg) {
            if (QThread::currentThread() == qApp->thread() || !ticks.awaitTicks()) {
                ++starved;
                return SizeResult{QStringLiteral("the event loop was not served"), {}, {}};
            }
            ++served;
            return SizePhoto(source, large, largePercent, small, smallPercent, jpeg);
        };
        ScriptedUi ui;
        int ticksBetweenPictures = 0;
        int lastTicks = 0;
        ui.onProcessEvents = [&] {
            if (ticks.count.load() > lastTicks)
                ++ticksBetweenPictures;
            lastTicks = ticks.count.load();
        };
        QVERIFY(CopyPhotos(m_target, true, in, m_page, ui, m_state));
        QCOMPARE(starved.load(), 0);
        QCOMPARE(served.load(), 5);
        QVERIFY(ui.messages.isEmpty());
        QVERIFY(ticksBetweenPictures > 0);
        for (int i = 0; i < 5; ++i)
            QCOMPARE(sizeOf(m_target + QString("/Lrg_00050_p%1.jpg").arg(i)), QSize(120, 90));
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
