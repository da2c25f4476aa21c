#pragma once

#include "PhotoFrameServices.h"

#include <QWidget>

class PhotoFrameHistory;
class PhotoFrameSettings;
class QAbstractButton;
class QTabWidget;
class ReadyToSendPage;
struct PhotoPage;

// The work frame of Send a Photo Page: TabStrip2 with the tabs "Select Images" (the Ready to
// Send list), "Update Photo Page" (the History files) and "Settings" (the page's looks and
// picture sizes). The frame works on one
// PhotoPage record, which it shares with the page build and the History files.
class PhotoFrame final : public QWidget
{
    Q_OBJECT
public:
    enum Tab
    {
        SelectImagesTab = 0,
        UpdatePhotoPageTab = 1,
        SettingsTab = 2
    };

    // ui and state must outlive the frame. The services start empty but for ui and state:
    // call useStandardServices() or fill services() before the user reaches the frame.
    PhotoFrame(PhotoPage &page, JobUi &ui, JobState &state, QWidget *parent = nullptr);

    PhotoFrameServices &services() { return m_services; }
    // Fills the services that are still empty with the standard dialogs: the plain input box,
    // the folder picker frmDialogPg, the zoom window frmZoom, a PDF file chooser, the colour
    // and font dialogs.
    void useStandardServices();

    // Start-up: the working folder from TempPath, the photo directory from CopyPath.
    void readFolders();
    // Empties the panel: the lists re-read from their folders, the current record cleared, the
    // preview emptied. The window runs it at start-up and whenever the function is opened.
    void DoCleanup();
    // The function was opened from the start screen or the menu: the first tab comes up.
    void showFirstTab();

    // Puts the Build All button in its place under the lists (named cmdBuildAll).
    void installBuildAllButton(QAbstractButton *button);
    // Puts a field owned by the window (the image load speed) on the Settings tab.
    void addSettingsField(const QString &caption, QWidget *field);

    // FTP_page_pointer: the pointer of the page's last upload; Print List shows it too.
    void setPagePointer(const QString &pointer);

    ReadyToSendPage *readyToSend() const { return m_ready; }
    PhotoFrameHistory *historyPage() const { return m_history; }
    PhotoFrameSettings *settingsPage() const { return m_settings; }
    QTabWidget *TabStrip2() const { return m_tabs; }
    PhotoPage &page() const { return m_page; }

signals:
    // A guide ring step was reached (0: the photo function shown, 1: a folder chosen,
    // 3: pictures put on the list).
    void shapeEventRequested(int step);

private:
    PhotoPage &m_page;
    PhotoFrameServices m_services;
    QTabWidget *m_tabs = nullptr;
    ReadyToSendPage *m_ready = nullptr;
    PhotoFrameHistory *m_history = nullptr;
    PhotoFrameSettings *m_settings = nullptr;
};
