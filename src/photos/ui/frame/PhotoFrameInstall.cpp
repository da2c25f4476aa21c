#include "PhotoFrameInstall.h"

#include "GuiJobUi.h"
#include "JobState.h"
#include "PhotoFrame.h"
#include "PhotoPage.h"
#include "ReadyToSendPage.h"
#include "frmMain.h"
#include "frmZoom.h"

#include <QLineEdit>
#include <QTabWidget>

namespace {

FunctionInstructions photoInstructions()
{
    return {
        QStringLiteral("InstructionPagePhoto"),
        QStringLiteral("PhotoIntructionView"),
        QStringLiteral("Send a Photo Page"),
        QStringLiteral("Send a Photo Page Instructions"),
        {QStringLiteral(
             "Select the 'Select Images' tab and click on 'Select Photo Directory' button. Select "
             "the images that you would like to upload. Click on the 'Copy' button to copy the "
             "image to the 'Ready to Send' file."),
         QStringLiteral("Once all images have been chosen and copied, select the button labeled "
                        "'Tarnwick Build All and Send to your Site'."),
         QStringLiteral(
             "The system will prompt you for the necessary information. Respond to all the "
             "prompts."),
         QStringLiteral(
             "Once the upload is complete, copy the Web site pointer to an email using the Paste "
             "command. Be sure that the email program is set to HTML format or this step will not "
             "work correctly."),
         QStringLiteral(
             "After a file has been uploaded, you may realize the page need editiing. This is "
             "done by selecting the tab 'Update Photo Page'. The History file must be selected "
             "before editing can begin."),
         QStringLiteral(
             "The 'Settings' tab allows you to personalize the page and change the sizes of the "
             "upload images. These functions are independent of page content and will effect the "
             "page once it is uploaded.")}};
}

} // namespace

PhotoFrame *InstallPhotoFrame(frmMain &window)
{
    JobState &state = window.state();
    auto *frame = new PhotoFrame(state.current<PhotoPage>(), window.jobUi(), state);
    frame->useStandardServices();

    if (QLineEdit *loadSpeed = window.LoadSpeed())
        frame->addSettingsField(QStringLiteral("Image Load Speed (Seconds)"), loadSpeed);

    ShellFunction function;
    function.index = 0;
    function.content = frame;
    function.instructions = photoInstructions();
    function.openingStep = 0;
    // Rings 0, 2 and 3 surround the folder button, the pictures and the copy buttons; ring 1
    // belongs to the Build All button, which places it when it comes.
    function.steps = {
        {0, {0, 2, 3}, {0}, {}},
        {1, {1, 2, 3}, {2, 3}, {}},
        {3, {1, 2, 3}, {2, 3}, {1}},
    };
    // Help pages 3, 4 and 5 belong to the three tabs of the photo function.
    function.helpContext = [frame] {
        const int tab = frame->TabStrip2()->currentIndex();
        return tab >= 0 && tab <= 2 ? 3 + tab : 0;
    };
    function.defaultHelpContext = 6;
    function.opened = [frame](bool byTab) {
        if (!byTab)
            frame->showFirstTab();
    };
    function.shown = [&window] { window.DoCleanup(); };
    function.loaded = [frame] { frame->readFolders(); };
    function.cleanup = [frame] { frame->DoCleanup(); };
    window.addFunction(std::move(function));

    // Pictures go to the program's picture editor, where it has one: the Paint button opens
    // the shown picture, and a double click on the zoom window's picture waits for it.
    if (window.hasPictureEditor()) {
        frame->services().openPaint = [&window](const QString &path) { window.editPicture(path); };
        frmZoom::setPaintOpener([&window](const QString &path) { window.editPicture(path, true); });
    } else if (auto *paint = frame->findChild<QWidget *>(QStringLiteral("Command4"))) {
        paint->hide();
    }

    window.placeRing(0, frame->findChild<QWidget *>(QStringLiteral("ChangeCopyPathButton")));
    window.placeRing(2, frame->findChild<QWidget *>(QStringLiteral("File2")));
    window.placeRing(3, frame->findChild<QWidget *>(QStringLiteral("CopyBox")));
    QObject::connect(frame, &PhotoFrame::shapeEventRequested, &window,
                     [&window](int step) { window.shapeEvent(step); });
    return frame;
}
