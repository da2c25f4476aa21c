#pragma once

#include "BookmarkImport.h"

#include <QDialog>

#include <atomic>
#include <memory>

class QLabel;
class QProgressBar;
class QPushButton;
class QThread;
class QTreeWidget;

// frmImportBookmarks: what an import of a bookmarks file will add where (ImportTree: each
// Category, new or already there, with its links; the links skipped as already there; the
// names changed), and the Import and Cancel buttons. Import writes the links on a thread of its
// own while the bar (ImportProgress) follows; Cancel then stops it between two links, and what
// is written stays. The dialog closes itself when the writing ends; result() tells what was
// written.
class BookmarkImportDialog final : public QDialog
{
    Q_OBJECT
public:
    BookmarkImportDialog(const QString &fileName, const BookmarkFileResult &file, ImportPlan plan,
                         QWidget *parent = nullptr);
    ~BookmarkImportDialog() override;

    const ImportPlan &plan() const { return m_plan; }
    const ImportResult &importResult() const { return m_result; }
    bool writing() const { return m_writing; }
    // The summary above the list, as shown.
    QString summary() const;

    void ImportButton_Click();
    void CancelImportButton_Click();

signals:
    // The writing moved on: done of total links.
    void progressed(int done, int total);
    // The writing ended (whole, stopped or failed in part); the dialog is closing.
    void imported(const ImportResult &result);

protected:
    void reject() override;

private:
    void fillTree();
    void written(const ImportResult &result);

    ImportPlan m_plan;
    ImportResult m_result;
    bool m_writing = false;
    std::shared_ptr<std::atomic<bool>> m_stop = std::make_shared<std::atomic<bool>>(false);
    QThread *m_thread = nullptr;

    QLabel *m_summary = nullptr;
    QTreeWidget *m_tree = nullptr;
    QProgressBar *m_progress = nullptr;
    QPushButton *m_import = nullptr;
    QPushButton *m_cancel = nullptr;
};
