#include "BackupFrame.h"

#include "BackupNames.h"
#include "DialogMultiFile.h"
#include "Helpers.h"
#include "frmDialogUpload.h"
#include "frmMain.h"

#include <QBrush>
#include <QFileDialog>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

void BackupFrame::runJob(const std::function<void()> &job)
{
    // One job at a time: a click that reaches the page while one runs is not a second job.
    if (m_running)
        return;
    m_running = true;
    job();
    m_running = false;
    if (listViewShown())
        refreshListView();
}

void BackupFrame::ScanAndBackupButton_Click()
{
    runJob([this] { m_jobs->ScanAndBackupButton(); });
}

void BackupFrame::BackupSelectedButton_Click()
{
    runJob([this] { m_jobs->BackupSelectedButton(); });
}

void BackupFrame::AddNewFileButton_Click()
{
    runJob([this] { m_jobs->AddNewFileButton(chooseFiles); });
}

void BackupFrame::CreateCompressedDirButton_Click()
{
    runJob([this] { m_jobs->CreateCompressedDirButton(chooseFolder); });
}

void BackupFrame::RecompressButton_Click()
{
    runJob([this] { m_jobs->RecompressButton(); });
}

void BackupFrame::BackupTarnwickButton_Click()
{
    runJob([this] { m_jobs->BackupTarnwickButton(); });
}

void BackupFrame::BuildBackupWebPageButton_Click()
{
    runJob([this] { m_jobs->BuildBackupWebPageButton(); });
}

void BackupFrame::RemoveThisItemButton_Click()
{
    runJob([this] { m_jobs->RemoveThisItemButton(); });
}

void BackupFrame::RelocateFileButton_Click()
{
    runJob([this] { m_jobs->RelocateFileButton(chooseFile); });
}

void BackupFrame::CopyToTheClipboardButton_Click()
{
    runJob([this] { m_jobs->CopyToTheClipboardButton(); });
}

void BackupFrame::RestoreButton_Click()
{
    runJob([this] { m_jobs->RestoreButton(); });
}

void BackupFrame::BackupFileList_Click()
{
    const QListWidgetItem *item = m_fileList->currentItem();
    if (!item)
        return;
    m_jobs->BackupFileList_Click(item->text());
}

void BackupFrame::refresh()
{
    if (m_running)
        return;
    m_jobs->FillFileList();
    if (listViewShown())
        refreshListView();
}

void BackupFrame::showListView(bool show)
{
    if (m_listViewButton->isChecked() != show)
        m_listViewButton->setChecked(show);
    m_listView->setVisible(show);
    m_fileList->setVisible(!show);
    m_listViewButton->setText(show ? QStringLiteral("Show the List of Files")
                                   : QStringLiteral("Show All Files with their State"));
    if (show)
        refreshListView();
}

bool BackupFrame::listViewShown() const
{
    return !m_listView->isHidden();
}

void BackupFrame::refreshListView()
{
    m_listView->clear();
    const QStringList names = BackupFileList();
    QList<QTreeWidgetItem *> rows;
    rows.reserve(names.size());
    for (const QString &name : names) {
        BackupRecord entry;
        const bool listed = m_list.ReadBackupRecord(name, entry) == 0;
        QString local;
        const LookUp found =
            listed ? LookUpLocalFile(entry.LocationPath, entry.Filename, &local) : LookUp::Missing;
        QString state;
        QColor colour;
        if (!listed) {
            state = QStringLiteral("Not in the list file");
            colour = QColor(255, 0, 0);
        } else if (found != LookUp::Found) {
            state = QStringLiteral("The File is not in the expected location");
            colour = QColor(255, 0, 0);
        } else if (BackupIsDue(entry.DateModified, FileDateTime(local), false)) {
            state = QStringLiteral("Changed since the last backup");
            colour = QColor(255, 0, 0);
        } else {
            state = QStringLiteral("Backed up");
            colour = QColor(0, 192, 0);
        }
        auto *row = new QTreeWidgetItem(
            {name, state, entry.LocationPath, entry.DateBackup,
             QString::number(entry.NumberOfBackupTimes),
             entry.UploadPath.isEmpty() ? QString() : RemoteNameOf(entry.UploadPath)});
        for (int column = 0; column < 2; ++column)
            row->setForeground(column, QBrush(colour));
        rows << row;
    }
    m_listView->addTopLevelItems(rows);
}

FileChoice BackupFrame::showFileSearch()
{
    DialogMultiFile dialog(&m_window);
    dialog.exec();
    FileChoice choice = dialog.choice();
    dialog.setDialogState(QStringLiteral("Ended"));
    return choice;
}

QString BackupFrame::showFolderDialog(const QString &start)
{
    frmDialogUpload dialog(start, &m_window);
    dialog.exec();
    return dialog.chosenFolder();
}

QString BackupFrame::showOpenDialog(const QString &start)
{
    return QFileDialog::getOpenFileName(&m_window, QStringLiteral("Find Where this File Has Gone"),
                                        start, QStringLiteral("All files (*)"));
}
