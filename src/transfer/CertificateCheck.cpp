#include "CertificateCheck.h"

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <arpa/inet.h>

namespace {

int contextIndex()
{
    static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    return index;
}

QString versionText(const SSL *ssl)
{
    // "TLSv1.3" reads "TLS 1.3" to the user.
    QString text = QString::fromLatin1(SSL_get_version(ssl));
    if (text.startsWith(QLatin1String("TLSv")))
        text = QStringLiteral("TLS ") + text.mid(4);
    return text;
}

bool nameMatches(X509 *certificate, const QByteArray &host)
{
    unsigned char address[16];
    const bool isAddress = inet_pton(AF_INET, host.constData(), address) == 1 ||
                           inet_pton(AF_INET6, host.constData(), address) == 1;
    if (!isAddress)
        return X509_check_host(certificate, host.constData(), size_t(host.size()), 0, nullptr) == 1;
    return X509_check_ip_asc(certificate, host.constData(), 0) == 1;
}

int verifyChain(X509_STORE_CTX *store, void *arg)
{
    auto *check = static_cast<CertificateCheck *>(arg);
    X509 *leaf = X509_STORE_CTX_get0_cert(store);
    if (!leaf)
        return 0;
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (X509_digest(leaf, EVP_sha256(), digest, &length) != 1)
        return 0;
    const QString fingerprint =
        FingerprintText(QByteArray(reinterpret_cast<const char *>(digest), int(length)));

    QString problem;
    if (X509_verify_cert(store) != 1) {
        problem =
            QString::fromLatin1(X509_verify_cert_error_string(X509_STORE_CTX_get_error(store)));
    } else if (!nameMatches(leaf, check->host)) {
        problem = QStringLiteral("the certificate is made out to another name than ") +
                  QString::fromLatin1(check->host);
        X509_STORE_CTX_set_error(store, X509_V_ERR_HOSTNAME_MISMATCH);
    }
    std::lock_guard<std::mutex> lock(check->m_lock);
    check->fingerprint = fingerprint;
    if (problem.isEmpty()) {
        check->problem.clear();
        return 1;
    }
    if (!check->trusted.isEmpty() && check->trusted == fingerprint) {
        // The very certificate the user trusted for this server.
        check->problem.clear();
        X509_STORE_CTX_set_error(store, X509_V_OK);
        return 1;
    }
    check->problem = problem;
    if (X509_STORE_CTX_get_error(store) == X509_V_OK)
        X509_STORE_CTX_set_error(store, X509_V_ERR_CERT_REJECTED);
    return 0;
}

void handshakeInfo(const SSL *ssl, int where, int)
{
    if (!(where & SSL_CB_HANDSHAKE_DONE))
        return;
    auto *check =
        static_cast<CertificateCheck *>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), contextIndex()));
    if (!check)
        return;
    const QString version = versionText(ssl);
    std::lock_guard<std::mutex> lock(check->m_lock);
    check->version = version;
}

} // namespace

QString FingerprintText(const QByteArray &digest)
{
    QString text;
    for (const char byte : digest) {
        if (!text.isEmpty())
            text += QLatin1Char(':');
        text += QString::asprintf("%02X", static_cast<unsigned char>(byte));
    }
    return text;
}

bool CertificateCheck::install(void *sslContext)
{
    auto *context = static_cast<SSL_CTX *>(sslContext);
    if (!context || contextIndex() < 0)
        return false;
    if (SSL_CTX_set_ex_data(context, contextIndex(), this) != 1)
        return false;
    SSL_CTX_set_cert_verify_callback(context, &verifyChain, this);
    SSL_CTX_set_info_callback(context, &handshakeInfo);
    return true;
}
