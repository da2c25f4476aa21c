#pragma once

#include "BusyCursor.h"
#include "PhotoBuild.h"
#include "TransferSteps.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class PhotoFrame;
class QPushButton;
class WebSpace;
class frmMain;

// Joins the photo page build to the main window and the Send a Photo Page frame: the Build All
// button under the Ready to Send list, and on the Update Photo Page tab the buttons that load a
// History file (LoadHst, ShowHistoryButton), the Preview (PhotoPreviewButton) and the copy of the
// page's pointer as a link. The jobs reach the web space through webSpace and the window
// through this object: the progress frame, the lists of the frame, the captions.
class PhotoBuildController final : public QObject, public PhotoBuildWindow
{
    Q_OBJECT
public:
    // window, frame and webSpace must outlive the controller (it is a child of frame).
    PhotoBuildController(frmMain &window, PhotoFrame &frame, WebSpace &webSpace);
    ~PhotoBuildController() override;

    void cmdBuildAll_Click();
    void PhotoPreviewButton_Click();
    void LoadHst_Click();
    void ShowHistoryButton_Click();
    void CopyPagePointerButton_Click();
    // The page's name, title and introduction asked as Build All asks them, for a Save All of a
    // page without a name; false when a prompt was left.
    bool namePage();

    QPushButton *cmdBuildAll() const { return m_buildAll; }
    PhotoBuildOutcome lastOutcome() const { return m_lastOutcome; }
    QString FTP_pointer() const { return m_thumbnailPointers; }

    // PhotoBuildWindow
    PhotoBuildOptions options() const override;
    bool titlePrompt() const override;
    bool filePrompt() const override;
    bool skipImageInfo() const override;
    bool runWithoutConnections() const override;
    void refreshReadyList() override;
    void refreshHistoryList() override;
    void refreshSourceList() override;
    void selectReadyRow(int row, bool selected) override;
    void showThumbnail(const QString &path) override;
    void showProgressFrame(bool show) override;
    void setBusy(bool busy) override;
    void setCaption(const QString &caption) override;
    void shapeEvent(int step) override;
    void DoCleanup() override;
    void setPagePointer(const QString &pointer) override;
    void setThumbnailPointers(const QString &pointers) override;

private:
    void addHistoryButtons();
    bool loadSelectedHistory();
    void updateHistoryButtons();
    PhotoPage &page() const;

    frmMain &m_window;
    PhotoFrame &m_frame;
    WebSpace &m_webSpace;
    QPushButton *m_buildAll = nullptr;
    QPushButton *m_loadHst = nullptr;
    QPushButton *m_showHistory = nullptr;
    QPushButton *m_preview = nullptr;
    QPushButton *m_copyPagePointer = nullptr;
    QString m_thumbnailPointers;
    PhotoBuildOutcome m_lastOutcome = PhotoBuildOutcome::NoImages;
    BusyCursor m_busy;
    bool m_running = false;
};

// Makes the controller for the frame (owned by the frame) and puts its buttons in place.
PhotoBuildController *InstallPhotoBuild(frmMain &window, PhotoFrame &frame, WebSpace &webSpace);

// Joins Send a Photo Page to the window: the frame (InstallPhotoFrame) and its build.
void InstallPhotoPage(frmMain &window, WebSpace &webSpace);
