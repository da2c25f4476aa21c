#pragma once

#include "BlogRecords.h"

#include <QString>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>

class JobUi;
class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QTabBar;
struct JobState;

// What the Web Log tab asks of the rest of the program. Every call may run the event loop.
struct WebLogServices
{
    JobUi *ui = nullptr; // message boxes and frmInputBox; never null once the frame is built
    JobState *state = nullptr;
    // "Select a Color" and "Select a font": the current value in, the chosen one out, nothing
    // when cancelled. Unset: the boxes do nothing.
    std::function<std::optional<QString>(const QString &start, QWidget *parent)> chooseColour;
    std::function<std::optional<QString>(const QString &start, QWidget *parent)> chooseFont;
    // A picture file for a section ("" when cancelled); start is the folder to open at.
    std::function<QString(const QString &start)> choosePicture;
    // The guide rings: a step was reached.
    std::function<void(int step)> shapeEvent;
    // Default author and e-mail address: the main window's fields that hold them.
    QLineEdit *txtDefaultAuthor = nullptr;
    QLineEdit *txtEmailID = nullptr;
};

// The work frame of Build a Web Log: TabStrip3 over the five BlogPageFrame elements
//   1 "Web Logs": the list of Web Logs (File6_0), new, remove, open, go to the sections;
//   2 "Page Settings": the open Web Log's name, date, title, folder on the web space, colours
//     and font, and the default author and e-mail address;
//   3 "Sections": the list of sections (BlogItemSelectFrame with File5) or the section editor;
//   4 "Pointers and Comments": File8 and File9 with their fields, the pool of master pointers;
//   5 "Master Page": the list of Web Logs to join (File6_1) and the master page's looks;
// and below them the Build Web Log and Preview buttons (which the installer connects).
//
// Every change goes to its record at once; there is no Save button. The frame works on the
// current records of the job state (BlogRecords).
class WebLogFrame final : public QWidget
{
    Q_OBJECT
public:
    explicit WebLogFrame(BlogRecords &records, WebLogServices services, QWidget *parent = nullptr);

    WebLogServices &services() { return m_services; }
    BlogRecords &records() const { return m_records; }

    QTabBar *TabStrip3() const { return m_tabStrip; }
    QFrame *BlogPageFrame(int element) const; // 1 to 5
    QFrame *BlogItemSelectFrame() const { return m_itemSelectFrame; }
    QListWidget *File5() const { return m_file5; }
    QListWidget *File6(int index) const { return m_file6[index]; }
    QPlainTextEdit *BlogText() const { return m_blogText; }
    QPushButton *BlogBuildButton() const { return m_build; }
    QPushButton *BlogPreviewButton() const { return m_preview; }
    QPushButton *BuildMasterBlogButton() const { return m_buildMaster; }
    QLineEdit *BlogDirName() const { return m_blogDirName; }

    // True while a Web Log is open (BlogPageFrame element 2 enabled).
    bool webLogOpen() const;
    // The help page of what the tab shows (10 to 15).
    int helpContext() const;

    // The function was opened: the list of Web Logs read anew; by its button (not by TabStrip1)
    // the first tab comes up too.
    void opened(bool byTab);

    // Handlers, as the controls call them.
    void TabStrip3_Click(int tab);
    void addNewBlogFileButton_Click();
    void File6_Click();
    void RemoveBlogFileButton_Click();
    void SelectBlogPageButton_Click();
    void Command6_Click();
    void BlogAddItem_Click();
    void File5_Click();
    void BlogRemove_Click();
    void OpenSection_Click();
    void BlogSelectItem_Click();
    void Command7_Click(int index);
    void OrderItem_LostFocus();
    void BlogDirName_LostFocus();
    void BlogBrowsePic_Click();
    void ClearBlogPicture_Click();
    void setSectionPicture(const QString &path);
    void AddNewPtrButton_Click();
    void PtrDeleteButton_Click();
    void File8_Click();
    void AddNewCommentButton_Click();
    void CommentDeleteButton_Click();
    void File9_Click();
    void CopyFromMstrPtrButton_Click();
    void Command2_Click();
    void Command3_Click();
    void DeletePtr_Click();
    void SelectAllBlogPageButton_Click();
    void pageColour_Click(int index); // 0 background, 1 title, 2 text
    void PageFont_Click();
    void masterColour_Click(int index); // 0 background, 1 title, 2 text
    void MasterFont_Click();

