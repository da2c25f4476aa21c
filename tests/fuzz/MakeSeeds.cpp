// Writes the seed inputs of the fuzz targets that the program itself makes: History files and
// records as its writers write them, its default templates, pictures as sizing writes them, a
// settings file as the store writes it. Run from tools/fuzz --seeds; the results are kept under
// tests/fuzz/corpus/<target>/.
//
//     tarnwick_fuzz_seeds <source folder> <corpus folder>
#include "BackupRecord.h"
#include "BlogRecords.h"
#include "GifFile.h"
#include "History.h"
#include "PhotoPage.h"
#include "RecordFile.h"
#include "Settings.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

namespace {

QString corpus;

void seed(const QString &target, const QString &name, const QByteArray &bytes)
{
    QDir().mkpath(corpus + QLatin1Char('/') + target);
    QFile file(corpus + QLatin1Char('/') + target + QLatin1Char('/') + name);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        std::fprintf(stderr, "cannot write %s\n", qPrintable(file.fileName()));
}

QByteArray joined(const QList<QByteArray> &parts)
{
    QByteArray out;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0)
            out += '\0';
        out += parts[i];
    }
    return out;
}

void historySeeds()
{
    auto page = std::make_unique<PhotoPage>();
    page->FileName = QStringLiteral("Trip_to_NY");
    page->Title = QStringLiteral("Trip to NY, \"the big apple\"");
    page->GroupInfo = QStringLiteral("Three days in May.\r\nWe walked a lot!");
    const char *names[] = {"Bridge.jpg", "Tree_Left.jpg", "Park at night.jpg", "Caf\xc3\xa9.jpg"};
    const char *rotate[] = {"", "_Left", "_Right", ""};
    for (int i = 0; i < 4; ++i) {
        page->PhotoName[i] = QString::fromUtf8(names[i]);
        page->PhotoPath[i] = QStringLiteral("/home/ann/Pictures/2026 May");
        page->PhotoRotate[i] = QString::fromLatin1(rotate[i]);
        page->PhotoInfo[i] = QStringLiteral("Photo %1, 50% of the way, (c) Ann").arg(i + 1);
        page->PhotoLeft[i] = i % 2 ? QStringLiteral("False") : QStringLiteral("True");
        page->PhotoOrder[i] = QStringLiteral("%1").arg((i + 1) * 10, 5, 10, QLatin1Char('0'));
    }
    page->PhotoNumber = 4;
    seed(QStringLiteral("fuzz_history_file"), QStringLiteral("four-photos.hst"),
         HistoryText(*page));
    seed(QStringLiteral("fuzz_record_file"), QStringLiteral("four-photos.hst"), HistoryText(*page));

    auto empty = std::make_unique<PhotoPage>();
    empty->FileName = QStringLiteral("v1.2 test");
    seed(QStringLiteral("fuzz_history_file"), QStringLiteral("empty-page.hst"),
         HistoryText(*empty));

    // A file cut short by a crash, and one whose count says more than it holds.
    const QByteArray whole = HistoryText(*page);
    seed(QStringLiteral("fuzz_history_file"), QStringLiteral("cut-short.hst"),
         whole.left(whole.size() * 2 / 3));
    QByteArray overCount = whole;
    overCount.replace("PhotoNumber = 4", "PhotoNumber = 400");
    seed(QStringLiteral("fuzz_history_file"), QStringLiteral("count-too-high.hst"), overCount);
}

void recordSeeds()
{
    const QString record =
        RecordLine(QStringLiteral("FileName"),
                   EncodeRecordText(QStringLiteral("Notes 2026.blg"), true)) +
        RecordLine(QStringLiteral("MainTitle"),
                   EncodeRecordText(QStringLiteral("Hello, \"World\"\r\nLine 2"), false)) +
        RecordLine(QStringLiteral("ShowPointers"), QStringLiteral("Yes"));
    seed(QStringLiteral("fuzz_record_file"), QStringLiteral("one-record.blg"),
         (record + QStringLiteral("\r\n")).toLatin1());
    QString list;
    for (int i = 0; i < 3; ++i)
        list +=
            RecordLine(QStringLiteral("filename"), QStringLiteral("/home/ann/file%1.txt").arg(i)) +
            RecordLine(QStringLiteral("Date"), QStringLiteral("2026-05-0%1 10:00:00").arg(i + 1)) +
            RecordLine(QStringLiteral("Compress"), QStringLiteral("True")) + QStringLiteral("\r\n");
    seed(QStringLiteral("fuzz_record_file"), QStringLiteral("list.lst"), list.toLatin1());
    // Hand-edited: commas, quotes, a line without "=".
    seed(
        QStringLiteral("fuzz_record_file"), QStringLiteral("hand-edited.txt"),
        "Title = a, b, \"c\"\r\n  \"quoted, field\" rest, more\r\nNoEquals\r\nPhotoNumber = 2\r\n");
    // Name and value for the writer's round trip.
    seed(QStringLiteral("fuzz_record_file"), QStringLiteral("round-trip.txt"),
         joined({"My photo.1.jpg", "Caf\xc3\xa9, \"quoted\"\r\nsecond line | pipe\ttab 50%"}));
}

