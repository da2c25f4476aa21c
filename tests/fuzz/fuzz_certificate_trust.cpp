// The store of server certificates the user trusted, as the settings file holds it (a file that
// anyone may have edited): its entries, and the look-up and replacement of one.
#include "CertificateTrust.h"
#include "FuzzSupport.h"
#include "Settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QList<QByteArray> parts = Fuzz::parts(Fuzz::bytes(data, size), 3);
    const QString stored = QString::fromUtf8(parts[0]);
    const QString server = QString::fromUtf8(parts[1]);
    const QString fingerprint = QString::fromUtf8(parts[2]);

    const QList<CertificateTrust::Entry> entries = CertificateTrust::Parse(stored);
    for (const CertificateTrust::Entry &entry : entries) {
        FUZZ_CHECK(CertificateTrust::IsServerName(entry.first));
        FUZZ_CHECK(CertificateTrust::IsFingerprint(entry.second));
    }
    // What is written is read back as it was.
    FUZZ_CHECK(CertificateTrust::Parse(CertificateTrust::Format(entries)) == entries);

    SaveSetting(CertificateTrust::Key, stored);
    CertificateTrust::Trust(server, fingerprint);
    const QString trusted = CertificateTrust::Trusted(server);
    if (CertificateTrust::IsServerName(server) && CertificateTrust::IsFingerprint(fingerprint))
        FUZZ_CHECK(trusted == fingerprint);
    else
        FUZZ_CHECK(CertificateTrust::Parse(GetSetting(CertificateTrust::Key)).size() <=
                   entries.size());
    return 0;
}
