#include "PhotoFrame.h"

#include "Folders.h"
#include "History.h"
#include "PhotoFrameHistory.h"
#include "PhotoFrameSettings.h"
#include "PhotoPage.h"
#include "Pickers.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "frmDialogPg.h"
#include "frmZoom.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QTabWidget>
#include <QVBoxLayout>

PhotoFrame::PhotoFrame(PhotoPage &page, JobUi &ui, JobState &state, QWidget *parent)
    : QWidget(parent), m_page(page)
{
    setObjectName(QStringLiteral("SendPhotoPageFrame"));
    m_services.ui = &ui;
    m_services.state = &state;

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("TabStrip2"));
    m_tabs->setDocumentMode(true);
    m_ready = new ReadyToSendPage(page, m_services, m_tabs);
    m_history = new PhotoFrameHistory(page, m_services, m_tabs);
    m_settings = new PhotoFrameSettings(page, m_services, m_tabs);
    m_tabs->addTab(m_ready, QStringLiteral("Select Images"));
    m_tabs->addTab(m_history, QStringLiteral("Update Photo Page"));
    m_tabs->addTab(m_settings, QStringLiteral("Settings"));
    connect(m_ready, &ReadyToSendPage::historySaved, m_history, &PhotoFrameHistory::refreshFiles);
    connect(m_history, &PhotoFrameHistory::recordReplaced, m_ready,
            [this] { m_ready->EditButtons_Click(6); });
    connect(m_tabs, &QTabWidget::tabBarClicked, this, [this](int index) {
        if (index == SelectImagesTab)
            emit shapeEventRequested(0);
    });
    connect(m_ready, &ReadyToSendPage::stepReached, this, &PhotoFrame::shapeEventRequested);

    // The build options write their settings at once.
    auto bindOption = [](QCheckBox *box, const QString &key) {
        box->setChecked(ParseBoolSetting(ReadStartupSetting(key)).value_or(false));
        connect(box, &QCheckBox::clicked, box,
                [box, key] { SaveSetting(key, BoolText(box->isChecked())); });
    };
    bindOption(m_ready->titlePrompt(), SettingKey::PromptForTitle);
    bindOption(m_ready->filePrompt(), SettingKey::PromptForDescription);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tabs);

    readFolders();
}

void PhotoFrame::readFolders()
{
    QString working = GetSetting(SettingKey::TempPath, DefaultTempPath());
    if (working.isEmpty() || !QFileInfo(working).isDir()) {
        working = DefaultTempPath();
        QDir().mkpath(working);
    }
    QString source = GetSetting(SettingKey::CopyPath,
                                Folders::FindSystemFolder(Folders::SystemFolder::Documents));
    if (source.isEmpty() || !QFileInfo(source).isDir())
        source = Folders::FindSystemFolder(Folders::SystemFolder::Documents);
    m_ready->setWorkingFolder(QDir::cleanPath(working));
    m_ready->setSourceFolder(QDir::cleanPath(source));
    m_settings->setWorkingFolder(QDir::cleanPath(working));
}

void PhotoFrame::DoCleanup()
{
    m_ready->setWorkingFolder(m_ready->workingFolder());
    m_ready->refreshSource();
    ClearHistory(m_page);
    m_ready->clearPreview();
    m_ready->EditButtons_Click(6);
    m_history->refreshFiles();
}

void PhotoFrame::setPagePointer(const QString &pointer)
{
    m_history->setPagePointer(pointer);
    m_ready->setPagePointer(pointer);
}

void PhotoFrame::showFirstTab()
{
    m_tabs->setCurrentIndex(SelectImagesTab);
}

void PhotoFrame::installBuildAllButton(QAbstractButton *button)
{
    button->setObjectName(QStringLiteral("cmdBuildAll"));
    if (button->text().isEmpty())
        button->setText(QStringLiteral("Tarnwick Build All and send to your site"));
    button->setMinimumHeight(40);
    button->setParent(m_ready);
    m_ready->buildArea()->addWidget(button);
    button->show();
}

void PhotoFrame::addSettingsField(const QString &caption, QWidget *field)
{
    m_settings->addField(caption, field);
}

void PhotoFrame::useStandardServices()
{
    QWidget *owner = this;
    if (!m_services.inputBox) {
        m_services.inputBox = [owner](const QString &question, const QString &title,
                                      const QString &defaultText) {
            bool ok = false;
            const QString answer =
                QInputDialog::getText(owner, title, question, QLineEdit::Normal, defaultText, &ok);
            return ok ? answer : QString();
        };
    }
    if (!m_services.chooseFolder) {
        m_services.chooseFolder = [owner](const QString &start) {
            return frmDialogPg::PickFolder(owner, start, true);
        };
    }
    if (!m_services.zoomPicture) {
        m_services.zoomPicture = [owner](const QString &path) {
            frmZoom::ShowPicture(path, 0, owner);
        };
    }
    if (!m_services.choosePdfFile) {
        m_services.choosePdfFile = [owner](const QString &suggested) {
            const QString start = Folders::FindSystemFolder(Folders::SystemFolder::Documents) +
                                  QLatin1Char('/') + suggested;
            return QFileDialog::getSaveFileName(
                owner, QStringLiteral("No printer is installed - save the list as a PDF file"),
                start, QStringLiteral("PDF files (*.pdf)"));
        };
    }
    if (!m_services.chooseColour) {
        m_services.chooseColour = [owner](const QString &colour, const QString &) {
            return PickColor(colour, owner).value_or(QString());
        };
    }
    if (!m_services.chooseFont) {
        m_services.chooseFont = [owner](const QString &family) {
            return PickFont(family, owner).value_or(QString());
        };
    }
}
