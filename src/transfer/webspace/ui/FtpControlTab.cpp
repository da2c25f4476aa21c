#include "FtpControlTab.h"

#include "BrowserTexts.h"
#include "DirectoryName.h"
#include "JobState.h"
#include "Settings.h"
#include "WaitNotice.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDateTime>
#include <QEvent>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

#include <QTreeWidget>
#include <QVBoxLayout>
#include <functional>

namespace {

QPushButton *makeButton(const QString &name, const QString &caption, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    return button;
}

} // namespace

std::function<void()> FtpControlTab::guarded(void (FtpControlTab::*command)())
{
    return [this, command] {
        if (!startCommand())
            return;
        (this->*command)();
        endCommand();
    };
}

bool FtpControlTab::startCommand()
{
    if (m_running)
        return false;
    m_running = true;
    // A wait cancelled by an earlier command does not stop this one.
    m_ftp.ClearCancel();
    return true;
}

void FtpControlTab::endCommand()
{
    m_running = false;
}

FtpControlTab::FtpControlTab(frmMain &window, cFTP &ftp, JobUi &ui, TransferUi &progress,
                             QWidget *parent)
    : QWidget(parent), m_window(window), m_ftp(ftp), m_ui(ui), m_progress(progress),
      m_state(window.state())
{
    setObjectName(QStringLiteral("FtpControlTab"));
    m_wait = new WaitNotice(m_ftp, m_state, m_window.statusBar(), this);
    buildLayout();
    connectFields();
    EnableFTPButtons(false);
    m_advanced->hide();
}

void FtpControlTab::buildLayout()
{
    auto *top = new QHBoxLayout(this);
    auto *left = new QVBoxLayout;
    left->addWidget(buildAccountBox());
    left->addWidget(buildOptions());
    left->addStretch(1);
    top->addLayout(left, 0);

    auto *right = new QVBoxLayout;
    right->addWidget(buildAdvancedFrame());
    right->addWidget(buildBrowser(), 1);
    top->addLayout(right, 1);
}

QWidget *FtpControlTab::buildAccountBox()
{
    auto *box = new QGroupBox(tr("Your web space"), this);
    auto *form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_window.txtPassword()->setEchoMode(QLineEdit::Password);
    form->addRow(tr("FTP Server:"), m_window.txtServer());
    form->addRow(tr("Web Site Address:"), m_window.txtWebSite());
    form->addRow(tr("User or ID Name:"), m_window.txtUser());
    form->addRow(tr("FTP Password:"), m_window.txtPassword());
    form->addRow(tr("Email Address:"), m_window.txtEmailID());
    form->addRow(tr("Author:"), m_window.txtDefaultAuthor());
    for (QLineEdit *field :
         {m_window.txtServer(), m_window.txtWebSite(), m_window.txtUser(), m_window.txtPassword(),
          m_window.txtEmailID(), m_window.txtDefaultAuthor()}) {
        field->setMinimumWidth(200);
        field->show();
    }

    m_cmdConnect = makeButton(QStringLiteral("cmdConnect"), tr("&Connect"), box);
    m_cmdDisconnect = makeButton(QStringLiteral("cmdDisconnect"), tr("&Disconnect"), box);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_cmdConnect);
    buttons->addWidget(m_cmdDisconnect);

    m_advancedButton =
        makeButton(QStringLiteral("AdvanceSettingFrameButton"), tr("Advanced Settings"), box);

    auto *layout = new QVBoxLayout(box);
    layout->addLayout(form);
    layout->addLayout(buttons);
    layout->addWidget(m_advancedButton);

    connect(m_cmdConnect, &QPushButton::clicked, this, guarded(&FtpControlTab::cmdConnect_Click));
    connect(m_cmdDisconnect, &QPushButton::clicked, this,
            guarded(&FtpControlTab::cmdDisconnect_Click));
    connect(m_advancedButton, &QPushButton::clicked, this, [this] { m_advanced->show(); });
    m_window.placeRing(14, m_cmdConnect);
    return box;
}

