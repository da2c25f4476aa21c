#include "FileSearch.h"

#include <QDir>
#include <QFileInfo>

QList<SearchPattern> SearchPatterns(const QString &typed)
{
    QString text = typed;
    if (text.isEmpty())
        text = QStringLiteral("*.*");
    else if (text != QLatin1String("*"))
        text = QLatin1Char('*') + text + QLatin1Char('*');

    QList<SearchPattern> patterns;
    for (QString part : text.split(QLatin1Char(';'))) {
        SearchPattern pattern;
        if (part.startsWith(QLatin1Char('*'))) {
            part.remove(0, 1);
            pattern.exact = false;
            pattern.atEnd = true;
        }
        if (part.endsWith(QLatin1Char('*'))) {
            part.chop(1);
            pattern.exact = false;
            pattern.atStart = true;
        }
        pattern.text = part.toUpper();
        patterns << pattern;
    }
    return patterns;
}

bool MatchesPattern(const QString &name, const SearchPattern &pattern)
{
    const QString upper = name.toUpper();
    // "*.*" stands for every file, with or without a dot in its name.
    if (pattern.atEnd && pattern.atStart && pattern.text == QLatin1String("."))
        return true;
    if (pattern.exact)
        return upper == pattern.text;
    if (pattern.atEnd && pattern.atStart)
        return upper.contains(pattern.text);
    if (pattern.atEnd)
        return upper.endsWith(pattern.text);
    return upper.startsWith(pattern.text);
}

bool MatchesAny(const QString &name, const QList<SearchPattern> &patterns)
{
    for (const SearchPattern &pattern : patterns) {
        if (MatchesPattern(name, pattern))
            return true;
    }
    return false;
}

bool SearchFiles(const QString &root, const QList<SearchPattern> &patterns, bool subFolders,
                 const std::atomic<bool> &cancel,
                 const std::function<void(const QList<FoundFile> &)> &found)
{
    QString start = root;
    if (!start.endsWith(QLatin1Char('/')))
        start += QLatin1Char('/');
    QStringList folders{start};
    for (qsizetype i = 0; i < folders.size(); ++i) {
        if (cancel)
            return false;
        const QString folder = folders.at(i);
        const QDir dir(folder);
        if (!dir.exists() || !dir.isReadable())
            return false;
        if (subFolders) {
            const QFileInfoList children =
                dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
            for (const QFileInfo &child : children) {
                if (cancel)
                    return false;
                if (!child.isSymLink())
                    folders << folder + child.fileName() + QLatin1Char('/');
            }
        }
        QList<FoundFile> rows;
        const QStringList files = dir.entryList(QDir::Files | QDir::System, QDir::Name);
        for (const QString &name : files) {
            if (MatchesAny(name, patterns))
                rows.append({folder, name});
        }
        if (!rows.isEmpty())
            found(rows);
    }
    return true;
}
