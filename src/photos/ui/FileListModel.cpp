#include "FileListModel.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

FileListModel::FileListModel(QObject *parent) : QAbstractListModel(parent) {}

void FileListModel::setPath(const QString &folder)
{
    m_path = folder.size() > 1 && folder.endsWith(QLatin1Char('/')) ? folder.chopped(1) : folder;
    refresh();
}

void FileListModel::setPattern(const QString &pattern)
{
    m_pattern = pattern;
    refresh();
}

void FileListModel::refresh()
{
    QStringList names;
    if (!m_path.isEmpty()) {
        const QDir dir(m_path);
        const QStringList entries = dir.entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::NoSort);
        for (const QString &name : entries) {
            if (matches(name, m_pattern))
                names.append(name);
        }
    }
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    beginResetModel();
    m_names = names;
    endResetModel();
}

QString FileListModel::fileName(int row) const
{
    return row >= 0 && row < m_names.size() ? m_names.at(row) : QString();
}

QString FileListModel::filePath(int row) const
{
    const QString name = fileName(row);
    if (name.isEmpty())
        return QString();
    return m_path.endsWith(QLatin1Char('/')) ? m_path + name : m_path + QLatin1Char('/') + name;
}

int FileListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant FileListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_names.size())
        return QVariant();
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return m_names.at(index.row());
    if (role == FilePathRole)
        return filePath(index.row());
    return QVariant();
}

bool FileListModel::matches(const QString &name, const QString &pattern)
{
    if (pattern.trimmed().isEmpty())
        return true;
    const QStringList wildcards = pattern.split(QLatin1Char(';'));
    return std::any_of(wildcards.begin(), wildcards.end(), [&](const QString &wildcard) {
        const QString item = wildcard.trimmed();
        return !item.isEmpty() && matchesWildcard(name, item);
    });
}

bool FileListModel::matchesWildcard(const QString &name, const QString &wildcard)
{
    if (wildcard == QStringLiteral("*.*"))
        return true;
    // Greedy match with one step back to the last "*": linear in practice, no recursion.
    qsizetype n = 0;
    qsizetype w = 0;
    qsizetype starAt = -1;
    qsizetype resumeAt = 0;
    while (n < name.size()) {
        if (w < wildcard.size() && wildcard.at(w) == QLatin1Char('*')) {
            starAt = w++;
            resumeAt = n;
        } else if (w < wildcard.size() &&
                   (wildcard.at(w) == QLatin1Char('?') ||
                    wildcard.at(w).toCaseFolded() == name.at(n).toCaseFolded())) {
            ++w;
            ++n;
        } else if (starAt >= 0) {
            w = starAt + 1;
            n = ++resumeAt;
        } else {
            return false;
        }
    }
    while (w < wildcard.size() && wildcard.at(w) == QLatin1Char('*'))
        ++w;
    return w == wildcard.size();
}
