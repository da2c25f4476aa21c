#include "RootSearch.h"

const QStringList &RootSearchOptions::BoxTexts()
{
    static const QStringList texts = {
        QStringLiteral("default.aspx"), QStringLiteral("default.asp"),
        QStringLiteral("default.htm"),  QStringLiteral("default.html"),
        QStringLiteral("index.html"),   QStringLiteral("index.htm"),
    };
    return texts;
}

RootSearchOptions RootSearchOptions::allTicked()
{
    RootSearchOptions options;
    options.ticked = BoxTexts();
    return options;
}

const QString RootSearch::ProbeName = QStringLiteral("Test_Directory");

RootSearch::RootSearch(RootSearchHost &host, RootSearchOptions options)
    : m_host(host), m_options(std::move(options))
{
    m_options.alternate = m_options.alternate.trimmed();
}

bool RootSearch::matches(const QString &name) const
{
    // A substring test on purpose: "default.htm" also marks "default.html" and
    // "old_default.htm.bak".
    const QString lower = name.toLower();
    bool found = false;
    for (const QString &text : m_options.ticked) {
        if (lower.contains(text))
            found = true;
    }
    if (!m_options.alternate.isEmpty() && name.contains(m_options.alternate))
        found = true;
    return found;
}

RootSearchResult RootSearch::run()
{
    RootSearchResult result;
    m_rows.clear();
    m_rows.append({QString(), QStringLiteral("/"), QString()});

    for (int visited = 0; visited < m_rows.size(); ++visited) {
        if (m_host.Cancelled()) {
            result.cancelled = true;
            break;
        }
        m_host.ShowSearchCount(visited + 1, int(m_rows.size()));
        const Row row = m_rows.at(visited);
        m_host.SetFTPDirectory(row.fullPath());
        const QList<RootSearchEntry> listing = m_host.ReloadFTPList();

        bool found = false;
        for (const RootSearchEntry &entry : listing) {
            if (matches(entry.name))
                found = true;
        }
        if (found && row.RootStatus != QLatin1String("Fixed")) {
            result.found = true;
            result.fullPath = row.fullPath();
            result.FTPRoot = result.fullPath.mid(1);
            result.rowsFilled = int(m_rows.size());
            return result;
        }

        for (const RootSearchEntry &entry : listing) {
            // A probe directory that a server would not let go is no candidate: walking into
            // it would only make another one inside.
            if (!entry.isDirectory || entry.name == ProbeName)
                continue;
            if (m_host.Cancelled()) {
                result.cancelled = true;
                break;
            }
            m_host.ShowSearchName(entry.name);
            m_host.ProcessEvents();
            m_host.ProcessEvents();

            // The table has room for MaxRows rows; a directory beyond that gets no row, but
            // the probe below still runs in it, as the walk has no other way to skip it.
            const QString here = m_host.GetFTPDirectory().trimmed();
            const bool hasRoom = m_rows.size() < MaxRows;
            if (hasRoom) {
                Row child;
                child.RootName = entry.name;
                child.RootPrefix = here == QLatin1String("/") ? here : here + QLatin1Char('/');
                m_rows.append(child);
            } else {
                result.rowLimitReached = true;
            }

            m_host.SetFTPDirectory(entry.name);
            m_host.ProcessEvents();
            QString status;
            if (m_host.CreateFTPDirectory(ProbeName)) {
                m_host.ProcessEvents();
                m_host.RemoveFTPDirectory(ProbeName);
                m_host.ProcessEvents();
                m_host.ReloadFTPList();
                status = QStringLiteral("Good");
            } else {
                status = QStringLiteral("Fixed");
            }
            if (hasRoom)
                m_rows.last().RootStatus = status;

            m_host.SetFTPDirectory(QStringLiteral(".."));
            m_host.ReloadFTPList();
            m_host.ProcessEvents();
        }
        if (result.cancelled)
            break;
    }
    result.rowsFilled = int(m_rows.size());
    return result;
}