QWidget *FtpControlTab::buildOptions()
{
    auto *box = new QGroupBox(tr("Transfer options"), this);
    auto *layout = new QVBoxLayout(box);
    auto *modeGroup = new QButtonGroup(box);
    const QStringList captions = {tr("Active Connection"), tr("Passive Connection")};
    for (int i = 0; i < 2; ++i) {
        m_optActive[i] = new QRadioButton(captions[i], box);
        m_optActive[i]->setObjectName(QStringLiteral("optActive_%1").arg(i));
        modeGroup->addButton(m_optActive[i], i);
        layout->addWidget(m_optActive[i]);
    }
    m_optActive[0]->setChecked(true);

    auto *typeGroup = new QButtonGroup(box);
    m_optAscii = new QRadioButton(tr("ASCII File Transfer"), box);
    m_optAscii->setObjectName(QStringLiteral("optAscii"));
    m_optBin = new QRadioButton(tr("Binary File Transfer"), box);
    m_optBin->setObjectName(QStringLiteral("optBin"));
    typeGroup->addButton(m_optAscii);
    typeGroup->addButton(m_optBin);
    m_optBin->setChecked(true);
    layout->addSpacing(6);
    layout->addWidget(m_optAscii);
    layout->addWidget(m_optBin);

    // The choices hold for the session until the next connection, which starts passive and
    // ASCII again; nothing of them is stored.
    connect(m_optActive[0], &QRadioButton::clicked, this, [this] { m_ftp.SetModeActive(); });
    connect(m_optActive[1], &QRadioButton::clicked, this, [this] { m_ftp.SetModePassive(); });
    connect(m_optAscii, &QRadioButton::clicked, this, [this] { m_ftp.SetTransferASCII(); });
    connect(m_optBin, &QRadioButton::clicked, this, [this] { m_ftp.SetTransferBinary(); });
    return box;
}

