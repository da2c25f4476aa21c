#include "WebLogInstall.h"

#include "GuiJobUi.h"
#include "JobState.h"
#include "Pickers.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "WebLogFrame.h"
#include "WebLogSpelling.h"
#include "WebSpace.h"
#include "frmMain.h"

#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace {

FunctionInstructions blogInstructions()
{
    return {QStringLiteral("InstructionPageBlog"),
            QStringLiteral("BlogIntructionView"),
            QStringLiteral("Build a Web Log"),
            QStringLiteral("Build a Web Log Instructions"),
            {QStringLiteral("Fill in all of the information and add a picture and add more "
                            "articles as desired."),
             QStringLiteral(
                 "Create a subtitle for this section and enter all desired information into the "
                 "text field. Add a picture and add more Sections, as desired. Changes to the font "
                 "attributes, using the Center, Bold, Italics, or Underline  buttons, will be "
                 "tagged on this page, but will appear on the Preview and the final web upload."),
             QStringLiteral("Select the 'Build Web Log' button. This copies the page to your web "
                            "space & creates a pointer, which can be added to an email or a "
                            "document."),
             QStringLiteral("By returning to the tab labeled "),
             QStringLiteral("Explore the options for each section (such as the ")}};
}

// The rows of the ring table that the Web Log's steps raise.
std::vector<StepRow> blogSteps()
{
    return {
        {10, {5, 6}, {5}, {}},
        {11, {6, 23}, {6}, {}},
        {16, {6, 23}, {6, 23}, {}},
        {15, {23}, {23}, {}},
        {12, {7, 24, 25}, {7}, {}},
        {22, {24}, {24}, {}},
        {23, {24, 25}, {24, 25}, {}},
        {24, {8, 9, 15, 26}, {8, 9, 15}, {}},
        {13, {7, 8, 9, 15}, {8, 9, 15}, {}},
        {14, {4, 8, 9, 15}, {8, 9, 15}, {4}},
    };
}

} // namespace

WebLogController::WebLogController(frmMain &window, WebLogFrame &frame, WebSpace &webSpace)
    : QObject(&frame), m_window(window), m_frame(frame), m_webSpace(webSpace)
{
    setObjectName(QStringLiteral("WebLogController"));
    connect(frame.BlogBuildButton(), &QPushButton::clicked, this,
            &WebLogController::BlogBuild_Click);
    connect(frame.BlogPreviewButton(), &QPushButton::clicked, this,
            &WebLogController::BlogPreviewButton_Click);
    connect(frame.BuildMasterBlogButton(), &QPushButton::clicked, this,
            &WebLogController::BuildMasterBlogButton_Click);
}

void WebLogController::BlogBuild_Click()
{
    if (m_running)
        return; // one job at a time on the one FTP session
    m_running = true;
    m_frame.BlogText_LostFocus();
    TransferContext context = m_webSpace.context();
    BlogBuildJob job(m_frame.records(), context, *this);
    m_lastOutcome = job.BlogBuild();
    m_running = false;
}

void WebLogController::BlogPreviewButton_Click()
{
    if (m_running)
        return;
    m_running = true;
    m_frame.BlogText_LostFocus();
    TransferContext context = m_webSpace.context();
    if (!BlogBuildJob(m_frame.records(), context, *this).BlogPreviewButton() &&
        !m_frame.webLogOpen())
        m_frame.TabStrip3_Click(0);
    m_running = false;
}

void WebLogController::BuildMasterBlogButton_Click()
{
    if (m_running)
        return;
    m_running = true;
    TransferContext context = m_webSpace.context();
    BlogMasterJob job(context, *this);
    m_lastMaster = job.BuildMasterBlogButton(m_frame.allWebLogs(), m_frame.chosenWebLogs());
    m_running = false;
}

BlogBuildOptions WebLogController::options() const
{
    BlogBuildOptions options;
    const BlogMain &main = m_frame.records().main;
    options.pages.BlogDirName = m_frame.BlogDirName()->text().trimmed();
    if (options.pages.BlogDirName.isEmpty())
        options.pages.BlogDirName = SettingDefault::BlogDirName;
    options.pages.txtWebSite = m_window.txtWebSite()->text().trimmed();
    options.pages.ClientRoot = m_window.ClientRoot()->text();
    options.pages.ShowPointersCk = main.ShowPointers != QLatin1String("No");
    options.pages.ShowCommentCk = main.ShowCommentPage != QLatin1String("No");
    options.pages.Blog_resize = GetSetting(SettingKey::BlogResize, SettingDefault::BlogResize);
    options.FTPRoot = m_window.FTPRoot()->text();
    return options;
}

