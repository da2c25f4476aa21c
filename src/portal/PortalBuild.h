#pragma once

#include "BuildStartup.h"

#include <QString>
#include <QStringList>

#include <functional>

struct TemplateState;
struct TransferContext;

// How many columns the page has and how many rows fill one: 20 rows to a column; above two
// columns the page keeps two and a column holds the whole part of 1 + rows / 2.
struct PortalLayout
{
    int rows = 0;
    int PortalColumns = 1;
    int rowsPerColumn = 20;
};
PortalLayout PortalLayoutFor(int rows);

// The templates of the page, in the Startup folder.
extern const QStringList PortalTemplates; // Top.txt, BodySub2Cat.txt ... End.txt

struct PortalPageResult
{
    bool written = false;
    QString message; // why the page was not written
    PortalLayout layout;
    int categories = 0;
    int links = 0;
    QStringList unreadLinks; // Page Links that could not be read, left off the page
};

// Walks the six templates of folder into folder/Portal.htm: Top.txt; per Category (its ".Cat"
// file in list order) BodySub2Cat.txt and per Page Link BodySub3Link.txt, with BodySub1.txt at
// a column break, which falls only between Categories (after the Category that takes the rows of
// the present column above rowsPerColumn); then BodySub4.txt, End.txt and six line ends.
//
// current is the current Page Link; after the walk it holds the last link. follow(category,
// link) is told each row as the build reaches it (link -1 for the Category itself) and may run
// the event loop. A template that is missing stops the build before Portal.htm is touched.
PortalPageResult BuildPortalPage(const QString &folder, TemplateState &state, PageLink &current,
                                 const std::function<void(int category, int link)> &follow = {});

// The Build a Portal tab and the main window as the job sees them. Every member may run the
// event loop; the defaults do nothing.
class PortalBuildWindow
{
public:
    virtual ~PortalBuildWindow() = default;
    virtual bool runWithoutConnections() const { return false; }
    virtual QString FTPRoot() const { return QString(); }
    virtual QString ClientRoot() const { return QString(); }
    virtual void showProgressFrame(bool /*show*/) {}
    virtual void setBusy(bool /*busy*/) {}
    // The build walks the lists: the Category of that row is selected (its links listed), then
    // its Page Link of that row (the link's fields shown).
    virtual void selectCategory(int /*row*/) {}
    virtual void selectPageLink(int /*row*/) {}
    // The guide rings: the job ended.
    virtual void jobEnded() {}
};

enum class PortalOutcome
{
    NoCategories, // nothing to build: the action ended at once
    NotBuilt,     // a template is missing or Portal.htm could not be written
    KeptLocal,    // the user kept the page on this computer; its path is the pointer
    Sent,         // the page and its pictures went up; the pointer is on the clipboard
    Cancelled,    // cancelled during the pictures: what went up stays, the pointer was given
    NotConnected, // the login failed
    Failed,       // the Portal folder could not be had, or the session lost its place
};

// "Build Home Portal Page" and "Preview". One object is one run, on the window's session
// (context.ftp); it reaches the user through context.ui and keeps the event loop live, so a
// cancel ("!!Skip!!" in UserResponse, or UploadCancelled) is seen between files.
class PortalBuildJob final
{
public:
    PortalBuildJob(TransferContext &context, PortalBuildWindow &window, PageLink &current);

    PortalOutcome BuildStartupButton();
    // Builds the page and opens it with the desktop's browser; false when nothing was built.
    bool PreviewStartupButton();

    // The page alone (also for the two buttons): the layout and the result.
    PortalPageResult buildPage();
    // Sends Portal.htm, NewW2.gif, Arrow0.gif to Arrow14.gif and the logo into the current
    // remote directory. Sent, Cancelled (after a picture) or Failed (the session lost its place).
    PortalOutcome UploadStartupPage();
    // The local files that go up, in order.
    QStringList uploadFiles() const;

    QString FTP_page_pointer;
    QString Pointer;
    QStringList failedFiles; // files that did not reach the web space
    PortalPageResult page;

private:
    PortalOutcome finishWithPointer(const QString &path);
    void cleanUp();
    bool cancelled() const;

    TransferContext &m_context;
    PortalBuildWindow &m_window;
    PageLink &m_current;
};

// "Do you want to upload this Portal page to the FTP site or keep it on your local PC?" and the
// two lines that follow it.
extern const QString PortalUploadQuestion;
