#pragma once

#include "FileSearch.h"

#include <QDialog>
#include <QList>

class DirListBox;
class FileListModel;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;

// "File To Upload": chooses a folder (and shows its files) with a drive box, a folder box and a
// file box. PathText holds the folder chosen. With Check1 ("Include Sub-directories when
// uploading") OK first counts the files of the folder and those below it.
class frmDialogUpload final : public QDialog
{
    Q_OBJECT
public:
    explicit frmDialogUpload(const QString &start, QWidget *parent = nullptr);

    // The folder chosen; "" when the dialog was cancelled.
    QString chosenFolder() const;
    // The files that OK found below the folder when Check1 was set.
    QList<FoundFile> foundFiles() const { return m_found; }
    bool setFolder(const QString &folder);

    void OKButton_Click();
    void CancelButton_Click();
    void SelectAllButton_Click();

protected:
    void reject() override;

private:
    QComboBox *m_drive = nullptr;
    DirListBox *m_dir = nullptr;
    QListView *m_files = nullptr;
    FileListModel *m_model = nullptr;
    QLineEdit *m_pathText = nullptr;
    QCheckBox *m_check1 = nullptr;
    QLabel *m_count = nullptr;
    QList<FoundFile> m_found;
};
