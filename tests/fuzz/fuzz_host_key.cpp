// An SSH server's host key as the SFTP connection receives it: its type name read from the key,
// its fingerprint, and the known_hosts line made of it.
#include "FuzzSupport.h"
#include "HostKey.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    HostKey key;
    key.blob = Fuzz::bytes(data, size);
    const QString type = key.typeName();
    FUZZ_CHECK(type.size() <= 64);
    for (const QChar c : type)
        FUZZ_CHECK(c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('@') ||
                   c == QLatin1Char('.') || c == QLatin1Char('_'));
    FUZZ_CHECK(key.fingerprint().startsWith(QStringLiteral("SHA256:")));
    const QString line = key.knownHostsLine(QStringLiteral("127.0.0.1"), 2222);
    FUZZ_CHECK(type.isEmpty() == line.isEmpty());
    FUZZ_CHECK(!line.contains(QLatin1Char('\n')) && !line.contains(QLatin1Char('\r')));
    if (!line.isEmpty())
        FUZZ_CHECK(line.section(QLatin1Char(' '), 1, 1) == type);
    return 0;
}
