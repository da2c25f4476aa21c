#include "SendFileFrame.h"

#include "DirectoryName.h"
#include "Folders.h"
#include "FtpControlTab.h"
#include "HTMLMake.h"
#include "JobState.h"
#include "SendAFile.h"
#include "TransferSteps.h"
#include "frmMain.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>

SendFileFrame::SendFileFrame(frmMain &window, FtpControlTab &tab, QWidget *parent)
    : QWidget(parent), m_window(window), m_tab(tab)
{
    setObjectName(QStringLiteral("SendFileFrame"));

    auto *intro = new QLabel(
        tr("Send one file to your web site and get a pointer to it that you can paste into an "
           "e-mail. The file goes into a directory of its own; if you are sending it to someone, "
           "their initials make a good name."),
        this);
    intro->setWordWrap(true);

    auto *fileBox = new QGroupBox(tr("1. The file to send"), this);
    m_fileToSend = new QLineEdit(fileBox);
    m_fileToSend->setObjectName(QStringLiteral("FileToSend"));
    m_selectButton = new QPushButton(tr("Select a File..."), fileBox);
    m_selectButton->setObjectName(QStringLiteral("SelectAFileButton"));
    auto *fileRow = new QHBoxLayout(fileBox);
    fileRow->addWidget(m_fileToSend, 1);
    fileRow->addWidget(m_selectButton);

    auto *sendBox = new QGroupBox(tr("2. Send it"), this);
    m_sName = new QLineEdit(sendBox);
    m_sName->setObjectName(QStringLiteral("sName"));
    m_sName->setPlaceholderText(tr("(asked for when left empty)"));
    m_sendButton = new QPushButton(tr("Send This File"), sendBox);
    m_sendButton->setObjectName(QStringLiteral("SendThisFileButton"));
    auto *form = new QFormLayout;
    form->addRow(tr("Directory name on the web site:"), m_sName);
    auto *sendLayout = new QVBoxLayout(sendBox);
    sendLayout->addLayout(form);
    auto *sendRow = new QHBoxLayout;
    sendRow->addStretch(1);
    sendRow->addWidget(m_sendButton);
    sendLayout->addLayout(sendRow);

    m_pointer = new QLabel(this);
    m_pointer->setObjectName(QStringLiteral("SentPointer"));
    m_pointer->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pointer->setWordWrap(true);

    auto *column = new QWidget(this);
    column->setMaximumWidth(900);
    auto *outer = new QHBoxLayout(this);
    outer->addWidget(column, 1);
    outer->addStretch(0);
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(intro);
    layout->addWidget(fileBox);
    layout->addWidget(sendBox);
    layout->addWidget(m_pointer);
    layout->addStretch(1);

    m_window.placeRing(10, m_selectButton);
    m_window.placeRing(11, m_sendButton);

    connect(m_selectButton, &QPushButton::clicked, this, &SendFileFrame::SelectAFileButton_Click);
    connect(m_sendButton, &QPushButton::clicked, this, &SendFileFrame::SendThisFileButton_Click);
    connect(m_sName, &QLineEdit::textChanged, this, &SendFileFrame::sName_Change);
}

void SendFileFrame::sName_Change()
{
    if (m_cleaning)
        return;
    const CleanedEdit edit = CleanWhileTyping(m_sName->text(), m_sName->cursorPosition());
    if (edit.text == m_sName->text())
        return;
    m_cleaning = true;
    m_sName->setText(edit.text);
    m_sName->setCursorPosition(edit.caret);
    m_cleaning = false;
}

void SendFileFrame::SelectAFileButton_Click()
{
    const QString current = m_fileToSend->text().trimmed();
    QString start;
    if (!current.isEmpty() && QFileInfo(current).isFile())
        start = current;
    else
        start = Folders::FindSystemFolder(Folders::SystemFolder::Documents);
    const QString chosen = QFileDialog::getOpenFileName(&m_window, tr("Select a File to Send"),
                                                        start, tr("All files (*)"));
    if (chosen.isEmpty())
        return;
    m_fileToSend->setText(QDir::toNativeSeparators(chosen));
    m_window.shapeEvent(21);
}

namespace {

// The main window as the job sees it beside the FTP tab: rings and the progress frame.
class FrameWindow final : public SendAFileWindow
{
public:
    explicit FrameWindow(frmMain &window) : m_window(window) {}

    void showProgressFrame(bool show) override { m_window.showProgressFrame(show); }
    void shapeEvent(int step) override { m_window.shapeEvent(step); }

private:
    frmMain &m_window;
};

} // namespace

void SendFileFrame::SendThisFileButton_Click()
{
    SendAFileInputs inputs;
    inputs.FileToSend = m_fileToSend->text();
    inputs.sName = m_sName->text();
    inputs.FTPRoot = m_window.FTPRoot()->text();
    inputs.ClientRoot = m_window.ClientRoot()->text();
    inputs.runWithoutMenu = m_window.RunWithoutMenu()->isChecked();

    m_sendButton->setEnabled(false);
    FrameWindow window(m_window);
    TransferContext context = m_tab.transferContext();
    const SendAFileResult result = SendThisFile(context, inputs, window);
    m_sendButton->setEnabled(true);
    m_cleaning = true;
    m_sName->setText(inputs.sName);
    m_cleaning = false;
    if (result.outcome == SendAFileResult::Outcome::Sent)
        m_pointer->setText(tr("Last pointer: %1").arg(result.pointer));
}
