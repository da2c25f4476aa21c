#include "CopyPhotos.h"

#include "Helpers.h"
#include "History.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoPage.h"
#include "PictureDecoder.h"
#include "PictureSizing.h"

#include <QEventLoop>
#include <QFutureWatcher>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <deque>
#include <memory>

namespace {

// What sizing one picture may hold at its peak, at four bytes a pixel: the decoded picture
// (a JPEG decoder reduces while it decodes, other formats are decoded whole), the filter's
// half-way picture (no larger than the decoded one), the enlarged copy and the thumbnail.
qint64 sizingBytes(const QString &source, double largePercent, double smallPercent)
{
    const PictureHeader header = ReadPictureHeader(source);
    if (!header.ok())
        return 0; // unreadable: told when its turn comes
    const QSize full = header.upright();
    const auto area = [](QSize size) { return qint64(size.width()) * size.height(); };
    const QSize large = ScaledSize(full, largePercent);
    const QSize small = ScaledSize(full, smallPercent);
    const qint64 decoded =
        area(DecodedSize(header, large.width() >= small.width() ? large : small,
                         PictureMemoryBudget));
    return 4 * (2 * decoded + area(large) + area(small));
}

struct Row
{
    int index = 0;
    qint64 bytes = 0;
    QString smallPath;
    QString largePath;
    std::unique_ptr<QFutureWatcher<SizeResult>> watcher;
};

bool isMade(const QString &entry)
{
    return entry.startsWith(QLatin1String("Sml_")) || entry.startsWith(QLatin1String("Lrg_")) ||
           entry.endsWith(QLatin1String(".htm"));
}

bool cancelled(const JobState &state)
{
    return state.UploadCancelled || state.UserResponse == JobState::Skip;
}

// Waits for the row's work with the event loop live.
SizeResult await(Row &row)
{
    if (!row.watcher->isFinished()) {
        QEventLoop loop;
        QObject::connect(row.watcher.get(), &QFutureWatcherBase::finished, &loop,
                         &QEventLoop::quit);
        if (!row.watcher->isFinished())
            loop.exec();
    }
    return row.watcher->result();
}

} // namespace

bool CopyPhotos(const QString &target, bool keep, const CopyPhotosInput &input,
                const PhotoPage &page, JobUi &ui, JobState &state)
{
    ui.SetStatusText(QStringLiteral("Sizing Photos"));
    ui.SetStepOf(QString());
    ui.ProcessEvents();
    const QString folder = input.ChoosenUploadPath;
    const QStringList list = ListPictureFiles(folder);
    const double largePercent = NumericValue(input.My_resize_1);
    const double smallPercent = NumericValue(input.My_resize_0);
    const int threads =
        input.threads > 0 ? input.threads : std::max(1, QThread::idealThreadCount());
    const auto sizer = input.sizer ? input.sizer : decltype(input.sizer)(SizePhoto);

    // A pool of the job's own: Qt's painting borrows the global pool's threads to fill large
    // areas, and a global pool busy with sizing would hold up every repaint of the window.
    // Declared before the rows, so it outlives them and waits for any picture still in hand.
    QThreadPool pool;
    pool.setMaxThreadCount(threads);
    std::deque<Row> inFlight;
    qint64 inFlightBytes = 0;
    bool ok = true;
    bool stopping = false;
    qsizetype next = 0;
    // Rows start in list order and are finished in list order, a few at a time.
    while (!inFlight.empty() || (next < list.size() && !stopping)) {
        while (!stopping && next < list.size() && qsizetype(inFlight.size()) < threads) {
            const int i = int(next++);
            ui.SetStepOf(QStringLiteral("%1 of %2").arg(i + 1).arg(list.size()));
            ui.ProcessEvents();
            if (cancelled(state)) {
                stopping = true;
                ok = false;
                break;
            }
            const QString &entry = list.at(i);
            if (isMade(entry))
                continue;
            const QString source = folder + QLatin1Char('/') + entry;
            const qint64 bytes = sizingBytes(source, largePercent, smallPercent);
            if (!inFlight.empty() && inFlightBytes + bytes > SizingMemoryBudget) {
                --next; // started once the pictures in hand are done
                break;
            }
            Row row;
            row.index = i;
            row.bytes = bytes;
            inFlightBytes += bytes;
            row.smallPath = target + QStringLiteral("/Sml_") + entry;
            row.largePath = target + QStringLiteral("/Lrg_") + entry;
            if (!keep) {
                DoKill(row.smallPath);
                DoKill(row.largePath);
            }
            FindPhoto(page, RemoveGroupNumber(entry), GetGroupNumber(entry));
            row.watcher = std::make_unique<QFutureWatcher<SizeResult>>();
            row.watcher->setFuture(QtConcurrent::run(&pool, sizer, source, row.largePath,
                                                     largePercent, row.smallPath, smallPercent,
                                                     input.jpeg));
            inFlight.push_back(std::move(row));
        }
        if (inFlight.empty())
            continue;
        Row row = std::move(inFlight.front());
        inFlight.pop_front();
        const SizeResult result = await(row);
        inFlightBytes -= row.bytes;
        if (stopping)
            continue;
        if (!result.loadError.isEmpty()) {
            ui.Message(QStringLiteral("Error copying file - ") + result.loadError,
                       QStringLiteral("Tarnwick"), JobUi::Buttons::Ok, JobUi::Icon::Critical);
            stopping = true;
            ok = false;
            // Rows behind the failing one were started early; a run that ends here leaves no
            // copies of them.
            for (Row &later : inFlight) {
                await(later);
                DoKill(later.smallPath);
                DoKill(later.largePath);
            }
            inFlight.clear();
            continue;
        }
        for (const QString &message : {result.largeMessage, result.smallMessage}) {
            if (!message.isEmpty())
                ui.Message(message, QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                           JobUi::Icon::Critical);
        }
        for (int turn = 0; turn < 3; ++turn)
            ui.ProcessEvents();
    }
    return ok;
}

QString CopyToReadyListLive(const QString &source, const QString &target)
{
    QFutureWatcher<QString> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(QtConcurrent::run(CopyToReadyList, source, target));
    if (!watcher.isFinished())
        loop.exec();
    return watcher.result();
}
