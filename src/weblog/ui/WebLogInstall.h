#pragma once

#include "BlogBuild.h"
#include "BlogMaster.h"
#include "BusyCursor.h"

#include <QObject>

class WebLogFrame;
class WebLogSpelling;
class WebSpace;
class frmMain;

// Joins the Web Log's jobs to the main window and the Web Log tab: Build Web Log, Preview and
// Build a Master Web Log Page. The jobs reach the web space through webSpace and the window
// through this object: the progress frame, the lists of the tab, the captions.
class WebLogController final : public QObject, public BlogBuildWindow
{
    Q_OBJECT
public:
    // A child of frame; window, frame and webSpace must outlive it.
    WebLogController(frmMain &window, WebLogFrame &frame, WebSpace &webSpace);

    void BlogBuild_Click();
    void BlogPreviewButton_Click();
    void BuildMasterBlogButton_Click();

    BlogBuildOutcome lastOutcome() const { return m_lastOutcome; }
    MasterOutcome lastMasterOutcome() const { return m_lastMaster; }

    // BlogBuildWindow
    BlogBuildOptions options() const override;
    bool runWithoutConnections() const override;
    void showProgressFrame(bool show) override;
    void setBusy(bool busy) override;
    void setCaption(const QString &caption) override;
    void setBlogDirName(const QString &text) override;
    void setUploadPathCaption(const QString &caption) override;
    void showUploadFiles(const QStringList &files) override;
    void selectUploadFile(int row) override;
    void showSections() override;
    void recordsChanged() override;

private:
    frmMain &m_window;
    WebLogFrame &m_frame;
    WebSpace &m_webSpace;
    BusyCursor m_busy;
    bool m_running = false;
    BlogBuildOutcome m_lastOutcome = BlogBuildOutcome::NoWebLog;
    MasterOutcome m_lastMaster = MasterOutcome::NoTitle;
};

// What InstallWebLog made, for tests.
struct WebLogParts
{
    WebLogFrame *frame = nullptr;
    WebLogController *controller = nullptr;
    WebLogSpelling *spelling = nullptr;
};
WebLogParts InstallWebLogParts(frmMain &window, WebSpace &webSpace);

// Joins Build a Web Log to the window: the tab (function 3) with its instruction page, help
// pages, step rings, the colour and font pickers, the spelling check of the Options menu and
// the jobs.
void InstallWebLog(frmMain &window, WebSpace &webSpace);
