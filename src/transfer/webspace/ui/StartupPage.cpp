#include "StartupPage.h"

#include "BusyCursor.h"
#include "DirectoryName.h"
#include "Folders.h"
#include "FtpControlTab.h"
#include "JobUi.h"
#include "LocalWebSpace.h"
#include "Settings.h"
#include "WaitNotice.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdlib>

namespace {

// The main window's field behind each member of SettingValue, with its key.
struct Binding
{
    QLineEdit *(frmMain::*field)() const;
    const char *key;
};
constexpr std::array<Binding, 8> Bindings = {{
    {nullptr, nullptr},
    {&frmMain::txtServer, "Server"},
    {&frmMain::txtWebSite, "WebPage"},
    {&frmMain::txtUser, "User"},
    {&frmMain::txtPassword, "Password"},
    {&frmMain::txtEmailID, "EmailID"},
    {&frmMain::txtDefaultAuthor, "Author"},
    {&frmMain::ClientRoot, "ClientRoot"},
}};

} // namespace

StartupPage::StartupPage(frmMain &window, FtpControlTab &tab, QWidget *parent)
    : QDialog(parent), m_window(window), m_tab(tab), m_ftp(tab.ftp())
{
    setObjectName(QStringLiteral("StartupPage"));
    setWindowTitle(QStringLiteral("Tarnwick"));
    setModal(true);

    m_label3 = new QLabel(QStringLiteral("Configuration Settings"), this);
    m_label3->setObjectName(QStringLiteral("Label3"));
    QFont titleFont = m_label3->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.5);
    titleFont.setBold(true);
    m_label3->setFont(titleFont);

    const QStringList labels = {
        QString(),
        tr("FTP Server Name (from your web space provider):"),
        tr("Web Site Address (such as www.example.com):"),
        QStringLiteral("User or ID Name:"),
        QStringLiteral("FTP Password:"),
        QStringLiteral("Email Address (to receive Web responses)"),
        QStringLiteral("User Name (to appears as the author)"),
        QStringLiteral("Special Directory Given to You by The Administrator (Rarely used)"),
    };
    auto *form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapAllRows);
    for (int i = 1; i <= 7; ++i) {
        m_values[i] = new QLineEdit(this);
        m_values[i]->setObjectName(QStringLiteral("SettingValue_%1").arg(i));
        m_values[i]->setMinimumWidth(380);
        form->addRow(labels[i], m_values[i]);
        // Enter moves on to the next field.
        connect(m_values[i], &QLineEdit::returnPressed, this, [this, i] {
            if (i < 7)
                m_values[i + 1]->setFocus();
            else
                m_testButton->setFocus();
        });
    }
    m_values[4]->setEchoMode(QLineEdit::Password);

    m_label4 = new QLabel(this);
    m_label4->setObjectName(QStringLiteral("Label4"));
    m_label4->setMinimumHeight(m_label4->fontMetrics().height() * 2);
    m_label4->setWordWrap(true);

    m_protocolLabel = new QLabel(this);
    m_protocolLabel->setObjectName(QStringLiteral("ProtocolLabel"));
    m_protocolLabel->setWordWrap(true);

    m_waitLabel = new QLabel(this);
    m_waitLabel->setObjectName(QStringLiteral("WaitLabel"));
    m_waitLabel->setWordWrap(true);

    m_testButton = new QPushButton(QStringLiteral("Test Connection"), this);
    m_testButton->setObjectName(QStringLiteral("TestConnectButton"));
    m_cancelTestButton = new QPushButton(tr("Cancel"), this);
    m_cancelTestButton->setObjectName(QStringLiteral("CancelTestButton"));
    m_cancelTestButton->setToolTip(tr("Stop the connection test"));
    m_cancelTestButton->setCursor(Qt::PointingHandCursor);
    m_cancelTestButton->setAutoDefault(false);
    m_cancelTestButton->setEnabled(false);
    m_okButton = new QPushButton(QStringLiteral("OK"), this);
    m_okButton->setObjectName(QStringLiteral("Command1"));
    m_helpButton = new QPushButton(tr("Help"), this);
    m_helpButton->setObjectName(QStringLiteral("HelpButton"));
    m_testButton->setAutoDefault(false);
    m_okButton->setAutoDefault(false);
    m_helpButton->setAutoDefault(false);
    m_tryButton = new QPushButton(tr("Try it on this computer"), this);
    m_tryButton->setObjectName(QStringLiteral("TryItHereButton"));
    m_tryButton->setToolTip(tr("No web space at hand? Start one on this computer and see what "
                               "Tarnwick sends in your browser."));
    m_tryButton->setAutoDefault(false);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_helpButton);
    buttons->addWidget(m_tryButton);
    buttons->addStretch(1);
    buttons->addWidget(m_testButton);
    buttons->addWidget(m_cancelTestButton);
    buttons->addWidget(m_okButton);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_label3);
    layout->addLayout(form);
    layout->addWidget(m_label4);
    layout->addWidget(m_protocolLabel);
    layout->addWidget(m_waitLabel);
    layout->addLayout(buttons);

    m_timer1 = new QTimer(this);
    m_timer1->setObjectName(QStringLiteral("Timer1"));
    m_timer1->setInterval(1000);
    connect(m_timer1, &QTimer::timeout, this, &StartupPage::Timer1_Timer);

    connect(m_testButton, &QPushButton::clicked, this, &StartupPage::TestConnectButton_Click);
    connect(m_cancelTestButton, &QPushButton::clicked, this,
            [this] { m_tab.waitNotice().cancel(); });
    // What the test waits for shows on the page, which covers the window's status bar.
    connect(&m_tab.waitNotice(), &WaitNotice::shown, this,
            [this](const QString &text) { m_waitLabel->setText(text); });
    connect(&m_tab.waitNotice(), &WaitNotice::hidden, m_waitLabel, &QLabel::clear);
    connect(m_okButton, &QPushButton::clicked, this, &StartupPage::Command1_Click);
    connect(m_tryButton, &QPushButton::clicked, this, &StartupPage::TryItHereButton_Click);
    connect(m_helpButton, &QPushButton::clicked, this, [this] { m_window.HelpButton_Click(); });

    m_programEnd = [] { std::exit(0); };
}

