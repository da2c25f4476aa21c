#pragma once

#include <QListWidget>

// A folder list box: the open folder with the folders above it, then its sub-folders, sorted
// ignoring case, hidden ones left out. A click only highlights a folder; a double click (or
// Enter) opens it (once control is back in the event loop), which changes path() and emits
// pathChanged. Listing a folder reads one
// level and follows no symbolic link further.
class DirListBox final : public QListWidget
{
    Q_OBJECT
public:
    explicit DirListBox(QWidget *parent = nullptr);

    // The open folder, cleaned, without a trailing "/" (but "/" for the root).
    QString path() const { return m_path; }
    // Opens folder. False (and nothing changes) when it isn't an existing folder.
    bool setPath(const QString &folder);
    // The folder under the highlight: path() unless the user has highlighted another one.
    QString highlightedPath() const;
    // Reads the open folder again.
    void refresh();

signals:
    void pathChanged(const QString &path);

private:
    void open(QListWidgetItem *item);

    QString m_path;
};
