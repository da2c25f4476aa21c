#include "JobUi.h"

#include "JobState.h"

QString AskUser(JobUi &ui, JobState &state, const QString &question, const QString &defaultText,
                const QString &mode, int maxLength)
{
    state.PromptText = question;
    state.UserResponse = defaultText;
    state.PromptMode = mode;
    state.PromptMaxLength = maxLength;
    ui.ShowInputBox(state);
    state.PromptMaxLength = 0;
    return state.UserResponse;
}