QLineEdit *StartupPage::SettingValue(int index) const
{
    return index >= 1 && index <= 7 ? m_values[index] : nullptr;
}

void StartupPage::setProgramEnd(std::function<void()> end)
{
    m_programEnd = std::move(end);
}

void StartupPage::Load()
{
    for (int i = 1; i <= 7; ++i)
        m_values[i]->setText((m_window.*Bindings[i].field)()->text());
    m_label4->clear();
    m_values[1]->setFocus();
    m_timer1->start();
}

void StartupPage::PromptForSetup()
{
    Load();
    exec();
    m_timer1->stop();
}

void StartupPage::Timer1_Timer()
{
    if (isVisible())
        raise();
}

void StartupPage::TestConnectButton_Click()
{
    if (m_testing)
        return;
    m_testing = true;
    JobUi &ui = m_tab.jobUi();
    WaitNotice &wait = m_tab.waitNotice();
    m_label4->setText(QStringLiteral("Checking for connection."));
    m_testButton->setEnabled(false);
    m_cancelTestButton->setEnabled(true);
    QCoreApplication::processEvents();
    m_timer1->stop();
    wait.hold(QStringLiteral("Checking for connection."));

    m_protocolLabel->clear();
    const bool connected =
        m_ftp.OpenConnection(m_values[1]->text(), m_values[3]->text(), m_values[4]->text());
    if (connected)
        m_protocolLabel->setText(ConnectedWithText(m_ftp.ConnectionSecurity()) + QLatin1Char('.'));
    else if (!wait.cancelled())
        m_protocolLabel->setText(m_ftp.GetLastErrorMessage());
    if (wait.cancelled()) {
        // Stopped by the user: no verdict.
    } else if (connected) {
        const QString server = m_values[1]->text().trimmed();
        const QString user = m_values[3]->text().trimmed();
        m_window.txtServer()->setText(server);
        m_window.txtUser()->setText(user);
        SaveSetting(QStringLiteral("Server"), server);
        SaveSetting(QStringLiteral("User"), user);
        m_window.txtPassword()->setText(m_values[4]->text().trimmed());
        m_ftp.SetFTPDirectory(QStringLiteral("/"));
        m_label4->setText(QStringLiteral("Connection was successful. Looking for configuration."));
        QCoreApplication::processEvents();
        const bool found = m_tab.SearchForRoot(true, m_label4);
        if (wait.cancelled()) {
            // Stopped by the user during the search: no verdict.
        } else if (found) {
            ui.Message(QStringLiteral("Connection was successful! You are ready to proceed."),
                       QStringLiteral("Tarnwick"));
        } else {
            ui.Message(QStringLiteral("Connection was successful! However, the configuration of "
                                      "your root direct was unsuccessful. Go to the 'Standard FTP "
                                      "& Control' screen and follow the instruction under "
                                      "Advance Settings."),
                       QStringLiteral("Tarnwick"), JobUi::Buttons::Ok, JobUi::Icon::Warning);
        }
    } else {
        ui.Message(QStringLiteral("Connection was unsuccessful! Verify the Server name, user ID "
                                  "and password"),
                   QStringLiteral("Tarnwick"), JobUi::Buttons::Ok, JobUi::Icon::Warning);
    }
    wait.release();
    m_label4->clear();
    m_ftp.CloseConnection();
    m_cancelTestButton->setEnabled(false);
    m_testButton->setEnabled(true);
    m_timer1->start();
    m_testing = false;
}

