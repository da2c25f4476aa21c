#include "frmMain.h"

#include "GuiJobUi.h"
#include "HelpWindow.h"
#include "InstructionForm.h"
#include "JobState.h"
#include "Settings.h"
#include "SpellingDictionary.h"
#include "StartScreenArt.h"
#include "StepRing.h"
#include "frmInputBox.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTabBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <limits>

const QColor frmMain::RingGreen = QColor(0x00, 0xFF, 0x00);
const QColor frmMain::RingYellow = QColor(0xFF, 0xFF, 0x00);

QString frmMain::FunctionName(int index)
{
    static const char *const Names[FunctionCount] = {
        "Send a Photo Page", "Backup Files ",  "Send a File",
        "Build a Web Log",   "Build a Portal", "FTP Control && Settings"};
    return index >= 0 && index < FunctionCount ? QString::fromLatin1(Names[index]) : QString();
}

frmMain::frmMain(JobState &state, QWidget *parent)
    : QMainWindow(parent), m_state(state), m_jobUi(std::make_unique<GuiJobUi>(*this))
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Tarnwick"));
    setWindowIcon(QIcon(StartScreenArt::WebSpace(64, devicePixelRatioF())));
    resize(1280, 800);
    setMinimumSize(960, 640);

    auto *central = new QWidget(this);
    central->setObjectName(QStringLiteral("MainArea"));
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    layout->addWidget(buildStartScreen(), 1);

    m_workArea = new QWidget(central);
    m_workArea->setObjectName(QStringLiteral("WorkArea"));
    auto *work = new QVBoxLayout(m_workArea);
    work->setContentsMargins(12, 10, 12, 12);
    work->setSpacing(8);

    auto *header = new QHBoxLayout;
    m_tabStrip = new QTabBar(m_workArea);
    m_tabStrip->setObjectName(QStringLiteral("TabStrip1"));
    m_tabStrip->setExpanding(false);
    m_tabStrip->setDrawBase(false);
    for (int i = 0; i < FunctionCount; ++i) {
        m_tabStrip->addTab(FunctionName(i).trimmed());
        m_tabStrip->setTabEnabled(i, false); // until the function joins
    }
    // A tab chosen by mouse or keyboard opens its function; choosing the tab for a function
    // button does not count twice.
    connect(m_tabStrip, &QTabBar::currentChanged, this, [this] {
        if (!m_selectingTab)
            TabStrip1_Click();
    });
    m_returnButton = new QPushButton(QStringLiteral("Return to Start"), m_workArea);
    m_returnButton->setObjectName(QStringLiteral("ReturnToStartButton"));
    connect(m_returnButton, &QPushButton::clicked, this, &frmMain::ReturnToStartButton_Click);
    auto *helpButton = new QPushButton(QStringLiteral("Help"), m_workArea);
    helpButton->setObjectName(QStringLiteral("HelpButton"));
    helpButton->setToolTip(QStringLiteral("Help on what is shown (F1)"));
    connect(helpButton, &QPushButton::clicked, this, &frmMain::HelpButton_Click);
    header->addWidget(m_tabStrip, 1, Qt::AlignBottom);
    header->addWidget(helpButton);
    header->addWidget(m_returnButton);
    work->addLayout(header);

    for (int i = 0; i < FunctionCount; ++i) {
        auto *frame = new QFrame(m_workArea);
        frame->setObjectName(QStringLiteral("TabFrame_%1").arg(i));
        frame->setFrameShape(QFrame::StyledPanel);
        auto *inner = new QVBoxLayout(frame);
        inner->setContentsMargins(12, 12, 12, 12);
        frame->hide();
        work->addWidget(frame, 1);
        m_tabFrames[static_cast<size_t>(i)] = frame;
    }
    layout->addWidget(m_workArea, 1);
    m_workArea->installEventFilter(this);
    setCentralWidget(central);

    central->installEventFilter(this);
    buildProgressFrame();
    for (int i = 0; i < RingCount; ++i) {
        auto *ring = new StepRing(m_workArea);
        ring->setObjectName(QStringLiteral("Shape1_%1").arg(i));
        m_rings[static_cast<size_t>(i)] = ring;
    }

    buildSettingsFields();
    buildMenus();

    m_text2 = new QLabel(this);
    m_text2->setObjectName(QStringLiteral("Text2"));
    statusBar()->addPermanentWidget(m_text2);
    statusBar()->setSizeGripEnabled(true);

    m_timer1 = new QTimer(this);
    m_timer1->setObjectName(QStringLiteral("Timer1"));
    m_timer1->setInterval(3000);
    connect(m_timer1, &QTimer::timeout, this, &frmMain::refreshDrives);
    m_timer2 = new QTimer(this);
    m_timer2->setObjectName(QStringLiteral("Timer2"));
    m_timer2->setInterval(40);
    connect(m_timer2, &QTimer::timeout, this, &frmMain::Timer2_Timer);
    m_timer3 = new QTimer(this);
    m_timer3->setObjectName(QStringLiteral("Timer3"));
    m_timer3->setInterval(1000);
    connect(m_timer3, &QTimer::timeout, this, &frmMain::refreshUploadPath);
    m_timer4 = new QTimer(this);
    m_timer4->setObjectName(QStringLiteral("Timer4"));
    m_timer4->setInterval(100);
    connect(m_timer4, &QTimer::timeout, this, [this] { ++m_tickCount; });

    m_help = new HelpWindow(this);
    qApp->installEventFilter(this);
    m_workArea->hide();
    PositionThings();
}

