#pragma once

#include <QString>
#include <QUrl>

#include <optional>

class QMimeData;
struct JobState;

// The narrow seam between a job and the user. The window implements it with the real forms;
// tests implement it with a script of answers. Every call may run the event loop.
class JobUi
{
public:
    enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
    enum class Icon { None, Information, Question, Warning, Critical };
    enum class Answer { Ok, Cancel, Yes, No };

    virtual ~JobUi() = default;

    // frmInputBox: reads PromptText, UserResponse, PromptMode and PromptMaxLength from the state,
    // waits for the answer and writes UserResponse (and PromptMode) back. PromptMaxLength is 0
    // again afterwards.
    virtual void ShowInputBox(JobState &state) = 0;
    // A message box with the given title and buttons; returns the button pressed.
    // defaultButton is the button that Enter presses (one of buttons); unset leaves the box's
    // own choice, the first affirmative button.
    virtual Answer Message(const QString &text, const QString &title, Buttons buttons = Buttons::Ok,
                           Icon icon = Icon::Information,
                           std::optional<Answer> defaultButton = std::nullopt) = 0;
    // MessageWithScroll: a long text the user reads and closes.
    virtual void ShowScrollMessage(const QString &text) = 0;
    // Status_text and Stepof of the shared progress frame.
    virtual void SetStatusText(const QString &text) = 0;
    virtual void SetStepOf(const QString &text) = 0;
    // Opens a page or file with what the system associates with it; false when nothing could.
    virtual bool OpenUrl(const QUrl &url) = 0;
    // Takes ownership of data and puts it on the clipboard.
    virtual void SetClipboard(QMimeData *data) = 0;
    // DoEvents.
    virtual void ProcessEvents() = 0;
};

// Asks through frmInputBox in one call: sets the four prompt variables, shows the prompt and
// returns the answer (also left in state.UserResponse).
QString AskUser(JobUi &ui, JobState &state, const QString &question, const QString &defaultText,
                const QString &mode = QStringLiteral("Hide"), int maxLength = 0);
