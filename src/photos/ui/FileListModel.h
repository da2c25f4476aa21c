#pragma once

#include <QAbstractListModel>
#include <QStringList>

// The files of one folder whose names match a pattern, as a file list box shows them: plain
// files only (no folders, no hidden files), names sorted ignoring case.
//
// A pattern is a list of wildcards parted by ";" ("*.bmp;*.gif;*.jpg"). In each, "*" stands for
// any run of characters and "?" for one; letters match ignoring case; every other character,
// brackets and quotes included, stands for itself. "*.*" and "*" match every name, with or
// without a dot. An empty pattern matches everything.
//
// The listing is read when the path or the pattern is set and on refresh(), not watched. A
// folder that doesn't exist or can't be read gives an empty list. Nothing here follows a
// symbolic link into another folder.
class FileListModel final : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role
    {
        FilePathRole = Qt::UserRole + 1
    };

    explicit FileListModel(QObject *parent = nullptr);

    // The folder listed, as given (cleaned of a trailing "/").
    QString path() const { return m_path; }
    void setPath(const QString &folder);
    QString pattern() const { return m_pattern; }
    void setPattern(const QString &pattern);
    // Reads the folder again.
    void refresh();

    QStringList fileNames() const { return m_names; }
    QString fileName(int row) const;
    // The folder, "/", and the name; "" for a row out of range.
    QString filePath(int row) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // True when name matches one of the pattern's wildcards.
    static bool matches(const QString &name, const QString &pattern);
    // True when name matches one wildcard ("*" and "?", ignoring case).
    static bool matchesWildcard(const QString &name, const QString &wildcard);

private:
    QString m_path;
    QString m_pattern;
    QStringList m_names;
};