frmMain::~frmMain()
{
    if (qApp)
        qApp->removeEventFilter(this);
}

QWidget *frmMain::buildProgressFrame()
{
    // Put over the work frames during a job, so their buttons can't be reached while the menus
    // stay live.
    m_progressFrame = new QFrame(centralWidget());
    m_progressFrame->setObjectName(QStringLiteral("ProgressFrame"));
    m_progressFrame->setAutoFillBackground(true);
    QPalette shade = m_progressFrame->palette();
    shade.setColor(QPalette::Window, QColor(245, 246, 248, 235));
    m_progressFrame->setPalette(shade);

    auto *card = new QFrame(m_progressFrame);
    card->setObjectName(QStringLiteral("ProgressCard"));
    card->setFrameShape(QFrame::StyledPanel);
    card->setAutoFillBackground(true);
    QPalette cardPalette = card->palette();
    cardPalette.setColor(QPalette::Window, Qt::white);
    card->setPalette(cardPalette);
    card->setMinimumWidth(560);
    card->setMaximumWidth(720);

    m_statusText = new QLabel(card);
    m_statusText->setObjectName(QStringLiteral("Status_text"));
    m_statusText->setWordWrap(true);
    m_statusText->setTextFormat(Qt::PlainText);
    QFont statusFont = m_statusText->font();
    statusFont.setPointSizeF(statusFont.pointSizeF() * 1.25);
    statusFont.setBold(true);
    m_statusText->setFont(statusFont);
    m_stepOf = new QLabel(card);
    m_stepOf->setObjectName(QStringLiteral("Stepof"));
    m_stepOf->setWordWrap(true);
    m_stepOf->setTextFormat(Qt::PlainText);
    m_progressBar = new QProgressBar(card);
    m_progressBar->setObjectName(QStringLiteral("ProgressBar1"));
    m_progressBar->setRange(0, 100);
    m_progressBar->setValue(0);
    m_progressBar->hide(); // shown by a block download only
    m_cancelButton = new QPushButton(QStringLiteral("Cancel"), card);
    m_cancelButton->setObjectName(QStringLiteral("CancelButton"));
    // The transfer's progress callback sees the flag and stops the file in flight; the job
    // stops at its next check.
    connect(m_cancelButton, &QPushButton::clicked, this,
            [this] { m_state.UploadCancelled = true; });

    auto *cardLayout = new QVBoxLayout(card);
    cardLayout->setContentsMargins(24, 20, 24, 20);
    cardLayout->setSpacing(10);
    cardLayout->addWidget(m_statusText);
    cardLayout->addWidget(m_stepOf);
    cardLayout->addWidget(m_progressBar);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(m_cancelButton);
    cardLayout->addLayout(row);

    card->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto *outer = new QVBoxLayout(m_progressFrame);
    outer->setContentsMargins(24, 24, 24, 24);
    outer->addStretch(2);
    outer->addWidget(card, 0, Qt::AlignHCenter);
    outer->addStretch(3);
    m_progressFrame->hide();
    return m_progressFrame;
}

