#pragma once

#include <QDialog>
#include <QPointer>

class DirListBox;
class FileListModel;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QTimer;
class frmZoom;

// "Select Directory": the program's own folder picker. The drive list, the folder list and
// the path text move together; "View Directory Content" opens the list of files beside the
// folders, and a click on a picture shows it in the preview, fitted and centred across the
// preview frame with its top at the frame's top. A double click on the preview opens frmZoom.
//
// NewPath is the result: the chosen folder, or "" when the user cancelled (Cancel, Escape or the
// close box). OK takes the folder only when the highlighted folder is the open one.
//
// While no zoom window is open, Timer1 brings the picker back above its parent window should
// the parent have come to the front; it never reaches over other programs.
class frmDialogPg final : public QDialog
{
    Q_OBJECT
public:
    // PickerShowsImages: list only pictures (.bmp, .gif, .jpg) rather than every file.
    // startFolder: the folder open at first; the home folder when it doesn't exist.
    frmDialogPg(bool PickerShowsImages, const QString &startFolder, QWidget *parent = nullptr);

    // Shows the picker modally over parent and returns NewPath ("" when cancelled).
    static QString PickFolder(QWidget *parent, const QString &startFolder, bool PickerShowsImages);

    QString NewPath() const;
    // The open folder of Dir1, and the folder File1 lists.
    QString dirPath() const;
    QString filePath() const;

    // The shared documents for a shared desktop path: cut behind "All Users" and "/Documents"
    // put behind, when the path holds those words; otherwise the path as it stands.
    static QString SharedFilesFolder(const QString &sharedDesktop);

    // The file patterns of File1.
    static QString ImagePattern();
    static QString AllFilesPattern() { return QStringLiteral("*.*"); }

    // The zoom window opened from the preview, while it is open.
    frmZoom *zoomWindow() const { return m_zoom; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildForm();
    void Drive1_Change(int index);
    void Dir1_Change(const QString &path);
    void PathText_LostFocus();
    void Command1_Click(int index);
    void ViewContentButton_Click();
    void File1_Click(const QModelIndex &index);
    void Image2_DblClick();
    void OKButton_Click();
    void CancelButton_Click();
    void Timer1_Timer();
    bool openFolder(const QString &folder);
    void showMessage(const QString &text);

    QComboBox *m_drive = nullptr;
    DirListBox *m_dir = nullptr;
    QListView *m_file = nullptr;
    FileListModel *m_files = nullptr;
    QLineEdit *m_pathText = nullptr;
    QLineEdit *m_newPath = nullptr;
    QPushButton *m_viewContent = nullptr;
    QFrame *m_frame = nullptr;
    QLabel *m_image2 = nullptr;
    QLabel *m_image5 = nullptr;
    QLabel *m_label1 = nullptr;
    QLabel *m_label2 = nullptr;
    QTimer *m_timer = nullptr;
    QPointer<frmZoom> m_zoom;
};
