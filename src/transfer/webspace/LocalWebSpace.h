#pragma once

#include <QObject>
#include <QString>

#include <optional>

class QProcess;

// A web space on this computer, for trying the program without a rented one: a folder under
// the user's home served over FTP and over HTTP on 127.0.0.1 by the data folder's
// local-webspace.py (pyftpdlib). The server runs as long as this object, and never outlives the
// program, however the program ends.
class LocalWebSpace final : public QObject
{
    Q_OBJECT
public:
    // The account to type into the program's fields.
    struct Account
    {
        QString server;  // "127.0.0.1:port"
        QString webSite; // "127.0.0.1:port", what the pointers are made from
        QString user;
        QString password;
        QString folder; // where what is sent lands
        int ftpPort = 0;
        int httpPort = 0;
    };

    explicit LocalWebSpace(QObject *parent = nullptr);
    ~LocalWebSpace() override;

    // Starts the server for folder with this user and password, on the given ports where they
    // are free (0: any free port), and waits until it listens, with the event loop running.
    // A running server is stopped first. Fails with a message when python3, pyftpdlib or the
    // script is missing, or the server gives no answer within timeoutMs.
    std::optional<Account> start(const QString &folder, const QString &user,
                                 const QString &password, int ftpPort = 0, int httpPort = 0,
                                 int timeoutMs = 15000);
    void stop();
    bool isRunning() const;
    const Account &account() const { return m_account; }
    QString lastError() const { return m_error; }

    // The folder that "Try it on this computer" serves: ~/Tarnwick-webspace.
    static QString defaultFolder();
    // The server script in the program's data folder.
    static QString scriptPath();

private:
    QProcess *m_process = nullptr;
    Account m_account;
    QString m_error;
};

// "Try it on this computer": starts the web space of defaultFolder() for the user "tarnwick"
// with a new password, on the ports it had the last time where they are free, and keeps where
// it is in the settings (LocalWebSpaceFolder, LocalWebSpaceFtpPort, LocalWebSpaceHttpPort).
std::optional<LocalWebSpace::Account> StartLocalWebSpace(LocalWebSpace &local);

// At a later start: when the account's server is the web space that "Try it on this computer"
// made, starts it again for that user and password, on the same ports where they are free (the
// settings follow when they are not). Nothing when the account is another server.
std::optional<LocalWebSpace::Account> RestartLocalWebSpace(LocalWebSpace &local,
                                                           const QString &server,
                                                           const QString &user,
                                                           const QString &password);
