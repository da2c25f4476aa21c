#pragma once

#include <QString>

class QUrl;
class QWidget;

// Opening a file or page with what the system associates with it. A code from 0 to 32 is a
// failure (put into words by ShellErrorText), anything above 32 success.
struct ShellResult
{
    int code = 33;
    bool ok() const { return code > 32; }
};

// The words for a failure code; any code without words of its own gets the general text.
QString ShellErrorText(int code);

// Opens target: a URL with a scheme ("http://...", "mailto:...") or a local file path. On failure
// shows the words in a message box over owner (title "Tarnwick") and returns the code: 2 when a
// local file does not exist, 31 when nothing could open it.
ShellResult mShellExecute(QWidget *owner, const QString &target);
// The same for a URL already made (a mailto: link keeps its escapes).
ShellResult mShellExecute(QWidget *owner, const QUrl &url);
