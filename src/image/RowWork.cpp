#include "RowWork.h"

#include <QThreadPool>
#include <QtConcurrent/QtConcurrentMap>

#include <algorithm>
#include <vector>

bool ForRows(int first, int last, const std::function<void(int, int)> &work, bool parallel,
             int phase, int percentBase, const FilterProgress &progress)
{
    if (last < first)
        return true;
    const int rows = last - first + 1;
    const int threads = parallel ? std::max(1, QThreadPool::globalInstance()->maxThreadCount()) : 1;
    // Bands of about 1/64 of the picture, at least 16 rows, so a cancel is seen quickly and the
    // progress moves smoothly, while a band is still large enough to split across cores.
    const int band = std::max(16, rows / 64);
    for (int begin = first; begin <= last; begin += band) {
        const int end = std::min(last + 1, begin + band);
        if (threads > 1 && end - begin >= 2 * threads) {
            std::vector<std::pair<int, int>> parts;
            const int step = (end - begin + threads - 1) / threads;
            for (int b = begin; b < end; b += step)
                parts.emplace_back(b, std::min(end, b + step));
            QtConcurrent::blockingMap(
                parts, [&work](const std::pair<int, int> &p) { work(p.first, p.second); });
        } else {
            work(begin, end);
        }
        if (progress && rows >= 1) {
            const int done = end - 1;
            const int base = percentBase > 0 ? percentBase : last;
            const int percent = base > 0 ? int(qint64(done) * 100 / base) : 100;
            if (!progress(phase, percent))
                return false;
        }
    }
    return true;
}
