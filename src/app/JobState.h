#pragma once

#include <QString>

// The job-wide state that the window and every job share: the prompt protocol of frmInputBox
// and the two flags through which a cancel reaches a running job. One object lives for the
// program's run (JobState::instance()); tests may reset it between cases.
struct JobState
{
    // Literal answers of the prompt protocol.
    static inline const QString Skip = QStringLiteral("!!Skip!!");
    static inline const QString Blank = QStringLiteral("||Blank||");

    QString PromptText;   // in: the question
    QString UserResponse; // in: default text; out: the answer, Skip or Blank
    QString PromptMode;   // in: "Hide", "True" or other; out: "True"/"False" when options showed
    int PromptMaxLength = 0;

    bool UploadCancelled = false;
    bool BackgroundRequested = false;

    // True when the last answer means "stop the job".
    bool skipped() const { return UserResponse == Skip; }

    static JobState &instance();
    void reset() { *this = JobState(); }
};
