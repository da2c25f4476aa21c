#pragma once

#include <QString>

class QTextStream;
struct TemplateState;

// How one walk of a template ended. A stray "!!" (an opening mark with no closing one beyond
// the line's second column) ends the walk at that line: the rest of the template is not
// written, nothing is reported to the user, and the builder goes on with its next template.
struct TemplateWalkResult
{
    // The most characters that filling one line may search and copy. A line whose placeholders
    // keep bringing in placeholders of their own stops there, as a line grown too long does.
    static constexpr qsizetype MaxWorkPerLine = 16 * 1024 * 1024;

    bool complete = true;
    int linesRead = 0;
    int linesWritten = 0;
    QString error; // why the walk stopped early
    // Characters of the lines rebuilt by replacements, over the whole walk.
    qint64 charactersCopied = 0;
};

// Copies the template to the page line by line, filling each "!!TOKEN!!" placeholder by
// GetActionData. A placeholder in the first column is never seen and stays as it is; a line
// whose placeholder yields nothing (or "!!Skip!!") is left out whole; "<|>" becomes "!".
// Lines are written with "\n". Runs to the end of the template; never touches the event loop.
TemplateWalkResult FillTemplate(QTextStream &templateText, QTextStream &page, TemplateState &state);

// Opens the template file and walks it into the page. A missing or unreadable template writes
// nothing and reports it in the result.
TemplateWalkResult FillTemplateFile(const QString &templatePath, QTextStream &page,
                                    TemplateState &state);

// The text of one placeholder (marks included). An unknown placeholder comes back unchanged;
// "!!Skip!!" means "leave this line out"; "" means the look-up failed (the reason is left in
// state.lastError). Reads the settings store at each call.
QString GetActionData(const QString &token, TemplateState &state);

// The file in folder whose name equals name without regard to case ("B_end2.txt" finds
// "B_End2.txt"); folder + "/" + name when none does.
QString FindTemplateFile(const QString &folder, const QString &name);

// The part of path behind its last "\" or "/"; "" for a path with neither.
QString GetFileName(const QString &path);

// Turns each "!" into "<|>", walking only as far as the text's length before the loop: a mark
// pushed beyond that bound by earlier escapes stays as it is.
QString EscapeMarks(const QString &text);
