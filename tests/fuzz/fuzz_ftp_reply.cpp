// The FTP reply reader on a server's control connection bytes, and the error number and message
// that the user reads of what it kept.
#include "FtpErrors.h"
#include "FtpReplyReader.h"
#include "FuzzSupport.h"
#include "cFTP.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    // The first byte: the library's result the request ended with, and whether it logged in.
    const auto code = static_cast<CURLcode>(data[0] % 0x60);
    const bool openedSession = data[0] & 0x80;
    const QByteArray connection = Fuzz::bytes(data + 1, size - 1);

    FtpReplyReader reader;
    QList<FtpReply> replies = reader.addText(connection);
    if (const auto cut = reader.pending())
        replies.append(*cut);
    for (const FtpReply &reply : std::as_const(replies)) {
        FUZZ_CHECK(reply.code >= 0 && reply.code <= 999);
        FUZZ_CHECK(!reply.lines.isEmpty());
        FUZZ_CHECK(reply.lines.size() <= FtpReplyReader::MaxLinesPerReply);
        for (const QString &line : reply.lines) {
            FUZZ_CHECK(line.size() <= FtpReplyReader::MaxLineBytes);
            for (const QChar c : line)
                FUZZ_CHECK(c.unicode() >= 0x20 || c == QLatin1Char('\t'));
        }
    }

    // Fed line by line, the reader reads the same.
    FtpReplyReader byLine;
    QList<FtpReply> again;
    for (const QByteArray &line : connection.split('\n')) {
        if (auto reply = byLine.addLine(line))
            again.append(*reply);
    }
    if (const auto cut = byLine.pending())
        again.append(*cut);
    FUZZ_CHECK(again.size() == replies.size());

    const int number = FtpErrors::NumberFor(code, replies, openedSession);
    FUZZ_CHECK(number == 0 || (number >= 12001 && number <= 12036) ||
               FtpErrors::IsSecurityNumber(number));
    FUZZ_CHECK((number == 0) == (code == CURLE_OK));
    if (number != 0)
        FUZZ_CHECK(FtpErrors::Description(number) != QLatin1String("Error details not available."));
    const FtpReply last = replies.isEmpty() ? FtpReply() : replies.last();
    const QString message =
        FtpErrors::Compose(number == 0 ? FtpErrors::ExtendedError : number,
                           QStringLiteral("FtpFindFirstFile"), FtpErrors::ServerText(last));
    FUZZ_CHECK(!message.isEmpty());
    FUZZ_CHECK(message.size() <=
               1024 + FtpReplyReader::MaxLinesPerReply * (FtpReplyReader::MaxLineBytes + 1));

    // The directory a 257 reply names.
    const QString path = PathFrom257(last.text());
    FUZZ_CHECK(path.size() <= last.text().size());
    return 0;
}
