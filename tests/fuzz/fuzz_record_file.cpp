// The record file readers on a file a user edited by hand or a crash cut short, and the
// writer's round trip: what the writer wrote, the reader gives back.
#include "FuzzSupport.h"
#include "RecordFile.h"

namespace {

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ');
}

QString trimmedOfBlanks(const QString &text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && isBlank(text.at(first)))
        ++first;
    while (last > first && isBlank(text.at(last - 1)))
        --last;
    return text.mid(first, last - first);
}

// What a value keeps through the writer: the characters the syntax lets pass, a CR as CR LF;
// line feeds, "|", tabs and letters beyond ASCII are lost.
QString kept(const QString &text, bool dropDots)
{
    static const QString passes = QStringLiteral(" \\/-_=+[{]};':<>?!@#$%^&*()~`\",");
    QString out;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if ((u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') ||
            passes.contains(c))
            out += c;
        else if (u == u'.' && !dropDots)
            out += c;
        else if (u == u'\r')
            out += QStringLiteral("\r\n");
    }
    return out;
}

void checkReaders(const QByteArray &file)
{
    const QStringList keys = {QStringLiteral("FileName"),    QStringLiteral("Title"),
                              QStringLiteral("PhotoNumber"), QStringLiteral("PhotoName0"),
                              QStringLiteral("filename"),    QStringLiteral("=")};
    RecordFieldReader fields(file);
    QString text;
    int count = 0;
    while (const auto field = fields.readField()) {
        FUZZ_CHECK(!field->contains(QLatin1Char('\r')) && !field->contains(QLatin1Char('\n')));
        text += DecodeRecordText(*field) + QStringLiteral("\r\n");
        FUZZ_CHECK(++count <= file.size() + 1);
    }
    FUZZ_CHECK(fields.atEnd());
    for (const QString &key : keys) {
        const QString value = GetRecordValue(text, key);
        FUZZ_CHECK(!value.contains(QLatin1Char('\r')));
        FUZZ_CHECK(value == trimmedOfBlanks(value));
    }

    // The same file through the readers that open it.
    const QString path = Fuzz::home() + QStringLiteral("/record.txt");
    Fuzz::writeFile(path, file);
    const RecordFileResult whole = ReadRecordFile(path);
    FUZZ_CHECK(whole.ok);
    FUZZ_CHECK(whole.text == text);
    RecordListReader list(path);
    FUZZ_CHECK(list.isOpen());
    if (list.findRecord(QStringLiteral("filename = ") + GetRecordValue(text, keys[0]))) {
        for (const QString &key : keys)
            FUZZ_CHECK(!list.readValue(key).contains(QLatin1Char('\r')));
    }
    FUZZ_CHECK(list.atEnd() || !list.pastEnd());
}

void checkRoundTrip(const QString &name, const QString &value)
{
    const QString encodedName = EncodeRecordText(name, true);
    const QString encoded = EncodeRecordText(value, false);
    for (const QString &escaped : {encodedName, encoded}) {
        for (qsizetype i = 0; i < escaped.size(); ++i) {
            const QChar c = escaped.at(i);
            FUZZ_CHECK(c.unicode() >= 0x20 && c.unicode() < 0x7f);
            FUZZ_CHECK(c != QLatin1Char(',') && c != QLatin1Char('"'));
            if (c == QLatin1Char('|'))
                FUZZ_CHECK(i + 1 < escaped.size() &&
                           QStringLiteral("345").contains(escaped.at(i + 1)));
        }
    }
    FUZZ_CHECK(DecodeRecordText(encoded) == kept(value, false));
    FUZZ_CHECK(DecodeRecordText(encodedName) == kept(name, true));

    // Through a file: a one-record file of two keys, read back whole (the value's first line)
    // and raw (the value decoded after the look-up, as the Web Log reads).
    const QString path = Fuzz::home() + QStringLiteral("/round-trip.txt");
    const RecordWriteResult written =
        WriteRecordFile(path, RecordLine(QStringLiteral("FileName"), encodedName) +
                                  RecordLine(QStringLiteral("Title"), encoded));
    FUZZ_CHECK(written.ok);
    const RecordFileResult raw = ReadRecordFile(path, RecordDecoding::Raw);
    const RecordFileResult decoded = ReadRecordFile(path, RecordDecoding::Decode);
    FUZZ_CHECK(raw.ok && decoded.ok);
    FUZZ_CHECK(DecodeRecordText(GetRecordValue(raw.text, QStringLiteral("FileName"))) ==
               trimmedOfBlanks(kept(name, true)));
    // The title's key is found first at its own line unless the name's value holds its text.
    if (!encodedName.contains(QLatin1String("title"), Qt::CaseInsensitive)) {
        const QString whole = trimmedOfBlanks(kept(value, false));
        FUZZ_CHECK_MSG(DecodeRecordText(GetRecordValue(raw.text, QStringLiteral("Title"))) == whole,
                       value);
        const QString firstLine =
            trimmedOfBlanks(kept(value, false).section(QLatin1Char('\r'), 0, 0));
        FUZZ_CHECK_MSG(GetRecordValue(decoded.text, QStringLiteral("Title")) == firstLine, value);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input = Fuzz::bytes(data, size);
    checkReaders(input);
    const QList<QByteArray> parts = Fuzz::parts(input, 2);
    checkRoundTrip(QString::fromUtf8(parts[0]), QString::fromUtf8(parts[1]));
    return 0;
}
