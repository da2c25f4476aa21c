#pragma once

#include <QDialog>

#include <functional>

class JobUi;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTimer;
struct JobState;

// "Take an action...": the window that ends every job. It offers three things to do with
// state.CurrentPointer: copy it to the clipboard as a link, send it in an e-mail, view the page.
// It reaches the user through ui (prompt, messages, clipboard, opening URLs) and may complete
// state.CurrentPointer with "http://". Hiding the window (Back to Previous, or its close box) ends
// ShowAndWait.
class frmAction final : public QDialog
{
    Q_OBJECT
public:
    frmAction(JobUi &ui, JobState &state, QWidget *parent = nullptr);

    // Shows a window for state.CurrentPointer without blocking its parent, waits in a local event
    // loop until it is hidden (or its parent goes away), then deletes it. help, when given, is
    // what the Help button and menu call.
    static void ShowAndWait(JobUi &ui, JobState &state, QWidget *parent,
                            const std::function<void()> &help = {});
    // Makes CopyPointer open this window over parent (normally frmMain) at the end of each job
    // that runs on state; help is what its Help button and menu call (the main window's help,
    // in the program).
    static void Install(JobState &state, QWidget *parent, std::function<void()> help);

    // The mailto: text of the e-mail action for a subject, body and pointer, exactly as it is
    // handed on: "mailto:?Subject=...&Body=..." with the body's line breaks as code 11, two
    // codes 11, then the pointer.
    static QString MailtoText(const QString &subject, const QString &body, const QString &pointer);

signals:
    void helpRequested();
    void hidden();

protected:
    void hideEvent(QHideEvent *event) override;

private:
    void CopyPointerToClipButton_Click();
    void SendEmail_Click();
    void ViewButton_Click();
    void Timer1_Timer();
    void limitBody();

    JobUi &m_ui;
    JobState &m_state;
    QLineEdit *m_subject = nullptr;
    QPlainTextEdit *m_body = nullptr;
    QLineEdit *m_pointerText = nullptr;
    QTimer *m_timer = nullptr;
};
