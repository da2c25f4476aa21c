#include "JobState.h"

void JobState::reset()
{
    PromptText.clear();
    UserResponse.clear();
    PromptMode.clear();
    PromptMaxLength = 0;
    UploadCancelled = false;
    BackgroundRequested = false;
    CurrentPointer.clear();
    LastUploadPath.clear();
}
