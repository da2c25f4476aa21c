#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// One reply of the server: its code and its text lines (without line ends).
struct FtpReply
{
    int code = 0;
    QStringList lines;
    QString text() const { return lines.join(QLatin1Char('\n')); }
    // A code of the protocol's range: three digits, the first from 1 to 5.
    bool codeInRange() const { return code >= 100 && code <= 599; }
};

// Reads the lines of an FTP control connection into replies: "123 text" is a reply of one
// line, "123-text" opens one of many lines that the first line "123 text" of the same code
// closes. Lines before a reply that begin with no code are passed over.
//
// What a server sends is kept within bounds, however long it writes: a line is cut after
// MaxLineBytes bytes, and of a reply of many lines the first MaxLinesPerReply - 1 lines and the
// closing line are kept, so one reply holds at most MaxLinesPerReply * MaxLineBytes bytes of
// text. The text is UTF-8 where it is valid and Latin-1 where not; control characters other
// than the tab are shown as blanks, so a reply can be put in front of the user as it stands.
class FtpReplyReader final
{
public:
    static constexpr qsizetype MaxLineBytes = 2048;
    static constexpr qsizetype MaxLinesPerReply = 64;

    // Takes one line as the connection gave it (its line end may be there or not). Returns the
    // reply that this line completes.
    std::optional<FtpReply> addLine(const QByteArray &line);
    // Feeds a stretch of the connection's bytes, cut into lines at LF; a last piece without a
    // line end is read as a line of its own. Returns the replies completed, oldest first.
    QList<FtpReply> addText(const QByteArray &bytes);
    // The reply of many lines whose closing line has not come yet, if there is one.
    std::optional<FtpReply> pending() const;
    // Forgets a reply in progress.
    void reset();

private:
    FtpReply m_pending;
    bool m_inMultiLine = false;
};
