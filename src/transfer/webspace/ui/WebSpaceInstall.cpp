#include "WebSpaceInstall.h"

#include "DialogTransferUi.h"
#include "FtpControlTab.h"
#include "GuiJobUi.h"
#include "JobState.h"
#include "SendFileFrame.h"
#include "StartupPage.h"
#include "cFTP.h"
#include "dlgFTP.h"
#include "frmMain.h"

#include <QFrame>
#include <QLayout>

#include <memory>

namespace {

// Keeps the progress dialogs of the web space functions for as long as the window lives.
class ProgressHolder final : public QObject
{
public:
    explicit ProgressHolder(frmMain &window)
        : QObject(&window),
          progress(std::make_unique<DialogTransferUi>(JobState::instance(), &window))
    {
    }
    std::unique_ptr<DialogTransferUi> progress;
};

void place(QFrame *frame, QWidget *content)
{
    if (!frame->layout())
        new QVBoxLayout(frame);
    frame->layout()->addWidget(content);
}

} // namespace

WebSpaceParts InstallWebSpace(frmMain &window, cFTP &ftp, JobUi *ui, TransferUi *progress)
{
    if (!ui)
        ui = &window.jobUi();
    if (!progress)
        progress = (new ProgressHolder(window))->progress.get();

    WebSpaceParts parts;
    parts.tab = new FtpControlTab(window, ftp, *ui, *progress, window.TabFrame(5));
    place(window.TabFrame(5), parts.tab);
    parts.sendFile = new SendFileFrame(window, *parts.tab, window.TabFrame(2));
    place(window.TabFrame(2), parts.sendFile);
    parts.page = new StartupPage(window, *parts.tab, &window);

    StartupPage *page = parts.page;
    window.setSetupPage([page] { page->PromptForSetup(); });
    window.setFtpDirectoryProvider([&ftp] { return ftp.CurrentDirectory(); });
    window.setCloseHook([&ftp] { ftp.CloseConnection(); });
    return parts;
}
