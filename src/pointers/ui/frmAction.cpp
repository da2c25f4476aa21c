#include "frmAction.h"

#include "HTMLMake.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"

#include <QEventLoop>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

namespace {

const int BodyMaxLength = 200;
const int LabelMaxLength = 50;
const int LongPointer = 75;
const QChar VerticalTab(11);

QPushButton *actionButton(const QString &name, const QString &caption, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setMinimumHeight(34);
    return button;
}

QLabel *namedLabel(const QString &name, const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

QUrl pointerUrl(const QString &pointer)
{
    if (IsLocalPointer(pointer))
        return QUrl::fromLocalFile(pointer);
    QUrl url(pointer, QUrl::TolerantMode);
    if (url.scheme().isEmpty())
        url = QUrl::fromUserInput(pointer);
    return url;
}

} // namespace

frmAction::frmAction(JobUi &ui, JobState &state, QWidget *parent)
    : QDialog(parent), m_ui(ui), m_state(state)
{
    setObjectName(QStringLiteral("frmAction"));
    setWindowTitle(QStringLiteral("Take an action..."));
    setModal(false);

    auto *menuBar = new QMenuBar(this);
    auto *helpMenu = menuBar->addMenu(QStringLiteral("&Help"));
    helpMenu->setObjectName(QStringLiteral("HelpMenu"));
    QAction *helpAction = helpMenu->addAction(QStringLiteral("Take an Action Help"));
    helpAction->setObjectName(QStringLiteral("HelpActionMenu"));
    helpAction->setShortcut(QKeySequence::HelpContents);
    connect(helpAction, &QAction::triggered, this, &frmAction::helpRequested);

    auto *label3 = namedLabel(
        QStringLiteral("Label3"),
        QStringLiteral("The Web page pointer is copied to the clipboard. You can paste it in an "
                       "email message  (Ctrl+v) as a hyperlink. This works best if your email "
                       "format is HTML."),
        this);
    label3->setWordWrap(true);

    m_pointerText = new QLineEdit(m_state.CurrentPointer, this);
    m_pointerText->setObjectName(QStringLiteral("PointerText"));
    m_pointerText->setReadOnly(true);
    m_pointerText->setCursorPosition(0);

    auto *copyButton =
        actionButton(QStringLiteral("CopyPointerToClipButton"),
                     QStringLiteral("Copy the Pointer to the clipboard as a link"), this);
    auto *mailButton = actionButton(QStringLiteral("SendEmail"),
                                    QStringLiteral("Send This Pointer in an Email "), this);
    auto *viewButton =
        actionButton(QStringLiteral("ViewButton"), QStringLiteral("View The Web Page"), this);

    m_subject = new QLineEdit(QStringLiteral("See the link to my page"), this);
    m_subject->setObjectName(QStringLiteral("txtSubject"));
    m_body =
        new QPlainTextEdit(QStringLiteral("Select the pointer below to view the page..."), this);
    m_body->setObjectName(QStringLiteral("txtBody"));
    m_body->setTabChangesFocus(true);
    m_body->setFixedHeight(m_body->fontMetrics().lineSpacing() * 4 + 12);
    connect(m_body, &QPlainTextEdit::textChanged, this, &frmAction::limitBody);

    // The e-mail's subject and text belong to the e-mail button: one framed group.
    auto *mailFrame = new QGroupBox(this);
    mailFrame->setObjectName(QStringLiteral("EmailFrame"));
    auto *mailBox = new QVBoxLayout(mailFrame);
    mailBox->addWidget(
        namedLabel(QStringLiteral("lblSubject"), QStringLiteral("Subject for email"), mailFrame));
    mailBox->addWidget(m_subject);
    mailBox->addWidget(namedLabel(QStringLiteral("lblBody"),
                                  QStringLiteral("Text message (max 200 Characters)"), mailFrame));
    mailBox->addWidget(m_body);
    mailBox->addWidget(mailButton);

    auto *helpButton = new QPushButton(QStringLiteral("Help"), this);
    helpButton->setObjectName(QStringLiteral("HelpButton"));
    auto *closeButton = new QPushButton(QStringLiteral("Back to Previous"), this);
    closeButton->setObjectName(QStringLiteral("CloseButton"));
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(helpButton);
    bottom->addStretch(1);
    bottom->addWidget(closeButton);

    auto *layout = new QVBoxLayout(this);
    layout->setMenuBar(menuBar);
    layout->addWidget(label3);
    layout->addWidget(m_pointerText);
    layout->addSpacing(6);
    layout->addWidget(copyButton);
    layout->addSpacing(6);
    layout->addWidget(mailFrame);
    layout->addSpacing(6);
    layout->addWidget(viewButton);
    layout->addSpacing(6);
    layout->addLayout(bottom);
    setMinimumWidth(440);

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setSingleShot(true);
    m_timer->setInterval(100);
    connect(m_timer, &QTimer::timeout, this, &frmAction::Timer1_Timer);

    connect(copyButton, &QPushButton::clicked, this, &frmAction::CopyPointerToClipButton_Click);
    connect(mailButton, &QPushButton::clicked, this, &frmAction::SendEmail_Click);
    connect(viewButton, &QPushButton::clicked, this, &frmAction::ViewButton_Click);
    connect(helpButton, &QPushButton::clicked, this, &frmAction::helpRequested);
    connect(closeButton, &QPushButton::clicked, this, &QWidget::hide);
    closeButton->setDefault(false);
    closeButton->setAutoDefault(false);
    copyButton->setAutoDefault(false);
    mailButton->setAutoDefault(false);
    viewButton->setAutoDefault(false);
}

void frmAction::ShowAndWait(JobUi &ui, JobState &state, QWidget *parent,
                            const std::function<void()> &help)
{
    QPointer<frmAction> window = new frmAction(ui, state, parent);
    if (help)
        connect(window, &frmAction::helpRequested, window, help);
    QEventLoop loop;
    connect(window, &frmAction::hidden, &loop, &QEventLoop::quit);
    connect(window, &QObject::destroyed, &loop, &QEventLoop::quit);
    window->show();
    window->raise();
    window->activateWindow();
    if (window->isVisible())
        loop.exec();
    delete window.data();
}

void frmAction::Install(JobState &state, QWidget *parent, std::function<void()> help)
{
    QPointer<QWidget> owner = parent;
    state.ShowTakeAction = [owner, help = std::move(help)](JobUi &ui, JobState &jobState) {
        // The help belongs to the owner: it is not called once the owner has gone.
        ShowAndWait(ui, jobState, owner.data(), [owner, help] {
            if (owner && help)
                help();
        });
    };
}

QString frmAction::MailtoText(const QString &subject, const QString &body, const QString &pointer)
{
    const QString subjectPart =
        subject.isEmpty() ? QString() : QStringLiteral("&Subject=") + subject;

    QString walked = body + VerticalTab + VerticalTab + pointer;
    // One pass with the bound fixed at the first length: CR becomes code 11, LF goes, and the
    // character that slides into a removed LF's place is not looked at again.
    const qsizetype bound = walked.size();
    for (qsizetype i = 0; i < bound; ++i) {
        if (i >= walked.size())
            break;
        if (walked.at(i) == QLatin1Char('\r'))
            walked[i] = VerticalTab;
        else if (walked.at(i) == QLatin1Char('\n'))
            walked.remove(i, 1);
    }

    QString text = QStringLiteral("mailto:") + subjectPart + QStringLiteral("&Body=") + walked;
    const qsizetype prefix = QStringLiteral("mailto:").size();
    if (text.size() > prefix) {
        const qsizetype amp = text.indexOf(QLatin1Char('&'), prefix);
        if (amp >= 0)
            text[amp] = QLatin1Char('?');
    }
    return text;
}

void frmAction::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    // Minimising the main window hides this one too, for the system: that isn't a close.
    if (!event->spontaneous())
        emit hidden();
}

