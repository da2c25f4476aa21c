#include "ReadyListConversions.h"

#include "PictureDecoder.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <atomic>

struct ReadyListConversions::Row
{
    QString source;
    QString target;
    qint64 bytes = 0;
    QFutureWatcher<QString> watcher;
};

// How many conversions are in a worker's hands at this moment, and the most there ever were.
struct ReadyListConversions::Counter
{
    std::atomic<int> now{0};
    std::atomic<int> most{0};
};

ReadyListConversions::ReadyListConversions(int threads, qint64 budgetBytes, Converter converter)
    : m_threads(threads > 0 ? threads : std::max(1, QThread::idealThreadCount())),
      m_budget(budgetBytes),
      m_converter(converter ? std::move(converter) : Converter(CopyToReadyList)),
      m_pool(std::make_unique<QThreadPool>()),
      m_counter(std::make_shared<Counter>())
{
    m_pool->setMaxThreadCount(m_threads);
}

ReadyListConversions::~ReadyListConversions()
{
    m_pool->waitForDone();
    m_rows.clear();
}

qint64 ReadyListConversions::ConversionBytes(const QString &source)
{
    if (!IsConvertedSource(QFileInfo(source).fileName()))
        return 0;
    const PictureHeader header = ReadPictureHeader(source);
    if (!header.ok())
        return 0;
    return 8 * qint64(header.stored.width()) * header.stored.height();
}

bool ReadyListConversions::hasRoom(qint64 bytes) const
{
    if (m_rows.empty())
        return true;
    // A plain copy holds no picture: it waits only for a thread.
    return int(m_rows.size()) < m_threads && (bytes == 0 || m_bytes + bytes <= m_budget);
}

bool ReadyListConversions::writes(const QString &target) const
{
    return std::any_of(m_rows.begin(), m_rows.end(),
                       [&target](const std::unique_ptr<Row> &row) { return row->target == target; });
}

void ReadyListConversions::start(const QString &source, const QString &target, qint64 bytes)
{
    auto row = std::make_unique<Row>();
    row->source = source;
    row->target = target;
    row->bytes = bytes;
    m_bytes += bytes;
    const Converter convert = m_converter;
    const std::shared_ptr<Counter> counter = m_counter;
    row->watcher.setFuture(QtConcurrent::run(m_pool.get(), [convert, counter, source, target] {
        const int now = ++counter->now;
        int most = counter->most.load();
        while (now > most && !counter->most.compare_exchange_weak(most, now)) {
        }
        QString message = convert(source, target);
        --counter->now;
        return message;
    }));
    m_rows.push_back(std::move(row));
}

ReadyListConversions::Done ReadyListConversions::takeOldest()
{
    std::unique_ptr<Row> row = std::move(m_rows.front());
    m_rows.pop_front();
    if (!row->watcher.isFinished()) {
        QEventLoop loop;
        QObject::connect(&row->watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
        if (!row->watcher.isFinished())
            loop.exec();
    }
    m_bytes -= row->bytes;
    return Done{row->source, row->target, row->watcher.result()};
}

int ReadyListConversions::mostAtOnce() const
{
    return m_counter->most.load();
}
