#pragma once

#include <QString>

struct TransferContext;

// Send a File: one local file goes into a directory of its own on the web space, and the user
// gets a pointer to it (CopyPointer, then Take an Action).

// What the job reads from the window besides the account.
struct SendAFileInputs
{
    QString FileToSend; // the local path
    QString sName;      // the directory name as typed; may be empty (then it is asked for)
    QString FTPRoot, ClientRoot;
    bool runWithoutMenu = false; // RunWithoutMenu: nothing goes out
};

// What the job does to the main window besides the transfer window's list and path.
class SendAFileWindow
{
public:
    virtual ~SendAFileWindow() = default;
    virtual void showProgressFrame(bool show) = 0;
    virtual void shapeEvent(int step) = 0;
};

struct SendAFileResult
{
    enum class Outcome
    {
        Sent,          // the file went out and the pointer was made
        NothingToSend, // the name was empty after cleaning, or the program runs without connections
        NoFile,        // the file to send is missing
        NoConnection,  // the login failed (in silence)
        NoDirectory,   // a directory could not be found or made
        WrongPath,     // the session did not stand in the directory
        Cancelled,     // the user cancelled the transfer
    };
    Outcome outcome = Outcome::NothingToSend;
    QString sName;   // the directory name used on the server
    QString pointer; // the pointer put on the clipboard (Sent only)
};

// SendThisFileButton: the whole job, through the shared upload steps of context. inputs.sName
// comes back as the job used it (asked for, cleaned).
SendAFileResult SendThisFile(TransferContext &context, SendAFileInputs &inputs,
                             SendAFileWindow &window);
