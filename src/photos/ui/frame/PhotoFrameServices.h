#pragma once

#include <QString>

#include <functional>

class JobUi;
struct JobState;

// What the Send a Photo Page frame asks of the rest of the program. The window fills these with
// the real dialogs (PhotoFrame::useStandardServices does that with Qt's own dialogs where the
// program has none); tests fill them with scripted answers. Every call may run the event loop.
struct PhotoFrameServices
{
    // Message boxes and the frmInputBox protocol. Never null once the frame is built.
    JobUi *ui = nullptr;
    JobState *state = nullptr;

    // The plain input box: question, title, default text. Cancel gives "".
    std::function<QString(const QString &question, const QString &title,
                          const QString &defaultText)>
        inputBox;

    // The folder picker, opened at start; returns the chosen folder, or "" when cancelled.
    std::function<QString(const QString &start)> chooseFolder;

    // Shows a picture large; unset means that the preview does not zoom.
    std::function<void(const QString &path)> zoomPicture;

    // Opens a picture in the paint window ("" for an empty picture); unset: "Paint" does nothing.
    std::function<void(const QString &path)> openPaint;

    // Pictures converted onto the Ready to Send list at once (HEIC, WebP, PNG, TIFF to JPEG);
    // 0: one per processor core, within the sizing memory budget.
    int copyThreads = 0;

    // False keeps "Print List" off the system's printers: it always goes to a PDF file.
    bool usePrinter = true;
    // Where "Print List" goes when no printer is installed: a PDF file the user chooses
    // ("" when cancelled). Unset or returning "" prints nothing.
    std::function<QString(const QString &suggestedName)> choosePdfFile;

    // Asks for the page's name (and title and introduction where the page asks for them) before
    // a first save. Returns false when the user left the prompt. Unset: the frame asks for the
    // name alone through frmInputBox.
    std::function<bool()> namePage;

    // Colour and font pickers of the settings tab: the current value in, the chosen one out
    // ("" when cancelled).
    std::function<QString(const QString &colour, const QString &title)> chooseColour;
    std::function<QString(const QString &family)> chooseFont;

    // Asked when the History folder's contents change (Save All).
    std::function<void()> historyChanged;
};
