#pragma once

#include "BlogBuild.h"

#include <QString>
#include <QStringList>

struct TransferContext;

// How a press of "Build a Master Web Log Page" ended.
enum class MasterOutcome
{
    Sent,          // MainPage.htm went up; its pointer is on the clipboard
    NoTitle,       // the title was empty, or there is no Web Log to list: nothing happened
    NothingChosen, // "Need to select the items to put on this page."
    NotBuilt,      // a template is missing or the page can't be written
    BuiltLocally,  // Run Without Connections: the page stands on the disk
    NotConnected,
    Failed,
    Cancelled,
};

// The master page: MainPage.htm in the Web Log root, one block per chosen Web Log linking to
// its page, from MasterTop.txt, MasterBody.txt per Web Log and MasterEnd.txt; sent to the
// folder of the Web Logs (BlogDirName) on the web space.
//
// The Web Logs are read into records of the job's own, so the Web Log open in the editor stays
// as it is.
class BlogMasterJob final
{
public:
    BlogMasterJob(TransferContext &context, BlogBuildWindow &window);

    // entries: every entry of the list of Web Logs ("Trip Notes.blg"); chosen: those ticked.
    MasterOutcome BuildMasterBlogButton(const QStringList &entries, const QStringList &chosen);

    // Writes MainPage.htm for the chosen Web Logs under title. NothingChosen, NotBuilt or
    // BuiltLocally (written).
    MasterOutcome BuildMasterPage(const QString &title, const QStringList &chosen);

    QString MasterTitle;
    QString Pointer;
    QString message; // why the page was not written

private:
    TransferContext &m_context;
    BlogBuildWindow &m_window;
    BlogBuildOptions m_options;
};

// The path of the master page on this computer.
QString MasterPagePath();

// The pool of master pointers: every pointer saved in a Web Log is copied there.
// Copies the named pool entries into the Pointers folder of the Web Log mainFileName, replacing
// pointers of the same name. Returns how many were copied.
int CopyMasterPointers(const QStringList &names, const QString &mainFileName);
// The pool's entries ("*.ptr"), sorted as the list shows them.
QStringList MasterPointerList();
