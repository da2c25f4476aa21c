#include "History.h"

#include "Folders.h"
#include "JobUi.h"
#include "PhotoPage.h"
#include "RecordFile.h"

#include <QFile>

#include <cmath>

namespace {

const QString CrLf = QStringLiteral("\r\n");

int rowsInUse(const PhotoPage &page)
{
    return std::clamp<int>(page.PhotoNumber, 0, PhotoPage::Rows);
}

QString historyPath(const QString &fileName)
{
    return Folders::HistoryFolder() + QLatin1Char('/') + fileName;
}

// The record's lines; encode maps each value (the FileName value has its own rule).
template <typename Encode, typename EncodeName>
QString recordLines(const PhotoPage &page, Encode encode, EncodeName encodeName,
                    const QString &lineEnd)
{
    QString text;
    const auto line = [&](const QString &key, const QString &value) {
        text += key + QStringLiteral(" = ") + value + lineEnd;
    };
    line(QStringLiteral("FileName"), encodeName(page.FileName));
    line(QStringLiteral("Title"), encode(page.Title));
    line(QStringLiteral("GroupInfo"), encode(page.GroupInfo));
    line(QStringLiteral("PhotoNumber"), encode(QString::number(page.PhotoNumber)));
    const int rows = rowsInUse(page);
    for (int i = 0; i < rows; ++i) {
        const QString n = QString::number(i);
        line(QStringLiteral("PhotoName") + n, encode(page.PhotoName[i]));
        line(QStringLiteral("PhotoPath") + n, encode(page.PhotoPath[i]));
        line(QStringLiteral("PhotoRotate") + n, encode(page.PhotoRotate[i]));
        line(QStringLiteral("PhotoInfo") + n, encode(page.PhotoInfo[i]));
        line(QStringLiteral("PhotoLeft") + n, encode(page.PhotoLeft[i]));
        line(QStringLiteral("PhotoOrder") + n, encode(page.PhotoOrder[i]));
    }
    return text;
}

// "Tree.jpg" + "_Left" -> "Tree_Left.jpg".
QString withSuffix(const QString &name, const QString &suffix)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return name;
    return name.left(dot) + suffix + name.mid(dot);
}

bool rotationFits(const PhotoPage &page, int row, const QString &name)
{
    const QString &rotate = page.PhotoRotate[row];
    if (rotate != QLatin1String("_Left") && rotate != QLatin1String("_Right"))
        return true;
    return name == withSuffix(page.PhotoName[row], rotate) || page.PhotoName[row].contains(rotate);
}

// A whole count as the record stores it; false for text that isn't one.
bool readCount(const QString &text, qint64 *count)
{
    if (!IsNumericText(text))
        return false;
    const double value = std::nearbyint(NumericValue(text)); // rounds half to even
    if (value < -32768 || value > 32767)
        return false;
    *count = static_cast<qint64>(value);
    return true;
}

QString encodedRecord(const PhotoPage &page)
{
    const auto encode = [](const QString &value) { return EncodeRecordText(value, false); };
    const auto encodeName = [](const QString &value) { return EncodeRecordText(value, true); };
    return recordLines(page, encode, encodeName, CrLf);
}

} // namespace

QByteArray HistoryText(const PhotoPage &page)
{
    // The record is written whole in one go, which ends it with one more line end.
    return (encodedRecord(page) + CrLf).toLatin1();
}

HistoryResult SaveHistory(PhotoPage &page)
{
    page.FileName = ReplaceSpaces(page.FileName, QStringLiteral("_"));
    const QString text = encodedRecord(page);
    const QString path =
        historyPath(ReplaceSpaces(page.FileName, QStringLiteral("_")) + QStringLiteral(".hst"));
    const RecordWriteResult written = WriteRecordFile(path, text);
    if (!written.ok)
        return {false, written.message};
    return {};
}

QString GetHistoryValue(const QString &text, const QString &key)
{
    return GetRecordValue(text, key);
}

HistoryResult ReadHistory(PhotoPage &page)
{
    return ReadHistoryFile(page, historyPath(page.FileName));
}

