#pragma once

#include <QString>

#include <functional>

class JobUi;
class cFTP;
struct JobState;

// The upload vocabulary that the web space functions share with every builder: send a file
// into the session's current directory, fetch one, check the directory the session stands in,
// find or make a directory. The program binds the shared transfer steps (a session of their
// own per file, three attempts, the progress dialog) with setUploadSteps(); until then the
// steps use the window's session itself (cFTP's block transfers).
struct UploadSteps
{
    // Sends local into the current directory under its own name; the old copy goes first.
    // A failure isn't reported here: the caller's next check finds the state.
    std::function<void(const QString &local)> UploadFileToFTP;
    // Fetches remoteName of the current directory to local.
    std::function<void(const QString &remoteName, const QString &local)> DownloadFileToFTP;
    // True when the session stands in a directory that holds expected ("/" never does).
    std::function<bool(const QString &expected)> verifyUploadPath;
    // True when name (blanks as "_") is a directory of the last listing or could be made;
    // false when it is a file, or when making it failed (with the message).
    std::function<bool(const QString &name)> CheckFTPDir;
};

// The steps over the session alone. reloadList is ReloadFTPList of the window.
UploadSteps SessionUploadSteps(cFTP &ftp, JobUi &ui, std::function<void()> reloadList);

// The message of a directory that can't be found or made.
QString DirectoryFailureText();

// Ensures a directory below the current one and goes into it: CheckFTPDir, then the entry of
// the listing is entered, or made, listed and entered. setUploadPath is told the new directory.
// False when the directory can't be had; the session then stays where it was.
bool EnsureFTPDirectory(cFTP &ftp, JobUi &ui, const UploadSteps &steps, const QString &name,
                        const std::function<void()> &reloadList,
                        const std::function<void()> &showUploadPath);
