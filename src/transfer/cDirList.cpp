#include "cDirList.h"

const cDirItem *cDirList::Item(qsizetype index) const
{
    if (index < 0 || index >= m_items.size())
        return nullptr;
    return &m_items[index];
}

const cDirItem *cDirList::Item(const QString &name) const
{
    for (const cDirItem &item : m_items) {
        if (item.Name == name)
            return &item;
    }
    for (const cDirItem &item : m_items) {
        if (item.Name.compare(name, Qt::CaseInsensitive) == 0)
            return &item;
    }
    return nullptr;
}
