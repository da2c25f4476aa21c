#include "PhotoBuildInstall.h"

#include "GuiJobUi.h"
#include "HTMLMake.h"
#include "JobState.h"
#include "PhotoFrame.h"
#include "PhotoFrameHistory.h"
#include "PhotoFrameInstall.h"
#include "PhotoPage.h"
#include "PictureSizing.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "UpdatePhotoPage.h"
#include "WebSpace.h"
#include "frmMain.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>

namespace {

// The box layout below layout that holds widget.
QBoxLayout *layoutHolding(QLayout *layout, QWidget *widget)
{
    if (!layout)
        return nullptr;
    if (layout->indexOf(widget) >= 0)
        return qobject_cast<QBoxLayout *>(layout);
    for (int i = 0; i < layout->count(); ++i) {
        if (QBoxLayout *found = layoutHolding(layout->itemAt(i)->layout(), widget))
            return found;
    }
    return nullptr;
}

} // namespace

PhotoBuildController::PhotoBuildController(frmMain &window, PhotoFrame &frame, WebSpace &webSpace)
    : QObject(&frame), m_window(window), m_frame(frame), m_webSpace(webSpace)
{
    setObjectName(QStringLiteral("PhotoBuildController"));
    m_buildAll = new QPushButton(QStringLiteral("Tarnwick Build All and send to your site"));
    frame.installBuildAllButton(m_buildAll);
    window.placeRing(1, m_buildAll);
    connect(m_buildAll, &QPushButton::clicked, this, &PhotoBuildController::cmdBuildAll_Click);
    addHistoryButtons();
    // Save All names a page that has no name yet with the prompts of Build All.
    frame.services().namePage = [this] { return namePage(); };
}

PhotoBuildController::~PhotoBuildController() = default;

PhotoPage &PhotoBuildController::page() const
{
    return m_window.state().current<PhotoPage>();
}

void PhotoBuildController::addHistoryButtons()
{
    PhotoFrameHistory *history = m_frame.historyPage();
    auto *showHst = history->findChild<QPushButton *>(QStringLiteral("ShowHst"));
    QBoxLayout *column =
        showHst ? layoutHolding(showHst->parentWidget()->layout(), showHst) : nullptr;
    QWidget *owner = showHst ? showHst->parentWidget() : history;
    // The new buttons take the look of the tab's own.
    const int height = showHst ? showHst->minimumHeight() : 0;
    const auto make = [owner, height](const QString &name, const QString &caption) {
        auto *button = new QPushButton(caption, owner);
        button->setObjectName(name);
        button->setMinimumHeight(height);
        return button;
    };
    m_loadHst = make(QStringLiteral("LoadHst"), QStringLiteral("Load From the History File"));
    m_loadHst->setEnabled(false);
    m_showHistory =
        make(QStringLiteral("ShowHistoryButton"), QStringLiteral("Load && Display Photo Details"));
    m_preview = make(QStringLiteral("PhotoPreviewButton"), QStringLiteral("Preview"));
    m_copyPagePointer = make(QStringLiteral("CopyPagePointerButton"),
                             QStringLiteral("Copy the Web Page Pointer as a link"));
    m_preview->setToolTip(QStringLiteral("Builds the page on this computer and opens it, without "
                                         "sending anything."));
    if (column) {
        const int at = column->indexOf(showHst);
        column->insertWidget(at, m_loadHst);
        column->insertWidget(at + 1, m_showHistory);
        column->insertWidget(column->indexOf(showHst) + 2, m_preview);
        column->insertWidget(column->indexOf(m_preview) + 1, m_copyPagePointer);
    }
    connect(m_loadHst, &QPushButton::clicked, this, &PhotoBuildController::LoadHst_Click);
    connect(m_showHistory, &QPushButton::clicked, this,
            &PhotoBuildController::ShowHistoryButton_Click);
    connect(m_preview, &QPushButton::clicked, this,
            &PhotoBuildController::PhotoPreviewButton_Click);
    connect(m_copyPagePointer, &QPushButton::clicked, this,
            &PhotoBuildController::CopyPagePointerButton_Click);

    if (auto *file4 = history->findChild<QListWidget *>(QStringLiteral("File4_0"))) {
        connect(file4, &QListWidget::itemSelectionChanged, this,
                &PhotoBuildController::updateHistoryButtons);
        connect(file4, &QListWidget::itemDoubleClicked, this, [this] { LoadHst_Click(); });
    }
    updateHistoryButtons();
}

// LoadHst waits for the first file chosen in File4 and then stays: with nothing selected the
// load says so.
void PhotoBuildController::updateHistoryButtons()
{
    if (!m_frame.historyPage()->selectedFile().isEmpty())
        m_loadHst->setEnabled(true);
    m_copyPagePointer->setEnabled(!m_frame.historyPage()->pagePointer().isEmpty());
}

void PhotoBuildController::cmdBuildAll_Click()
{
    if (m_running)
        return; // one run at a time on the one FTP session
    m_running = true;
    TransferContext context = m_webSpace.context();
    PhotoBuildJob job(page(), context, *this);
    m_lastOutcome = job.cmdBuildAll();
    m_running = false;
    updateHistoryButtons();
}

bool PhotoBuildController::namePage()
{
    if (m_running)
        return false;
    m_running = true;
    TransferContext context = m_webSpace.context();
    context.state.UserResponse.clear();
    const bool named = PhotoBuildJob(m_frame.page(), context, *this).BuildWebTop(true);
    m_running = false;
    return named;
}