QWidget *FtpControlTab::buildBrowser()
{
    auto *box = new QWidget(this);
    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);

    m_lblDir = new QLabel(tr("Current Directory: "), box);
    m_lblDir->setObjectName(QStringLiteral("lblDir"));
    QLabel *uploadPath = m_window.UploadPath();
    uploadPath->setTextInteractionFlags(Qt::TextSelectableByMouse);
    uploadPath->show();
    m_lblSecurity = new QLabel(box);
    m_lblSecurity->setObjectName(QStringLiteral("lblSecurity"));
    layout->addWidget(m_lblDir);
    layout->addWidget(m_lblSecurity);
    layout->addWidget(uploadPath);

    m_lv = new QTreeWidget(box);
    m_lv->setObjectName(QStringLiteral("lv"));
    m_lv->setColumnCount(4);
    m_lv->setHeaderLabels({tr("Name"), tr("Size"), tr("Attributes"), tr("Modified")});
    m_lv->setRootIsDecorated(false);
    m_lv->setUniformRowHeights(true);
    m_lv->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_lv->setAllColumnsShowFocus(true);
    m_lv->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_lv->header()->setStretchLastSection(false);
    m_lv->setColumnWidth(1, 110);
    m_lv->setColumnWidth(2, 90);
    m_lv->setColumnWidth(3, 150);
    layout->addWidget(m_lv, 1);
    connect(m_lv, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem *item) {
        if (!startCommand())
            return;
        lv_My_DblClick(item);
        endCommand();
    });

    auto *commands = new QWidget(box);
    commands->setObjectName(QStringLiteral("FtpCommands"));
    auto *grid = new QGridLayout(commands);
    grid->setContentsMargins(0, 0, 0, 0);
    m_cmdUpload = makeButton(QStringLiteral("cmdUpload"), tr("Upload File to Server"), commands);
    m_cmdDownload =
        makeButton(QStringLiteral("cmdDownload"), tr("Download File from Server"), commands);
    m_cmdCreateDir = makeButton(QStringLiteral("cmdCreateDir"), tr("Create Directory"), commands);
    m_cmdRename = makeButton(QStringLiteral("cmdRename"), tr("Rename File"), commands);
    m_cmdDelete = makeButton(QStringLiteral("cmdDelete"), tr("Delete"), commands);
    m_cmdDeleteAll = makeButton(QStringLiteral("cmdDeleteAll"), tr("Delete All"), commands);
    m_delSelectionButton =
        makeButton(QStringLiteral("DelSelectionButton"), tr("Delete Selection"), commands);
    m_cmdRefresh = makeButton(QStringLiteral("cmdRefresh"), tr("Refresh"), commands);
    m_refreshButton = makeButton(QStringLiteral("RefreshButton"), tr("Reload List"), commands);
    m_upDirButton = makeButton(QStringLiteral("UpDirButton"), tr("Up One Directory"), commands);
    m_pointerButton = makeButton(QStringLiteral("MakeFilePointerStdButton"),
                                 tr("Copy Pointer to Clipboard"), commands);
    grid->addWidget(m_cmdUpload, 0, 0);
    grid->addWidget(m_cmdDownload, 0, 1);
    grid->addWidget(m_pointerButton, 0, 2);
    grid->addWidget(m_cmdCreateDir, 1, 0);
    grid->addWidget(m_cmdRename, 1, 1);
    grid->addWidget(m_upDirButton, 1, 2);
    grid->addWidget(m_cmdDelete, 2, 0);
    grid->addWidget(m_delSelectionButton, 2, 1);
    grid->addWidget(m_cmdDeleteAll, 2, 2);
    grid->addWidget(m_cmdRefresh, 3, 0);
    grid->addWidget(m_refreshButton, 3, 1);
    layout->addWidget(commands);
    m_window.placeRing(16, commands);

    connect(m_cmdUpload, &QPushButton::clicked, this, guarded(&FtpControlTab::cmdUpload_Click));
    connect(m_cmdDownload, &QPushButton::clicked, this, guarded(&FtpControlTab::cmdDownload_Click));
    connect(m_cmdCreateDir, &QPushButton::clicked, this,
            guarded(&FtpControlTab::cmdCreateDir_Click));
    connect(m_cmdRename, &QPushButton::clicked, this, guarded(&FtpControlTab::cmdRename_Click));
    connect(m_cmdDelete, &QPushButton::clicked, this, guarded(&FtpControlTab::cmdDelete_Click));
    connect(m_cmdDeleteAll, &QPushButton::clicked, this,
            guarded(&FtpControlTab::cmdDeleteAll_Click));
    connect(m_delSelectionButton, &QPushButton::clicked, this,
            guarded(&FtpControlTab::DelSelectionButton_Click));
    connect(m_cmdRefresh, &QPushButton::clicked, this, guarded(&FtpControlTab::ReloadFTPList));
    connect(m_refreshButton, &QPushButton::clicked, this, guarded(&FtpControlTab::ReloadFTPList));
    connect(m_upDirButton, &QPushButton::clicked, this, guarded(&FtpControlTab::UpDirButton_Click));
    connect(m_pointerButton, &QPushButton::clicked, this,
            guarded(&FtpControlTab::MakeFilePointerStdButton_Click));
    return box;
}

