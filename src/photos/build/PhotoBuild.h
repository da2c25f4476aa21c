#pragma once

#include <QString>
#include <QStringList>

struct PhotoPage;
struct TransferContext;

// What the photo page build reads from its window: the working folder, the picture sizes and
// the account's places on the web space.
struct PhotoBuildOptions
{
    QString ChoosenUploadPath;                  // the working folder (the Ready to Send list)
    QString My_resize_0 = QStringLiteral("15"); // thumbnail, % of the picture
    QString My_resize_1 = QStringLiteral("30"); // enlarged copy, % of the picture
    QString FTPRoot;
    QString ClientRoot;
    // The JPEG quality of the copies (setting JpegQuality), from 50 to 100.
    QString JpegQuality = QStringLiteral("85");
    // Worker threads for the sizing; 0: one per processor core.
    int sizingThreads = 0;
};

// The Send a Photo Page frame and the main window as the build sees them. Every member may run
// the event loop. Each one is a thing the window must do for the build, so each is pure: a
// window that forgets one does not build.
class PhotoBuildWindow
{
public:
    virtual ~PhotoBuildWindow() = default;

    virtual PhotoBuildOptions options() const = 0;
    // The build's check boxes and RunWithoutMenu, read each time they are looked at.
    virtual bool titlePrompt() const = 0;
    virtual bool filePrompt() const = 0;
    virtual bool skipImageInfo() const = 0;
    virtual bool runWithoutConnections() const = 0;

    // File3 and File4 re-read from their folders; File2 too.
    virtual void refreshReadyList() = 0;
    virtual void refreshHistoryList() = 0;
    virtual void refreshSourceList() = 0;
    // Selects or unselects row of File3, so that its picture shows.
    virtual void selectReadyRow(int row, bool selected) = 0;
    // Image5: the thumbnail just sent.
    virtual void showThumbnail(const QString &path) = 0;
    virtual void showProgressFrame(bool show) = 0;
    // The hourglass.
    virtual void setBusy(bool busy) = 0;
    // The main window's caption.
    virtual void setCaption(const QString &caption) = 0;
    virtual void shapeEvent(int step) = 0;
    // Empties the working images of the home folder, re-reads the lists and clears the record.
    virtual void DoCleanup() = 0;
    // FTP_page_pointer and FTP_pointer of the History tab.
    virtual void setPagePointer(const QString &pointer) = 0;
    virtual void setThumbnailPointers(const QString &pointers) = 0;
};

// How a press of Build All ended.
enum class PhotoBuildOutcome
{
    Sent,         // the run went to its end: the pointer is on the clipboard (a file that
                  // failed on the way was told by the transfer's error form)
    NoImages,     // the Ready to Send list is empty
    Skipped,      // the user left a prompt, or the sizing stopped
    BuiltLocally, // Run Without Connections: the page is built and nothing was sent
    Failed,       // the failure branch: no connection, or a directory that can't be had
    WrongPath,    // the session did not stand in the page's folder
    Cancelled,    // the user cancelled the upload
};

// "Tarnwick Build All and send to your site": the photo page from the Ready to Send list to a
// finished page on the web space, and the Preview that builds it on disk alone.
//
// One object is one run. The job reaches the user through the context's JobUi and TransferUi
// only, works on the window's cFTP (context.ftp) and the shared record page, and keeps the event
// loop live throughout: a cancel (UploadCancelled, or "!!Skip!!" in UserResponse) is seen at the
// next check.
class PhotoBuildJob final
{
public:
    PhotoBuildJob(PhotoPage &page, TransferContext &context, PhotoBuildWindow &window);

    PhotoBuildOutcome cmdBuildAll();
    // Builds the page with its pictures in the photo folder's "HTML" and opens it. false when a
    // prompt was left or the sizing stopped.
    bool PhotoPreviewButton();

    // The steps, in the order cmdBuildAll takes them.
    bool PrepareFile(bool ask);
    bool BuildWebTop(bool ask);
    void VerifyImagePath();
    bool PromptAllPhotos(bool ask);
    // Writes <ImageRoot>/<PageName>/Photos.htm; false when it can't be written.
    bool BuildLocalPhoto();
    // Sends every thumbnail, enlarged copy and the page; false when cancelled. A file that fails
    // has shown the transfer's error form and the run goes on: the History file keeps the list
    // for a resend.
    bool UploadToFTP();
    // Makes sure of ClientRoot and of folder on the web space, and goes there.
    bool ReloadPath(const QString &folder);

    // The Ready to Send list as it stands in the working folder.
    QStringList File3() const;

    // State of the build.
    QString PageName;
    QString ImageRoot;
    QString SmlPath, LrgPath, SmlName, LrgName;
    QString PageTitle, PageGroupInfo;
    QString FTP_pointer;      // one line per thumbnail sent
    QString FTP_page_pointer; // the page's pointer of the last upload
    QString Pointer;          // what CopyPointer put on the clipboard
    QString FailureText;      // the message of the failure branch

private:
    void failureBranch(const QString &reason);
    bool enterPageFolder();
    bool reconnect();
    void afterConnect();
    void enterListed(const QString &name);
    void showStep(const QString &status, const QString &stepOf = QString());
    void yield();

    PhotoPage &m_page;
    TransferContext &m_context;
    PhotoBuildWindow &m_window;
    PhotoBuildOptions m_options;
    bool m_photosIsFile = false;
};

// A page name cleaned of the characters that a folder name on the web space can't hold:
// every ".", ">", "<", "{", "}", "]", "[", "&", "+", "'", "%", "#", "@", "~", ";", ":", "^",
// "/", "\", "?", "*", "|" and double quote goes, except that the dots stop at the first one
// with exactly three characters behind it (an extension), which stays with all behind it.
QString CleanName(const QString &name);

// The name a page gets when none is given: "Photo" and the last two digits of year, month,
// day, hour and minute of now ("Photo0803141127").
QString DefaultPageName();
