#pragma once

#include "JobState.h"
#include "JobUi.h"

#include <QList>
#include <QMimeData>
#include <QQueue>
#include <QStringList>

#include <functional>
#include <memory>

// A JobUi that answers from a script and records what the job showed, so a test can drive a
// job step by step. An unscripted prompt is answered with Skip and an unscripted message box
// with Ok/Yes, and both are recorded so that the test can fail on them.
class ScriptedUi : public JobUi
{
public:
    struct Prompt
    {
        QString text;        // what was asked
        QString defaultText; // UserResponse on the way in
        QString mode;        // PromptMode on the way in
        int maxLength = 0;
    };
    struct Shown
    {
        QString text;
        QString title;
        Buttons buttons;
        std::optional<Answer> defaultButton; // the button Enter would press, when one was given
    };

    // Answers for the next prompts, in order. mode is written to PromptMode when not empty.
    void answerPrompt(const QString &response, const QString &mode = QString());
    // Answers for the next message boxes, in order.
    void answerMessage(Answer answer);
    // Called on each DoEvents; a test can cancel a job from here.
    std::function<void()> onProcessEvents;

    void ShowInputBox(JobState &state) override;
    Answer Message(const QString &text, const QString &title, Buttons buttons, Icon icon,
                   std::optional<Answer> defaultButton) override;
    void ShowScrollMessage(const QString &text) override;
    void SetStatusText(const QString &text) override;
    void SetStepOf(const QString &text) override;
    bool OpenUrl(const QUrl &url) override;
    void SetClipboard(QMimeData *data) override;
    void ProcessEvents() override;

    // The texts of the messages shown, in order, and the text put on the clipboard.
    QStringList messageTexts() const;
    QString clipboardText() const;

    QList<Prompt> prompts;
    QList<Shown> messages;
    QStringList scrollMessages;
    QStringList statusTexts;
    QStringList stepTexts;
    QList<QUrl> openedUrls;
    std::unique_ptr<QMimeData> clipboard;
    bool openUrlResult = true;
    int processEventsCalls = 0;

private:
    QQueue<QPair<QString, QString>> m_promptAnswers;
    QQueue<Answer> m_messageAnswers;
};
