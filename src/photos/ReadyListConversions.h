#pragma once

#include "PictureSizing.h"

#include <QString>

#include <deque>
#include <functional>
#include <memory>

class QThreadPool;

// Pictures of today's formats put onto the Ready to Send list (CopyToReadyList) on worker
// threads, a few at a time, and handed back in the order they were started, whatever order they
// finish in.
//
// How many run at once: at most `threads` (one per processor core by default), and no more than
// the sizing budget holds: each conversion counts ConversionBytes of its picture, and a new one
// starts only while the conversions under way and it stay within budgetBytes. One conversion is
// always let through, however large its picture. With the default budget of 320 MB that is at
// most three 12-megapixel photos at once, one of 24 megapixels or more.
//
// Lives on the event loop's thread; takeOldest() runs the event loop while it waits. A
// conversion under way can't be stopped: the destructor waits for those still running, and
// their copies are finished and kept (CopyToReadyList never leaves half a file).
class ReadyListConversions
{
public:
    struct Done
    {
        QString source;
        QString target;
        QString message; // CopyToReadyList's message: empty when the copy is on the list
    };
    // Converts one picture; CopyToReadyList unless a test brings a routine that wraps it.
    using Converter = std::function<QString(const QString &source, const QString &target)>;

    explicit ReadyListConversions(int threads = 0, qint64 budgetBytes = SizingMemoryBudget,
                                  Converter converter = {});
    ~ReadyListConversions();
    ReadyListConversions(const ReadyListConversions &) = delete;
    ReadyListConversions &operator=(const ReadyListConversions &) = delete;

    // What converting source holds at its peak, counted as eight bytes a pixel of its full size:
    // the decoded picture (three bytes a pixel, or four with transparency), the copy that its
    // colours are converted in or that it is turned into, and the writer's rows. 0 for a picture
    // that goes onto the list as it is (a plain copy), and for a file that can't be read (its
    // conversion says why, at once).
    static qint64 ConversionBytes(const QString &source);

    int threads() const { return m_threads; }
    qint64 budgetBytes() const { return m_budget; }
    // Conversions started and not yet taken back.
    int pending() const { return int(m_rows.size()); }
    // Whether a conversion of that many bytes would start now rather than wait for room.
    bool hasRoom(qint64 bytes) const;
    // Whether a conversion started and not yet taken back writes target.
    bool writes(const QString &target) const;

    // Starts converting source into target on a worker thread. Call with room (hasRoom) and a
    // target that no conversion under way writes.
    void start(const QString &source, const QString &target, qint64 bytes);
    // Waits, with the event loop live, for the oldest conversion started and not yet taken back,
    // and hands it back. Only with pending() above 0.
    Done takeOldest();

    // The largest number of conversions that ran at the same time so far.
    int mostAtOnce() const;

private:
    struct Row;
    int m_threads = 1;
    qint64 m_budget = 0;
    qint64 m_bytes = 0;
    Converter m_converter;
    // A pool of the list's own, as the sizing has: Qt's painting borrows the global pool's threads.
    // Declared before the rows, so that it outlives them and waits for any picture in hand.
    std::unique_ptr<QThreadPool> m_pool;
    std::deque<std::unique_ptr<Row>> m_rows;
    struct Counter;
    std::shared_ptr<Counter> m_counter;
};