void templateSeeds(const QString &source)
{
    const QList<QByteArray> texts = {"Wow!! Great",
                                     "Three days.\r\nWe walked!",
                                     "Line one\rLine two!",
                                     "/home/ann/Pictures/Park at night.jpg",
                                     "00010_Bridge.jpg\n00020_Tree_Left.jpg",
                                     QByteArray("\x01\x03", 2),
                                     "Beside the bridge!"};
    const QStringList folders = {QStringLiteral("data/templates"),
                                 QStringLiteral("data/portal/Startup")};
    for (const QString &folder : folders) {
        const QDir dir(source + QLatin1Char('/') + folder);
        for (const QString &name : dir.entryList({QStringLiteral("*.txt")}, QDir::Files)) {
            QFile file(dir.filePath(name));
            file.open(QIODevice::ReadOnly);
            QList<QByteArray> parts = {file.readAll()};
            parts += texts;
            seed(QStringLiteral("fuzz_template"),
                 QFileInfo(folder).fileName() + QLatin1Char('-') + name, joined(parts));
        }
    }
    seed(QStringLiteral("fuzz_template"), QStringLiteral("stray-marks.txt"),
         joined({"!!PHOTO_title!!\n <b>!!PHOTO_title!!</b> and !!unknown!! text\n a !! stray\n"
                 " !!PHOTO_title!!PHOTO_font!!!!\n<|> kept\n !!BLOG_SUB_text!! !!SUColWidth!!\n",
                 "Title!", "Intro", "Blog\r\ntext!"}));
}

QByteArray jpeg(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(75);
    writer.write(image);
    return bytes;
}

// The JPEG with an EXIF segment whose Orientation tag is orientation.
QByteArray withOrientation(const QByteArray &jpegBytes, quint16 orientation, bool bigEndian)
{
    QByteArray exif("Exif\0\0", 6);
    if (bigEndian) {
        exif += QByteArray("MM\0\x2A\0\0\0\x08", 8);
        exif += QByteArray("\0\x01", 2);
        exif += QByteArray("\x01\x12\0\x03\0\0\0\x01", 8);
        exif += char(orientation >> 8);
        exif += char(orientation & 0xff);
    } else {
        exif += QByteArray("II\x2A\0\x08\0\0\0", 8);
        exif += QByteArray("\x01\0", 2);
        exif += QByteArray("\x12\x01\x03\0\x01\0\0\0", 8);
        exif += char(orientation & 0xff);
        exif += char(orientation >> 8);
    }
    exif += QByteArray("\0\0\0\0\0\0", 6);
    const int length = int(exif.size()) + 2;
    QByteArray segment("\xFF\xE1", 2);
    segment += char(length >> 8);
    segment += char(length & 0xff);
    segment += exif;
    return jpegBytes.left(2) + segment + jpegBytes.mid(2);
}

void pictureSeeds(const QString &work)
{
    QImage image(48, 32, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 5, y * 7, x < 24 ? 200 : 30));
    const QByteArray plain = jpeg(image);
    // The first byte: bit 0 names the file .gif, the rest picks the sizes.
    seed(QStringLiteral("fuzz_picture"), QStringLiteral("photo.jpg"),
         QByteArray(1, '\x14') + plain);
    seed(QStringLiteral("fuzz_picture"), QStringLiteral("turned-right.jpg"),
         QByteArray(1, '\x20') + withOrientation(plain, 6, true));
    seed(QStringLiteral("fuzz_picture"), QStringLiteral("upside-down.jpg"),
         QByteArray(1, '\x32') + withOrientation(plain, 3, false));
    seed(QStringLiteral("fuzz_picture"), QStringLiteral("mirrored-left.jpg"),
         QByteArray(1, '\x46') + withOrientation(plain, 8, true));
    seed(QStringLiteral("fuzz_picture"), QStringLiteral("gray.jpg"),
         QByteArray(1, '\x08') + jpeg(image.convertToFormat(QImage::Format_Grayscale8)));
    const QString gifPath = work + QStringLiteral("/seed.gif");
    if (WriteGifFile(image, gifPath)) {
        QFile file(gifPath);
        file.open(QIODevice::ReadOnly);
        seed(QStringLiteral("fuzz_picture"), QStringLiteral("photo.gif"),
             QByteArray(1, '\x15') + file.readAll());
    }
    QImage clear(16, 16, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    for (int i = 0; i < 16; ++i)
        clear.setPixel(i, i, qRgba(255, 0, 0, 255));
    if (WriteGifFile(clear, gifPath)) {
        QFile file(gifPath);
        file.open(QIODevice::ReadOnly);
        seed(QStringLiteral("fuzz_picture"), QStringLiteral("transparent.gif"),
             QByteArray(1, '\x03') + file.readAll());
    }
}