void frmMain::showDownloadBar(qint64 maximum)
{
    const qint64 top = std::max<qint64>(maximum, 0);
    m_barUnit = top / std::numeric_limits<int>::max() + 1;
    m_progressBar->setRange(0, static_cast<int>(top / m_barUnit));
    m_progressBar->setValue(0);
    m_progressBar->show();
}

void frmMain::setDownloadBarValue(qint64 value)
{
    m_progressBar->setValue(
        static_cast<int>(std::clamp<qint64>(value / m_barUnit, 0, m_progressBar->maximum())));
}

void frmMain::hideDownloadBar()
{
    m_progressBar->hide();
}

void frmMain::mFTP_FileTransferProgress(qint64 currentBytes, qint64 totalBytes)
{
    // The maximum is the total; the value follows while it is below the total.
    if (totalBytes / m_barUnit > std::numeric_limits<int>::max())
        m_barUnit = totalBytes / std::numeric_limits<int>::max() + 1;
    m_progressBar->setMaximum(static_cast<int>(std::max<qint64>(totalBytes, 0) / m_barUnit));
    if (totalBytes > currentBytes)
        m_progressBar->setValue(static_cast<int>(std::max<qint64>(currentBytes, 0) / m_barUnit));
}

void frmMain::buildSettingsFields()
{
    // The fields are parked in a hidden holder until the settings tab lays them out.
    m_fieldHolder = new QWidget(this);
    m_fieldHolder->setObjectName(QStringLiteral("SettingsFieldHolder"));
    m_fieldHolder->hide();
    auto make = [this](const char *name) {
        auto *edit = new QLineEdit(m_fieldHolder);
        edit->setObjectName(QString::fromLatin1(name));
        return edit;
    };
    m_txtServer = make("txtServer");
    m_txtWebSite = make("txtWebSite");
    m_txtUser = make("txtUser");
    m_txtPassword = make("txtPassword");
    m_txtPassword->setEchoMode(QLineEdit::Password);
    m_txtEmailID = make("txtEmailID");
    m_txtDefaultAuthor = make("txtDefaultAuthor");
    m_webRoot = make("WebRoot");
    m_ftpRoot = make("FTPRoot");
    m_clientRoot = make("ClientRoot");
    m_loadSpeed = make("LoadSpeed");
    // Saved when the box is left or Return is pressed; nothing else reads it.
    connect(m_loadSpeed, &QLineEdit::editingFinished, this, [this] {
        m_startup.LoadSpeed = m_loadSpeed->text();
        SaveSetting(QStringLiteral("LoadSpeed"), m_startup.LoadSpeed);
    });
    m_uploadPath = new QLabel(m_fieldHolder);
    m_uploadPath->setObjectName(QStringLiteral("UploadPath"));
    m_uploadPath->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void frmMain::buildMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("FileMenu"));
    for (int i = 0; i < FunctionCount; ++i) {
        QAction *action = file->addAction(FunctionName(i).trimmed());
        action->setObjectName(QStringLiteral("TabMenu_%1").arg(i));
        action->setEnabled(false); // until the function joins
        m_tabMenus[static_cast<size_t>(i)] = action;
        action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i)));
        connect(action, &QAction::triggered, this, [this, i] { FunctionSelectButton_Click(i); });
    }
    file->addSeparator();
    QAction *exitMenu = file->addAction(QStringLiteral("E&xit"));
    exitMenu->setObjectName(QStringLiteral("ExitMenu"));
    exitMenu->setShortcut(QKeySequence::Quit);
    connect(exitMenu, &QAction::triggered, this, &frmMain::askExit);

    m_optionsMenu = menuBar()->addMenu(QStringLiteral("&Options"));
    m_optionsMenu->setObjectName(QStringLiteral("OptionsMenu"));
    m_setupPrompt = m_optionsMenu->addAction(QStringLiteral("&Configuration Settings"));
    m_setupPrompt->setObjectName(QStringLiteral("SetupPrompt"));
    connect(m_setupPrompt, &QAction::triggered, this, &frmMain::PromptForSetup);
    m_runWithoutMenu = m_optionsMenu->addAction(QStringLiteral("Run Without Connections"));
    m_runWithoutMenu->setObjectName(QStringLiteral("RunWithoutMenu"));
    m_runWithoutMenu->setCheckable(true);
    m_highLightSteps = m_optionsMenu->addAction(QStringLiteral("&Highlight Steps"));
    m_highLightSteps->setObjectName(QStringLiteral("HighLightSteps"));
    m_highLightSteps->setCheckable(true);
    m_highLightSteps->setChecked(true);
    connect(m_highLightSteps, &QAction::triggered, this, [this](bool on) {
        if (!on)
            shapeEvent(333);
        SaveSetting(QStringLiteral("HighLightSteps"), BoolText(on));
    });
    m_optionsMenu->addSeparator();
    m_spellCheckOn = m_optionsMenu->addAction(QStringLiteral("Spell Check On"));
    m_spellCheckOn->setObjectName(QStringLiteral("SpellCheckOn"));
    m_spellCheckOn->setCheckable(true);
    connect(m_spellCheckOn, &QAction::triggered, this, &frmMain::SpellCheckOn_Click);
    m_checkSpellingMenu = m_optionsMenu->addAction(QStringLiteral("Check Spelling"));
    m_checkSpellingMenu->setObjectName(QStringLiteral("CheckSpellingMenu"));
    m_checkSpellingAllMenu = m_optionsMenu->addAction(QStringLiteral("Check Spelling - All"));
    m_checkSpellingAllMenu->setObjectName(QStringLiteral("CheckSpellingAllMenu"));
    m_xpOrBetter = m_optionsMenu->addAction(QStringLiteral("Modern System (NT Family)"));
    m_xpOrBetter->setObjectName(QStringLiteral("XPorBetter"));
    m_xpOrBetter->setCheckable(true);
    connect(m_xpOrBetter, &QAction::triggered, this, [this](bool on) {
        m_startup.IsNTFamily = on;
        SaveSetting(QStringLiteral("Bit32"), BoolText(on));
    });

    QMenu *help = menuBar()->addMenu(QStringLiteral("&Help"));
    m_helpMenu = help;
    help->setObjectName(QStringLiteral("HelpMenuBar"));
    QAction *helpMenu = help->addAction(QStringLiteral("Tarnwick &Help"));
    helpMenu->setObjectName(QStringLiteral("HelpMenu"));
    helpMenu->setShortcut(QKeySequence(Qt::Key_F1));
    helpMenu->setShortcutContext(Qt::WidgetShortcut); // F1 itself is handled for every form
    connect(helpMenu, &QAction::triggered, this, &frmMain::HelpButton_Click);
    help->addSeparator();
    for (int i = 0; i < FunctionCount; ++i) {
        // Named by the function's page when it joins.
        QAction *action = help->addAction(QString());
        action->setObjectName(QStringLiteral("InstrMenu_%1").arg(i));
        action->setVisible(false);
        connect(action, &QAction::triggered, this, [this, i] { showInstructionForm(i); });
        m_instrMenus[static_cast<size_t>(i)] = action;
    }
    help->addSeparator();
    QAction *about = help->addAction(QStringLiteral("&About Tarnwick"));
    about->setObjectName(QStringLiteral("AboutMenu"));
    connect(about, &QAction::triggered, this, [this] {
        QMessageBox::about(
            this, QStringLiteral("About Tarnwick"),
            QStringLiteral("<h3>Tarnwick %1</h3><p>Pictures, files, backups, a web log and a "
                           "portal on your own web space.</p><p>%2</p>")
                .arg(QApplication::applicationVersion().toHtmlEscaped(),
                     SystemVersionLine().toHtmlEscaped()));
    });
}

