#include "PhotoFrameInstall.h"

#include "GuiJobUi.h"
#include "JobState.h"
#include "PhotoFrame.h"
#include "PhotoPage.h"
#include "ReadyToSendPage.h"
#include "frmMain.h"

#include <QFrame>
#include <QLayout>
#include <QLineEdit>
#include <QTabWidget>

PhotoFrame *InstallPhotoFrame(frmMain &window)
{
    QFrame *host = window.TabFrame(0);
    auto *frame = new PhotoFrame(PhotoPage::instance(), window.jobUi(), JobState::instance(), host);
    frame->useStandardServices();
    if (host->layout())
        host->layout()->addWidget(frame);

    if (QLineEdit *loadSpeed = window.LoadSpeed())
        frame->addSettingsField(QStringLiteral("Image Load Speed (Seconds)"), loadSpeed);

    // The rings of the photo function: the folder button first, then the pictures and the
    // copy buttons. Ring 1 belongs to the Build All button, which places it when it comes.
    window.placeRing(0, frame->findChild<QWidget *>(QStringLiteral("ChangeCopyPathButton")));
    window.placeRing(2, frame->findChild<QWidget *>(QStringLiteral("File2")));
    window.placeRing(3, frame->findChild<QWidget *>(QStringLiteral("CopyBox")));
    QObject::connect(frame, &PhotoFrame::shapeEventRequested, &window,
                     [&window](int step) { window.shapeEvent(step); });

    window.addLoadHook([frame] { frame->readFolders(); });
    window.addCleanupHook([frame] { frame->DoCleanup(); });
    window.addFunctionOpenedHook([frame](int index, bool byTab) {
        if (index == 0 && !byTab)
            frame->showFirstTab();
    });
    // Help pages 3, 4 and 5 belong to the three tabs of the photo function.
    window.setHelpContextProvider(0, [frame] {
        const int tab = frame->TabStrip2()->currentIndex();
        return tab >= 0 ? 3 + tab : 0;
    });
    return frame;
}
