#pragma once

#include <QString>

#include <atomic>
#include <functional>

class JobUi;
struct JobState;

// The backup function's cabinets, made in the program (libgcab) on a worker thread while the
// job waits with the window live. Each cabinet is written under a temporary name and renamed
// when whole, so a cabinet that is there is complete. A cancel (UploadCancelled, or "!!Skip!!"
// in UserResponse) raised while the job waits stops the work within a block of the file in
// hand.

// Runs work on a worker thread; meanwhile the event loop runs and ui.ProcessEvents() is called
// every few milliseconds. The flag handed to work turns true once the job is cancelled.
void RunWithWindowLive(JobUi &ui, JobState &state,
                       const std::function<void(const std::atomic<bool> &cancel)> &work);

struct CompressResult
{
    bool ok = false;
    bool cancelled = false;
    // Failing at the copy rather than at the cabinet; copyDenied when the file couldn't be
    // read for want of permission.
    bool copyFailed = false;
    bool copyDenied = false;
    QString message;     // why it failed, in the system's words
    QString copyPath;    // the copy of the file in the backup folder
    QString cabinetPath; // <backup folder>/<base>.CAB
};

// One file to a cabinet of its own: the file is copied into backupFolder under its own name,
// and <base>.CAB is made there from the copy, holding the file under its name. The copy stays
// (the caller removes it); after a cancel or a failure the copy made so far stays too, and no
// cabinet is left.
CompressResult CompressForBackup(const QString &source, const QString &backupFolder, JobUi &ui,
                                 JobState &state);

// Packs a folder: T is folder, or folder/subFolder when subFolder isn't empty; the cabinet
// cabName is made in T and holds T's files and those of its sub-folders with their paths
// below T (the cabinet itself left out). 0 when made; -1 on failure or cancel, which clears
// UploadCancelled (why, when given, says what went wrong).
qint16 RunCab(const QString &folder, const QString &cabName, const QString &subFolder, JobUi &ui,
              JobState &state, QString *why = nullptr);

// The program's own data: every file under the sub-folders of homeFolder, images and cabinets
// left out, into AllFiles.cab in homeFolder (an older one is removed first).
CompressResult CabAll(const QString &homeFolder, JobUi &ui, JobState &state);
// True for the pictures that CabAll leaves out.
bool IsImageFile(const QString &name);

// Copies source to target in blocks, stopping at cancel (the part copied is removed). false
// with *why set on failure; *denied tells a read refused for want of permission.
bool CopyFileInBlocks(const QString &source, const QString &target, const std::atomic<bool> &cancel,
                      QString *why, bool *denied = nullptr);
