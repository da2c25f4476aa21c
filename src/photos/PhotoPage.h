#pragma once

#include <QString>
#include <QStringList>

#include <array>

// The one photo page under work: its name, title, introduction and the parallel rows of its
// pictures. Rows are 0 to PhotoNumber - 1 of at most PhotoPage::Rows; FindPhoto answers
// PhotoPage::NotFound (a row that does not exist) when it finds nothing, so every caller checks
// a row with isRow() before it touches the arrays.
struct PhotoPage
{
    static constexpr int Rows = 401;
    static constexpr int NotFound = 401;

    QString FileName;  // the page's name; blanks become "_" where it names a file or folder
    QString Title;     // title shown on the page
    QString GroupInfo; // introduction shown above the photos
    qint16 PhotoNumber = 0;

    std::array<QString, Rows> PhotoName;   // file name without group number ("Tree_Left.jpg")
    std::array<QString, Rows> PhotoPath;   // folder the picture was copied from
    std::array<QString, Rows> PhotoRotate; // "", "_Left" or "_Right"
    std::array<QString, Rows> PhotoInfo;   // text beside the picture
    std::array<QString, Rows> PhotoLeft;   // "True" puts the picture on the left
    std::array<QString, Rows> PhotoOrder;  // group number, five digits; the page's sort key
    std::array<bool, Rows> PhotoSkip{};    // never saved

    static bool isRow(int row) { return row >= 0 && row < Rows; }
};

// "00050_Tree.jpg" -> "Tree.jpg"; a name whose text before the first "_" is not a number stays.
QString RemoveGroupNumber(const QString &name);
// "00050_Tree.jpg" -> "00050"; "00000" when the text before the first "_" is not a number.
QString GetGroupNumber(const QString &name);
// The numeric value of "00" + prefix as the last five digits: "7" -> "00007", "123456" -> "23456".
QString FormatGroup(const QString &prefix);
// The numeric value of a text as the program reads numbers typed by the user: leading blanks
// skipped, an optional sign and the digits that follow; anything else ends the number. "" is 0.
double NumericValue(const QString &text);
// True when the text is a number as a whole (blanks around it allowed).
bool IsNumericText(const QString &text);

// The picture files of a folder as the photo lists show them: *.dib, *.bmp, *.gif, *.jpg and
// *.ddd, matched without regard to case, sorted by name ignoring case. No sub-folders.
QStringList ListPictureFiles(const QString &folder);
// The pictures of a source folder as File2 shows them: those of ListPictureFiles and the
// pictures of today's phones and cameras, *.heic, *.heif, *.webp, *.png, *.tif and *.tiff,
// matched and sorted the same way.
QStringList ListSourcePictureFiles(const QString &folder);
