#pragma once

#include <QByteArray>
#include <QString>

// An SSH server's host key as the SFTP connection meets it, and its line in
// ~/.ssh/known_hosts.
struct HostKey
{
    // The key in the SSH wire format (as known_hosts holds it in base64).
    QByteArray blob;
    // How it compared with ~/.ssh/known_hosts: Known, New (no key stored for the server) or
    // Changed (another key stored). Seen: false until a key was met.
    enum class Match
    {
        Known,
        New,
        Changed
    } match = Match::New;
    bool seen = false;

    // "SHA256:" and the unpadded base64 of the key's SHA-256, as ssh shows it.
    QString fingerprint() const;
    // The key's type name from the blob ("ssh-ed25519", "ecdsa-sha2-nistp256"); "" when the
    // blob does not begin with a usable one.
    QString typeName() const;
    // The known_hosts line for host and port ("[host]:port type base64" off port 22); "" when
    // the key's type can't be read.
    QString knownHostsLine(const QString &host, int port) const;
};

// The user's known_hosts file (~/.ssh/known_hosts).
QString KnownHostsPath();
// Appends line to the known_hosts file, making ~/.ssh (mode 0700) and the file (0600) when
// missing. False when it can't be written.
bool AddKnownHost(const QString &line);
