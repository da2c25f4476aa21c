#include "HostKey.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QtEndian>

namespace {

bool isTypeCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '@' || c == '.' || c == '_';
}

} // namespace

QString HostKey::fingerprint() const
{
    QByteArray digest = QCryptographicHash::hash(blob, QCryptographicHash::Sha256)
                            .toBase64(QByteArray::OmitTrailingEquals);
    return QStringLiteral("SHA256:") + QString::fromLatin1(digest);
}

QString HostKey::typeName() const
{
    if (blob.size() < 4)
        return QString();
    const quint32 length = qFromBigEndian<quint32>(blob.constData());
    if (length == 0 || length > 64 || length > quint32(blob.size() - 4))
        return QString();
    const QByteArray name = blob.mid(4, qsizetype(length));
    for (const char c : name) {
        if (!isTypeCharacter(c))
            return QString();
    }
    return QString::fromLatin1(name);
}

QString HostKey::knownHostsLine(const QString &host, int port) const
{
    const QString type = typeName();
    if (type.isEmpty() || host.isEmpty())
        return QString();
    const QString pattern =
        port == 22 ? host : QLatin1Char('[') + host + QStringLiteral("]:") + QString::number(port);
    return pattern + QLatin1Char(' ') + type + QLatin1Char(' ') +
           QString::fromLatin1(blob.toBase64());
}

QString KnownHostsPath()
{
    return QDir::homePath() + QStringLiteral("/.ssh/known_hosts");
}

bool AddKnownHost(const QString &line)
{
    if (line.isEmpty() || line.contains(QLatin1Char('\n')) || line.contains(QLatin1Char('\r')))
        return false;
    const QString folder = QDir::homePath() + QStringLiteral("/.ssh");
    if (!QDir(folder).exists()) {
        if (!QDir().mkpath(folder))
            return false;
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QFile file(KnownHostsPath());
    const bool existed = file.exists();
    if (!file.open(QIODevice::Append))
        return false;
    // A file that does not end with a line end gets one first.
    if (file.size() > 0) {
        QFile reader(KnownHostsPath());
        if (reader.open(QIODevice::ReadOnly) && reader.seek(reader.size() - 1) &&
            reader.read(1) != "\n")
            file.write("\n");
    }
    const bool written = file.write(line.toLatin1() + '\n') > 0 && file.flush();
    file.close();
    if (!existed)
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    return written;
}
