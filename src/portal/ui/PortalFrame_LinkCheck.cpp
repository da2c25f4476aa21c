#include "JobUi.h"
#include "LinkCheckDialog.h"
#include "PortalFrame.h"

#include <QApplication>
#include <QBrush>
#include <QLineEdit>
#include <QListWidget>
#include <QStyle>

using namespace BuildStartup;

LinkCheckDialog *PortalFrame::checkDialog() const
{
    return m_checkDialog;
}

void PortalFrame::CheckLinksButton_Click()
{
    if (m_checkDialog) {
        m_checkDialog->raise();
        m_checkDialog->activateWindow();
        return;
    }
    // Commit what the boxes hold first: the check reads the store.
    DisplayLinkTxt_LostFocus();
    URLTxt_LostFocus();
    QList<CheckedLink> links;
    for (const QString &catFile : CategoryFiles()) {
        const QString folder = CategoryFolder(catFile);
        for (const QString &file : PageLinkFiles(folder)) {
            PageLink link;
            const QString path = folder + QLatin1Char('/') + file;
            if (!LoadPageLink(path, link).ok)
                continue;
            links.append(CheckedLink{CategoryName(catFile), file.chopped(4), path, link.URLName});
        }
    }
    if (links.isEmpty()) {
        m_services.ui->Message(QStringLiteral("There are no Page Links to check yet."),
                               QStringLiteral("Check Links"), JobUi::Buttons::Ok,
                               JobUi::Icon::Information);
        return;
    }
    m_marks.clear();
    showMarks();
    auto *dialog = new LinkCheckDialog(links, m_services.linkCheck, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_checkDialog = dialog;
    connect(dialog, &LinkCheckDialog::linkMarked, this,
            [this](const QString &path, LinkVerdict verdict, const QString &text) {
                setLinkMark(path, {verdict, text});
            });
    connect(dialog, &LinkCheckDialog::linksUpdated, this, [this](const QStringList &paths) {
        // The link on show follows its record.
        if (!m_loadedFile.isEmpty() && paths.contains(m_loadedFile)) {
            PageLink link;
            if (LoadPageLink(m_loadedFile, link).ok) {
                m_current.URLName = link.URLName;
                m_url->setText(link.URLName);
                m_url->setModified(false);
            }
        }
    });
    // The window stays in use beside the list: the dialog is not modal.
    dialog->show();
    dialog->start();
}

void PortalFrame::setLinkMark(const QString &ptrPath, const LinkMark &mark)
{
    m_marks.insert(ptrPath, mark);
    if (m_file21Path.isEmpty() || !ptrPath.startsWith(m_file21Path + QLatin1Char('/')))
        return;
    showMarks();
}

void PortalFrame::showMarks()
{
    QStyle *style = QApplication::style();
    for (int i = 0; i < m_file21->count(); ++i) {
        QListWidgetItem *item = m_file21->item(i);
        const LinkMark mark = m_marks.value(m_file21Path + QLatin1Char('/') + item->text());
        item->setData(Qt::UserRole, VerdictWord(mark.verdict));
        switch (mark.verdict) {
        case LinkVerdict::Ok:
            item->setIcon(style->standardIcon(QStyle::SP_DialogApplyButton));
            item->setForeground(QBrush());
            break;
        case LinkVerdict::Moved:
            item->setIcon(style->standardIcon(QStyle::SP_ArrowForward));
            item->setForeground(QBrush(QColor(0xb3, 0x5c, 0x00)));
            break;
        case LinkVerdict::Dead:
            item->setIcon(style->standardIcon(QStyle::SP_MessageBoxCritical));
            item->setForeground(QBrush(QColor(0xc0, 0x1c, 0x28)));
            break;
        case LinkVerdict::Unchecked:
            item->setIcon(QIcon());
            item->setForeground(QBrush());
            break;
        }
        item->setToolTip(mark.verdict == LinkVerdict::Unchecked
                             ? QString()
                             : VerdictWord(mark.verdict) + QStringLiteral(": ") + mark.text);
    }
}
