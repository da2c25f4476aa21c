#pragma once

#include <QByteArray>
#include <QString>

#include <mutex>

// The check of a server's TLS certificate, done by the program itself inside the library's
// handshake (libcurl's OpenSSL context hook): the chain against the system's certificate store,
// the name against the server name, and, where that fails, the certificate against the one the
// user trusted for this server. A certificate that passes none of them ends the handshake
// before anything else is sent.
//
// Set up on the calling thread before a request; filled on the connection's thread during it;
// read on the calling thread after it.
struct CertificateCheck
{
    // The name or address the certificate must be for.
    QByteArray host;
    // The SHA-256 fingerprint ("AB:CD:...") the user trusted for this server; "" for none.
    QString trusted;

    // Filled during the handshake: why the certificate did not verify ("" when it did, or when
    // none was seen), and the fingerprint of the server's own certificate.
    QString problem;
    QString fingerprint;
    // The TLS version of the last handshake done ("TLS 1.3"); "" when none was.
    QString version;

    void reset()
    {
        std::lock_guard<std::mutex> lock(m_lock);
        problem.clear();
        fingerprint.clear();
        version.clear();
    }
    // Installs the check on an OpenSSL SSL_CTX (libcurl's CURLOPT_SSL_CTX_FUNCTION gives it).
    // Returns false when it can't.
    bool install(void *sslContext);

    std::mutex m_lock;
};

// A SHA-256 digest as the program shows it: upper-case hex pairs joined by ":".
QString FingerprintText(const QByteArray &digest);
