#include "PortalInstall.h"

#include "JobState.h"
#include "Pickers.h"
#include "PortalFrame.h"
#include "WebSpace.h"
#include "frmMain.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

namespace {

FunctionInstructions portalInstructions()
{
    return {QStringLiteral("InstructionPagePortal"),
            QStringLiteral("PortalIntructionView"),
            QStringLiteral("Build a Portal"),
            QStringLiteral("Build a Portal Instructions"),
            {QStringLiteral("This page contains defaults that can be used in your portal page. "
                            "Click on each category to scan the existing list of page links. "
                            "Remove any of the pointers that you think you will not use."),
             QStringLiteral(" Add any new pointers that you would like to use. Entire categories "
                            "and all associated page links can be removed by deleting a "
                            "category."),
             QStringLiteral("After clicking on the add new button, you will be prompted for the "
                            "necessary information."),
             QStringLiteral("The bullets can be used to highlight different pointers. Default "
                            "bullets are created for each pointer. To select a unique bullet, "
                            "click on the page link you wish to highlight. Then click on the "
                            "bullet you wish to use. This bullet will appear on the final page."),
             QStringLiteral("A logo can be added to your portal page. Use the search button to "
                            "locate the desired picture from anywhere on your computer. The page "
                            "colors and font can be adjusted to your own preference. Click on "
                            "each box to select different options."),
             QStringLiteral("To view the portal page, simply click on the preview button. The "
                            "functional portal page will appear."),
             QStringLiteral("After reviewing the preview page, close the window to return to the "
                            "Build A Portal page. Make any desired changes and preview the page "
                            "as many times as needed. Use the Build Home Portal Page button to "
                            "create a final copy. At the end of the build, you have the option "
                            "to copy the page up to your web space or keep it locally on your "
                            "drive. The pointer will be saved in the clipboard. When selecting "
                            "ei")}};
}

std::vector<StepRow> portalSteps()
{
    return {
        {50, {17, 18, 19, 20}, {17, 18}, {}},
        {51, {19, 20, 21}, {19, 20}, {21}},
        {52, {17, 18, 19, 20, 21}, {17, 18, 19, 20}, {21}},
    };
}

} // namespace

PortalController::PortalController(frmMain &window, PortalFrame &frame, WebSpace &webSpace)
    : QObject(&frame), m_window(window), m_frame(frame), m_webSpace(webSpace)
{
    setObjectName(QStringLiteral("PortalController"));
    connect(frame.BuildStartupButton(), &QPushButton::clicked, this,
            &PortalController::BuildStartupButton_Click);
    connect(frame.PreviewStartupButton(), &QPushButton::clicked, this,
            &PortalController::PreviewStartupButton_Click);
}

void PortalController::BuildStartupButton_Click()
{
    if (m_running)
        return; // one job at a time on the one FTP session
    m_running = true;
    m_frame.DisplayLinkTxt_LostFocus();
    m_frame.URLTxt_LostFocus();
    TransferContext context = m_webSpace.context();
    PortalBuildJob job(context, *this, m_frame.current());
    m_lastOutcome = job.BuildStartupButton();
    m_running = false;
}

void PortalController::PreviewStartupButton_Click()
{
    if (m_running)
        return;
    m_running = true;
    m_frame.DisplayLinkTxt_LostFocus();
    m_frame.URLTxt_LostFocus();
    TransferContext context = m_webSpace.context();
    PortalBuildJob job(context, *this, m_frame.current());
    if (job.PreviewStartupButton()) {
        // Give the browser its moment before the window takes events again.
        m_window.Wait(1);
    }
    m_running = false;
}

bool PortalController::runWithoutConnections() const
{
    return m_window.RunWithoutMenu() && m_window.RunWithoutMenu()->isChecked();
}

QString PortalController::FTPRoot() const
{
    return m_window.FTPRoot()->text();
}

QString PortalController::ClientRoot() const
{
    return m_window.ClientRoot()->text();
}

void PortalController::showProgressFrame(bool show)
{
    m_window.showProgressFrame(show);
}

void PortalController::setBusy(bool busy)
{
    m_busy.set(busy);
}

void PortalController::selectCategory(int row)
{
    m_frame.followCategory(row);
}

void PortalController::selectPageLink(int row)
{
    m_frame.followLink(row);
}

void PortalController::jobEnded()
{
    m_window.shapeEvent(50);
}

PortalParts InstallPortalParts(frmMain &window, WebSpace &webSpace)
{
    JobState &state = window.state();
    PortalServices services;
    services.ui = &webSpace.ui();
    services.state = &state;
    services.chooseColour = [](const QString &start, QWidget *parent) {
        return PickColor(start, parent);
    };
    services.chooseFont = [](const QString &start, QWidget *parent) {
        return PickFont(start, parent);
    };
    services.chooseLogo = [&window](const QString &start) {
        return QFileDialog::getOpenFileName(
            &window, QStringLiteral("Find Logo"), start,
            QStringLiteral("Pictures (*.pic *.bmp *.gif *.jpg *.jpeg *.png)"));
    };
    services.chooseBookmarks = [&window] {
        return QFileDialog::getOpenFileName(
            &window, QStringLiteral("Import Bookmarks"), QDir::homePath(),
            QStringLiteral("Bookmarks exported by a browser (*.html *.htm);;All files (*)"));
    };
    services.shapeEvent = [&window](int step) { window.shapeEvent(step); };

    PortalParts parts;
    parts.frame = new PortalFrame(state.current<PageLink>(), services);
    PortalFrame *frame = parts.frame;
    parts.controller = new PortalController(window, *frame, webSpace);

    ShellFunction function;
    function.index = 4;
    function.content = frame;
    function.instructions = portalInstructions();
    function.openingStep = 50;
    function.steps = portalSteps();
    function.defaultHelpContext = 16;
    function.opened = [frame](bool byTab) { frame->opened(byTab); };
    function.loaded = [frame] { frame->loadSettings(); };
    auto *importMenu = new QAction(QStringLiteral("Import Bookmarks..."));
    importMenu->setObjectName(QStringLiteral("ImportBookmarksMenu"));
    QObject::connect(importMenu, &QAction::triggered, frame, [&window, frame] {
        window.FunctionSelectButton_Click(4);
        frame->ImportBookmarks_Click();
    });
    function.menuEntries.push_back({QStringLiteral("Tools"), importMenu});
    window.addFunction(std::move(function));

    const auto place = [&window, frame](int ring, const char *name) {
        window.placeRing(ring, frame->findChild<QWidget *>(QString::fromLatin1(name)));
    };
    place(17, "BuildStartupButton");
    place(18, "PreviewStartupButton");
    place(19, "File11");
    place(20, "AddNewCatButton");
    place(21, "File21");
    return parts;
}

void InstallPortal(frmMain &window, WebSpace &webSpace)
{
    InstallPortalParts(window, webSpace);
}
