#include "BookmarkImportDialog.h"
#include "Folders.h"
#include "JobUi.h"
#include "PortalFrame.h"

#include <QFileInfo>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QThread>

#include <memory>

namespace {

struct ReadBookmarks
{
    BookmarkFileResult file;
    ImportPlan plan;
};

QString number(int n)
{
    return QLocale(QLocale::English).toString(n);
}

} // namespace

BookmarkImportDialog *PortalFrame::importDialog() const
{
    return m_importDialog;
}

void PortalFrame::ImportBookmarks_Click()
{
    if (m_readingBookmarks || m_importDialog)
        return;
    if (!m_services.chooseBookmarks)
        return;
    const QString path = m_services.chooseBookmarks();
    if (path.isEmpty())
        return;
    // Commit what the boxes hold first: the import reads the store.
    DisplayLinkTxt_LostFocus();
    URLTxt_LostFocus();
    m_readingBookmarks = true;
    m_importBookmarks->setEnabled(false);
    setCursor(Qt::BusyCursor);
    // A file of thousands of links, each with its icon, is read off the window's thread.
    auto read = std::make_shared<ReadBookmarks>();
    const QString startup = Folders::StartupFolder();
    QThread *thread = QThread::create([read, path, startup] {
        read->file = BookmarkFile::ReadBookmarkFile(path);
        if (read->file.ok)
            read->plan = BookmarkImport::PlanBookmarkImport(read->file, startup);
    });
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    connect(thread, &QThread::finished, this, [this, read, path] {
        m_readingBookmarks = false;
        m_importBookmarks->setEnabled(true);
        unsetCursor();
        if (!read->file.ok) {
            m_services.ui->Message(read->file.message, QStringLiteral("Import Bookmarks"),
                                   JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return;
        }
        showImportPreview(path, read->file, read->plan);
    });
    thread->start();
}

void PortalFrame::showImportPreview(const QString &path, const BookmarkFileResult &file,
                                    const ImportPlan &plan)
{
    auto *dialog = new BookmarkImportDialog(QFileInfo(path).fileName(), file, plan, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    m_importDialog = dialog;
    connect(dialog, &BookmarkImportDialog::imported, this, [this](const ImportResult &result) {
        bookmarksImported();
        QString text;
        if (result.cancelled)
            text = QStringLiteral("The import was stopped: %1 Page Links were added in %2 new "
                                  "Categories before it stopped. What was added stays.")
                       .arg(number(result.linksWritten), number(result.categoriesMade));
        else
            text = QStringLiteral("%1 Page Links were added, %2 new Categories made.")
                       .arg(number(result.linksWritten), number(result.categoriesMade));
        if (!result.failures.isEmpty())
            text += QStringLiteral("\n\nThese could not be written:\n") +
                    result.failures.mid(0, 20).join(QLatin1Char('\n')) +
                    (result.failures.size() > 20 ? QStringLiteral("\n...") : QString());
        m_services.ui->Message(text, QStringLiteral("Import Bookmarks"), JobUi::Buttons::Ok,
                               result.failures.isEmpty() ? JobUi::Icon::Information
                                                         : JobUi::Icon::Warning);
    });
    dialog->open();
}

void PortalFrame::bookmarksImported()
{
    refreshCategories();
    refreshLinks();
    step(51);
}