QFrame *FtpControlTab::buildAdvancedFrame()
{
    m_advanced = new QFrame(this);
    m_advanced->setObjectName(QStringLiteral("AdvanceSettingFrame"));
    m_advanced->setFrameShape(QFrame::StyledPanel);
    auto *layout = new QVBoxLayout(m_advanced);
    auto *title = new QLabel(tr("<b>Advanced Settings</b>"), m_advanced);
    layout->addWidget(title);

    auto *form = new QFormLayout;
    form->addRow(tr("FTP Root (the directory your web site is served from):"), m_window.FTPRoot());
    form->addRow(tr("Web Root:"), m_window.WebRoot());
    form->addRow(tr("Special Directory Given to You by The Administrator:"), m_window.ClientRoot());
    for (QLineEdit *field : {m_window.FTPRoot(), m_window.WebRoot(), m_window.ClientRoot()})
        field->show();
    layout->addLayout(form);

    auto *boxes = new QGroupBox(tr("Home page names to search for"), m_advanced);
    auto *grid = new QGridLayout(boxes);
    const QStringList &texts = RootSearchOptions::BoxTexts();
    for (int i = 0; i < int(m_rootSearchCk.size()); ++i) {
        m_rootSearchCk[i] = new QCheckBox(texts[i], boxes);
        m_rootSearchCk[i]->setObjectName(QStringLiteral("RootSearchCk_%1").arg(i));
        m_rootSearchCk[i]->setChecked(true);
        grid->addWidget(m_rootSearchCk[i], i / 3, i % 3);
    }
    layout->addWidget(boxes);

    m_alternateRootTxt = new QLineEdit(m_advanced);
    m_alternateRootTxt->setObjectName(QStringLiteral("AlternateRootTxt"));
    auto *alternate = new QFormLayout;
    alternate->addRow(tr("Alternative Root File Name to Search"), m_alternateRootTxt);
    layout->addLayout(alternate);

    m_searchButton = makeButton(QStringLiteral("SearchForRootButton"),
                                tr("Auto Search for The FTP Root"), m_advanced);
    m_advancedDoneButton =
        makeButton(QStringLiteral("AdvanceSettingFrameDoneButton"), tr("Done"), m_advanced);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_searchButton);
    buttons->addStretch(1);
    buttons->addWidget(m_advancedDoneButton);
    layout->addLayout(buttons);

    connect(m_searchButton, &QPushButton::clicked, this,
            guarded(&FtpControlTab::SearchForRootButton_Click));
    connect(m_advancedDoneButton, &QPushButton::clicked, m_advanced, &QFrame::hide);
    return m_advanced;
}

void FtpControlTab::connectFields()
{
    const auto writeAsTyped = [this](QLineEdit *field, const QString &key) {
        connect(field, &QLineEdit::textChanged, this,
                [key](const QString &text) { SaveSetting(key, text); });
    };
    writeAsTyped(m_window.txtServer(), QStringLiteral("Server"));
    writeAsTyped(m_window.txtWebSite(), QStringLiteral("WebPage"));
    writeAsTyped(m_window.txtUser(), QStringLiteral("User"));
    writeAsTyped(m_window.txtPassword(), QStringLiteral("Password"));
    writeAsTyped(m_window.txtEmailID(), QStringLiteral("EmailID"));
    writeAsTyped(m_window.txtDefaultAuthor(), QStringLiteral("Author"));
    writeAsTyped(m_window.WebRoot(), QStringLiteral("WebRoot"));
    writeAsTyped(m_window.FTPRoot(), QStringLiteral("FTPRoot"));
    // ClientRoot is cleaned and written when it loses the focus.
    m_window.ClientRoot()->installEventFilter(this);
}

bool FtpControlTab::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window.ClientRoot() && event->type() == QEvent::FocusOut)
        ClientRoot_LostFocus();
    return QWidget::eventFilter(watched, event);
}

void FtpControlTab::ClientRoot_LostFocus()
{
    QLineEdit *field = m_window.ClientRoot();
    const QString cleaned = CleanDirectoryName(field->text());
    if (cleaned != field->text())
        field->setText(cleaned);
    if (cleaned != GetSetting(QStringLiteral("ClientRoot")))
        SaveSetting(QStringLiteral("ClientRoot"), cleaned);
}

void FtpControlTab::EnableFTPButtons(bool flag)
{
    for (QPushButton *button :
         {m_cmdDownload, m_cmdUpload, m_cmdRename, m_cmdRefresh, m_cmdDeleteAll, m_cmdDelete,
          m_cmdCreateDir, m_upDirButton, m_refreshButton, m_pointerButton, m_delSelectionButton})
        button->setEnabled(flag);
    // The buttons come with Connect and go with Disconnect, and so does the timer that shows
    // the current directory in UploadPath.
    m_window.setUploadPathTimerRunning(flag);
}