void PhotoBuildController::PhotoPreviewButton_Click()
{
    if (m_running)
        return;
    m_running = true;
    TransferContext context = m_webSpace.context();
    PhotoBuildJob(page(), context, *this).PhotoPreviewButton();
    m_running = false;
}

bool PhotoBuildController::loadSelectedHistory()
{
    const bool loaded =
        LoadHst2(page(), m_frame.historyPage()->selectedFile(),
                 m_frame.readyToSend()->workingFolder(), m_webSpace.ui(), m_window.state(), *this);
    if (loaded) {
        m_showHistory->setText(QStringLiteral("Display History List"));
        m_frame.readyToSend()->EditButtons_Click(6);
        m_frame.showFirstTab();
        // The loaded pictures stand on the Ready to Send list: the next step is Build All.
        const bool listed = !ListPictureFiles(m_frame.readyToSend()->workingFolder()).isEmpty();
        m_window.shapeEvent(listed ? 3 : 0);
    }
    return loaded;
}

void PhotoBuildController::LoadHst_Click()
{
    if (m_running)
        return;
    m_running = true;
    loadSelectedHistory();
    m_running = false;
}

void PhotoBuildController::ShowHistoryButton_Click()
{
    if (m_running)
        return;
    m_running = true;
    if (loadSelectedHistory()) {
        m_buildAll->setEnabled(true);
        m_frame.readyToSend()->titlePrompt()->setEnabled(true);
        m_frame.readyToSend()->filePrompt()->setEnabled(true);
    }
    m_running = false;
}

void PhotoBuildController::CopyPagePointerButton_Click()
{
    CopyPagePointerAsLink(m_window.jobUi(), m_frame.historyPage()->pagePointer(), page().FileName);
}

PhotoBuildOptions PhotoBuildController::options() const
{
    PhotoBuildOptions options;
    options.ChoosenUploadPath = m_frame.readyToSend()->workingFolder();
    options.My_resize_0 = GetSetting(SettingKey::SmlResize, QStringLiteral("15"));
    options.My_resize_1 = GetSetting(SettingKey::LrgResize, QStringLiteral("30"));
    options.JpegQuality = GetSetting(JpegQualityKey, JpegQualityDefault);
    options.FTPRoot = m_window.FTPRoot()->text();
    options.ClientRoot = m_window.ClientRoot()->text();
    return options;
}

bool PhotoBuildController::titlePrompt() const
{
    return m_frame.readyToSend()->titlePrompt()->isChecked();
}

bool PhotoBuildController::filePrompt() const
{
    return m_frame.readyToSend()->filePrompt()->isChecked();
}

bool PhotoBuildController::skipImageInfo() const
{
    return m_frame.readyToSend()->skipImageInfo()->isChecked();
}

bool PhotoBuildController::runWithoutConnections() const
{
    return m_window.RunWithoutMenu() && m_window.RunWithoutMenu()->isChecked();
}

void PhotoBuildController::refreshReadyList()
{
    m_frame.readyToSend()->refreshReady();
}

void PhotoBuildController::refreshHistoryList()
{
    m_frame.historyPage()->refreshFiles();
}

void PhotoBuildController::refreshSourceList()
{
    m_frame.readyToSend()->refreshSource();
}

void PhotoBuildController::selectReadyRow(int row, bool selected)
{
    auto *file3 = m_frame.readyToSend()->findChild<QListWidget *>(QStringLiteral("File3"));
    if (!file3 || row < 0 || row >= file3->count())
        return;
    file3->item(row)->setSelected(selected);
    if (selected) {
        file3->scrollToItem(file3->item(row));
        m_frame.readyToSend()->File3_Click(row);
    }
}

void PhotoBuildController::showThumbnail(const QString &path)
{
    auto *image = m_frame.readyToSend()->findChild<QLabel *>(QStringLiteral("CurrentImage"));
    const QPixmap picture(path);
    if (image && !picture.isNull())
        image->setPixmap(
            picture.scaled(image->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void PhotoBuildController::showProgressFrame(bool show)
{
    m_window.showProgressFrame(show);
}

void PhotoBuildController::setBusy(bool busy)
{
    m_busy.set(busy);
}

void PhotoBuildController::setCaption(const QString &caption)
{
    m_window.setWindowTitle(caption);
}

void PhotoBuildController::shapeEvent(int step)
{
    m_window.shapeEvent(step);
}

void PhotoBuildController::DoCleanup()
{
    m_window.DoCleanup();
}

void PhotoBuildController::setPagePointer(const QString &pointer)
{
    m_frame.setPagePointer(pointer);
    updateHistoryButtons();
}

void PhotoBuildController::setThumbnailPointers(const QString &pointers)
{
    m_thumbnailPointers = pointers;
    m_frame.historyPage()->setThumbnailPointers(pointers);
}

PhotoBuildController *InstallPhotoBuild(frmMain &window, PhotoFrame &frame, WebSpace &webSpace)
{
    return new PhotoBuildController(window, frame, webSpace);
}

void InstallPhotoPage(frmMain &window, WebSpace &webSpace)
{
    PhotoFrame *frame = InstallPhotoFrame(window);
    InstallPhotoBuild(window, *frame, webSpace);
}