void frmMain::PositionThings()
{
    m_progressFrame->hide();
    m_progressFrame->setGeometry(centralWidget()->rect());
    for (StepRing *ring : m_rings)
        if (ring)
            ring->follow();
}

QFrame *frmMain::TabFrame(int index) const
{
    if (index < 0 || index >= FunctionCount)
        return nullptr;
    return m_tabFrames[static_cast<size_t>(index)];
}

StepRing *frmMain::ring(int index) const
{
    if (index < 0 || index >= RingCount)
        return nullptr;
    return m_rings[static_cast<size_t>(index)];
}

void frmMain::showProgressFrame(bool show)
{
    if (show) {
        m_progressFrame->setGeometry(centralWidget()->rect());
        m_progressFrame->show();
        m_progressFrame->raise();
    } else {
        m_progressFrame->hide();
    }
}

frmInputBox *frmMain::inputBox()
{
    if (!m_inputBox) {
        m_inputBox = new frmInputBox(this);
        m_inputBox->setSpellChecker(m_spellChecker);
    }
    return m_inputBox;
}

void frmMain::setFtpDirectoryProvider(std::function<QString()> provider)
{
    m_ftpDirectory = std::move(provider);
}

void frmMain::setCloseHook(std::function<void()> hook)
{
    m_closeHook = std::move(hook);
}

