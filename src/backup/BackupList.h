#pragma once

#include "BackupRecord.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <sys/types.h>

// The backup list BackupList.lst in the backup folder, the backup function's only store, and the
// operations of the module BuildBackup on it: append the current record, load a record by file
// name, delete a record by file name, and the names that the list box shows.
//
// The file's bytes are exactly those of the list's long-standing format: ten "key = value" lines
// per record, CR LF ends, one empty line behind a record as it is appended, none behind the
// records that a delete has rewritten. Names are written in UTF-8; a line that isn't valid UTF-8
// (a hand-edited file) is read as Latin-1.
//
// Reading: the file is read once and kept with an index of its "filename = " lines, and read
// again only when it changed on disk (size, times or inode), so a walk over the whole list reads
// it once, not once per entry. Every answer is the one that walking the file from its start
// would give. A delete rewrites the file through BackupList.tmp and keeps the former list as
// BackupList.old.
//
// Not thread-safe; the jobs use it on the window's thread.
class BackupList final
{
public:
    // folder: where the three files lie; empty means the program's backup folder, looked up at
    // each call.
    explicit BackupList(const QString &folder = QString());

    QString folder() const;
    QString listPath() const; // BackupList.lst
    QString tmpPath() const;  // BackupList.tmp
    QString oldPath() const;  // BackupList.old

    // Writes the record at the end of the list (made when missing): its ten lines and one more
    // line end. false (lastError() says why) when the file could not be written.
    bool AppendBackupRecord(const BackupRecord &record);
    // Loads the first record of that name (exact, case counts) into record: 0 when found, -1
    // when not (record unchanged). A record cut short by the end of the file, or a value that
    // isn't of its field's type, gives -1 with the fields before it filled. A missing list is
    // made anew (one empty line), also with -1.
    qint16 ReadBackupRecord(const QString &name, BackupRecord &record);
    // Removes the first record of that name: the items before it and behind its ten lines go to
    // BackupList.tmp without the empty ones; then the list becomes BackupList.old and the new
    // content takes its place. -1 when no record has that name (the list is not touched).
    qint16 DeleteBackupRecord(const QString &name);
    // Makes the list anew: one empty line.
    void CreateBackupList();
    // The value of "Filename" of every item that holds "filename = ", in the file's order;
    // empty when there is no list.
    QStringList FileNames();

    // The reason of the last write that failed; "" after a success.
    QString lastError() const { return m_lastError; }
    // How often the file has been read from disk (for tests and the benchmark).
    int fileReads() const { return m_fileReads; }

private:
    struct Stamp
    {
        bool exists = false;
        qint64 size = -1;
        qint64 mtimeNs = 0;
        qint64 ctimeNs = 0;
        ino_t inode = 0;
        bool operator==(const Stamp &) const = default;
    };
    struct Item
    {
        qsizetype start = 0;
        qsizetype end = 0;
    };
    enum class Load
    {
        Loaded,
        Missing,
        Unreadable
    };

    Load load();
    void keep(QByteArray bytes);
    void forget();
    QString itemText(qsizetype index) const;
    bool itemIsBlank(qsizetype index) const;
    static Stamp stampOf(const QString &path);

    QString m_folder;
    bool m_loaded = false;
    Stamp m_stamp;
    QByteArray m_bytes;
    QList<Item> m_items;
    QHash<QString, qsizetype> m_firstRecord; // "filename = <name>" -> its first item
    QString m_lastError;
    int m_fileReads = 0;
};

// FillFileList: the names of the list, sorted as the list box sorts (letter case ignored), after
// the older of two records of one name has been removed from the file, so that each name shows
// once. record is the current record, which the removal loads.
QStringList FillFileList(BackupList &list, BackupRecord &record);
