#include "PhotoPage.h"
#include "PictureFixtures.h"
#include "PictureSizing.h"
#include "ReadyListConversions.h"
#include "TestMain.h"
#include "TodaysPictures.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QTemporaryDir>

#include <chrono>
#include <condition_variable>
#include <mutex>

using namespace Fixtures;
using namespace TodaysPictures;

namespace {

// What the workers tell the test: who is inside the converter, who has finished. A worker that
// waits for the others gives up after a minute, so that a conversion that never comes can't hang
// the test; the test then fails on what it counts, never on the time.
struct Gate
{
    std::mutex mutex;
    std::condition_variable changed;
    int inside = 0;
    int entered = 0; // ever
    QStringList finished;

    void enter()
    {
        std::lock_guard lock(mutex);
        ++inside;
        ++entered;
        changed.notify_all();
    }
    void leave(const QString &source)
    {
        std::lock_guard lock(mutex);
        --inside;
        finished.append(source);
        changed.notify_all();
    }
    // Waits until what holds, or a minute.
    template <typename Condition> bool waitFor(Condition what)
    {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::minutes(1), what);
    }
};

// The files of folder, hidden ones too.
QStringList allFiles(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

} // namespace

// The pictures that go onto the Ready to Send list as JPEG copies are converted several at once
// on worker threads, within the sizing memory budget, and handed back in the order started.
class TestReadyListConversions : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;

    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void initTestCase()
    {
        QVERIFY2(!heifEncoder().isEmpty(), "heif-enc (libheif-examples) is needed");
        QDir().mkpath(path("source"));
        QString why;
        QVERIFY2(writeHeic(path("source/IMG_0001.HEIC"), 400, 300, &why), qPrintable(why));
        QVERIFY(scene(320, 240).save(path("source/IMG_0002.webp"), "WEBP", 90));
        QVERIFY(writeFile(path("source/IMG_0003.heic"), QByteArray("not a picture").repeated(20)));
        QVERIFY(transparentPicture(200, 100).save(path("source/IMG_0004.png"), "PNG"));
        QVERIFY(deepScene(320, 240).save(path("source/IMG_0005.tif"), "TIFF"));
        QVERIFY(writeJpeg(path("source/IMG_0006.jpg"), scene(160, 120)));
    }

    void twoConversionsRunAtOnceOnTwoThreads()
    {
        Gate gate;
        ReadyListConversions conversions(2, SizingMemoryBudget,
                                         [&gate](const QString &source, const QString &) {
                                             gate.enter();
                                             // Held until the other one has come in too.
                                             gate.waitFor([&gate] { return gate.entered >= 2; });
                                             gate.leave(source);
                                             return QString();
                                         });
        QVERIFY(conversions.hasRoom(0));
        conversions.start("a", "A", 1000);
        QVERIFY(conversions.hasRoom(1000));
        conversions.start("b", "B", 1000);
        QVERIFY(!conversions.hasRoom(0)); // both threads taken
        QCOMPARE(conversions.takeOldest().source, QStringLiteral("a"));
        QCOMPARE(conversions.takeOldest().source, QStringLiteral("b"));
        QCOMPARE(conversions.mostAtOnce(), 2);
        QCOMPARE(conversions.pending(), 0);
    }

    void resultsComeBackInTheOrderStartedWhateverOrderTheyFinish()
    {
        Gate gate;
        ReadyListConversions conversions(
            3, SizingMemoryBudget, [&gate](const QString &source, const QString &target) {
                gate.enter();
                // The first one finishes last: it waits for the other two.
                if (source == QLatin1String("first"))
                    gate.waitFor([&gate] { return gate.finished.size() >= 2; });
                gate.leave(source);
                return source == QLatin1String("second") ? QStringLiteral("no good: ") + target
                                                         : QString();
            });
        conversions.start("first", "1.jpg", 10);
        conversions.start("second", "2.jpg", 10);
        conversions.start("third", "3.jpg", 10);
        QVERIFY(conversions.writes("2.jpg"));
        QVERIFY(!conversions.writes("4.jpg"));
        const ReadyListConversions::Done first = conversions.takeOldest();
        QCOMPARE(first.source, QStringLiteral("first"));
        QVERIFY(first.message.isEmpty());
        {
            std::lock_guard lock(gate.mutex);
            QCOMPARE(gate.finished.size(), 3);
            QCOMPARE(gate.finished.last(), QStringLiteral("first"));
        }
        const ReadyListConversions::Done second = conversions.takeOldest();
        QCOMPARE(second.source, QStringLiteral("second"));
        QCOMPARE(second.message, QStringLiteral("no good: 2.jpg"));
        QCOMPARE(conversions.takeOldest().target, QStringLiteral("3.jpg"));
    }

    // With the budget of the sizing, large pictures are converted one at a time however many
    // cores there are; one is always let through.
    void theBudgetBoundsThePicturesHeldAtOnce()
    {
        const qint64 twelveMegapixels = 8LL * 4032 * 3024;
        const qint64 fiftyMegapixels = 8LL * 8192 * 6144;
        ReadyListConversions conversions(16, SizingMemoryBudget, [](const QString &, const QString &) {
            return QString();
        });
        QVERIFY(conversions.hasRoom(fiftyMegapixels)); // alone: let through
        conversions.start("big", "big.jpg", fiftyMegapixels);
        QVERIFY(!conversions.hasRoom(twelveMegapixels));
        QVERIFY(conversions.hasRoom(0)); // a plain copy holds no picture
        conversions.takeOldest();
        // Twelve-megapixel photos: three at once within 320 MB, not a fourth.
        for (int i = 0; i < 3; ++i) {
            QVERIFY(conversions.hasRoom(twelveMegapixels));
            conversions.start(QString::number(i), QString::number(i) + ".jpg", twelveMegapixels);
        }
        QVERIFY(!conversions.hasRoom(twelveMegapixels));
        while (conversions.pending() > 0)
            conversions.takeOldest();
    }

    void whatAConversionHoldsIsCountedFromThePictureSize()
    {
        QCOMPARE(ReadyListConversions::ConversionBytes(path("source/IMG_0001.HEIC")),
                 qint64(8) * 400 * 300);
        QCOMPARE(ReadyListConversions::ConversionBytes(path("source/IMG_0005.tif")),
                 qint64(8) * 320 * 240);
        // A plain copy, and a file that can't be read (its conversion says why).
        QCOMPARE(ReadyListConversions::ConversionBytes(path("source/IMG_0006.jpg")), qint64(0));
        QCOMPARE(ReadyListConversions::ConversionBytes(path("source/IMG_0003.heic")), qint64(0));
    }

    // Real pictures, converted two at a time: every good one is on the list as an upright JPEG,
    // the junk one is named in its message, and nothing half made is left in the folder.
    void aFolderOfTodaysPicturesWithAJunkFileAmongThem()
    {
        const QString list = path("list");
        QDir(list).removeRecursively();
        QDir().mkpath(list);
        ReadyListConversions conversions(2);
        QList<ReadyListConversions::Done> done;
        const QStringList sources = ListSourcePictureFiles(path("source"));
        QCOMPARE(sources.size(), 6);
        for (const QString &name : sources) {
            const QString source = path("source/") + name;
            const qint64 bytes = ReadyListConversions::ConversionBytes(source);
            while (!conversions.hasRoom(bytes))
                done.append(conversions.takeOldest());
            conversions.start(source, list + "/00050_" + ReadyListName(name), bytes);
        }
        while (conversions.pending() > 0)
            done.append(conversions.takeOldest());

        QCOMPARE(done.size(), 6);
        for (int i = 0; i < 6; ++i)
            QCOMPARE(QFileInfo(done[i].source).fileName(), sources[i]);
        for (int i = 0; i < 6; ++i) {
            if (sources[i] == QLatin1String("IMG_0003.heic")) {
                QVERIFY2(done[i].message.contains("IMG_0003.heic"), qPrintable(done[i].message));
                continue;
            }
            QVERIFY2(done[i].message.isEmpty(), qPrintable(done[i].message));
            QImageReader copy(done[i].target);
            QCOMPARE(copy.format(), QByteArray("jpeg"));
        }
        QCOMPARE(allFiles(list),
                 (QStringList{"00050_IMG_0001.jpg", "00050_IMG_0002.jpg", "00050_IMG_0004.jpg",
                              "00050_IMG_0005.jpg", "00050_IMG_0006.jpg"}));
        // The HEIC stored on its side stands upright.
        QCOMPARE(QImageReader(list + "/00050_IMG_0001.jpg").size(), QSize(400, 300));
    }

    // Conversions under way when their owner goes are finished, not cut off: their copies are
    // whole, and no hidden or temporary file is left.
    void conversionsUnderWayAreFinishedWhenTheOwnerGoes()
    {
        const QString list = path("left");
        QDir().mkpath(list);
        {
            ReadyListConversions conversions(2);
            conversions.start(path("source/IMG_0001.HEIC"), list + "/00050_IMG_0001.jpg", 1);
            conversions.start(path("source/IMG_0002.webp"), list + "/00050_IMG_0002.jpg", 1);
        }
        QCOMPARE(allFiles(list), (QStringList{"00050_IMG_0001.jpg", "00050_IMG_0002.jpg"}));
        QImageReader first(list + "/00050_IMG_0001.jpg");
        QVERIFY(!first.read().isNull());
        QImageReader second(list + "/00050_IMG_0002.jpg");
        QCOMPARE(second.read().size(), QSize(320, 240));
    }

    // A copy that can't be written, or can't be put in place, leaves no file behind: a folder
    // stands where the temporary file, or the copy itself, would go.
    void aCopyThatCantBeWrittenLeavesNoFile_data()
    {
        QTest::addColumn<QString>("blocked");
        QTest::newRow("temporary file") << ".00050_IMG_0002_tmp.jpg";
        QTest::newRow("the copy itself") << "00050_IMG_0002.jpg";
    }
    void aCopyThatCantBeWrittenLeavesNoFile()
    {
        QFETCH(QString, blocked);
        const QString list = path("blocked");
        QDir(list).removeRecursively();
        QVERIFY(QDir().mkpath(list + "/" + blocked + "/inside"));
        const QString message =
            CopyToReadyList(path("source/IMG_0002.webp"), list + "/00050_IMG_0002.jpg");
        QVERIFY(!message.isEmpty());
        QVERIFY2(allFiles(list).isEmpty(), qPrintable(allFiles(list).join(' ')));
    }
};

TARNWICK_TEST_MAIN(TestReadyListConversions)
#include "test_ready_list_conversions.moc"
