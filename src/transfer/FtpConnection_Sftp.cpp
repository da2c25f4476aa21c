// The connection's requests over SFTP. The library's SFTP works with absolute paths and
// commands of its own ("mkdir", "rename", ...), and answers without FTP replies; here each
// request is carried out with those, and the replies an FTP server would have given are put in
// replies(), so that everything above the connection (error numbers, a 550 for a folder that
// exists, the 257 of the current directory) reads the same over both.
#include "FtpConnection.h"

#include "CertificateCheck.h"
#include "FtpListing.h"

#include <QDir>

namespace {

QString cleanPath(const QString &path)
{
    QStringList parts;
    for (const QString &part : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (part == QLatin1String("."))
            continue;
        if (part == QLatin1String("..")) {
            if (!parts.isEmpty())
                parts.removeLast();
            continue;
        }
        parts.append(part);
    }
    return QLatin1Char('/') + parts.join(QLatin1Char('/'));
}

QString resolvePath(const QString &directory, const QString &path)
{
    if (path.startsWith(QLatin1Char('/')))
        return cleanPath(path);
    return cleanPath(directory + QLatin1Char('/') + path);
}

FtpReply makeReply(int code, const QString &text)
{
    FtpReply reply;
    reply.code = code;
    reply.lines = {QString::number(code) + QLatin1Char(' ') + text};
    return reply;
}

// A path as an argument of the library's SFTP commands: quoted, with '"' and '\' escaped.
QString quoted(const QString &path)
{
    QString text = path;
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// The server refused what was asked (as opposed to the connection failing).
bool refusedByServer(CURLcode code)
{
    return code == CURLE_QUOTE_ERROR || code == CURLE_REMOTE_FILE_NOT_FOUND ||
           code == CURLE_REMOTE_ACCESS_DENIED || code == CURLE_UPLOAD_FAILED ||
           code == CURLE_REMOTE_DISK_FULL || code == CURLE_REMOTE_FILE_EXISTS;
}

QString quotedDirectory(const QString &path)
{
    QString text = path;
    text.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

} // namespace

QByteArray FtpConnection::sftpUrl(const QString &path, bool directory) const
{
    QByteArray url = m_address.baseUrl();
    url.chop(1);
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &part : parts)
        url += '/' + encodeName(part);
    if (directory || parts.isEmpty())
        url += '/';
    return url;
}

FtpConnection::Result FtpConnection::performSftp(const Request &request)
{
    beginRequest(request);
    m_hostKey = HostKey();

    Result result;
    if (!m_alive) {
        result = openSftpSession(request.maxWaitMs);
        if (!result.ok()) {
            finishSftp(result);
            return result;
        }
    }

    const QString target = request.directory.isEmpty()
                               ? m_sftpDirectory
                               : resolvePath(m_sftpDirectory, request.directory);
    if (target != m_sftpDirectory && request.kind != Request::Kind::List) {
        bool exists = false;
        result = sftpEnter(target, request.maxWaitMs, &exists);
        if (result.ok() && !exists) {
            m_replies.append(
                makeReply(550, request.directory + QStringLiteral(": No such file or directory.")));
            result.code = CURLE_QUOTE_ERROR;
        }
        if (!result.ok()) {
            finishSftp(result);
            return result;
        }
        m_replies.append(makeReply(250, QStringLiteral("Directory successfully changed.")));
        m_sftpDirectory = target;
    }

    for (QString command : request.quote) {
        const bool mayFail = command.startsWith(QLatin1Char('*'));
        if (mayFail)
            command.remove(0, 1);
        FtpReply answer;
        result = sftpCommand(command, request.maxWaitMs, &answer);
        if (!result.ok()) {
            finishSftp(result);
            return result;
        }
        m_replies.append(answer);
        if ((answer.code >= 400) && !mayFail) {
            result.code = CURLE_QUOTE_ERROR;
            finishSftp(result);
            return result;
        }
    }

    switch (request.kind) {
    case Request::Kind::Commands:
        break;
    case Request::Kind::List:
        result = transfer(request, sftpUrl(target, true), {});
        if (result.ok())
            m_sftpDirectory = target;
        break;
    case Request::Kind::Store:
    case Request::Kind::Retrieve:
        result = transfer(request, sftpUrl(resolvePath(target, request.fileName), false), {});
        if (result.ok())
            m_sftpDirectory = target;
        break;
    }
    finishSftp(result);
    return result;
}

FtpConnection::Result FtpConnection::openSftpSession(int maxWaitMs)
{
    Request probe;
    probe.maxWaitMs = maxWaitMs;
    m_connecting = true;
    // The home directory as the server names it: the library answers "pwd" with the path of
    // the request, and "/~/" is the login directory.
    QByteArray url = m_address.baseUrl() + "~/";
    const Result result = transfer(probe, url, {QStringLiteral("pwd")});
    QString home;
    for (const FtpReply &reply : std::as_const(m_replies)) {
        if (reply.code != 257)
            continue;
        const QString text = reply.text();
        const qsizetype open = text.indexOf(QLatin1Char('"'));
        const qsizetype close = text.lastIndexOf(QLatin1Char('"'));
        if (open >= 0 && close > open)
            home = text.mid(open + 1, close - open - 1);
    }
    m_replies.clear();
    if (result.code == CURLE_LOGIN_DENIED) {
        // Told as an FTP server tells a refused password.
        m_replies = {makeReply(220, QStringLiteral("SSH server ready.")),
                     makeReply(331, QStringLiteral("Password required.")),
                     makeReply(530, QStringLiteral("Login incorrect."))};
        m_passwordAsked = true;
        return result;
    }
    if (!result.ok())
        return result;
    m_replies = {makeReply(220, QStringLiteral("SSH server ready.")),
                 makeReply(331, QStringLiteral("Password required.")),
                 makeReply(230, QStringLiteral("Login successful."))};
    m_passwordAsked = true;
    ++m_logins;
    m_alive = true;
    m_sftpDirectory = cleanPath(home.isEmpty() ? QStringLiteral("/") : home);
    m_renameFrom.clear();
    return result;
}

FtpConnection::Result FtpConnection::sftpLookUp(const QString &path, int maxWaitMs, bool *found,
                                                bool *isDirectory)
{
    // Looked up in the listing of its folder, which exists in all but odd cases: a request
    // of the library that fails ends its connection, and the next would log in anew.
    *found = false;
    *isDirectory = false;
    Result result;
    if (path == QLatin1String("/")) {
        *found = true;
        *isDirectory = true;
        return result;
    }
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    const QString parent = slash <= 0 ? QStringLiteral("/") : path.left(slash);
    const QString name = path.mid(slash + 1);
    QByteArray bytes;
    Request listing;
    listing.kind = Request::Kind::List;
    listing.maxWaitMs = maxWaitMs;
    listing.write = [&bytes](const char *data, size_t size) {
        if (bytes.size() + qint64(size) > FtpListing::MaxBytes)
            return false;
        bytes.append(data, qsizetype(size));
        return true;
    };
    result = transfer(listing, sftpUrl(parent, true), {});
    if (!result.ok()) {
        if (refusedByServer(result.code))
            result.code = CURLE_OK;
        return result;
    }
    for (const cDirItem &item : FtpListing::Parse(bytes)) {
        if (item.Name == name) {
            *found = true;
            *isDirectory = item.isDirectory();
            break;
        }
    }
    return result;
}

FtpConnection::Result FtpConnection::sftpEnter(const QString &path, int maxWaitMs, bool *exists)
{
    bool found = false;
    bool isDirectory = false;
    const Result result = sftpLookUp(path, maxWaitMs, &found, &isDirectory);
    *exists = found && isDirectory;
    return result;
}

FtpConnection::Result FtpConnection::sftpQuote(const QStringList &commands, int maxWaitMs)
{
    Request quote;
    quote.maxWaitMs = maxWaitMs;
    return transfer(quote, sftpUrl(m_sftpDirectory, true), commands);
}

FtpConnection::Result FtpConnection::sftpCommand(const QString &command, int maxWaitMs,
                                                 FtpReply *answer)
{
    const QString verb = command.section(QLatin1Char(' '), 0, 0).toUpper();
    const QString argument = command.section(QLatin1Char(' '), 1);
    const QString path = resolvePath(m_sftpDirectory, argument);
    Result result;
    const auto refusal = [this](int code) {
        QString text = QString::fromUtf8(m_errorBuffer).trimmed();
        if (text.isEmpty())
            text = QStringLiteral("Requested action not taken.");
        return makeReply(code, text);
    };
    // Runs the library's commands; a refusal is the reply refused, anything else the result.
    const auto run = [&](const QStringList &commands, int doneCode, const QString &doneText) {
        result = sftpQuote(commands, maxWaitMs);
        if (result.ok()) {
            *answer = makeReply(doneCode, doneText);
        } else if (result.code == CURLE_QUOTE_ERROR) {
            *answer = refusal(550);
            result.code = CURLE_OK;
        }
    };

    if (verb == QLatin1String("PWD") || verb == QLatin1String("XPWD")) {
        *answer = makeReply(257, quotedDirectory(m_sftpDirectory) +
                                     QStringLiteral(" is the current directory"));
    } else if (verb == QLatin1String("CWD") || verb == QLatin1String("CDUP") ||
               verb == QLatin1String("XCWD") || verb == QLatin1String("XCUP")) {
        const QString target = verb.endsWith(QLatin1String("UP"))
                                   ? resolvePath(m_sftpDirectory, QStringLiteral(".."))
                                   : path;
        bool exists = false;
        result = sftpEnter(target, maxWaitMs, &exists);
        if (result.ok()) {
            if (exists) {
                m_sftpDirectory = target;
                *answer = makeReply(250, QStringLiteral("Directory successfully changed."));
            } else {
                *answer = makeReply(550, argument + QStringLiteral(": No such file or directory."));
            }
        }
    } else if (verb == QLatin1String("MKD") || verb == QLatin1String("XMKD") ||
               verb == QLatin1String("RMD") || verb == QLatin1String("XRMD") ||
               verb == QLatin1String("DELE") || verb == QLatin1String("RNFR") ||
               verb == QLatin1String("RNTO")) {
        // What the command finds is looked at first, and what an FTP server refuses is refused
        // here without asking the SFTP server (see sftpLookUp).
        bool found = false;
        bool isDirectory = false;
        result = sftpLookUp(path, maxWaitMs, &found, &isDirectory);
        if (!result.ok())
            return result;
        const FtpReply missing =
            makeReply(550, argument + QStringLiteral(": No such file or directory."));
        if (verb.endsWith(QLatin1String("MKD"))) {
            if (found)
                *answer = makeReply(550, argument + QStringLiteral(": File exists."));
            else
                run({QStringLiteral("mkdir ") + quoted(path)}, 257,
                    quotedDirectory(path) + QStringLiteral(" created."));
        } else if (verb.endsWith(QLatin1String("RMD"))) {
            if (!found || !isDirectory)
                *answer = missing;
            else
                run({QStringLiteral("rmdir ") + quoted(path)}, 250,
                    QStringLiteral("Remove directory operation successful."));
        } else if (verb == QLatin1String("DELE")) {
            if (!found || isDirectory)
                *answer = found ? makeReply(550, argument + QStringLiteral(": Is a directory."))
                                : missing;
            else
                run({QStringLiteral("rm ") + quoted(path)}, 250,
                    QStringLiteral("Delete operation successful."));
        } else if (verb == QLatin1String("RNFR")) {
            m_renameFrom = found ? path : QString();
            *answer =
                found ? makeReply(350, QStringLiteral("Ready for destination name.")) : missing;
        } else if (m_renameFrom.isEmpty()) {
            *answer = makeReply(503, QStringLiteral("Bad sequence of commands."));
        } else if (m_renameFrom == path) {
            // Onto itself: nothing to do (and the file must not go first).
            *answer = makeReply(250, QStringLiteral("Rename successful."));
            m_renameFrom.clear();
        } else if (found && isDirectory) {
            *answer = makeReply(550, argument + QStringLiteral(": Is a directory."));
        } else {
            // An SFTP server renames onto no existing file: the old one goes first, as an FTP
            // server replaces it.
            QStringList commands;
            if (found)
                commands << QStringLiteral("rm ") + quoted(path);
            commands << QStringLiteral("rename ") + quoted(m_renameFrom) + QLatin1Char(' ') +
                            quoted(path);
            run(commands, 250, QStringLiteral("Rename successful."));
            m_renameFrom.clear();
        }
    } else if (verb == QLatin1String("NOOP") || verb == QLatin1String("TYPE")) {
        *answer = makeReply(200, QStringLiteral("Command okay."));
    } else {
        *answer = makeReply(502, QStringLiteral("Command not implemented."));
    }
    return result;
}

void FtpConnection::finishSftp(const Result &result)
{
    if (!result.ok() && !result.cancelled && refusedByServer(result.code) &&
        (m_replies.isEmpty() || m_replies.last().code < 400)) {
        QString text = QString::fromUtf8(m_errorBuffer).trimmed();
        if (text.isEmpty())
            text = QStringLiteral("Requested action not taken.");
        m_replies.append(makeReply(result.code == CURLE_REMOTE_DISK_FULL ? 552 : 550, text));
    }
    m_request = nullptr;
    m_alive = m_alive && result.ok();
    if (!m_alive) {
        shutDownSockets();
        m_serverDirectory.clear();
        m_sftpDirectory.clear();
    } else {
        m_serverDirectory = m_sftpDirectory;
    }
}

void FtpConnection::closeSftp()
{
    // The handles go and come anew: their end says goodbye to the server, and no connection of
    // theirs is left for the next request.
    Request quit;
    m_request = &quit;
    m_abort = false;
    runOnWorker(
        [this] {
            if (m_multi)
                curl_multi_cleanup(m_multi);
            if (m_easy)
                curl_easy_cleanup(m_easy);
            m_easy = curl_easy_init();
            m_multi = curl_multi_init();
        },
        2000);
    m_request = nullptr;
}

bool FtpConnection::hostKeyRefused(const Result &result) const
{
    return m_address.protocol == FtpAddress::Protocol::Sftp && !result.ok() && !result.cancelled &&
           result.code == CURLE_PEER_FAILED_VERIFICATION && m_hostKey.seen &&
           m_hostKey.match != HostKey::Match::Known;
}

int FtpConnection::sshKeyCallback(CURL *, const struct curl_khkey *, const struct curl_khkey *found,
                                  enum curl_khmatch match, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    HostKey key;
    if (found && found->key) {
        key.blob = found->len == 0 ? QByteArray::fromBase64(QByteArray(found->key))
                                   : QByteArray(found->key, qsizetype(found->len));
    }
    key.seen = true;
    key.match = match == CURLKHMATCH_OK         ? HostKey::Match::Known
                : match == CURLKHMATCH_MISMATCH ? HostKey::Match::Changed
                                                : HostKey::Match::New;
    connection->m_hostKey = key;
    if (key.match == HostKey::Match::Known)
        return CURLKHSTAT_FINE;
    // A new key the user accepted for this very request; a changed key never.
    if (key.match == HostKey::Match::New && !key.blob.isEmpty() &&
        key.blob == connection->m_approvedKey)
        return CURLKHSTAT_FINE;
    return CURLKHSTAT_REJECT;
}
