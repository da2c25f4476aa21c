// The Web Log's record readers on records a user edited by hand or a crash cut short: the input,
// cut at its NUL bytes, is a Web Log's main record, one section, one pointer and one comment.
// Each is loaded, then saved and loaded again three times: from the second save on, each save
// writes what the one before wrote, so a record the program has written stays as it is.
// fuzz-options: -max_len=16384
#include "BlogRecords.h"
#include "FuzzSupport.h"

#include <QFile>

namespace {

using namespace BuildBlog;

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Saves with save, loads the file again with load, and gives the file's bytes of that save.
template <typename Save, typename Load>
QByteArray saveAndLoad(BlogRecords &records, const QString &path, Save save, Load load)
{
    FUZZ_CHECK(save(records));
    const QByteArray written = fileBytes(path);
    // The load fills every field of its kind; the rest of the current record stays.
    BlogRecords again = records;
    FUZZ_CHECK(load(again));
    records = again;
    return written;
}

// A record read from any file, once saved by the program, reads back and saves the same. (The
// first save need not write what the hand-made file held: a value's blanks behind "= " are the
// line's, not the value's, and are gone once it has been read.)
template <typename Save, typename Load>
void stable(BlogRecords &records, const QString &path, Save save, Load load)
{
    saveAndLoad(records, path, save, load);
    const QByteArray first = saveAndLoad(records, path, save, load);
    const QByteArray second = saveAndLoad(records, path, save, load);
    FUZZ_CHECK_MSG(first == second, QString::fromUtf8(first) + QStringLiteral("\n----\n") +
                                        QString::fromUtf8(second));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QList<QByteArray> parts = Fuzz::parts(Fuzz::bytes(data, size), 4);
    BlogRecords records;
    records.main.FileName = QStringLiteral("Fuzz Log");
    records.section.SubTitle = QStringLiteral("First Article");
    records.pointer.FileName = QStringLiteral("Links - Home.ptr");
    records.comment.FileName = QStringLiteral("Visitor.cmt");
    EnsureBlogFolders(records.main.FileName);
    const QString mainPath = MainRecordPath(records.main.FileName);
    const QString sectionPath = SectionRecordPath(records.main.FileName, records.section.SubTitle);
    const QString pointerPath = PointerRecordPath(records.main.FileName, records.pointer.FileName);
    const QString commentPath = CommentRecordPath(records.main.FileName, records.comment.FileName);
    Fuzz::writeFile(mainPath, parts[0]);
    Fuzz::writeFile(sectionPath, parts[1]);
    Fuzz::writeFile(pointerPath, parts[2]);
    Fuzz::writeFile(commentPath, parts[3]);

    // Whatever a file holds, it is read: the names it was found by stay.
    FUZZ_CHECK(LoadBlogMain(records));
    FUZZ_CHECK(records.main.FileName == QStringLiteral("Fuzz Log"));
    FUZZ_CHECK(!records.main.SubTextColor.isEmpty());
    FUZZ_CHECK(LoadBlogSection(records));
    FUZZ_CHECK(records.section.FileName == records.main.FileName);
    FUZZ_CHECK(records.section.SubTitle == QStringLiteral("First Article"));
    FUZZ_CHECK(LoadBlogPointer(records));
    FUZZ_CHECK(LoadBlogComment(records));
    // What the page builders ask of a section.
    NumberValue(records.section.Order);

    stable(records, mainPath, SaveBlogMain, LoadBlogMain);
    stable(records, sectionPath, SaveBlogSection, LoadBlogSection);
    stable(records, pointerPath, SaveBlogPointer, LoadBlogPointer);
    stable(records, commentPath, SaveBlogComment, LoadBlogComment);
    return 0;
}
