#include "BackupList.h"

#include "Folders.h"
#include "RecordFile.h"

#include <QByteArrayView>
#include <QFile>
#include <QLocale>
#include <QSaveFile>
#include <QStringDecoder>

#include <algorithm>
#include <cmath>
#include <optional>

#include <sys/stat.h>

namespace {

const QString FirstKey = QStringLiteral("filename = ");
constexpr QByteArrayView FirstKeyBytes("filename = ");
const QString CrLf = QStringLiteral("\r\n");

QString textOf(const char *data, qsizetype size)
{
    const auto *begin = reinterpret_cast<const unsigned char *>(data);
    if (std::all_of(begin, begin + size, [](unsigned char c) { return c < 0x80; }))
        return QString::fromLatin1(data, size);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(QByteArrayView(data, size));
    if (utf8.hasError())
        return QString::fromLatin1(data, size);
    return text;
}

QString boolText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

// The record's values as the list holds them: an empty value counts as False or 0, as a missing
// key does; anything else that isn't of the field's type makes the read fail.
std::optional<bool> boolValue(const QString &text)
{
    if (text.isEmpty() || text.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return false;
    if (text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return true;
    bool ok = false;
    const double number = QLocale::c().toDouble(text, &ok);
    if (!ok || !std::isfinite(number))
        return std::nullopt;
    return number != 0;
}

std::optional<double> doubleValue(const QString &text)
{
    if (text.isEmpty())
        return 0.0;
    bool ok = false;
    const double number = QLocale::c().toDouble(text, &ok);
    if (!ok || !std::isfinite(number))
        return std::nullopt;
    return number;
}

// A 16-bit count: rounded half to even, and out of range is a failure.
std::optional<qint16> shortValue(const QString &text)
{
    const std::optional<double> number = doubleValue(text);
    if (!number)
        return std::nullopt;
    const double rounded = std::nearbyint(*number);
    if (rounded < -32768.0 || rounded > 32767.0)
        return std::nullopt;
    return static_cast<qint16>(rounded);
}

bool lessForListBox(const QString &a, const QString &b)
{
    const int folded = QString::compare(a, b, Qt::CaseInsensitive);
    return folded != 0 ? folded < 0 : a < b;
}

} // namespace

QString BackupRecordText(const BackupRecord &record)
{
    QString text;
    text += QStringLiteral("filename = ") + record.Filename + CrLf;
    text += QStringLiteral("DirectoryType = ") + boolText(record.DirectoryType) + CrLf;
    text += QStringLiteral("LocationPath = ") + record.LocationPath + CrLf;
    text += QStringLiteral("DateModified = ") + record.DateModified + CrLf;
    text += QStringLiteral("DateBackup = ") + record.DateBackup + CrLf;
    text += QStringLiteral("CompressFile = ") + boolText(record.CompressFile) + CrLf;
    text += QStringLiteral("IncrementalBackup = ") + boolText(record.IncrementalBackup) + CrLf;
    text += QStringLiteral("NumberOfBackupTimes = ") + QString::number(record.NumberOfBackupTimes) +
            CrLf;
    text += QStringLiteral("UploadPath = ") + record.UploadPath + CrLf;
    // The shortest general form: whole lengths as plain digits.
    text += QStringLiteral("LengthOfTheFile = ") +
            QLocale::c().toString(record.LengthOfTheFile, 'G', 15) + CrLf;
    return text;
}

QString WithSlash(const QString &folder)
{
    if (folder.endsWith(QLatin1Char('/')) || folder.endsWith(QLatin1Char('\\')))
        return folder;
    return folder + QLatin1Char('/');
}

QString RecordFilePath(const BackupRecord &record)
{
    return WithSlash(record.LocationPath) + record.Filename;
}

BackupList::BackupList(const QString &folder) : m_folder(folder) {}

QString BackupList::folder() const
{
    return m_folder.isEmpty() ? Folders::BackupFolder() : m_folder;
}

QString BackupList::listPath() const
{
    return folder() + QStringLiteral("/BackupList.lst");
}

QString BackupList::tmpPath() const
{
    return folder() + QStringLiteral("/BackupList.tmp");
}

QString BackupList::oldPath() const
{
    return folder() + QStringLiteral("/BackupList.old");
}

BackupList::Stamp BackupList::stampOf(const QString &path)
{
    Stamp stamp;
    struct stat info
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return stamp;
    stamp.exists = true;
    stamp.size = info.st_size;
    stamp.mtimeNs = qint64(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
    stamp.ctimeNs = qint64(info.st_ctim.tv_sec) * 1000000000 + info.st_ctim.tv_nsec;
    stamp.inode = info.st_ino;
    return stamp;
}

void BackupList::forget()
{
    m_loaded = false;
    m_stamp = Stamp();
    m_bytes.clear();
    m_items.clear();
    m_firstRecord.clear();
}

void BackupList::keep(QByteArray bytes)
{
    m_bytes = std::move(bytes);
    m_items.clear();
    m_firstRecord.clear();
    RecordFieldReader reader(m_bytes);
    while (const auto span = reader.readFieldSpan()) {
        const qsizetype index = m_items.size();
        m_items.append({span->start, span->end});
        const QByteArrayView item(m_bytes.constData() + span->start, span->end - span->start);
        if (item.startsWith(FirstKeyBytes)) {
            const QString key = itemText(index);
            if (!m_firstRecord.contains(key))
                m_firstRecord.insert(key, index);
        }
    }
    m_loaded = true;
}

BackupList::Load BackupList::load()
{
    const Stamp stamp = stampOf(listPath());
    if (!stamp.exists) {
        forget();
        return Load::Missing;
    }
    if (m_loaded && stamp == m_stamp)
        return Load::Loaded;
    QFile file(listPath());
    if (!file.open(QIODevice::ReadOnly)) {
        forget();
        return Load::Unreadable;
    }
    ++m_fileReads;
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        forget();
        return Load::Unreadable;
    }
    keep(std::move(bytes));
    m_stamp = stamp;
    return Load::Loaded;
}

QString BackupList::itemText(qsizetype index) const
{
    const Item &item = m_items.at(index);
    return textOf(m_bytes.constData() + item.start, item.end - item.start);
}

bool BackupList::itemIsBlank(qsizetype index) const
{
    const Item &item = m_items.at(index);
    for (qsizetype i = item.start; i < item.end; ++i) {
        if (m_bytes.at(i) != ' ')
            return false;
    }
    return true;
}

bool BackupList::AppendBackupRecord(const BackupRecord &record)
{
    m_lastError.clear();
    const QByteArray bytes = (BackupRecordText(record) + CrLf).toUtf8();
    const Stamp before = stampOf(listPath());
    const bool knownBefore = m_loaded && before == m_stamp;
    QFile file(listPath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append) || file.write(bytes) != bytes.size() ||
        !file.flush()) {
        m_lastError = file.errorString();
        forget();
        return false;
    }
    file.close();
    if (knownBefore) {
        // What was known plus what was added: the next look-up needn't read the file again.
        keep(m_bytes + bytes);
        m_stamp = stampOf(listPath());
    } else {
        forget();
    }
    return true;
}

qint16 BackupList::ReadBackupRecord(const QString &name, BackupRecord &record)
{
    switch (load()) {
    case Load::Missing:
        CreateBackupList();
        return -1;
    case Load::Unreadable:
        return -1;
    case Load::Loaded:
        break;
    }
    const auto found = m_firstRecord.constFind(FirstKey + name);
    if (found == m_firstRecord.constEnd())
        return -1;
    const qsizetype at = *found;
    record.Filename = GetRecordValue(itemText(at), QStringLiteral("Filename"));
    // The nine lines behind it, in their fixed order, whatever keys they hold.
    qsizetype next = at + 1;
    const auto line = [&]() -> std::optional<QString> {
        if (next >= m_items.size())
            return std::nullopt;
        return itemText(next++);
    };
    const auto text = [&](const char *key) -> std::optional<QString> {
        const auto value = line();
        if (!value)
            return std::nullopt;
        return GetRecordValue(*value, QLatin1String(key));
    };
    const auto asBool = [&](const char *key, bool &field) {
        const auto value = text(key);
        const auto parsed = value ? boolValue(*value) : std::nullopt;
        if (parsed)
            field = *parsed;
        return parsed.has_value();
    };
    const auto asText = [&](const char *key, QString &field) {
        const auto value = text(key);
        if (value)
            field = *value;
        return value.has_value();
    };
    if (!asBool("DirectoryType", record.DirectoryType) ||
        !asText("LocationPath", record.LocationPath) ||
        !asText("DateModified", record.DateModified) || !asText("DateBackup", record.DateBackup) ||
        !asBool("CompressFile", record.CompressFile) ||
        !asBool("IncrementalBackup", record.IncrementalBackup))
        return -1;
    {
        const auto value = text("NumberOfBackupTimes");
        const auto parsed = value ? shortValue(*value) : std::nullopt;
        if (!parsed)
            return -1;
        record.NumberOfBackupTimes = *parsed;
    }
    if (!asText("UploadPath", record.UploadPath))
        return -1;
    const auto length = text("LengthOfTheFile");
    const auto parsed = length ? doubleValue(*length) : std::nullopt;
    if (!parsed)
        return -1;
    record.LengthOfTheFile = *parsed;
    return 0;
}

qint16 BackupList::DeleteBackupRecord(const QString &name)
{
    m_lastError.clear();
    if (load() != Load::Loaded)
        return -1;
    const auto found = m_firstRecord.constFind(FirstKey + name);
    const qsizetype at = found == m_firstRecord.constEnd() ? m_items.size() : *found;
    QByteArray kept;
    kept.reserve(m_bytes.size());
    const auto copy = [&](qsizetype index) {
        if (itemIsBlank(index))
            return;
        const Item &item = m_items.at(index);
        kept.append(m_bytes.constData() + item.start, item.end - item.start);
        kept.append("\r\n");
    };
    for (qsizetype i = 0; i < at; ++i)
        copy(i);
    // The record's first line and exactly nine more, whatever they hold.
    for (qsizetype i = at + 10; i < m_items.size(); ++i)
        copy(i);

    QFile tmp(tmpPath());
    const bool tmpWritten = tmp.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                            tmp.write(kept) == kept.size() && tmp.flush();
    if (!tmpWritten)
        m_lastError = tmp.errorString();
    tmp.close();
    if (found == m_firstRecord.constEnd())
        return -1;
    // A new list that couldn't be written whole must not take the place of the old one.
    if (!tmpWritten)
        return -1;

    QFile::remove(oldPath());
    if (!QFile::copy(listPath(), oldPath()))
        m_lastError = QStringLiteral("Could not keep the list as %1.").arg(oldPath());
    QSaveFile list(listPath());
    if (!list.open(QIODevice::WriteOnly) || list.write(kept) != kept.size() || !list.commit()) {
        m_lastError = list.errorString();
        forget();
        return -1;
    }
    keep(std::move(kept));
    m_stamp = stampOf(listPath());
    return 0;
}

void BackupList::CreateBackupList()
{
    QFile file(listPath());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write("\r\n");
    forget();
}

QStringList BackupList::FileNames()
{
    QStringList names;
    if (load() != Load::Loaded)
        return names;
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        const Item &item = m_items.at(i);
        const QByteArrayView bytes(m_bytes.constData() + item.start, item.end - item.start);
        if (bytes.indexOf(FirstKeyBytes) < 0)
            continue;
        const QString text = itemText(i);
        if (text.contains(FirstKey))
            names << GetRecordValue(text, QStringLiteral("Filename"));
    }
    return names;
}

QStringList FillFileList(BackupList &list, BackupRecord &record)
{
    QStringList names = list.FileNames();
    std::stable_sort(names.begin(), names.end(), lessForListBox);
    QString previous;
    for (const QString &name : std::as_const(names)) {
        if (name == previous) {
            list.ReadBackupRecord(name, record);
            list.DeleteBackupRecord(name);
        }
        previous = name;
    }
    names = list.FileNames();
    std::stable_sort(names.begin(), names.end(), lessForListBox);
    return names;
}
