#pragma once

#include "BlogPages.h"

#include <QString>
#include <QStringList>

struct TransferContext;

// What the Web Log build reads from its window besides the page options.
struct BlogBuildOptions
{
    BlogPageOptions pages;
    QString FTPRoot;
};

// The Build a Web Log tab and the main window as the build sees them. Every member may run the
// event loop; the defaults do nothing.
class BlogBuildWindow
{
public:
    virtual ~BlogBuildWindow() = default;

    virtual BlogBuildOptions options() const = 0;
    // RunWithoutMenu, read when it is looked at.
    virtual bool runWithoutConnections() const { return false; }
    virtual void showProgressFrame(bool /*show*/) {}
    virtual void setBusy(bool /*busy*/) {}
    // The main window's caption.
    virtual void setCaption(const QString & /*caption*/) {}
    // BlogDirName's text after its blanks became "_".
    virtual void setBlogDirName(const QString & /*text*/) {}
    // The caption of UploadPath as the page's comment link left it.
    virtual void setUploadPathCaption(const QString & /*caption*/) {}
    // During the upload the section list (BlogItemSelectFrame) shows the files that go up, and
    // the one going up is selected; showSections() puts the sections back.
    virtual void showUploadFiles(const QStringList & /*files*/) {}
    virtual void selectUploadFile(int /*row*/) {}
    virtual void showSections() {}
    // The build changed the current records (they follow the lists): the editor shows them.
    virtual void recordsChanged() {}
};

// How a press of Build Web Log ended.
enum class BlogBuildOutcome
{
    Sent,         // everything went up; the pointer is on the clipboard
    NoWebLog,     // no Web Log is open: "Select a file to build before starting a build."
    BuiltLocally, // Run Without Connections: the pages stand on the disk, nothing was sent
    NotBuilt,     // the pages could not be written (a missing template...) or sizing stopped
    NotConnected, // the login failed
    Failed,       // a directory could not be had, or the session lost its place
    Cancelled,    // the user cancelled between two files: what went up stays, no pointer
};

// "Build Web Log": the open Web Log from its records to Web_Log.htm, Comments.htm, feed.xml and
// the section pictures on the web space, in the folder
//   <FTPRoot>/<ClientRoot>/<BlogDirName>/<Web Log name with blanks as "_">
// ending with the page's pointer on the clipboard and Take an Action.
//
// One object is one run. It works on the window's session (context.ftp) and the current
// records, reaches the user through context.ui and context.progress only, and keeps the event
// loop live: a cancel (UploadCancelled, or "!!Skip!!" in UserResponse) is seen between files.
class BlogBuildJob final
{
public:
    BlogBuildJob(BlogRecords &records, TransferContext &context, BlogBuildWindow &window);

    BlogBuildOutcome BlogBuild();
    // Builds the two pages and opens Web_Log.htm with the desktop's browser. false when no Web
    // Log is open ("You need to select or create a page to view.") or the page was not written.
    bool BlogPreviewButton();

    // The steps that BlogBuild takes, for the builders that share them.
    // Both pages; a fault is told to the user. false when the pages were not written.
    bool buildPages();
    // Logs in, enters FTPRoot, ClientRoot, BlogDirName and the Web Log's folder (making those
    // that are missing). NotConnected or Failed when the job must stop, Sent when in place.
    BlogBuildOutcome enterWebLogFolder();
    // Sends every page and picture of the Web Log's folder: Sent, Failed (the session lost its
    // place: "The connection to the upload path has failed. Select to resend.") or Cancelled.
    BlogBuildOutcome UploadBlogToFTP();

    // The files of the Web Log's folder that go up, in the order they go.
    QStringList uploadFiles() const;

    // What the run left.
    QString BlogFolderName;
    QString FTP_page_pointer;
    QString Pointer;
    QStringList pictureFaults;

private:
    void cleanUp();
    void showStep(const QString &status);
    bool cancelled() const;
    QString uploadPathExpected() const;

    BlogRecords &m_records;
    TransferContext &m_context;
    BlogBuildWindow &m_window;
    BlogBuildOptions m_options;
};

// The pattern of the files of a Web Log's folder that go up (the file list box's own form): the
// pictures and the pages.
extern const QString BlogUploadPattern;
// "The connection to the upload path has failed. Select to resend."
extern const QString UploadPathFailedMessage;
