#include "RecordFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

const QString CrLf = QStringLiteral("\r\n");

bool passesAsItStands(char16_t c)
{
    if (c == u' ' || (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') ||
        (c >= u'A' && c <= u'Z'))
        return true;
    static constexpr char16_t punctuation[] = u"\\/-_=+[{]};':<>?!@#$%^&*()~`";
    for (char16_t p : punctuation) {
        if (p != 0 && p == c)
            return true;
    }
    return false;
}

// The files are single-byte; characters beyond Latin-1 can't be stored and become "?".
QByteArray toFileBytes(const QString &text)
{
    return text.toLatin1();
}

QString fileError(const QString &path, const QString &why)
{
    return QStringLiteral("Could not read %1: %2").arg(QDir::toNativeSeparators(path), why);
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

// Lower case character by character, so that a position in the result is one in the text.
QString lowered(const QString &text)
{
    QString result = text;
    for (QChar &c : result)
        c = c.toLower();
    return result;
}

// A record is read key by key, each look-up on the same text: the lowered text is kept for the
// next call (one per thread) instead of being made again for every key.
const QString &loweredText(const QString &text)
{
    thread_local QString source;
    thread_local QString lower;
    if (text != source) {
        source = text;
        lower = lowered(text);
    }
    return lower;
}

} // namespace

QString EncodeRecordText(const QString &text, bool DropDots)
{
    QString out;
    out.reserve(text.size());
    for (const QChar ch : text) {
        const char16_t c = ch.unicode();
        if (passesAsItStands(c))
            out += ch;
        else if (c == u'.') {
            if (!DropDots)
                out += ch;
        } else if (c == u'"')
            out += QStringLiteral("|3");
        else if (c == u'\r')
            out += QStringLiteral("|5");
        else if (c == u',')
            out += QStringLiteral("|4");
    }
    return out;
}

QString DecodeRecordText(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) != u'|') {
            out += text.at(i);
            continue;
        }
        const QChar code = i + 1 < text.size() ? text.at(i + 1) : QChar();
        if (code == u'3')
            out += u'"';
        else if (code == u'5')
            out += CrLf;
        else if (code == u'4')
            out += u',';
        ++i; // the mark and the character behind it are used up either way
    }
    return out;
}

QString GetRecordValue(const QString &text, const QString &key)
{
    if (key.isEmpty())
        return QString();
    const qsizetype keyAt = loweredText(text).indexOf(lowered(key));
    if (keyAt < 0)
        return QString();
    const qsizetype equalsAt = text.indexOf(u'=', keyAt);
    if (equalsAt < 0)
        return QString();
    qsizetype end = text.indexOf(u'\r', equalsAt);
    if (end < 0)
        end = text.size();
    QString value = text.mid(equalsAt + 1, end - equalsAt - 1);
    qsizetype first = 0;
    while (first < value.size() && value.at(first) == u' ')
        ++first;
    qsizetype last = value.size();
    while (last > first && value.at(last - 1) == u' ')
        --last;
    return value.mid(first, last - first);
}

QString ReplaceSpaces(const QString &name, const QString &replacement)
{
    QString out = name;
    out.replace(u' ', replacement);
    return out;
}

RecordFieldReader::RecordFieldReader(QByteArray bytes) : m_bytes(std::move(bytes)) {}

std::optional<QString> RecordFieldReader::readField()
{
    const auto span = readFieldSpan();
    if (!span)
        return std::nullopt;
    return QString::fromLatin1(m_bytes.constData() + span->start, span->end - span->start);
}

std::optional<RecordFieldReader::Span> RecordFieldReader::readFieldSpan()
{
    if (atEnd())
        return std::nullopt;
    const qsizetype size = m_bytes.size();
    while (m_pos < size && isBlank(m_bytes.at(m_pos)))
        ++m_pos;

    auto isLineEnd = [](char c) { return c == '\r' || c == '\n'; };
    qsizetype start = m_pos;
    qsizetype end = m_pos;
    if (m_pos < size && m_bytes.at(m_pos) == '"') {
        start = ++m_pos;
        while (m_pos < size && m_bytes.at(m_pos) != '"' && !isLineEnd(m_bytes.at(m_pos)))
            ++m_pos;
        end = m_pos;
        while (m_pos < size && m_bytes.at(m_pos) != ',' && !isLineEnd(m_bytes.at(m_pos)))
            ++m_pos;
    } else {
        while (m_pos < size && m_bytes.at(m_pos) != ',' && !isLineEnd(m_bytes.at(m_pos)))
            ++m_pos;
        end = m_pos;
    }

    if (m_pos < size) {
        const char stop = m_bytes.at(m_pos++);
        if (stop == '\r' && m_pos < size && m_bytes.at(m_pos) == '\n')
            ++m_pos;
    }
    return Span{start, end};
}

RecordFileResult ReadRecordFile(const QString &path, RecordDecoding decoding)
{
    RecordFileResult result;
    const QFileInfo info(path);
    if (!info.exists()) {
        result.message = fileError(path, QStringLiteral("the file does not exist."));
        return result;
    }
    QFile file(path);
    if (info.isDir() || !file.open(QIODevice::ReadOnly)) {
        result.message =
            fileError(path, info.isDir() ? QStringLiteral("it is a folder.") : file.errorString());
        return result;
    }
    RecordFieldReader fields(file.readAll());
    while (const auto field = fields.readField()) {
        result.text += decoding == RecordDecoding::Decode ? DecodeRecordText(*field) : *field;
        result.text += CrLf;
    }
    result.ok = true;
    return result;
}

namespace {

QByteArray readWholeFile(const QString &path, bool *ok, QString *message)
{
    const QFileInfo info(path);
    QFile file(path);
    *ok = info.exists() && !info.isDir() && file.open(QIODevice::ReadOnly);
    if (!*ok) {
        *message = fileError(path, !info.exists() ? QStringLiteral("the file does not exist.")
                                   : info.isDir() ? QStringLiteral("it is a folder.")
                                                  : file.errorString());
        return QByteArray();
    }
    return file.readAll();
}

} // namespace

RecordListReader::RecordListReader(const QString &path) : m_fields(QByteArray())
{
    m_fields = RecordFieldReader(readWholeFile(path, &m_open, &m_message));
}

bool RecordListReader::findRecord(const QString &firstLine)
{
    while (const auto line = readLine()) {
        if (*line == firstLine)
            return true;
    }
    return false;
}

QString RecordListReader::readValue(const QString &key)
{
    const auto line = readLine();
    return line ? GetRecordValue(*line, key) : QString();
}

std::optional<QString> RecordListReader::readLine()
{
    auto field = m_fields.readField();
    if (!field)
        m_pastEnd = true;
    return field;
}

RecordWriteResult WriteRecordFile(const QString &path, const QString &recordText)
{
    QSaveFile file(path);
    const QByteArray bytes = toFileBytes(recordText + CrLf);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return {false, QStringLiteral("Could not write %1: %2")
                           .arg(QDir::toNativeSeparators(path), file.errorString())};
    return {true, QString()};
}

RecordWriteResult AppendRecord(const QString &path, const QString &recordText)
{
    QFile file(path);
    const QByteArray bytes = toFileBytes(recordText + CrLf);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append) || file.write(bytes) != bytes.size())
        return {false, QStringLiteral("Could not write %1: %2")
                           .arg(QDir::toNativeSeparators(path), file.errorString())};
    return {true, QString()};
}

QString RecordLine(const QString &key, const QString &value)
{
    return key + QStringLiteral(" = ") + value + CrLf;
}
