#pragma once

#include <QString>
#include <QStringList>

// The Web Log on disk. A Web Log is one main record (<root>/<FileName>.blg) and a folder of the
// same name beside it holding its section records (<SubTitle>.blg), its pointer records
// (Pointers/<FileName>.ptr) and its comment records (Comments/<FileName>.cmt). Every record is
// a small `Name = value` file (see RecordFile.h). There is no list of records in memory: the
// lists are the folders themselves, read with BlogFileList.
//
// The editor and the builders work on one current record of each kind (BlogRecords, kept in
// the job state): they load a record into it, change or read it, and save it back.

// The main record of a Web Log; fields in the order of the file.
struct BlogMain
{
    QString FileName;        // name of the Web Log, of its folder and its main file
    QString MainTitle;       // title at the head of the page
    QString TitleColor;      // "#RRGGBB"
    QString BackgroundColor; // "#RRGGBB"
    QString SubTextColor;    // "#RRGGBB"; an empty value read from a file becomes "#000000"
    QString LineType;        // reserved: always empty
    QString FontType;        // font name of the page
    QString FontSize, FontBold, FontItalic; // reserved: always empty
    QString MainDate;                       // date shown on the page, free text
    QString ShowPointers;                   // "Yes" or "No"
    QString ShowCommentPage;                // "Yes" or "No"
    QString DirectorySavedTo;               // folder of the Web Logs on the web space
};

// One section (article) of a Web Log; fields in the order of the file.
struct BlogSection
{
    QString FileName;          // FileName of the main record that owns the section
    QString SubTitle;          // the section's file name: its identity
    QString DisplayedSubTitle; // the heading as typed
    QString BlogText;          // the article, lines parted by CR LF, HTML tags allowed
    QString Author;
    QString BlogDate;
    QString PhotoPath;  // full local path of the picture, "" for none
    QString PhotoTitle; // caption of the picture
    QString Position;   // "Left" or "Right"; empty counts as right
    QString SubTitleColor;
    QString SubTileFont;                                 // reserved ("Arial" at creation)
    QString ShowAuthor, ShowDate, ShowComment, ShowLine; // "False" hides; anything else shows
    QString Order;                                       // place on the page, decimal text
};

// One pointer (link beside the articles).
struct BlogPointer
{
    QString FileName; // "<Category> - <DisplayName>"
    QString Category;
    QString DisplayName;
    QString URL;
    QString FontType, FontSize, FontBold, FontItalic; // reserved: always empty
};

// One comment.
struct BlogComment
{
    QString FileName;
    QString Comment;                                  // lines parted by CR LF
    QString FontType, FontSize, FontBold, FontItalic; // reserved: always empty
};

// The current record of each kind: state.current<BlogRecords>().
struct BlogRecords
{
    BlogMain main;
    BlogSection section;
    BlogPointer pointer;
    BlogComment comment;
};

namespace BuildBlog {

// The folder of the main records and of the Web Logs' folders (~/Tarnwick/Web_Log).
QString BlogRoot();
// root/<name>.blg
QString MainRecordPath(const QString &fileName);
// root/<name>: the folder of one Web Log.
QString WebLogFolder(const QString &fileName);
QString SectionRecordPath(const QString &mainFileName, const QString &subTitle);
QString PointerRecordPath(const QString &mainFileName, const QString &pointerFileName);
QString CommentRecordPath(const QString &mainFileName, const QString &commentFileName);

// The whole text of each record as it is written: one "Key = value" line per field in the order
// of the file, values encoded (dots dropped from the file names), each line ended by CR LF.
QString MainRecordText(const BlogMain &main);
QString SectionRecordText(const BlogSection &section);
QString PointerRecordText(const BlogPointer &pointer);
QString CommentRecordText(const BlogComment &comment);

// The saves write the current record of their kind; an old file is replaced only once the new
// one is complete, so a failed save leaves the last good record. Failures are not shown to the
// user: the result says whether the file was written.
bool SaveBlogMain(const BlogRecords &records);    // nothing when main.FileName is empty
bool SaveBlogSection(const BlogRecords &records); // into the folder of section.FileName
// Writes the pointer, then copies it into the master pointer folder under the same name,
// replacing a copy there. Nothing when pointer.FileName is empty.
bool SaveBlogPointer(const BlogRecords &records);
bool SaveBlogComment(const BlogRecords &records); // nothing when comment.FileName is empty

// The loads read the file that the current record's names point at into the current record.
// Each key is looked up in the whole text, so a record cut short, reordered or holding junk
// gives what can be found in it and empty fields for the rest. The names the record was found
// by (main FileName, SubTitle, the pointer's and the comment's FileName) stay as they were, so
// that the next save goes back to the same file; a section takes the open Web Log's name as its
// FileName. false (and the record as it was) when the file is missing or unreadable.
bool LoadBlogMain(BlogRecords &records);    // root/<main.FileName>.blg
bool LoadBlogSection(BlogRecords &records); // folder of main.FileName, <section.SubTitle>.blg
bool LoadBlogPointer(BlogRecords &records); // folder of main.FileName, Pointers/<pointer.FileName>
// Reads comment.FileName's record; the four font fields it holds go to the pointer's font
// fields (they are never set, so this shows nowhere).
bool LoadBlogComment(BlogRecords &records);

void ClearBlogSection(BlogRecords &records);
void ClearBlogMain(BlogRecords &records);

// Makes the Web Log's folder and its Pointers and Comments folders where missing; failures are
// passed over (the save that follows fails then).
void EnsureBlogFolders(const QString &mainFileName);

// A user's text to a file name: dots removed up to the first one with exactly three
// characters behind it (which stays, with all behind it); ">", "<", "{", "}", "]", "["
// removed; "&" becomes "+"; "'", "%", "#", "@", "~", ";", ":", double quote, "^", "/", "\",
// "?", "*" and "|" removed. Blanks, commas, "!", "$", "(", ")", "=", "+", "-", "_" stay. The
// result may be empty.
QString CleanFileName(const QString &text);

// The files of folder whose names match pattern as a file list box shows them, names only,
// sorted ignoring case. The pattern is a list of wildcards parted by ";" ("*" any run, "?" one
// character, case ignored, every other character itself). A missing folder gives nothing.
QStringList BlogFileList(const QString &folder, const QString &pattern);
// True when name matches one of pattern's wildcards.
bool MatchesPattern(const QString &name, const QString &pattern);

// The numeric value of a text as the program reads typed numbers: leading blanks skipped, an
// optional sign, digits and one decimal point; anything else ends the number. "" and "abc" are 0.
double NumberValue(const QString &text);

// "2024 05 01 13 07": year, month, day, hour and minute of now, joined by blanks.
QString DateStamp();
// The present date as records keep it: "yyyy-MM-dd".
QString PresentDate();

// The record's name from a file list entry: the entry less its last four characters (".blg").
QString EntryName(const QString &entry);

} // namespace BuildBlog
