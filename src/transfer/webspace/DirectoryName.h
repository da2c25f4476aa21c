#pragma once

#include <QDateTime>
#include <QString>

// Names of directories on the web space, as the user types them.

// Takes out every character that can't stand in a directory name on the web space:
// . > < { } ] [ & + ' % # @ ~ ; : ^ / \ ? * | and the control characters (below the blank, and
// DEL). Cleaning a cleaned name changes nothing. Used for the Send a File directory and for
// ClientRoot.
QString CleanDirectoryName(const QString &text);

// The cleaner as a text field applies it at each change: the cleaned text and where the caret
// goes. The caret stays where it was, or goes to the end when the text got shorter.
struct CleanedEdit
{
    QString text;
    int caret = 0;
};
CleanedEdit CleanWhileTyping(const QString &text, int caret);

// The directory name that Send a File uses on the server: each character below the blank or
// above "}" becomes a blank, then every blank becomes "_". An empty result sends nothing.
QString SendFileDirectoryName(const QString &name);

// The name Send a File offers when the user left the directory empty:
// "FileDirectory  2026 01 05 09 7" (two blanks behind the word; the minute is not padded).
QString DefaultSendFileDirectory(const QDateTime &now);
