#pragma once

#include <QList>
#include <QString>

#include <utility>

// The server certificates the user chose to trust although they do not verify (self-signed,
// made out to another name, expired): one per server, kept in the settings under
// "TrustedCertificates" as "host:port=AB:CD:...;host:port=..." (the server as the status line
// names it, the certificate's SHA-256 fingerprint). A later connection to that server takes
// that certificate and no other.
namespace CertificateTrust {

extern const QString Key;

using Entry = std::pair<QString, QString>; // server, fingerprint

// The entries of a stored text, in order; entries that are not "server=fingerprint" with a
// usable server and a SHA-256 fingerprint are left out, as is a server named twice after its
// first entry.
QList<Entry> Parse(const QString &text);
QString Format(const QList<Entry> &entries);
// "AB:CD:..." of 32 pairs of upper-case hex digits.
bool IsFingerprint(const QString &text);
// A server field that can be kept: not empty, no blank, control character, "=" or ";".
bool IsServerName(const QString &server);

// The fingerprint trusted for server ("" for none).
QString Trusted(const QString &server);
// Trusts fingerprint for server from now on, in place of any other.
void Trust(const QString &server, const QString &fingerprint);

} // namespace CertificateTrust
