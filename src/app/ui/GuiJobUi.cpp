#include "GuiJobUi.h"

#include "JobState.h"
#include "MessageWithScroll.h"
#include "ShellExecute.h"
#include "frmInputBox.h"
#include "frmMain.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>

GuiJobUi::GuiJobUi(frmMain &window) : m_window(window) {}

void GuiJobUi::ShowInputBox(JobState &state)
{
    frmInputBox *box = m_window.inputBox();
    if (box->isVisible()) {
        // A prompt asked while another is open gets a form of its own.
        frmInputBox second(&m_window);
        second.setSpellChecker(m_window.spellChecker());
        second.Ask(state);
        return;
    }
    box->Ask(state);
}

JobUi::Answer GuiJobUi::Message(const QString &text, const QString &title, Buttons buttons,
                                Icon icon, std::optional<Answer> defaultButton)
{
    QMessageBox box(&m_window);
    box.setWindowTitle(title);
    box.setText(text);
    switch (icon) {
    case Icon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    case Icon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case Icon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case Icon::Warning:
        box.setIcon(QMessageBox::Warning);
        break;
    case Icon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    }
    switch (buttons) {
    case Buttons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case Buttons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case Buttons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    case Buttons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    }
    if (defaultButton) {
        switch (*defaultButton) {
        case Answer::Ok:
            box.setDefaultButton(QMessageBox::Ok);
            break;
        case Answer::Cancel:
            box.setDefaultButton(QMessageBox::Cancel);
            break;
        case Answer::Yes:
            box.setDefaultButton(QMessageBox::Yes);
            break;
        case Answer::No:
            box.setDefaultButton(QMessageBox::No);
            break;
        }
    }
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Ok:
        return Answer::Ok;
    default:
        // The close box counts as the way out the box offers.
        return buttons == Buttons::YesNo ? Answer::No
               : buttons == Buttons::Ok  ? Answer::Ok
                                         : Answer::Cancel;
    }
}

void GuiJobUi::ShowScrollMessage(const QString &text)
{
    MessageWithScroll box(&m_window);
    box.ShowText(text);
}

void GuiJobUi::SetStatusText(const QString &text)
{
    m_window.Status_text()->setText(text);
}

void GuiJobUi::SetStepOf(const QString &text)
{
    m_window.Stepof()->setText(text);
}

bool GuiJobUi::OpenUrl(const QUrl &url)
{
    return mShellExecute(&m_window, url).ok();
}

void GuiJobUi::SetClipboard(QMimeData *data)
{
    QGuiApplication::clipboard()->setMimeData(data);
}

void GuiJobUi::ProcessEvents()
{
    QCoreApplication::processEvents();
}
