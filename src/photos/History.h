#pragma once

#include <QString>

#include <optional>

class JobUi;
struct PhotoPage;

// History files: the saved definition of one photo page, "<History folder>/<FileName>.hst",
// written as "Name = value" lines ended by CR LF in the fixed order FileName, Title, GroupInfo,
// PhotoNumber, then per row PhotoName<i>, PhotoPath<i>, PhotoRotate<i>, PhotoInfo<i>,
// PhotoLeft<i>, PhotoOrder<i>, and one empty line at the end.

struct HistoryResult
{
    bool ok = true;
    QString error;
};

// Turns the blanks of FileName into "_" and rewrites the page's History file whole. A file
// that can't be written is left out without a word; the result tells it.
HistoryResult SaveHistory(PhotoPage &page);
// The History file's text as SaveHistory writes it.
QByteArray HistoryText(const PhotoPage &page);
// Reads the History file named page.FileName (name with extension) from the History folder.
// Afterwards FileName holds the file's own FileName value. A missing file changes nothing; a
// count that is not a number, or one beyond the record's rows, stops the read there and says so.
HistoryResult ReadHistory(PhotoPage &page);
// Reads the page record from the file at path.
HistoryResult ReadHistoryFile(PhotoPage &page, const QString &path);
// The trimmed value behind the first "=" after the first occurrence of key in text (case
// ignored, anywhere in the text) up to the next carriage return; "" when key is absent.
QString GetHistoryValue(const QString &text, const QString &key);
// The first row whose name equals name, whose group has the numeric value of group and whose
// rotation suffix fits the name; PhotoPage::NotFound when there is none.
int FindPhoto(const PhotoPage &page, const QString &name, const QString &group);
// The text beside the picture of a Ready to Send entry ("00050_Tree.jpg"), as the page's
// placeholders show it; nothing when the record has no row of that name and group.
std::optional<QString> PhotoInfoOf(const PhotoPage &page, const QString &entry);
// Moves the rows behind row down by one and lowers PhotoNumber (not below 0). The last row
// keeps its old contents beyond the new count. A row outside the record changes nothing.
bool RemovePhoto(PhotoPage &page, int row);
// Empties the name, title, introduction and the rows in use, and sets PhotoNumber to 0.
void ClearHistory(PhotoPage &page);
// The record as plain text, one "Name = value" line each, without encoding.
QString HistoryDetails(const PhotoPage &page);
// Shows HistoryDetails in the scrolling message window and returns when it is closed.
void ShowHistory(const PhotoPage &page, JobUi &ui);