void settingsSeeds()
{
    SaveSetting(QStringLiteral("Server"), QStringLiteral("ftp.example.net:2121"));
    SaveSetting(QStringLiteral("User"), QStringLiteral("ann"));
    SaveSetting(QStringLiteral("Password"), QStringLiteral("p=ss;w\"rd,#1 \\x"));
    SaveSetting(QStringLiteral("WebPage"), QStringLiteral("www.example.net/~ann"));
    SaveSetting(QStringLiteral("sml_resize"), QStringLiteral("15"));
    SaveSetting(QStringLiteral("lrg_resize"), QStringLiteral("121"));
    SaveSetting(QStringLiteral("PhotoBGColor"), QStringLiteral("#7F7Fff"));
    SaveSetting(QStringLiteral("AlernateLR"), QStringLiteral("True"));
    SaveSetting(QStringLiteral("Author"), QString::fromUtf8("Ann M\xc3\xbcller"));
    SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
    QFile file(QDir::homePath() + QStringLiteral("/.config/Tarnwick/Tarnwick.conf"));
    file.open(QIODevice::ReadOnly);
    const QByteArray conf = file.readAll();
    seed(QStringLiteral("fuzz_settings"), QStringLiteral("Tarnwick.conf"),
         conf + QByteArray(1, '\0') + "New \"author\", = [x]");
    seed(QStringLiteral("fuzz_settings"), QStringLiteral("cut-short.conf"),
         conf.left(conf.size() / 2));
    seed(QStringLiteral("fuzz_settings"), QStringLiteral("hand-edited.conf"),
         "[Settings]\nServer = ftp.example.net\nsml_resize=abc\nPhotoBGColor=#7\n"
         "HighLightSteps=0\n[General]\nx=\"unterminated\n");
}

void directoryNameSeeds()
{
    const QList<QByteArray> typed = {"My Photos",
                                     "Trip to NY 2026",
                                     "../../etc/passwd",
                                     "a/b\\c?d*e|f",
                                     "Caf\xc3\xa9 & Tea",
                                     "FileDirectory  2026 01 05 09 7",
                                     "tab\there\r\nnewline",
                                     QByteArray("nul\0byte", 8),
                                     "...",
                                     "~user;rm -rf"};
    int i = 0;
    for (const QByteArray &name : typed)
        seed(QStringLiteral("fuzz_directory_name"), QStringLiteral("typed-%1").arg(++i), name);
}

} // namespace

// A backup list as the program appends to it: a plain file, a compressed one with blanks and
// letters beyond ASCII in its name, a compressed directory, and the same name twice (an older
// copy a crash left behind).
void backupListSeeds()
{
    BackupRecord plain;
    plain.Filename = QStringLiteral("report.doc");
    plain.LocationPath = QStringLiteral("/home/ann/Documents");
    plain.DateModified = QStringLiteral("5/14/2026 9:03:12 AM");
    plain.DateBackup = QStringLiteral("5/14/2026 9:10:40 AM");
    plain.NumberOfBackupTimes = 3;
    plain.UploadPath = QStringLiteral("http://www.example.com/Backup/report.doc");
    plain.LengthOfTheFile = 48128;
    BackupRecord packed = plain;
    packed.Filename = QStringLiteral("Caf\u00e9 menu 2026.txt");
    packed.CompressFile = true;
    packed.UploadPath = QStringLiteral("http://www.example.com/Backup/Caf_menu_2026.cab");
    packed.LengthOfTheFile = 1.5e9;
    BackupRecord folder = plain;
    folder.Filename = QStringLiteral("DirFile_Photos");
    folder.LocationPath = QStringLiteral("/home/ann/Pictures/Photos");
    folder.CompressFile = true;
    folder.DateModified = QStringLiteral("1/1/2001 12:00:01 AM");
    folder.UploadPath = QStringLiteral("http://www.example.com/Backup/DirFile_Photos.cab");
    const QString blank = QStringLiteral("\r\n");
    const QString list = blank + BackupRecordText(plain) + blank + BackupRecordText(packed) +
                         blank + BackupRecordText(folder) + blank;
    seed(QStringLiteral("fuzz_backup_list"), QStringLiteral("three-records.lst"), list.toUtf8());
    BackupRecord older = plain;
    older.NumberOfBackupTimes = 2;
    seed(QStringLiteral("fuzz_backup_list"), QStringLiteral("twice-one-name.lst"),
         (BackupRecordText(older) + blank + BackupRecordText(plain) + blank).toUtf8());
    // Cut in the middle of the second record.
    seed(QStringLiteral("fuzz_backup_list"), QStringLiteral("cut-short.lst"),
         list.toUtf8().left(list.toUtf8().size() / 2));
}

