#pragma once

#include "BuildStartup.h"
#include "LinkCheck.h"

#include <QHash>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>

class BookmarkImportDialog;
class JobUi;
class LinkCheckDialog;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QToolButton;
struct BookmarkFileResult;
struct ImportPlan;
struct JobState;

// What the Build a Portal tab asks of the rest of the program. Every call may run the event loop.
struct PortalServices
{
    JobUi *ui = nullptr; // message boxes and frmInputBox; never null once the frame is built
    JobState *state = nullptr;
    // "Select a Color" and "Select a font": the current value in, the chosen one out, nothing
    // when cancelled. Unset: the boxes do nothing.
    std::function<std::optional<QString>(const QString &start, QWidget *parent)> chooseColour;
    std::function<std::optional<QString>(const QString &start, QWidget *parent)> chooseFont;
    // "Find Logo": a picture file, "" when cancelled.
    std::function<QString(const QString &start)> chooseLogo;
    // "Import Bookmarks": the browser's exported bookmarks file, "" when cancelled.
    std::function<QString()> chooseBookmarks;
    // How the link check asks: several at once, a time limit for each address.
    LinkCheckOptions linkCheck;
    // The guide rings: a step was reached.
    std::function<void(int step)> shapeEvent;
};

// The work frame of Build a Portal: the Categories (File11) and the Page Links of the selected
// one (File21) with their Add New and Delete buttons; the selected link's text, address and
// bullet (Image111_0 to Image111_13); the logo, its height, the page's colours and font; and the
// Build Home Portal Page and Preview buttons (which the installer connects).
//
// Every change goes to its record or setting at once; there is no Save button. The frame works on
// the current Page Link of the job state.
class PortalFrame final : public QWidget
{
    Q_OBJECT
public:
    explicit PortalFrame(PageLink &current, PortalServices services, QWidget *parent = nullptr);

    PageLink &current() const { return m_current; }
    PortalServices &services() { return m_services; }

    QListWidget *File11() const { return m_file11; }
    QListWidget *File21() const { return m_file21; }
    QPushButton *BuildStartupButton() const { return m_build; }
    QPushButton *PreviewStartupButton() const { return m_preview; }
    QPushButton *CheckLinksButton() const { return m_checkLinks; }
    QPushButton *ImportBookmarksButton() const { return m_importBookmarks; }
    // The dialogs of the two jobs while they are open (null otherwise).
    BookmarkImportDialog *importDialog() const;
    LinkCheckDialog *checkDialog() const;
    QLineEdit *DisplayLinkTxt() const { return m_displayLink; }
    QLineEdit *URLTxt() const { return m_url; }
    QToolButton *Image111(int index) const { return m_bullets[static_cast<size_t>(index)]; }
    QLineEdit *LogoTxt() const { return m_logo; }
    QLineEdit *SULogoH() const { return m_logoHeight; }
    QLabel *Image21() const { return m_logoView; }

    // The folder of the selected Category ("" when none is selected): File21's path.
    QString File21Path() const { return m_file21Path; }
    // The bullet that shows the border, -1 for none.
    int borderedBullet() const;

    // The settings read into the controls and the Categories listed (the window's Load).
    void loadSettings();
    // The function was opened: the Categories read anew.
    void opened(bool byTab);

    // The handlers, in the names of the controls.
    void File11_Click(int row);
    void File21_Click(int row);
    void AddNewCatButton_Click();
    void DeleteCatButton_Click();
    void AndNewLinkButton_Click();
    void DeleteLinkButton_Click();
    void DisplayLinkTxt_LostFocus();
    void URLTxt_LostFocus();
    void Image111_Click(int index);
    void LogoTxt_Change();
    void SearchLogoButton_Click();
    void SULogoH_LostFocus();
    void pageColour_Click(int index); // 0 SUTextColor, 1 SUTitleColor, 2 SUBackgroundColor
    void SUPageFont_Click();

    // Reads a browser's bookmarks file (off the window's thread) and shows what it would add
    // in frmImportBookmarks; Import there writes it. Returns at once: the dialog or a message
    // follows from the event loop.
    void ImportBookmarks_Click();
    // Checks the address of every Page Link of every Category in frmCheckLinks, marking the
    // results in File21 as they come. Returns at once.
    void CheckLinksButton_Click();
    // The mark of a checked Page Link (its .ptr path): the list shows it until the next check.
    struct LinkMark
    {
        LinkVerdict verdict = LinkVerdict::Unchecked;
        QString text;
    };
    LinkMark linkMark(const QString &ptrPath) const { return m_marks.value(ptrPath); }
    void setLinkMark(const QString &ptrPath, const LinkMark &mark);
    // The bookmarks were written: the lists read anew.
    void bookmarksImported();

    // The lists read anew from the disk, keeping the selection where the names still stand.
    void refreshCategories();
    void refreshLinks();
    // The build walks the lists: a row selected as a click would, without the rings.
    void followCategory(int row);
    void followLink(int row);

private:
    void buildLinkBox(QWidget *box);
    void buildLookBox(QWidget *box);
    void showBorder(int bullet);
    void saveCurrentLink();
    void loadLogo(const QString &path);
    void showColourBox(QPushButton *box, const QString &colour);
    void message(const QString &text);
    void step(int number);
    void setLinkFieldsEnabled(bool enabled);
    void showMarks();
    void showImportPreview(const QString &path, const BookmarkFileResult &file,
                           const ImportPlan &plan);

    PageLink &m_current;
    PortalServices m_services;
    QString m_file21Path;
    QString m_loadedFile; // the .ptr whose fields the boxes show
    QString m_loadedName; // its name as the box showed it when loaded

    QListWidget *m_file11 = nullptr;
    QListWidget *m_file21 = nullptr;
    QPushButton *m_addCategory = nullptr, *m_deleteCategory = nullptr, *m_addLink = nullptr,
                *m_deleteLink = nullptr;
    QLineEdit *m_displayLink = nullptr;
    QLineEdit *m_url = nullptr;
    std::array<QToolButton *, BuildStartup::ShownBullets> m_bullets{};
    QLineEdit *m_logo = nullptr;
    QPushButton *m_searchLogo = nullptr;
    QLineEdit *m_logoHeight = nullptr;
    QLabel *m_logoView = nullptr;  // Image21: the logo as the tab shows it
    QLabel *m_logoImage = nullptr; // Image5: the logo at its own size, hidden
    std::array<QPushButton *, 3> m_colours{};
    QPushButton *m_font = nullptr;
    QLabel *m_fontExample = nullptr;
    QPushButton *m_build = nullptr;
    QPushButton *m_preview = nullptr;
    QPushButton *m_checkLinks = nullptr;
    QPushButton *m_importBookmarks = nullptr;
    QHash<QString, LinkMark> m_marks;
    bool m_readingBookmarks = false;
    QPointer<BookmarkImportDialog> m_importDialog;
    QPointer<LinkCheckDialog> m_checkDialog;
};
