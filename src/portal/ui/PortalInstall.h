#pragma once

#include "BusyCursor.h"
#include "PortalBuild.h"

#include <QObject>

class PortalFrame;
class WebSpace;
class frmMain;

// Joins the Portal's jobs to the main window and the Build a Portal tab: Build Home Portal Page
// and Preview. The jobs reach the web space through webSpace and the window through this object.
class PortalController final : public QObject, public PortalBuildWindow
{
    Q_OBJECT
public:
    // A child of frame; window, frame and webSpace must outlive it.
    PortalController(frmMain &window, PortalFrame &frame, WebSpace &webSpace);

    void BuildStartupButton_Click();
    void PreviewStartupButton_Click();

    PortalOutcome lastOutcome() const { return m_lastOutcome; }
    bool running() const { return m_running; }

    // PortalBuildWindow
    bool runWithoutConnections() const override;
    QString FTPRoot() const override;
    QString ClientRoot() const override;
    void showProgressFrame(bool show) override;
    void setBusy(bool busy) override;
    void selectCategory(int row) override;
    void selectPageLink(int row) override;
    void jobEnded() override;

private:
    frmMain &m_window;
    PortalFrame &m_frame;
    WebSpace &m_webSpace;
    BusyCursor m_busy;
    bool m_running = false;
    PortalOutcome m_lastOutcome = PortalOutcome::NoCategories;
};

// What InstallPortal made, for tests.
struct PortalParts
{
    PortalFrame *frame = nullptr;
    PortalController *controller = nullptr;
};
PortalParts InstallPortalParts(frmMain &window, WebSpace &webSpace);

// Joins Build a Portal to the window: the tab (function 4) with its instruction page, help page,
// step rings, the colour and font pickers and the jobs.
void InstallPortal(frmMain &window, WebSpace &webSpace);
