// Bookmark import of a browser's export of 5,000 links (Chromium's form, each link with its
// icon as a data URI): the file read, the import worked out against the store, and the 5,000
// Page Links written, timed over several runs; then the whole import as the tab runs it (read
// and worked out on a thread, then written on a thread) while the event loop of the calling
// thread counts its turns, to give the longest time the window would go without one.
//
//   tarnwick_bookmarks_bench <file.html> [runs]
#include "BookmarkFile.h"
#include "BookmarkImport.h"
#include "Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

struct Spread
{
    double fastest, median, slowest;
};

Spread spread(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return {times.front(), times[times.size() / 2], times.back()};
}

void emptyStore(const QString &startup)
{
    QDir(startup).removeRecursively();
    QDir().mkpath(startup);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <bookmarks.html> [runs]\n", argv[0]);
        return 2;
    }
    const int runs = argc > 2 ? std::atoi(argv[2]) : 7;
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly))
        return 2;
    const QByteArray bytes = in.readAll();
    QTemporaryDir home;
    const QString startup = home.path() + QStringLiteral("/Startup");

    std::vector<double> read, plan, write;
    BookmarkFileResult file;
    ImportPlan planned;
    ImportResult written;
    for (int run = 0; run < runs; ++run) {
        emptyStore(startup);
        QElapsedTimer timer;
        timer.start();
        file = BookmarkFile::ReadBookmarks(bytes, QStringLiteral("bookmarks.html"));
        read.push_back(timer.nsecsElapsed() / 1e9);
        timer.restart();
        planned = BookmarkImport::PlanBookmarkImport(file, startup);
        plan.push_back(timer.nsecsElapsed() / 1e9);
        timer.restart();
        written = BookmarkImport::ApplyBookmarkImport(planned);
        write.push_back(timer.nsecsElapsed() / 1e9);
    }
    std::printf("file: %lld bytes, %d links in %d folders (%d with links)\n",
                static_cast<long long>(bytes.size()), file.links, file.folderCount,
                int(file.folders.size()));
    std::printf("plan: %d links into %d categories; written %d\n", planned.links,
                int(planned.categories.size()), written.linksWritten);
    const auto show = [runs](const char *what, const std::vector<double> &times) {
        const Spread s = spread(times);
        std::printf("  %-26s %d runs: fastest %.3f s, median %.3f s, slowest %.3f s\n", what, runs,
                    s.fastest, s.median, s.slowest);
    };
    show("read the file", read);
    show("work out the import", plan);
    show("write 5,000 Page Links", write);

    // The import as the tab runs it, with the event loop of this thread counting its turns.
    emptyStore(startup);
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0, longest = 0, turns = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        longest = std::max(longest, now - last);
        last = now;
        ++turns;
    });
    tick.start(1);
    bool done = false;
    QThread *reader = QThread::create([&] {
        file = BookmarkFile::ReadBookmarks(bytes, QStringLiteral("bookmarks.html"));
        planned = BookmarkImport::PlanBookmarkImport(file, startup);
    });
    QObject::connect(reader, &QThread::finished, [&] {
        QThread *writer = QThread::create([&] {
            written = BookmarkImport::ApplyBookmarkImport(planned, [](int, int) { return true; });
        });
        QObject::connect(writer, &QThread::finished, [&] {
            done = true;
            writer->deleteLater();
        });
        writer->start();
        reader->deleteLater();
    });
    last = clock.nsecsElapsed();
    reader->start();
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::printf("whole import off the event loop's thread: %.3f s, %d links written; the event "
                "loop turned %lld times, longest gap %.1f ms\n",
                clock.nsecsElapsed() / 1e9, written.linksWritten, static_cast<long long>(turns),
                longest / 1e6);
    return written.linksWritten == planned.links ? 0 : 1;
}
