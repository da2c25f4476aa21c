// The History file reader on a file a user edited or a crash cut short, and the page it gives
// written and read again.
// fuzz-options: -max_len=16384
#include "Folders.h"
#include "FuzzSupport.h"
#include "History.h"
#include "PhotoPage.h"

#include <memory>

namespace {

// True when no value holds the text of a key: then every key is found at its own line, and
// a page written and read again is the same page.
bool keysStandAlone(const PhotoPage &page)
{
    static const QStringList keys = {QStringLiteral("filename"),    QStringLiteral("title"),
                                     QStringLiteral("groupinfo"),   QStringLiteral("photonumber"),
                                     QStringLiteral("photoname"),   QStringLiteral("photopath"),
                                     QStringLiteral("photorotate"), QStringLiteral("photoinfo"),
                                     QStringLiteral("photoleft"),   QStringLiteral("photoorder")};
    QStringList values = {page.FileName, page.Title, page.GroupInfo};
    for (int i = 0; i < page.PhotoNumber && i < PhotoPage::Rows; ++i)
        values << page.PhotoName[i] << page.PhotoPath[i] << page.PhotoRotate[i] << page.PhotoInfo[i]
               << page.PhotoLeft[i] << page.PhotoOrder[i];
    for (const QString &value : values) {
        for (const QString &key : keys) {
            if (value.contains(key, Qt::CaseInsensitive))
                return false;
        }
    }
    return true;
}

void checkPage(const PhotoPage &page)
{
    FUZZ_CHECK(page.PhotoNumber >= 0 && page.PhotoNumber <= PhotoPage::Rows);
    for (int i = 0; i < page.PhotoNumber; ++i) {
        FUZZ_CHECK(!page.PhotoName[i].contains(QLatin1Char('\r')));
        FUZZ_CHECK(!page.PhotoInfo[i].contains(QLatin1Char('\r')));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString folder = Folders::HistoryFolder();
    const QString path = folder + QStringLiteral("/Fuzz.hst");
    Fuzz::writeFile(path, Fuzz::bytes(data, size));

    auto page = std::make_unique<PhotoPage>();
    page->FileName = QStringLiteral("Fuzz.hst");
    const HistoryResult read = ReadHistory(*page);
    FUZZ_CHECK(read.ok || !read.error.isEmpty());
    checkPage(*page);

    // What the page's rows are asked for while a page is built.
    for (int i = 0; i < page->PhotoNumber && i < 4; ++i) {
        const int row = FindPhoto(*page, page->PhotoName[i], page->PhotoOrder[i]);
        FUZZ_CHECK(row == PhotoPage::NotFound || PhotoPage::isRow(row));
        if (PhotoPage::isRow(row))
            FUZZ_CHECK(row <= i);
        const QString entry = page->PhotoOrder[i] + QLatin1Char('_') + page->PhotoName[i];
        PhotoInfoOf(*page, entry);
    }
    FUZZ_CHECK(!HistoryDetails(*page).isNull());

    // Written and read again twice: the second reading gives what the first gave. A value that
    // holds a key's text ("PhotoNumber =$4" in a file name) is found before the key's own line,
    // as the record's look-up takes the first match anywhere in the text; such a page can read
    // back with an error, which must then say what is wrong.
    const auto writeAndRead = [&path](const PhotoPage &from, PhotoPage &to) {
        Fuzz::writeFile(path, HistoryText(from));
        to.FileName = QStringLiteral("Fuzz.hst");
        const HistoryResult again = ReadHistory(to);
        if (keysStandAlone(from))
            FUZZ_CHECK_MSG(again.ok, again.error);
        else
            FUZZ_CHECK(again.ok || !again.error.isEmpty());
        checkPage(to);
    };
    auto second = std::make_unique<PhotoPage>();
    writeAndRead(*page, *second);
    auto third = std::make_unique<PhotoPage>();
    writeAndRead(*second, *third);
    if (keysStandAlone(*second))
        FUZZ_CHECK_MSG(HistoryText(*third) == HistoryText(*second),
                       QString::fromLatin1(HistoryText(*second)));

    // Removing a row keeps the count within the page.
    if (page->PhotoNumber > 0) {
        const int before = page->PhotoNumber;
        RemovePhoto(*page, size % before);
        FUZZ_CHECK(page->PhotoNumber == before - 1);
    }
    ClearHistory(*page);
    FUZZ_CHECK(page->PhotoNumber == 0);
    return 0;
}
