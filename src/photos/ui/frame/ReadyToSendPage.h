#pragma once

#include "PhotoFrameServices.h"

#include <QString>
#include <QWidget>

#include <array>
#include <deque>

class QAbstractButton;
class QBoxLayout;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPagedPaintDevice;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class ReadyListConversions;
struct PhotoPage;

// The "Select Images" tab of Send a Photo Page: the pictures of the source folder (File2), the
// Ready to Send list in the working folder (File3), the three ways of copying a picture over,
// the group numbers, and the panel that edits a picture's text, side and order.
//
// A file in the working folder is named group number, "_", picture name ("00050_Tree.jpg"); the
// list is the folder's contents, and each copy adds a row to the current PhotoPage record.
// Every handler may run the event loop (prompts, yields between files).
class ReadyToSendPage final : public QWidget
{
    Q_OBJECT
public:
    ReadyToSendPage(PhotoPage &page, PhotoFrameServices &services, QWidget *parent = nullptr);

    // The two folders: ChoosenCopyPath (the source) and ChoosenUploadPath (the working folder).
    QString sourceFolder() const { return m_sourceFolder; }
    QString workingFolder() const { return m_workingFolder; }
    void setSourceFolder(const QString &folder);
    void setWorkingFolder(const QString &folder);

    // Re-reads a folder into its list; selections of names that are still there are kept.
    void refreshSource();
    void refreshReady();

    // CopyButton by index: 0 CopyPhotoPlain, 1 CopyPhotoLeft, 2 CopyPhotoRight.
    void CopyPhotoPlain();
    void CopyPhotoLeft();
    void CopyPhotoRight();
    void FromSelectAllButton_Click();
    void ChangeCopyPathButton_Click();
    // CancelCopy: stops a copy under way. The pictures not yet begun stay selected in File2;
    // those being converted are finished and stay on the list.
    void CancelCopy_Click();
    // A copy is under way (the copy buttons are off, CancelCopy shows).
    bool copying() const { return m_copying; }
    void PreFix_LostFocus();
    void OrderPhotos_LostFocus();

    // EditButtons by index (0-7), and index 8: the panel filled for a row of File3.
    void EditButtons_Click(int index);
    void File3_Click(int row);
    // "Paint": the picture of the preview in the paint window (an empty one when none is shown).
    void Command4_Click();
    void DeleteFromReady();
    void DeleteFromSource();
    void ClearAll();
    void SaveAll();
    void PrintList();
    void LeftRight_Click(int index);

    // Fills the print-out of the list on a printer or PDF writer. Returns false when nothing
    // could be painted on the device.
    bool paintList(QPagedPaintDevice &device) const;
    // The lines of the print-out, heading first.
    QStringList printLines() const;

    // The pointer of the page's last upload ("" when it was never sent); Print List shows it.
    void setPagePointer(const QString &pointer) { m_pagePointer = pointer; }

    // Empties the preview picture.
    void clearPreview();
    // The row of the record that the panel edits (PhotoPage::NotFound when none).
    int EditRow() const { return m_editRow; }

    // The place under the lists where the Build All button and the build options stand.
    QBoxLayout *buildArea() const { return m_buildArea; }

    // "Prompt for Page Titles", "Prompt for Image Descriptions", "Make the image default
    // description blank".
    QCheckBox *titlePrompt() const { return m_titlePrompt; }
    QCheckBox *filePrompt() const { return m_filePrompt; }
    QCheckBox *skipImageInfo() const { return m_skipImageInfo; }

signals:
    // A step of the guide rings was reached (1: a source folder chosen, 3: pictures listed).
    void stepReached(int step);
    // The History folder gained or changed a file.
    void historySaved();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildWidgets();
    QWidget *buildSourceColumn();
    QWidget *buildCopyColumn();
    QWidget *buildReadyColumn();
    QGroupBox *buildEditPanel();
    void copySelected(const QString &suffix);
    bool copyOne(int row, const QString &suffix, qint64 conversionBytes);
    void finishOldestConversion();
    void waitForTarget(const QString &target);
    bool askForFreeGroup(const QString &targetName);
    void selectAfter(int row);
    void showPreview(const QString &path);
    void Text1_Change();
    void showPanel(const QString &caption, bool photoFields);
    void setText1(const QString &text);
    void updateSelectionButtons();
    QString readyPath(const QString &name) const;
    QString sourcePath(const QString &name) const;

    // A picture being converted onto the list: its row of the record and what names it there.
    struct PendingCopy
    {
        int row = 0;
        QString name;  // PhotoName
        QString group; // PhotoOrder
        QString plain; // its name in File2
    };

    PhotoPage &m_page;
    PhotoFrameServices &m_services;
    QString m_sourceFolder;
    QString m_workingFolder;
    QString m_pagePointer;
    QString m_previewPath;
    QString m_oldOrderName;
    int m_editRow = 0;
    bool m_settingText = false;
    bool m_orderBusy = false;
    bool m_copying = false;
    bool m_copyCancelled = false;
    ReadyListConversions *m_conversions = nullptr; // during a copy
    std::deque<PendingCopy> m_pendingCopies;        // in the order they were started

    QListWidget *m_file2 = nullptr;
    QListWidget *m_file3 = nullptr;
    QLineEdit *m_copyPath = nullptr;
    QLineEdit *m_uploadPath = nullptr;
    std::array<QPushButton *, 3> m_copyButtons{};
    std::array<QPushButton *, 8> m_editButtons{};
    QLineEdit *m_preFix = nullptr;
    QLabel *m_copyProgress = nullptr;
    QPushButton *m_cancelCopy = nullptr;
    QLabel *m_currentImage = nullptr;
    QLabel *m_readyCount = nullptr;
    QGroupBox *m_editFrame = nullptr;
    QPlainTextEdit *m_text1 = nullptr;
    QLabel *m_orderLabel = nullptr;
    QLineEdit *m_orderPhotos = nullptr;
    std::array<QRadioButton *, 2> m_leftRight{};
    QCheckBox *m_titlePrompt = nullptr;
    QCheckBox *m_filePrompt = nullptr;
    QCheckBox *m_skipImageInfo = nullptr;
    QBoxLayout *m_buildArea = nullptr;
};
