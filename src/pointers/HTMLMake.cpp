#include "HTMLMake.h"

#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "Settings.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTextDocumentFragment>

namespace {

const QString HttpPrefix = QStringLiteral("http://");

const QByteArray HeaderTemplate = QByteArrayLiteral("Version:1.0\r\n"
                                                    "StartHTML:aaaaaaaaaa\r\n"
                                                    "EndHTML:bbbbbbbbbb\r\n"
                                                    "StartFragment:cccccccccc\r\n"
                                                    "EndFragment:dddddddddd\r\n");

QByteArray tenDigits(qsizetype value)
{
    return QByteArray::number(value).rightJustified(10, '0');
}

// The run-time's number conversion of the text from pos on: blanks skipped, then digits.
qsizetype leadingNumber(const QByteArray &text, qsizetype pos)
{
    while (pos < text.size() && (text.at(pos) == ' ' || text.at(pos) == '\t'))
        ++pos;
    qsizetype value = 0;
    int digits = 0;
    while (pos < text.size() && text.at(pos) >= '0' && text.at(pos) <= '9' && digits < 18) {
        value = value * 10 + (text.at(pos) - '0');
        ++pos;
        ++digits;
    }
    return value;
}

qsizetype numberBehind(const QByteArray &text, const QByteArray &key)
{
    const qsizetype at = text.indexOf(key);
    return at < 0 ? 0 : leadingNumber(text, at + key.size());
}

} // namespace

QString RemoveFTPRoot(const QString &path)
{
    const QString root = TrimBlanks(GetSetting(QStringLiteral("FTPRoot")));
    if (root.isEmpty())
        return path;
    const qsizetype at = path.indexOf(root + QLatin1Char('/'));
    if (at < 0)
        return QString();
    return path.left(at) + path.mid(at + root.size() + 1);
}

QString MakePointer(const QString &path, const QString &blank)
{
    const QString text = RemoveFTPRoot(path);
    if (IsLocalPointer(text))
        return text;
    return CompletePointer(ReplaceSpaces(text, blank));
}

bool IsLocalPointer(const QString &pointer)
{
    return pointer.startsWith(QLatin1Char('/')) ||
           pointer.toLower().contains(QStringLiteral("c:\\"));
}

QString CompletePointer(const QString &pointer)
{
    // A site typed with "https://" already says how to reach it.
    if (IsLocalPointer(pointer) || pointer.contains(HttpPrefix) ||
        pointer.startsWith(QStringLiteral("https://")))
        return pointer;
    return HttpPrefix + pointer;
}

QString CopyPointer(JobUi &ui, JobState &state, const QString &path, const QString &extra,
                    const QString &blank)
{
    Q_UNUSED(extra);
    const QString text = MakePointer(path, blank);
    auto *data = new QMimeData;
    data->setText(text);
    ui.SetClipboard(data);
    state.CurrentPointer = text;
    if (state.ShowTakeAction)
        state.ShowTakeAction(ui, state);
    return text;
}

const QString &GetHTMLFormat()
{
    static const QString format = QStringLiteral("HTML Format");
    return format;
}

QString PointerLinkHead()
{
    return QStringLiteral("<HTML><BODY><FONT FACE=Arial SIZE=1 COLOR=BLUE>");
}

QString PointerLinkTail()
{
    return QStringLiteral("</FONT></BODY></HTML>");
}

QString PointerLinkFragment(const QString &url, const QString &label)
{
    return QStringLiteral("<a title=\"") + url + QStringLiteral("\" href=\"") + url +
           QStringLiteral("\">") + label + QStringLiteral("</a></font>");
}

QByteArray MakeHTMLFormatText(const QString &fragment, QString &head, QString &tail)
{
    head += QStringLiteral("<!--StartFragment -->");
    tail.prepend(QStringLiteral("<!--EndFragment -->"));
    const QByteArray headBytes = head.toUtf8();
    const QByteArray fragmentBytes = fragment.toUtf8();
    const QByteArray tailBytes = tail.toUtf8();

    // Only the header's place holders are replaced: a fragment may hold any text.
    const qsizetype startHtml = HeaderTemplate.size();
    const qsizetype startFragment = startHtml + headBytes.size();
    const qsizetype endFragment = startFragment + fragmentBytes.size();
    const qsizetype endHtml = endFragment + tailBytes.size();
    QByteArray header = HeaderTemplate;
    header.replace("aaaaaaaaaa", tenDigits(startHtml));
    header.replace("bbbbbbbbbb", tenDigits(endHtml));
    header.replace("cccccccccc", tenDigits(startFragment));
    header.replace("dddddddddd", tenDigits(endFragment));
    return header + headBytes + fragmentBytes + tailBytes;
}

QMimeData *MakeHTMLClipboardData(const QString &fragment, QString &head, QString &tail,
                                 const QString &plainText)
{
    const QByteArray formatText = MakeHTMLFormatText(fragment, head, tail);
    auto *data = new QMimeData;
    data->setData(GetHTMLFormat(), formatText);
    data->setHtml(head + fragment + tail);
    data->setText(plainText.isEmpty() ? QTextDocumentFragment::fromHtml(fragment).toPlainText()
                                      : plainText);
    return data;
}

void PutHTMLClipboard(JobUi &ui, const QString &fragment, QString &head, QString &tail,
                      const QString &plainText)
{
    ui.SetClipboard(MakeHTMLClipboardData(fragment, head, tail, plainText));
}

void CopyPagePointerAsLink(JobUi &ui, const QString &pagePointer, const QString &FileName)
{
    const QString url = HttpPrefix + RemoveFTPRoot(pagePointer);
    QString head = PointerLinkHead();
    QString tail = PointerLinkTail();
    PutHTMLClipboard(
        ui, PointerLinkFragment(url, QStringLiteral("Click Here to view photos of ") + FileName),
        head, tail, url);
    ui.Message(QStringLiteral("The Web page pointer has been copied to the clipboard. Using the "
                              "Paste (<ctrl> v) will retrieve the pointer. IMPORTANT: If this is "
                              "added to an e-mail, the e-mail should be in HTML format. This "
                              "option is typically found in your e-mail program under 'Tools', "
                              "'Options...', then select the 'Mail Format' tab"),
               QStringLiteral("Upload complete"));
}

QString GetHTMLClipboard(const QMimeData *data)
{
    if (data == nullptr || !data->hasFormat(GetHTMLFormat()))
        return QString();
    QByteArray text = data->data(GetHTMLFormat());
    const qsizetype nul = text.indexOf('\0');
    if (nul >= 0)
        text.truncate(nul);
    const qsizetype start = numberBehind(text, "StartFragment:");
    const qsizetype end = numberBehind(text, "EndFragment:");
    if (start < 1 || end < 1 || end < start || start > text.size())
        return QString();
    return QString::fromUtf8(text.mid(start, end - start));
}

QString GetHTMLClipboard()
{
    const QClipboard *clipboard = QGuiApplication::clipboard();
    return clipboard == nullptr ? QString() : GetHTMLClipboard(clipboard->mimeData());
}
