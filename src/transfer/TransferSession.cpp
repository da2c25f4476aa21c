#include "TransferSession.h"

TransferSession::~TransferSession() = default;

FtpConnection &TransferSession::For(const FtpAddress &address, const QString &user,
                                    const QString &password)
{
    // A connection in use is never replaced under its request; a second request on it is
    // refused there (12019).
    if (FtpConnection *connection = current(); connection && connection->busy())
        return *connection;
    if (FtpConnection *lent = lender ? lender(address, user, password) : nullptr) {
        if (m_connection) {
            m_connection->close();
            m_earlierLogins += m_connection->logins();
            m_connection.reset();
        }
        m_lent = lent;
        return *lent;
    }
    m_lent = nullptr;
    const bool same = m_connection && m_server == address.host && m_port == address.port &&
                      m_connection->address().protocol == address.protocol && m_user == user &&
                      m_password == password;
    if (!same) {
        Close();
        if (m_connection)
            m_earlierLogins += m_connection->logins();
        m_connection = std::make_unique<FtpConnection>(address, user, password);
        m_server = address.host;
        m_port = address.port;
        m_user = user;
        m_password = password;
        m_connection->onWaitStarted = [this](const QString &text) {
            if (onWaitStarted)
                onWaitStarted(text);
        };
        m_connection->askTrust = [this](const FtpConnection::CertificateQuestion &question) {
            return askTrust && askTrust(question);
        };
        m_connection->onWaitEnded = [this] {
            if (onWaitEnded)
                onWaitEnded();
        };
    }
    return *m_connection;
}

void TransferSession::Close()
{
    // A borrowed connection is its owner's to end: the session only stops using it.
    if (m_lent) {
        if (!m_lent->busy())
            m_lent = nullptr;
        return;
    }
    if (m_connection && !m_connection->busy())
        m_connection->close();
}

void TransferSession::Cancel()
{
    if (FtpConnection *connection = current())
        connection->cancel();
}

void TransferSession::Unhook()
{
    FtpConnection *connection = current();
    if (!connection)
        return;
    connection->cancelRequested = nullptr;
    connection->onOpenSocket = nullptr;
    connection->onLibraryText = nullptr;
}

int TransferSession::Logins() const
{
    return m_earlierLogins + (m_connection ? m_connection->logins() : 0);
}