void frmAction::CopyPointerToClipButton_Click()
{
    QString label = AskUser(
        m_ui, m_state, QStringLiteral("What would you like to see to click on as a pointer?"),
        QStringLiteral("Click here to follow the pointer"), QStringLiteral("Hide"), LabelMaxLength);
    if (label == JobState::Blank)
        label = QStringLiteral("Pointer");
    if (TrimBlanks(label).isEmpty() || label == JobState::Skip)
        return;

    m_state.CurrentPointer = CompletePointer(m_state.CurrentPointer);
    m_pointerText->setText(m_state.CurrentPointer);
    // A link to a local file needs a file address to work where it is pasted.
    const QString pointer = IsLocalPointer(m_state.CurrentPointer)
                                ? pointerUrl(m_state.CurrentPointer).toString(QUrl::FullyEncoded)
                                : m_state.CurrentPointer;
    QString head = PointerLinkHead();
    QString tail = PointerLinkTail();
    PutHTMLClipboard(m_ui, PointerLinkFragment(pointer, label), head, tail, pointer);

    m_ui.Message(QStringLiteral("The Web page pointer has been copied to the clipboard. To paste "
                                "the pointer into an Email message, press CTRL+v."),
                 QStringLiteral("Pointer complete"));
    m_timer->start();
}

