#include "DirListBox.h"

#include <QDir>
#include <QFileInfo>
#include <QStyle>

#include <algorithm>

namespace {

const int PathRole = Qt::UserRole + 1;

QString indent(int depth)
{
    return QString(depth * 2, QLatin1Char(' '));
}

} // namespace

DirListBox::DirListBox(QWidget *parent) : QListWidget(parent)
{
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true);
    connect(this, &QListWidget::itemActivated, this, &DirListBox::open);
}

bool DirListBox::setPath(const QString &folder)
{
    const QFileInfo info(folder);
    if (folder.isEmpty() || !info.isDir())
        return false;
    const QString cleaned = QDir::cleanPath(info.absoluteFilePath());
    const bool changed = cleaned != m_path;
    m_path = cleaned;
    refresh();
    if (changed)
        emit pathChanged(m_path);
    return true;
}

QString DirListBox::highlightedPath() const
{
    const QListWidgetItem *item = currentItem();
    return item == nullptr ? m_path : item->data(PathRole).toString();
}

void DirListBox::refresh()
{
    clear();
    if (m_path.isEmpty())
        return;
    const QIcon openIcon = style()->standardIcon(QStyle::SP_DirOpenIcon);
    const QIcon closedIcon = style()->standardIcon(QStyle::SP_DirClosedIcon);

    QStringList chain;
    for (QDir dir(m_path);;) {
        chain.prepend(dir.absolutePath());
        if (dir.isRoot() || !dir.cdUp())
            break;
    }
    QListWidgetItem *current = nullptr;
    for (int depth = 0; depth < chain.size(); ++depth) {
        const QString folder = chain.at(depth);
        const QString name = depth == 0 ? folder : QFileInfo(folder).fileName();
        auto *item = new QListWidgetItem(openIcon, indent(depth) + name, this);
        item->setData(PathRole, folder);
        item->setToolTip(folder);
        current = item;
    }

    QStringList children = QDir(m_path).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
    std::sort(children.begin(), children.end(), [](const QString &a, const QString &b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    const QString base = m_path.endsWith(QLatin1Char('/')) ? m_path : m_path + QLatin1Char('/');
    for (const QString &child : children) {
        auto *item = new QListWidgetItem(closedIcon, indent(int(chain.size())) + child, this);
        item->setData(PathRole, base + child);
        item->setToolTip(base + child);
    }
    setCurrentItem(current);
    scrollToItem(current);
}

void DirListBox::open(QListWidgetItem *item)
{
    if (item == nullptr)
        return;
    // The list is rebuilt on opening; that waits until the item's own signal is over.
    const QString folder = item->data(PathRole).toString();
    QMetaObject::invokeMethod(
        this, [this, folder] { setPath(folder); }, Qt::QueuedConnection);
}
