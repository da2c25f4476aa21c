#include "CertificateTrust.h"

#include "Settings.h"

#include <QSet>

namespace CertificateTrust {

const QString Key = QStringLiteral("TrustedCertificates");

bool IsFingerprint(const QString &text)
{
    if (text.size() != 32 * 3 - 1)
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (i % 3 == 2) {
            if (c != QLatin1Char(':'))
                return false;
        } else if (!((c >= QLatin1Char('0') && c <= QLatin1Char('9')) ||
                     (c >= QLatin1Char('A') && c <= QLatin1Char('F')))) {
            return false;
        }
    }
    return true;
}

bool IsServerName(const QString &server)
{
    if (server.isEmpty() || server.size() > 300)
        return false;
    for (const QChar c : server) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7f || c.isSpace() || c == QLatin1Char('=') ||
            c == QLatin1Char(';'))
            return false;
    }
    return true;
}

QList<Entry> Parse(const QString &text)
{
    QList<Entry> entries;
    QSet<QString> seen;
    for (const QString &part : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const qsizetype equals = part.indexOf(QLatin1Char('='));
        if (equals < 0)
            continue;
        const QString server = part.left(equals);
        const QString fingerprint = part.mid(equals + 1).trimmed().toUpper();
        if (!IsServerName(server) || !IsFingerprint(fingerprint) || seen.contains(server))
            continue;
        seen.insert(server);
        entries.append({server, fingerprint});
    }
    return entries;
}

QString Format(const QList<Entry> &entries)
{
    QStringList parts;
    for (const Entry &entry : entries)
        parts.append(entry.first + QLatin1Char('=') + entry.second);
    return parts.join(QLatin1Char(';'));
}

QString Trusted(const QString &server)
{
    for (const Entry &entry : Parse(GetSetting(Key))) {
        if (entry.first == server)
            return entry.second;
    }
    return QString();
}

void Trust(const QString &server, const QString &fingerprint)
{
    if (!IsServerName(server) || !IsFingerprint(fingerprint))
        return;
    QList<Entry> entries = Parse(GetSetting(Key));
    entries.removeIf([&server](const Entry &entry) { return entry.first == server; });
    entries.append({server, fingerprint});
    SaveSetting(Key, Format(entries));
}

} // namespace CertificateTrust