void StartupPage::TryItHereButton_Click()
{
    if (!m_local)
        return;
    m_label4->setText(tr("Starting a web space on this computer..."));
    m_tryButton->setEnabled(false);
    BusyCursor busy;
    busy.set(true);
    const auto account = StartLocalWebSpace(*m_local);
    busy.set(false);
    m_tryButton->setEnabled(true);
    if (!account) {
        m_label4->clear();
        m_tab.jobUi().Message(m_local->lastError(), QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                              JobUi::Icon::Warning);
        return;
    }
    m_values[1]->setText(account->server);
    m_values[2]->setText(account->webSite);
    m_values[3]->setText(account->user);
    m_values[4]->setText(account->password);
    const QString login = qEnvironmentVariable("USER", QStringLiteral("me"));
    if (m_values[5]->text().trimmed().isEmpty())
        m_values[5]->setText(login + QStringLiteral("@localhost"));
    if (m_values[6]->text().trimmed().isEmpty())
        m_values[6]->setText(login);
    m_values[7]->clear();
    m_label4->setText(
        tr("A web space on this computer is ready: what you send lands in %1 and shows at "
           "http://%2. Press OK to begin. Your own web space can be set here later (Options, "
           "Configuration Settings).")
            .arg(QDir::toNativeSeparators(account->folder), account->webSite));
    m_okButton->setFocus();
}

void StartupPage::Command1_Click()
{
    for (int i = 1; i <= 5; ++i) {
        if (m_values[i]->text().trimmed().isEmpty()) {
            m_values[i]->setFocus();
            return;
        }
    }
    for (int i = 1; i <= 6; ++i) {
        const QString value = m_values[i]->text().trimmed();
        (m_window.*Bindings[i].field)()->setText(value);
        SaveSetting(QString::fromLatin1(Bindings[i].key), value);
    }
    SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
    SaveSetting(QStringLiteral("TempPath"), QDir::cleanPath(Folders::HomeFolder()));
    SaveSetting(QStringLiteral("CopyPath"),
                Folders::FindSystemFolder(Folders::SystemFolder::Documents));
    SaveSetting(QStringLiteral("Compression"), QStringLiteral("1"));

    const QString clientRoot = CleanDirectoryName(m_values[7]->text());
    SaveSetting(QStringLiteral("ClientRoot"), clientRoot);
    m_window.ClientRoot()->setText(clientRoot);
    m_values[7]->setText(clientRoot);
    accept();
}

void StartupPage::closeEvent(QCloseEvent *event)
{
    for (int i = 1; i <= 6; ++i) {
        if (m_values[i]->text().isEmpty()) {
            event->accept();
            m_programEnd();
            return;
        }
    }
    QDialog::closeEvent(event);
}

void StartupPage::keyPressEvent(QKeyEvent *event)
{
    // Escape is the close box: with a blank required field it ends the program.
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QDialog::keyPressEvent(event);
}
