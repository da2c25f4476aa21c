#pragma once

#include "BlogRecords.h"

#include <QList>
#include <QString>
#include <QStringList>

class JobUi;
struct JobState;
struct TemplateState;

// What the Web Log's pages read from the window besides the records.
struct BlogPageOptions
{
    QString BlogDirName = QStringLiteral("Web_Log"); // folder of the Web Logs on the web space
    QString txtWebSite;                              // the site's address
    QString ClientRoot;                              // sub-folder of the user on the web space
    bool ShowPointersCk = true;                      // show the pointer column
    bool ShowCommentCk = true;                       // show the link to the comment page
    QString Blog_resize = QStringLiteral("15");      // section pictures, % of the picture
    int sizingThreads = 0;                           // pictures sized at once; 0: one per core
};

// How a local build ended.
enum class BlogPagesOutcome
{
    Built,      // the page (or comment page) is written
    NoWebLog,   // no Web Log is open (main FileName empty)
    Cancelled,  // the user cancelled while the pictures were sized: the old page stays
    NotWritten, // a template is missing or the page can't be written: the old page stays
};

struct BlogPagesResult
{
    BlogPagesOutcome outcome = BlogPagesOutcome::Built;
    QString message;           // why it wasn't written (NotWritten)
    QStringList pictureFaults; // one line per section whose picture could not be used
    int sectionsWritten = 0;
    int picturesSized = 0; // copies made now (up-to-date copies are kept)
    // What the comment link made of UploadPath's caption ("" when the page has none).
    QString uploadPathCaption;
};

// Building the open Web Log on the local disk: Web_Log.htm with its section pictures and
// feed.xml, and Comments.htm, in the Web Log's folder, from the templates B_*.txt and BC_*.txt
// of the Web Log root.
//
// The page is walked as follows (see FillTemplate for the placeholders):
//   B_Top.txt once; per section B_Left.txt or B_Right.txt (by its Position; empty counts as
//   right); B_End1.txt once; per pointer B_End2.txt when it opens a new category, B_End2a.txt
//   (with its category blanked) when it has the category of the one before; B_End3.txt once.
// Sections come in the order of their Order number (0 first), equal numbers by file name; a
// section whose Order is no whole number from 0 to the count of sections is left out. The
// comment page is BC_Top.txt, BC_Mid.txt per comment, BC_End.txt.
//
// The builder loads each record into the current records as it goes (they follow the lists);
// at the end the last section, pointer and comment of the lists are current. Pages are written
// under a temporary name and put in place when complete, so a cancelled or failed build leaves
// the pages of the last build. Every call lets the event loop run (pictures are sized on worker
// threads meanwhile) and reports its steps through ui.
class BlogPageBuilder final
{
public:
    BlogPageBuilder(BlogRecords &records, const BlogPageOptions &options, JobUi &ui,
                    JobState &state);

    // Web_Log.htm, the section pictures and feed.xml.
    BlogPagesResult BuildBlogLocally();
    // Comments.htm.
    BlogPagesResult BuildBlogCommentsLocally();

    // The name of the Web Log's folder on the web space: main FileName with blanks as "_".
    QString BlogFolderName() const;
    // The Web Log's folder on this computer.
    QString localFolder() const;
    // Absolute web address of a file of the Web Log's folder on the web space.
    QString webAddress(const QString &fileName) const;

    // The template state of the Web Log with the current records and the window's choices put
    // in: what a walk of one of the Web Log's templates reads.
    void fillTemplateState(TemplateState &state, int pointerCount, int commentCount) const;

    // Sections of the folder in page order (see above), loaded.
    QList<BlogSection> sectionsInPageOrder(const QStringList &entries);

private:
    struct Picture;
    bool preparePictures(const QList<BlogSection> &sections, BlogPagesResult &result,
                         QList<bool> &usable);
    bool writeFeed(const QList<BlogSection> &sections, const QList<bool> &usable);

    BlogRecords &m_records;
    BlogPageOptions m_options;
    JobUi &m_ui;
    JobState &m_state;
};

// The section's picture as the page refers to it: "Sml_" and the picture's file name (the
// part behind the last "/" or "\"); "" when the section has none.
QString SectionPictureName(const BlogSection &section);

// The template of a section: "B_Left.txt" for Position "Left" (any case), "B_Right.txt"
// otherwise.
QString SectionTemplateName(const BlogSection &section);
