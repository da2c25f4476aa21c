#include "ScriptedUi.h"

#include <QCoreApplication>

void ScriptedUi::answerPrompt(const QString &response, const QString &mode)
{
    m_promptAnswers.enqueue({response, mode});
}

void ScriptedUi::answerMessage(Answer answer)
{
    m_messageAnswers.enqueue(answer);
}

void ScriptedUi::ShowInputBox(JobState &state)
{
    prompts.append({state.PromptText, state.UserResponse, state.PromptMode, state.PromptMaxLength});
    if (m_promptAnswers.isEmpty()) {
        state.UserResponse = JobState::Skip;
    } else {
        const auto [response, mode] = m_promptAnswers.dequeue();
        state.UserResponse = response.isEmpty() ? JobState::Blank : response;
        if (!mode.isEmpty() && state.PromptMode != QStringLiteral("Hide"))
            state.PromptMode = mode;
    }
    state.PromptMaxLength = 0;
}

JobUi::Answer ScriptedUi::Message(const QString &text, const QString &title, Buttons buttons, Icon,
                                  std::optional<Answer> defaultButton)
{
    messages.append({text, title, buttons, defaultButton});
    if (!m_messageAnswers.isEmpty())
        return m_messageAnswers.dequeue();
    return buttons == Buttons::YesNo || buttons == Buttons::YesNoCancel ? Answer::Yes : Answer::Ok;
}

void ScriptedUi::ShowScrollMessage(const QString &text)
{
    scrollMessages.append(text);
}

void ScriptedUi::SetStatusText(const QString &text)
{
    statusTexts.append(text);
}

void ScriptedUi::SetStepOf(const QString &text)
{
    stepTexts.append(text);
}

bool ScriptedUi::OpenUrl(const QUrl &url)
{
    openedUrls.append(url);
    return openUrlResult;
}

void ScriptedUi::SetClipboard(QMimeData *data)
{
    clipboard.reset(data);
}

void ScriptedUi::ProcessEvents()
{
    ++processEventsCalls;
    QCoreApplication::processEvents();
    if (onProcessEvents)
        onProcessEvents();
}

QStringList ScriptedUi::messageTexts() const
{
    QStringList texts;
    for (const auto &shown : messages)
        texts << shown.text;
    return texts;
}

QString ScriptedUi::clipboardText() const
{
    return clipboard ? clipboard->text() : QString();
}
