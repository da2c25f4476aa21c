#pragma once

#include <QDialog>

#include <array>
#include <functional>

class FtpControlTab;
class LocalWebSpace;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class cFTP;
class frmMain;

// The Configuration page, titled "Tarnwick": the one form a new user must answer. It takes the
// account of the web space and the user's identity, tests them against the server and finds
// the web root there and then (the root search of the FTP tab, in its quiet form).
//
// SettingValue_1..7: server, web site address, user, password, e-mail address (all required),
// author and the special directory (ClientRoot). OK (Command1) writes them all; closing the page
// with any of the first six blank ends the program.
//
// While the test waits on the server, WaitLabel says what it waits for (the connection, then
// the root search's count) and CancelTestButton beside Test Connection ends the test at once,
// without a message, leaving the page ready for another try.
//
// TryItHereButton, for a user without a web space at hand, starts a web space on this computer
// (LocalWebSpace) and fills the account fields with it.
class StartupPage final : public QDialog
{
    Q_OBJECT
public:
    StartupPage(frmMain &window, FtpControlTab &tab, QWidget *parent = nullptr);

    // Copies the main window's fields into the page, shows it and returns when it is answered.
    void PromptForSetup();

    void Load();
    void TestConnectButton_Click();
    void Command1_Click();
    void TryItHereButton_Click();

    // The web space on this computer that TryItHereButton starts (owned elsewhere).
    void setLocalWebSpace(LocalWebSpace *local) { m_local = local; }

    QLineEdit *SettingValue(int index) const;
    QLabel *Label4() const { return m_label4; }
    // How the last connection test reached the server ("Connected with FTPS (TLS 1.3)"), or
    // that it failed; empty before the first test.
    QLabel *ProtocolLabel() const { return m_protocolLabel; }
    QLabel *WaitLabel() const { return m_waitLabel; }
    QPushButton *CancelTestButton() const { return m_cancelTestButton; }

    // What closing the page with a blank required field does; ends the program by default.
    void setProgramEnd(std::function<void()> end);

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void Timer1_Timer();

    frmMain &m_window;
    FtpControlTab &m_tab;
    cFTP &m_ftp;
    std::array<QLineEdit *, 8> m_values{}; // 1..7 used
    QPushButton *m_testButton = nullptr;
    QPushButton *m_cancelTestButton = nullptr;
    QLabel *m_waitLabel = nullptr;
    bool m_testing = false;
    QPushButton *m_okButton = nullptr;
    QPushButton *m_helpButton = nullptr;
    QPushButton *m_tryButton = nullptr;
    LocalWebSpace *m_local = nullptr;
    QLabel *m_label3 = nullptr;
    QLabel *m_label4 = nullptr;
    QLabel *m_protocolLabel = nullptr;
    QTimer *m_timer1 = nullptr;
    std::function<void()> m_programEnd;
};
