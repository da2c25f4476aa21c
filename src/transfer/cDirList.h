#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// One entry of a remote directory listing.
struct cDirItem
{
    // Attribute flags, with the values the listing columns know them by.
    enum Attribute : quint32
    {
        ReadOnly = 0x1,
        Hidden = 0x2,
        System = 0x4,
        Directory = 0x10,
        Archive = 0x20,
        Normal = 0x80,
        Temporary = 0x100,
        Compressed = 0x800,
        Offline = 0x1000,
    };

    QString Name;
    qint64 Size = 0;
    // A listing tells one time, the last change; the creation and access times repeat it.
    QDateTime CreationTime;
    QDateTime LastAccessTime;
    QDateTime LastWriteTime;
    quint32 Attributes = Normal;

    bool isDirectory() const { return Attributes & Directory; }
};

// The listing of one directory, in the server's order.
class cDirList
{
public:
    void Add(const cDirItem &item) { m_items.append(item); }
    void Clear() { m_items.clear(); }
    qsizetype Count() const { return m_items.size(); }
    // By position, 0 to Count() - 1; nullptr outside.
    const cDirItem *Item(qsizetype index) const;
    // By name: the entry of exactly that name, else one that differs only in case; nullptr
    // when there is none.
    const cDirItem *Item(const QString &name) const;

    // Iteration in the listing's order.
    QList<cDirItem>::const_iterator begin() const { return m_items.cbegin(); }
    QList<cDirItem>::const_iterator end() const { return m_items.cend(); }

private:
    QList<cDirItem> m_items;
};
