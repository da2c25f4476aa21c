#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// The program's record syntax: `Name = value` lines ended by CR LF in single-byte files
// (ASCII or Latin-1). Each record format names its keys and picks one of the two readers below.

// Escapes text for a record value. Blanks, digits, letters, . and the punctuation
// \ / - _ = + [ { ] } ; ' : < > ? ! @ # $ % ^ & * ( ) ~ ` pass; a double quote becomes "|3",
// a CR "|5", a comma "|4"; everything else (line feeds, tabs, "|", every character above ASCII)
// is dropped. With DropDots set, "." is dropped as well (for file names).
QString EncodeRecordText(const QString &text, bool DropDots);
// Undoes EncodeRecordText: "|3" a double quote, "|5" CR LF, "|4" a comma; any other "|" and the
// character behind it vanish.
QString DecodeRecordText(const QString &text);
// The value of key in text (one line or a whole record): the first occurrence of the key, case
// ignored, wherever it stands; then the first "=" behind it; then everything up to the next CR
// or the end, without leading and trailing blanks. "" when the key isn't there.
QString GetRecordValue(const QString &text, const QString &key);
// name with every blank replaced by replacement (the builders use "_").
QString ReplaceSpaces(const QString &name, const QString &replacement);

// Reads the fields of a record file the way the program always has: blanks in front of a field
// are skipped; a field ends at the first comma or at the line's end; a field that begins with a
// double quote runs to the next double quote (or the line's end), and what stands behind it up
// to the next comma is passed over. A file that only the program wrote gives one field per line.
class RecordFieldReader final
{
public:
    explicit RecordFieldReader(QByteArray bytes);

    // True when no field is left to read.
    bool atEnd() const { return m_pos >= m_bytes.size(); }
    // The next field, or nothing when the end of the file had been reached already.
    std::optional<QString> readField();

    // Where the next field's text lies in the bytes: [start, end), quotes and the blanks in
    // front left out. For readers that keep a field's bytes exactly as they stand.
    struct Span
    {
        qsizetype start = 0;
        qsizetype end = 0;
    };
    std::optional<Span> readFieldSpan();
    const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    qsizetype m_pos = 0;
};

struct RecordFileResult
{
    bool ok = false;
    QString text;    // the fields, each followed by CR LF
    QString message; // why the file couldn't be read
};

enum class RecordDecoding
{
    Decode,
    Raw
};

// Reader style 1, for files of one record: every field of the file, decoded (or as it stands,
// with Raw), joined with CR LF; the caller picks values out with GetRecordValue. A missing or
// unreadable file is a failure with a message; a cut or garbled file simply yields what is there.
RecordFileResult ReadRecordFile(const QString &path,
                                RecordDecoding decoding = RecordDecoding::Decode);

// Reader style 2, for list files of many records: walks to the record whose first line matches,
// then reads exactly one line per key. Fields are not decoded; the caller decodes where the
// format says so. The whole file is read when the reader is made.
class RecordListReader final
{
public:
    explicit RecordListReader(const QString &path);

    // False when the file was missing or unreadable; message() tells why.
    bool isOpen() const { return m_open; }
    QString message() const { return m_message; }

    // Reads on until a line equals firstLine exactly (case counts), e.g. "filename = " + name.
    // False when the end of the file came first.
    bool findRecord(const QString &firstLine);
    // The value of key in the next line alone. At the end of the file it gives "" and pastEnd()
    // becomes true: the record was cut short.
    QString readValue(const QString &key);
    // The next line as it stands; nothing at the end of the file (and pastEnd() becomes true).
    std::optional<QString> readLine();

    bool atEnd() const { return m_fields.atEnd(); }
    bool pastEnd() const { return m_pastEnd; }

private:
    RecordFieldReader m_fields;
    bool m_open = false;
    bool m_pastEnd = false;
    QString m_message;
};

struct RecordWriteResult
{
    bool ok = false;
    QString message;
};

// Writes a record file of one record: recordText (its lines already ended by CR LF) and one
// further CR LF. An old file at path is replaced only once the new one is complete.
RecordWriteResult WriteRecordFile(const QString &path, const QString &recordText);
// Adds one record to the end of a list file (made when missing): recordText and one CR LF.
RecordWriteResult AppendRecord(const QString &path, const QString &recordText);

// One record line: key, " = ", value, CR LF.
QString RecordLine(const QString &key, const QString &value);
