#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <typeindex>
#include <unordered_map>

class JobUi;

// The job-wide state that the window and every job share: the prompt protocol of frmInputBox,
// the two flags through which a cancel reaches a running job, what the last job left behind
// (its pointer, its upload path), and the current record of each kind (the photo page, the
// backup entry, the Web Log page...). main() makes one for the program's run and hands it to
// the window, the FTP session and every function; each test makes its own.
struct JobState
{
    // Literal answers of the prompt protocol.
    static inline const QString Skip = QStringLiteral("!!Skip!!");
    static inline const QString Blank = QStringLiteral("||Blank||");

    JobState() = default;
    JobState(const JobState &) = delete;
    JobState &operator=(const JobState &) = delete;

    QString PromptText;   // in: the question
    QString UserResponse; // in: default text; out: the answer, Skip or Blank
    QString PromptMode;   // in: "Hide", "True" or other; out: "True"/"False" when options showed
    int PromptMaxLength = 0;

    bool UploadCancelled = false;
    bool BackgroundRequested = false;

    // The last pointer made; read (and completed with "http://") by the Take an Action window.
    QString CurrentPointer;
    // UploadPath as it stood when the last file was sent.
    QString LastUploadPath;
    // Shows the Take an Action window for CurrentPointer and waits until the user has closed it;
    // the window sets it when it joins the program. Unset, a job ends after the clipboard.
    std::function<void(JobUi &ui, JobState &state)> ShowTakeAction;

    // True when the last answer means "stop the job".
    bool skipped() const { return UserResponse == Skip; }

    // The current record of a kind: one object of each type, made empty on first use and kept
    // (at the same address) for the state's life.
    template <typename Record> Record &current()
    {
        std::shared_ptr<void> &slot = m_records[std::type_index(typeid(Record))];
        if (!slot)
            slot = std::make_shared<Record>();
        return *static_cast<Record *>(slot.get());
    }

    // The prompt, the flags, the pointer and the upload path back to their start; the records
    // and ShowTakeAction stay.
    void reset();

private:
    std::unordered_map<std::type_index, std::shared_ptr<void>> m_records;
};