// A Web Log's records as the editor saves them: main record, a section with two lines of text
// and a picture, a pointer and a comment, each a part of the input (parted by NUL bytes).
void webLogSeeds()
{
    BlogRecords r;
    r.main.FileName = QStringLiteral("Garden Diary");
    r.main.MainTitle = QStringLiteral("Our \"Garden\", 2026");
    r.main.TitleColor = QStringLiteral("#336600");
    r.main.BackgroundColor = QStringLiteral("#FFFFEE");
    r.main.SubTextColor = QStringLiteral("#000000");
    r.main.FontType = QStringLiteral("Arial");
    r.main.MainDate = QStringLiteral("May 2026");
    r.main.ShowPointers = QStringLiteral("Yes");
    r.main.ShowCommentPage = QStringLiteral("No");
    r.main.DirectorySavedTo = QStringLiteral("Web_Log");
    r.section.FileName = r.main.FileName;
    r.section.SubTitle = QStringLiteral("First Article");
    r.section.DisplayedSubTitle = QStringLiteral("First article: tomatoes & beans");
    r.section.BlogText = QStringLiteral("Planted <b>six</b> rows.\r\nWatered, 50% shade | trellis.");
    r.section.Author = QStringLiteral("Ann");
    r.section.BlogDate = QStringLiteral("2026-05-14");
    r.section.PhotoPath = QStringLiteral("/home/ann/Pictures/beans.jpg");
    r.section.PhotoTitle = QStringLiteral("Beans, day 1");
    r.section.Position = QStringLiteral("Left");
    r.section.SubTitleColor = QStringLiteral("#660000");
    r.section.SubTileFont = QStringLiteral("Arial");
    r.section.ShowAuthor = QStringLiteral("True");
    r.section.ShowDate = QStringLiteral("False");
    r.section.ShowComment = QStringLiteral("True");
    r.section.ShowLine = QStringLiteral("True");
    r.section.Order = QStringLiteral("2");
    r.pointer.FileName = QStringLiteral("Links - Seeds.ptr");
    r.pointer.Category = QStringLiteral("Links");
    r.pointer.DisplayName = QStringLiteral("Seeds");
    r.pointer.URL = QStringLiteral("https://example.com/seeds?kind=b\u00f6hne&x=1");
    r.comment.FileName = QStringLiteral("Visitor.cmt");
    r.comment.Comment = QStringLiteral("Lovely!\r\nMore photos, please.");
    using namespace BuildBlog;
    seed(QStringLiteral("fuzz_weblog_records"), QStringLiteral("garden-diary.txt"),
         joined({MainRecordText(r.main).toUtf8(), SectionRecordText(r.section).toUtf8(),
                 PointerRecordText(r.pointer).toUtf8(), CommentRecordText(r.comment).toUtf8()}));
    // A section cut short and a main record without its colours.
    const QByteArray section = SectionRecordText(r.section).toUtf8();
    seed(QStringLiteral("fuzz_weblog_records"), QStringLiteral("cut-short.txt"),
         joined({"FileName = Garden Diary\r\nMainTitle = Ours\r\n", section.left(section.size() / 2),
                 QByteArray(), QByteArray()}));
}

int main(int argc, char *argv[])
{
    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/.config")).toLocal8Bit());
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <source folder> <corpus folder>\n", argv[0]);
        return 2;
    }
    const QString source = QString::fromLocal8Bit(argv[1]);
    corpus = QString::fromLocal8Bit(argv[2]);
    historySeeds();
    recordSeeds();
    templateSeeds(source);
    pictureSeeds(home.path());
    settingsSeeds();
    directoryNameSeeds();
    backupListSeeds();
    webLogSeeds();
    return 0;
}
