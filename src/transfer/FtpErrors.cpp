#include "FtpErrors.h"

#include "FtpConnection.h"

#include <QHash>

#include <algorithm>

namespace FtpErrors {

QString Description(int number)
{
    static const QHash<int, QString> texts = {
        {12001, QStringLiteral("No more handles could be generated at this time")},
        {12002, QStringLiteral("The request has timed out.")},
        {12003, QStringLiteral("Extended error returned from server.")},
        {12004, QStringLiteral("An internal error has occurred.")},
        {12005, QStringLiteral("URL is invalid.")},
        {12006, QStringLiteral("URL scheme could not be recognized, or is not supported.")},
        {12007, QStringLiteral("Server name could not be resolved.")},
        {12008, QStringLiteral("Requested protocol could not be located.")},
        {12009, QStringLiteral("Request to InternetQueryOption or InternetSetOption specified an "
                               "invalid option value.")},
        {12010, QStringLiteral("Length of an option supplied to InternetQueryOption or "
                               "InternetSetOption is incorrect for the type of option specified.")},
        {12011, QStringLiteral("Request option can not be set, only queried. ")},
        {12012, QStringLiteral("Win32 Internet support is being shutdown or unloaded.")},
        {12013, QStringLiteral("Request to connect and login to an FTP server could not be "
                               "completed because the supplied user name is incorrect.")},
        {12014, QStringLiteral("Request to connect and login to an FTP server could not be "
                               "completed because the supplied password is incorrect. ")},
        {12015, QStringLiteral("Request to connect to and login to an FTP server failed.")},
        {12016, QStringLiteral("Requested operation is invalid. ")},
        {12017, QStringLiteral("Operation was canceled, usually because the handle on which the "
                               "request was operating was closed before the operation completed.")},
        {12018, QStringLiteral("Type of handle supplied is incorrect for this operation.")},
        {12019, QStringLiteral("Requested operation can not be carried out because the handle "
                               "supplied is not in the correct state.")},
        {12020, QStringLiteral("Request can not be made via a proxy.")},
        {12021, QStringLiteral("Required registry value could not be located. ")},
        {12022, QStringLiteral("Required registry value was located but is an incorrect type or "
                               "has an invalid value.")},
        {12023, QStringLiteral("Direct network access cannot be made at this time. ")},
        {12024, QStringLiteral("Asynchronous request could not be made because a zero context "
                               "value was supplied.")},
        {12025, QStringLiteral("Asynchronous request could not be made because a callback "
                               "function has not been set.")},
        {12026, QStringLiteral("Required operation could not be completed because one or more "
                               "requests are pending.")},
        {12027, QStringLiteral("Format of the request is invalid.")},
        {12028, QStringLiteral("Requested item could not be located.")},
        {12029, QStringLiteral("Attempt to connect to the server failed.")},
        {12030, QStringLiteral("Connection with the server has been terminated.")},
        {12031, QStringLiteral("Connection with the server has been reset.")},
        {12036, QStringLiteral("Request failed because the handle already exists.")},
        {CertificateNotTrusted, QStringLiteral("The server's certificate is not trusted.")},
        {SecureChannelFailed, QStringLiteral("No encrypted connection could be made.")},
    };
    return texts.value(number, QStringLiteral("Error details not available."));
}

namespace {

// The request opened a session and the server turned it away before it was logged in: a
// greeting that refuses (421 ...), or a refusal in place of the answer to USER or PASS.
bool turnedAwayAtLogin(const QList<FtpReply> &replies, bool openedSession)
{
    if (!openedSession || replies.isEmpty() || replies.last().code < 400)
        return false;
    if (replies.size() == 1)
        return true;
    return replies.first().code == 220 &&
           std::none_of(replies.begin(), replies.end(),
                        [](const FtpReply &reply) { return reply.code == 230; });
}

// The server's last words refuse the request, or are no answer of FTP at all (a code out of its
// range, which the library does not take for a reply and so waits on): its text is the message.
bool saidNo(const FtpReply &last)
{
    return !last.lines.isEmpty() && (last.code >= 400 || !last.codeInRange());
}

} // namespace

int NumberFor(CURLcode code, const FtpConnection &connection)
{
    return NumberFor(code, connection.replies(), connection.openedSession());
}

int NumberFor(CURLcode code, const QList<FtpReply> &replies, bool openedSession)
{
    const FtpReply last = replies.isEmpty() ? FtpReply() : replies.last();
    const bool passwordAsked = std::any_of(replies.begin(), replies.end(),
                                           [](const FtpReply &reply) { return reply.code == 331; });
    switch (code) {
    case CURLE_OK:
        return 0;
    case CURLE_LOGIN_DENIED:
        // "Not now" (421 too many users ...) says nothing about the name or the password.
        if (last.code == 421)
            return 12015;
        return passwordAsked ? 12014 : 12013;
    case CURLE_ABORTED_BY_CALLBACK:
        return OperationCancelled;
    case CURLE_COULDNT_RESOLVE_HOST:
        return 12007;
    case CURLE_COULDNT_CONNECT:
    case CURLE_FTP_ACCEPT_FAILED:
    case CURLE_FTP_CANT_GET_HOST:
    case CURLE_FTP_WEIRD_PASV_REPLY:
    case CURLE_FTP_WEIRD_227_FORMAT:
    case CURLE_FTP_PORT_FAILED:
        return 12029;
    case CURLE_OPERATION_TIMEDOUT:
        // The library reports a server's 421 ("closing control connection") as a time-out.
        if (last.code == 421)
            return turnedAwayAtLogin(replies, openedSession) ? 12015 : ExtendedError;
        return !last.codeInRange() && saidNo(last) ? ExtendedError : 12002;
    case CURLE_FTP_ACCEPT_TIMEOUT:
        return 12002;
    case CURLE_URL_MALFORMAT:
        return 12005;
    case CURLE_UNSUPPORTED_PROTOCOL:
        return 12006;
    case CURLE_NOT_BUILT_IN:
        return 12008;
    case CURLE_BAD_FUNCTION_ARGUMENT:
    case CURLE_UNKNOWN_OPTION:
    case CURLE_SETOPT_OPTION_SYNTAX:
        return 12009;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_PROXY:
        return 12020;
    case CURLE_INTERFACE_FAILED:
        return 12023;
    case CURLE_AGAIN:
        return 12026;
    case CURLE_FAILED_INIT:
        return 12004;
    case CURLE_OUT_OF_MEMORY:
        return 12001;
    case CURLE_RECURSIVE_API_CALL:
        return 12019;
    case CURLE_SEND_ERROR:
        return ConnectionReset;
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    // The SSH session failed under an SFTP request (its refusals have codes of their own).
    case CURLE_SSH:
        return 12030;
    case CURLE_WEIRD_SERVER_REPLY:
        if (turnedAwayAtLogin(replies, openedSession))
            return 12015;
        // A server that closes the control connection mid-request leaves a reply missing.
        return saidNo(last) ? ExtendedError : 12030;
    case CURLE_PEER_FAILED_VERIFICATION:
        return CertificateNotTrusted;
    case CURLE_USE_SSL_FAILED:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_SHUTDOWN_FAILED:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CLIENTCERT:
        return SecureChannelFailed;
    case CURLE_READ_ERROR:
    case CURLE_WRITE_ERROR:
        return 12004;
    case CURLE_QUOTE_ERROR:
    case CURLE_REMOTE_ACCESS_DENIED:
    case CURLE_REMOTE_FILE_NOT_FOUND:
    case CURLE_UPLOAD_FAILED:
    case CURLE_FTP_COULDNT_RETR_FILE:
    case CURLE_FTP_COULDNT_SET_TYPE:
    case CURLE_REMOTE_DISK_FULL:
    case CURLE_REMOTE_FILE_EXISTS:
        return ExtendedError;
    default:
        return saidNo(last) ? ExtendedError : 12004;
    }
}

QString ServerText(const FtpReply &reply)
{
    if (reply.lines.isEmpty() || reply.codeInRange())
        return reply.text();
    return QStringLiteral("The server answered with a code that FTP does not have: ") +
           reply.text();
}

bool IsSecurityNumber(int number)
{
    return number == CertificateNotTrusted || number == SecureChannelFailed;
}

QString Detail(const FtpConnection &connection)
{
    const QString problem = connection.securityProblem();
    return problem.isEmpty() ? ServerText(connection.lastReply()) : problem;
}

QString Compose(int number, const QString &operation, const QString &serverReply)
{
    if (number == ExtendedError)
        return serverReply.isEmpty() ? Description(number) : serverReply;
    if (IsSecurityNumber(number) && !serverReply.isEmpty())
        return serverReply + QStringLiteral(" Message: ") + QString::number(number) +
               QStringLiteral(" error code: ") + operation;
    return Description(number) + QStringLiteral(" Message: ") + QString::number(number) +
           QStringLiteral(" error code: ") + operation;
}

} // namespace FtpErrors
