// The directory listing reader on what a server sends for LIST: Unix, DOS/IIS and MLSD lines.
#include "FtpListing.h"
#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray listing = Fuzz::bytes(data, size);
    const QDateTime now(QDate(2026, 11, 25), QTime(12, 0), Qt::UTC);
    FtpListing::Counts counts;
    const QList<cDirItem> items = FtpListing::Parse(listing, now, &counts);
    FUZZ_CHECK(items.size() <= FtpListing::MaxEntries);
    FUZZ_CHECK(counts.unusable >= 0);
    for (const cDirItem &item : items) {
        FUZZ_CHECK(FtpListing::IsUsableName(item.Name));
        FUZZ_CHECK(!item.Name.contains(QLatin1Char('/')) && !item.Name.contains(QChar(0)));
        FUZZ_CHECK(!item.Name.contains(QLatin1Char('\n')) &&
                   !item.Name.contains(QLatin1Char('\r')));
        FUZZ_CHECK(item.Size >= 0);
        FUZZ_CHECK(item.LastWriteTime == item.CreationTime);
    }
    // Line by line, the reader finds the same entries.
    qsizetype found = 0;
    for (const QByteArray &line : listing.split('\n')) {
        if (FtpListing::ParseLine(line, now))
            ++found;
    }
    FUZZ_CHECK(found == items.size() || counts.tooMany);

    // The find pattern on a name of the listing: the name matches itself read as a pattern
    // whenever it holds no wildcard.
    if (!items.isEmpty()) {
        const QString &name = items.first().Name;
        const bool wild = name.contains(QLatin1Char('*')) || name.contains(QLatin1Char('?')) ||
                          name.contains(QLatin1Char('[')) || name.contains(QLatin1Char('\\'));
        const bool matched = FtpListing::MatchesFilter(name, name);
        if (!wild && name.trimmed() == name)
            FUZZ_CHECK_MSG(matched, name);
        FUZZ_CHECK(FtpListing::MatchesFilter(name, QStringLiteral("*.*")));
    }
    return 0;
}