bool WebLogController::runWithoutConnections() const
{
    return m_window.RunWithoutMenu() && m_window.RunWithoutMenu()->isChecked();
}

void WebLogController::showProgressFrame(bool show)
{
    m_window.showProgressFrame(show);
}

void WebLogController::setBusy(bool busy)
{
    m_busy.set(busy);
}

void WebLogController::setCaption(const QString &caption)
{
    m_window.setWindowTitle(caption);
}

void WebLogController::setBlogDirName(const QString &text)
{
    m_frame.BlogDirName()->setText(text);
    SaveSetting(SettingKey::BlogDirName, text);
}

void WebLogController::setUploadPathCaption(const QString &caption)
{
    m_window.UploadPath()->setText(caption);
}

void WebLogController::showUploadFiles(const QStringList &files)
{
    m_frame.showUploadFiles(files);
}

void WebLogController::selectUploadFile(int row)
{
    QListWidget *list = m_frame.File5();
    if (row < 0 || row >= list->count())
        return;
    const QSignalBlocker block(list);
    list->setCurrentRow(row);
}

void WebLogController::showSections()
{
    m_frame.showSectionList();
}

void WebLogController::recordsChanged()
{
    m_frame.refreshSections();
    m_frame.showCurrentRecords();
}

WebLogParts InstallWebLogParts(frmMain &window, WebSpace &webSpace)
{
    JobState &state = window.state();
    WebLogServices services;
    services.ui = &webSpace.ui();
    services.state = &state;
    // Every "Click Here to Change" box of the tab opens the program's own pickers.
    services.chooseColour = [](const QString &start, QWidget *parent) {
        return PickColor(start, parent);
    };
    services.chooseFont = [](const QString &start, QWidget *parent) {
        return PickFont(start, parent);
    };
    services.choosePicture = [&window](const QString &start) {
        return QFileDialog::getOpenFileName(&window, QStringLiteral("Browse for Image"), start,
                                            QStringLiteral("Pictures (*.jpg *.gif *.bmp)"));
    };
    services.shapeEvent = [&window](int step) { window.shapeEvent(step); };
    services.txtDefaultAuthor = window.txtDefaultAuthor();
    services.txtEmailID = window.txtEmailID();

    WebLogParts parts;
    parts.frame = new WebLogFrame(state.current<BlogRecords>(), services);
    WebLogFrame *frame = parts.frame;
    parts.controller = new WebLogController(window, *frame, webSpace);
    parts.spelling = new WebLogSpelling(window, *frame);

    ShellFunction function;
    function.index = 3;
    function.content = frame;
    function.instructions = blogInstructions();
    function.openingStep = 10;
    function.steps = blogSteps();
    function.helpContext = [frame] { return frame->helpContext(); };
    function.defaultHelpContext = 10;
    function.opened = [frame](bool byTab) { frame->opened(byTab); };
    window.addFunction(std::move(function));

    const auto place = [&window, frame](int ring, const char *name) {
        window.placeRing(ring, frame->findChild<QWidget *>(QString::fromLatin1(name)));
    };
    place(4, "BlogBuild");
    place(5, "addNewBlogFileButton");
    place(6, "File6_0");
    place(7, "BlogAddItem");
    place(8, "DisplayedSubTitle");
    place(9, "BlogText");
    place(15, "BlogBrowsePic");
    place(23, "SelectBlogPageButton");
    place(24, "File5");
    place(25, "OpenSection");
    place(26, "BlogSelectItem");

    WebLogSpelling *spelling = parts.spelling;
    // Without a dictionary the window gets no checker: its spelling entries stay disabled.
    if (spelling->available())
        window.setSpellChecker(
            [spelling](const QString &text) { return spelling->SpellChecker(text); });
    QObject::connect(window.CheckSpellingMenu(), &QAction::triggered, spelling,
                     &WebLogSpelling::CheckSpellingMenu_Click);
    QObject::connect(window.CheckSpellingAllMenu(), &QAction::triggered, spelling,
                     &WebLogSpelling::CheckSpellingAllMenu_Click);
    return parts;
}

void InstallWebLog(frmMain &window, WebSpace &webSpace)
{
    InstallWebLogParts(window, webSpace);
}