    // The lists read again from their folders.
    void refreshWebLogs();
    void refreshSections();
    void refreshPointers();
    void refreshComments();
    void refreshMasterPointers();

    // Selects a section by its row of File5 and opens it in the editor (as a click does).
    void openSection(int row);
    // The editor shows the current records again (after a build moved through them).
    void showCurrentRecords();
    // The section list shows the files that go up instead of the sections (during an upload),
    // or the sections again.
    void showUploadFiles(const QStringList &files);
    void showSectionList();
    // BlogText's text written to the record now (as when it loses the focus).
    void BlogText_LostFocus();

    // Names of the Web Logs ticked on the master page tab.
    QStringList chosenWebLogs() const;
    QStringList allWebLogs() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *buildWebLogsPage();
    QWidget *buildSettingsPage();
    QWidget *buildSectionsPage();
    QWidget *buildPointersPage();
    QWidget *buildMasterPage();
    void showPage(int tab);
    void enableWebLogFrames(bool enabled);
    void fillMainControls();
    void fillSectionControls();
    void showSectionEditor(bool show);
    void saveMain();
    void saveSection();
    void sectionFieldEdited();
    void mainFieldEdited();
    void showPicture();
    void showColourBox(QPushButton *box, const QString &colour);
    void shapeEvent(int step);
    void message(const QString &text, const QString &title = QStringLiteral("Tarnwick"));
    bool confirm(const QString &text, const QString &title = QStringLiteral("Need to know..."));
    QString ask(const QString &question, const QString &defaultText, int maxLength = 0);
    QString selectedName(QListWidget *list) const;
    void fillList(QListWidget *list, const QStringList &names);

    BlogRecords &m_records;
    WebLogServices m_services;
    bool m_filling = false;    // controls are being filled from the records
    bool m_uploadList = false; // File5 shows the files that go up
    QString m_dirNameOnFocus;

    QTabBar *m_tabStrip = nullptr;
    std::array<QFrame *, 5> m_pages{};
    QPushButton *m_build = nullptr;
    QPushButton *m_preview = nullptr;
    QLabel *m_label2 = nullptr;

    // Tab 1
    std::array<QListWidget *, 2> m_file6{};
    // Tab 2
    QLineEdit *m_blogFileName = nullptr, *m_blogDate = nullptr, *m_blogTitle = nullptr,
              *m_blogDirName = nullptr, *m_defaultAuthor = nullptr, *m_emailID = nullptr;
    std::array<QPushButton *, 3> m_pageColours{};
    QPushButton *m_pageFont = nullptr;
    QLabel *m_pageFontExample = nullptr;
    // Tab 3
    QFrame *m_itemSelectFrame = nullptr;
    QFrame *m_editFrame = nullptr;
    QListWidget *m_file5 = nullptr;
    QLineEdit *m_displayedSubTitle = nullptr, *m_blogItemDate = nullptr, *m_blogAuthor = nullptr,
              *m_orderItem = nullptr, *m_blogPictureTitle = nullptr;
    QPlainTextEdit *m_blogText = nullptr;
    QRadioButton *m_option1 = nullptr, *m_option2 = nullptr;
    QLabel *m_blogImage = nullptr;
    std::array<QCheckBox *, 4> m_showChecks{};
    // Tab 4
    QListWidget *m_file8 = nullptr, *m_file9 = nullptr, *m_file10 = nullptr;
    QLineEdit *m_ptrCategory = nullptr, *m_dispName = nullptr, *m_ptrUrl = nullptr;
    QPlainTextEdit *m_commentTxt = nullptr;
    QCheckBox *m_showPointersCk = nullptr, *m_showCommentCk = nullptr;
    QFrame *m_mstrPtrFrame = nullptr;
    // Tab 5
    std::array<QPushButton *, 3> m_masterColours{};
    QPushButton *m_masterFont = nullptr;
    QLabel *m_masterFontExample = nullptr;
    QPushButton *m_buildMaster = nullptr;
};

// Text as a text box shows it ("\n" between lines) and as a record keeps it (CR LF).
QString ToRecordText(const QString &boxText);
QString ToBoxText(const QString &recordText);
