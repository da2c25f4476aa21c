#pragma once

#include <QString>

#include <functional>

class JobUi;
class QMimeData;
struct JobState;

// Pointers: the URL that every job ends with, and the clipboard entries that carry it.
//
// A pointer is "http://", the site, then the server path less the FTP root, with blanks
// replaced. It goes on the clipboard as plain text, and on request as a hyperlink in the
// "HTML Format" layout (a header of byte offsets, then the HTML), which mail programs and
// word processors paste as a link.

// The path less the FTPRoot setting: "site/public_html/Photos/a" with root "public_html" gives
// "site/Photos/a". An empty root leaves the path as it stands; a root that isn't found in the
// path, followed by "/", gives "".
QString RemoveFTPRoot(const QString &path);

// The text that CopyPointer puts on the clipboard: RemoveFTPRoot of path; a local path (an
// absolute one, or an old "c:\" one) stays as it stands; anything else gets its blanks replaced
// by blank and "http://" in front unless it already holds it. An empty path gives "http://".
QString MakePointer(const QString &path, const QString &blank);

// The pointer as a web address: "http://" in front unless it already holds "http://" or starts
// with "https://"; a local path stays as it stands.
QString CompletePointer(const QString &pointer);
// True for a local file's path (absolute, or an old "c:\" path) rather than a web address.
bool IsLocalPointer(const QString &pointer);

// The end of every job: makes the pointer of path (see MakePointer), replaces the clipboard
// with it as plain text, keeps it in state.CurrentPointer and opens Take an Action
// (state.ShowTakeAction), waiting until it is closed (the event loop runs meanwhile). extra is not
// used. Returns the pointer.
QString CopyPointer(JobUi &ui, JobState &state, const QString &path, const QString &extra,
                    const QString &blank);

// The clipboard type under which the whole "HTML Format" text (header and HTML) is kept.
const QString &GetHTMLFormat();

// The three parts of a pointer as a hyperlink.
QString PointerLinkHead(); // "<HTML><BODY><FONT FACE=Arial SIZE=1 COLOR=BLUE>"
QString PointerLinkTail(); // "</FONT></BODY></HTML>"
// "<a title="url" href="url">label</a></font>"
QString PointerLinkFragment(const QString &url, const QString &label);

// The "HTML Format" text of a fragment, in UTF-8: the header "Version:1.0", "StartHTML:",
// "EndHTML:", "StartFragment:", "EndFragment:" (each number ten digits, a byte offset into
// this very text, CR LF behind each line), then head, fragment and tail. head gains
// "<!--StartFragment -->" at its end and tail "<!--EndFragment -->" at its start, in place.
QByteArray MakeHTMLFormatText(const QString &fragment, QString &head, QString &tail);

// A clipboard entry for a fragment: the "HTML Format" text under GetHTMLFormat(), text/html
// (head, fragment, tail as changed above) and text/plain (plainText; when empty, the visible
// text of the fragment). The caller owns the result.
QMimeData *MakeHTMLClipboardData(const QString &fragment, QString &head, QString &tail,
                                 const QString &plainText = QString());

// Replaces the clipboard with the entry above, through ui. head and tail change in place.
void PutHTMLClipboard(JobUi &ui, const QString &fragment, QString &head, QString &tail,
                      const QString &plainText = QString());

// The photo page's pointer as a link, from the main window: url "http://" followed by
// RemoveFTPRoot(pagePointer), label "Click Here to view photos of " and FileName; then tells
// the user so in a message titled "Upload complete".
void CopyPagePointerAsLink(JobUi &ui, const QString &pagePointer, const QString &FileName);

// The fragment part of an "HTML Format" entry: the text between the offsets behind
// "StartFragment:" and "EndFragment:" (bytes, the text measured up to its first NUL). Empty when
// there is no such entry, either offset is below 1, or they make no span inside the text.
QString GetHTMLClipboard(const QMimeData *data);
// The same for the system clipboard.
QString GetHTMLClipboard();
