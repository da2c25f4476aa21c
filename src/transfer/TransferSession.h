#pragma once

#include "FtpConnection.h"

#include <QString>

#include <functional>
#include <memory>

// The transfer engine's connection of one job. The files of a job go over it one after another,
// so that a job logs in once for all its files. When the session has a lender (cFTP, whose own
// connection does the job's directory work), the files go over the lender's connection for the
// same account, and the whole job logs in once. Otherwise a connection of the session's own is
// made when none is open, when the account changes, and after one that failed or was dropped;
// the job closes it at its end (cFTP::CloseConnection does, as does the start of the next job).
class TransferSession final
{
public:
    TransferSession() = default;
    ~TransferSession();
    TransferSession(const TransferSession &) = delete;
    TransferSession &operator=(const TransferSession &) = delete;

    // The connection for this account: the kept one when it is for the same server, user and
    // password, else a new one, which logs in at its first request.
    FtpConnection &For(const FtpAddress &address, const QString &user, const QString &password);
    // A logged-in connection is kept.
    bool IsOpen() const { return current() && current()->isOpen(); }
    // Ends the kept connection (QUIT while the server answers); a borrowed one is only given
    // back, for its owner to end. Safe to call at any time.
    void Close();
    // Stops the request in flight, if any.
    void Cancel();
    // Forgets the cancel check and the status hooks a user of the kept connection set on it,
    // for a user that goes while the connection stays.
    void Unhook();
    // Logins made through the session's own connections so far (a borrowed connection's are
    // its owner's).
    int Logins() const;

    // A connection of the same account that the session may use instead of one of its own: the
    // lender answers its idle connection for that server, user and password, or nullptr.
    std::function<FtpConnection *(const FtpAddress &address, const QString &user,
                                  const QString &password)>
        lender;
    // Forgets a borrowed connection; its owner calls it before the connection goes.
    void Return() { m_lent = nullptr; }

    // Told of waits that the user should hear of (see FtpConnection::onWaitStarted).
    std::function<void(const QString &text)> onWaitStarted;
    std::function<void()> onWaitEnded;
    // Asked when a server's certificate does not verify (see FtpConnection::askTrust).
    std::function<bool(const FtpConnection::CertificateQuestion &question)> askTrust;

private:
    FtpConnection *current() const { return m_lent ? m_lent : m_connection.get(); }

    std::unique_ptr<FtpConnection> m_connection;
    FtpConnection *m_lent = nullptr;
    QString m_server;
    int m_port = 0;
    QString m_user;
    QString m_password;
    int m_earlierLogins = 0;
};