HistoryResult ReadHistoryFile(PhotoPage &page, const QString &path)
{
    const RecordFileResult record = ReadRecordFile(path);
    if (!record.ok)
        return {false, record.message};
    const QString &text = record.text;
    page.FileName = GetHistoryValue(text, QStringLiteral("FileName"));
    page.Title = GetHistoryValue(text, QStringLiteral("Title"));
    page.GroupInfo = GetHistoryValue(text, QStringLiteral("GroupInfo"));
    const QString countText = GetHistoryValue(text, QStringLiteral("PhotoNumber"));
    qint64 count = 0;
    if (!countText.isEmpty() && !readCount(countText, &count)) {
        page.PhotoNumber = 0;
        return {false,
                QStringLiteral("The number of photos in the History file is not a number: ") +
                    countText};
    }
    page.PhotoNumber = static_cast<qint16>(std::max<qint64>(count, 0));
    const int rows = std::min<qint64>(page.PhotoNumber, PhotoPage::Rows);
    for (int i = 0; i < rows; ++i) {
        const QString n = QString::number(i);
        page.PhotoName[i] = GetHistoryValue(text, QStringLiteral("PhotoName") + n);
        page.PhotoPath[i] = GetHistoryValue(text, QStringLiteral("PhotoPath") + n);
        page.PhotoRotate[i] = GetHistoryValue(text, QStringLiteral("PhotoRotate") + n);
        page.PhotoInfo[i] = GetHistoryValue(text, QStringLiteral("PhotoInfo") + n);
        page.PhotoLeft[i] = GetHistoryValue(text, QStringLiteral("PhotoLeft") + n);
        page.PhotoOrder[i] = GetHistoryValue(text, QStringLiteral("PhotoOrder") + n);
    }
    if (count > PhotoPage::Rows) {
        page.PhotoNumber = PhotoPage::Rows;
        return {false, QStringLiteral("The History file lists %1 photos; a page holds %2.")
                           .arg(count)
                           .arg(PhotoPage::Rows)};
    }
    return {};
}

int FindPhoto(const PhotoPage &page, const QString &name, const QString &group)
{
    const double wanted = NumericValue(group);
    const int rows = rowsInUse(page);
    for (int row = 0; row < rows; ++row) {
        if (page.PhotoName[row] != name || NumericValue(page.PhotoOrder[row]) != wanted)
            continue;
        if (rotationFits(page, row, name))
            return row;
    }
    return PhotoPage::NotFound;
}

std::optional<QString> PhotoInfoOf(const PhotoPage &page, const QString &entry)
{
    const int row = FindPhoto(page, RemoveGroupNumber(entry), GetGroupNumber(entry));
    if (!PhotoPage::isRow(row))
        return std::nullopt;
    return page.PhotoInfo[static_cast<size_t>(row)];
}

bool RemovePhoto(PhotoPage &page, int row)
{
    if (!PhotoPage::isRow(row))
        return false;
    for (int i = row; i <= page.PhotoNumber - 2 && i + 1 < PhotoPage::Rows; ++i) {
        page.PhotoName[i] = page.PhotoName[i + 1];
        page.PhotoPath[i] = page.PhotoPath[i + 1];
        page.PhotoRotate[i] = page.PhotoRotate[i + 1];
        page.PhotoInfo[i] = page.PhotoInfo[i + 1];
        page.PhotoLeft[i] = page.PhotoLeft[i + 1];
        page.PhotoOrder[i] = page.PhotoOrder[i + 1];
    }
    page.PhotoNumber = static_cast<qint16>(std::max(page.PhotoNumber - 1, 0));
    return true;
}

void ClearHistory(PhotoPage &page)
{
    page.FileName.clear();
    page.Title.clear();
    page.GroupInfo.clear();
    const int rows = rowsInUse(page);
    for (int i = 0; i < rows; ++i) {
        page.PhotoName[i].clear();
        page.PhotoPath[i].clear();
        page.PhotoRotate[i].clear();
        page.PhotoInfo[i].clear();
        page.PhotoLeft[i].clear();
        page.PhotoOrder[i].clear();
    }
    page.PhotoNumber = 0;
}

QString HistoryDetails(const PhotoPage &page)
{
    const auto asIs = [](const QString &value) { return value; };
    return recordLines(page, asIs, asIs, QStringLiteral("\n"));
}

void ShowHistory(const PhotoPage &page, JobUi &ui)
{
    ui.ShowScrollMessage(HistoryDetails(page));
}
