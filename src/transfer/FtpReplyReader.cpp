#include "FtpReplyReader.h"

#include <QStringDecoder>

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool startsWithCode(const QByteArray &line)
{
    return line.size() >= 3 && isDigit(line[0]) && isDigit(line[1]) && isDigit(line[2]);
}

int codeOf(const QByteArray &line)
{
    return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

// The line's text as the user may read it: at most MaxLineBytes bytes, UTF-8 or else Latin-1,
// control characters as blanks.
QString shownText(const QByteArray &line)
{
    const QByteArray kept = line.left(FtpReplyReader::MaxLineBytes);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(kept);
    if (utf8.hasError()) {
        // A line cut in the middle of a character is still UTF-8 up to the cut.
        text = QString::fromUtf8(kept);
        if (text.contains(QChar::ReplacementCharacter))
            text = QString::fromLatin1(kept);
    }
    for (QChar &c : text) {
        const char16_t u = c.unicode();
        if ((u < 0x20 && u != u'\t') || u == 0x7f)
            c = QLatin1Char(' ');
    }
    return text;
}

} // namespace

std::optional<FtpReply> FtpReplyReader::addLine(const QByteArray &raw)
{
    qsizetype size = raw.size();
    while (size > 0 && (raw[size - 1] == '\n' || raw[size - 1] == '\r'))
        --size;
    const QByteArray line = raw.left(size);
    if (!m_inMultiLine) {
        if (!startsWithCode(line))
            return std::nullopt; // not a server reply (the library's own header lines)
        m_pending = FtpReply();
        m_pending.code = codeOf(line);
        m_pending.lines.append(shownText(line));
        if (line.size() > 3 && line[3] == '-') {
            m_inMultiLine = true;
            return std::nullopt;
        }
    } else {
        const bool closing = startsWithCode(line) && codeOf(line) == m_pending.code &&
                             (line.size() == 3 || line[3] == ' ');
        if (!closing) {
            if (m_pending.lines.size() < MaxLinesPerReply - 1)
                m_pending.lines.append(shownText(line));
            return std::nullopt;
        }
        m_pending.lines.append(shownText(line));
        m_inMultiLine = false;
    }
    FtpReply done = std::move(m_pending);
    m_pending = FtpReply();
    return done;
}

QList<FtpReply> FtpReplyReader::addText(const QByteArray &bytes)
{
    QList<FtpReply> replies;
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype end = bytes.indexOf('\n', start);
        end = end < 0 ? bytes.size() : end + 1;
        if (auto reply = addLine(bytes.mid(start, end - start)))
            replies.append(std::move(*reply));
        start = end;
    }
    return replies;
}

std::optional<FtpReply> FtpReplyReader::pending() const
{
    if (!m_inMultiLine || m_pending.lines.isEmpty())
        return std::nullopt;
    return m_pending;
}

void FtpReplyReader::reset()
{
    m_pending = FtpReply();
    m_inMultiLine = false;
}
