// The directory name cleaner on what a user types or pastes: what it gives is a name the server
// can take as one directory, and cleaning it again changes nothing.
#include "DirectoryName.h"
#include "FtpListing.h"
#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString typed = QString::fromUtf8(Fuzz::bytes(data, size));
    const QString cleaned = CleanDirectoryName(typed);
    FUZZ_CHECK(CleanDirectoryName(cleaned) == cleaned);
    FUZZ_CHECK(cleaned.size() <= typed.size());
    for (const QChar c : cleaned) {
        FUZZ_CHECK(c.unicode() >= 0x20 && c.unicode() != 0x7f);
        FUZZ_CHECK(!QStringLiteral(".><{}][&+'%#@~;:^/\\?*|").contains(c));
    }
    if (!cleaned.isEmpty())
        FUZZ_CHECK(FtpListing::IsUsableName(cleaned));

    // As Send a File names the directory it makes.
    const QString sent = SendFileDirectoryName(cleaned.trimmed());
    FUZZ_CHECK(SendFileDirectoryName(sent) == sent);
    FUZZ_CHECK(!sent.contains(QLatin1Char(' ')));
    if (!sent.isEmpty())
        FUZZ_CHECK(FtpListing::IsUsableName(sent));

    // The field's caret stays inside the text.
    const int caret = size > 0 ? int(data[0]) % (int(typed.size()) + 1) : 0;
    const CleanedEdit edit = CleanWhileTyping(typed, caret);
    FUZZ_CHECK(edit.text == cleaned);
    FUZZ_CHECK(edit.caret >= 0 && edit.caret <= edit.text.size());
    return 0;
}