void frmMain::setSetupPage(std::function<void()> page)
{
    m_setupPage = std::move(page);
}

void frmMain::setSpellChecker(std::function<QString(const QString &)> checker)
{
    m_spellChecker = std::move(checker);
    if (m_inputBox)
        m_inputBox->setSpellChecker(m_spellChecker);
    updateSpellingEntries();
}

void frmMain::setPictureEditor(std::function<void(const QString &, bool)> editor)
{
    m_pictureEditor = std::move(editor);
}

bool frmMain::editPicture(const QString &path, bool wait)
{
    if (!m_pictureEditor)
        return false;
    m_pictureEditor(path, wait);
    return true;
}

bool frmMain::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == centralWidget() && event->type() == QEvent::Resize) {
        m_progressFrame->setGeometry(centralWidget()->rect());
    } else if (watched == m_workArea && event->type() == QEvent::Resize) {
        for (StepRing *ring : m_rings)
            ring->follow();
    } else if (event->type() == QEvent::KeyPress &&
               static_cast<QKeyEvent *>(event)->key() == Qt::Key_F1 && watched->isWidgetType()) {
        // F1 on any of the program's forms opens the page of what is on screen.
        HelpButton_Click();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmMain::SpellCheckOn_Click()
{
    // The entry's check has already flipped: unchecked now means it was on.
    const bool wasOn = !m_spellCheckOn->isChecked();
    m_spellCheckOn->setChecked(wasOn);
    bool on = false;
    if (!wasOn) {
        const QString name = SpellingDictionaryPhrase();
        const QString text =
            QStringLiteral("The Spell Checker requires that you have %1 installed on your system.")
                .arg(name) +
            QStringLiteral("\n\n") +
            QStringLiteral("Running the Spell Checker on a system without %1 could result in "
                           "unpredictable behavior.")
                .arg(name) +
            QStringLiteral("\n\n") + QString(33, QLatin1Char(' ')) +
            QStringLiteral("Are You Sure You Want To Continue?");
        if (m_jobUi->Message(text, QStringLiteral("Tarnwick"), JobUi::Buttons::YesNo,
                             JobUi::Icon::Question) != JobUi::Answer::Yes)
            return;
        on = true;
    }
    SaveSetting(QStringLiteral("SpellCheck"), BoolText(on));
    m_spellCheckOn->setChecked(on);
    m_startup.SpellCheck = on;
    updateSpellingEntries();
}

void frmMain::updateSpellingEntries()
{
    // The entries stay visible; they work once spell checking is on and a checker is there.
    const bool usable = m_spellCheckOn->isChecked() && m_spellChecker;
    m_checkSpellingMenu->setEnabled(usable);
    m_checkSpellingAllMenu->setEnabled(usable);
}