void frmAction::SendEmail_Click()
{
    m_ui.ProcessEvents();
    m_state.CurrentPointer = CompletePointer(m_state.CurrentPointer);
    m_pointerText->setText(m_state.CurrentPointer);
    const QString pointer = TrimBlanks(m_state.CurrentPointer);

    QString body = m_body->toPlainText();
    body.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    const QString mailto = MailtoText(m_subject->text(), TrimBlanks(body), pointer);

    if (m_state.CurrentPointer.contains(QStringLiteral("%20")))
        m_ui.Message(QStringLiteral("Error - Your file name contains spaces that will not transfer "
                                    "to email correctly. Verify If the pointer in the email is "
                                    "correct. If not use a <Ctrl V> to replace the implanted "
                                    "pointer."),
                     QStringLiteral("Tarnwick"), JobUi::Buttons::Ok, JobUi::Icon::Warning);
    if (m_state.CurrentPointer.size() > LongPointer)
        m_ui.Message(QStringLiteral("If the pointer in the email is greater than the length of a "
                                    "line, then pointer can be corrupted with a Carrage Return. "
                                    "Set your emails to a larger line length. Select the menu item "
                                    "Tools, Options. Then select the Mail Format tab and the "
                                    "Settings button."),
                     QStringLiteral("Tarnwick"), JobUi::Buttons::Ok, JobUi::Icon::Warning);

    // A "#" would end the query and drop the rest of the text from the mail; it goes back into
    // the query, escaped. A failure to open is put into words by the opener itself.
    QUrl address(mailto, QUrl::TolerantMode);
    if (address.hasFragment()) {
        const QString rest = address.fragment(QUrl::FullyEncoded);
        address.setFragment(QString());
        address.setQuery(address.query(QUrl::FullyEncoded) + QStringLiteral("%23") + rest,
                         QUrl::TolerantMode);
    }
    m_ui.OpenUrl(address);
}

void frmAction::ViewButton_Click()
{
    m_ui.ProcessEvents();
    const QString pointer = TrimBlanks(m_state.CurrentPointer);
    if (pointer.isEmpty())
        return;
    m_ui.OpenUrl(pointerUrl(pointer));
}

void frmAction::Timer1_Timer()
{
    if (!isVisible())
        return;
    raise();
    activateWindow();
}

void frmAction::limitBody()
{
    const QString text = m_body->toPlainText();
    if (text.size() <= BodyMaxLength)
        return;
    QTextCursor cursor = m_body->textCursor();
    const int position = std::min(cursor.position(), BodyMaxLength);
    const QSignalBlocker blocker(m_body);
    m_body->setPlainText(text.left(BodyMaxLength));
    cursor = m_body->textCursor();
    cursor.setPosition(position);
    m_body->setTextCursor(cursor);
}
