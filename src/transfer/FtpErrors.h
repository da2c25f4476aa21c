#pragma once

#include "FtpReplyReader.h"

#include <QList>
#include <QString>

#include <curl/curl.h>

class FtpConnection;

// The transfer error numbers that the user reads (12001 "No more handles ..." to 12036), and
// how the library's failures map onto them.
//
// Numbers that no failure of libcurl or of an FTP server means, and that are therefore never
// produced here: 12010 and 12011 (option lengths, query-only options), 12012 (the library
// unloading), 12016 (an invalid operation), 12018 (a handle of the wrong type), 12021 and
// 12022 (registry values), 12024 and 12025 (asynchronous requests), 12027 (request format),
// 12028 (a missing remote item: the server's own 550 reply, as 12003, says more) and 12036
// (a handle that already exists).
namespace FtpErrors {

constexpr int ExtendedError = 12003; // the server refused: its last reply is the text
constexpr int OperationCancelled = 12017;
constexpr int ConnectionReset = 12031;
// Beyond the table: a server certificate that is not trusted, and an encrypted connection
// that could not be made (no TLS where ftps:// asks for it, a failed handshake). Their message
// is the connection's own account of the problem (FtpConnection::securityProblem).
constexpr int CertificateNotTrusted = 12045;
constexpr int SecureChannelFailed = 12157;
bool IsSecurityNumber(int number);

// The table's text of a number; "Error details not available." for one it does not hold.
// 12003 has no fixed text: "Extended error returned from server." stands for it here.
QString Description(int number);

// The number for a failed request on a connection: a refusal by the server (a 4xx/5xx reply,
// a refused login) is 12003, 12013 or 12014, and a login the server turns away for now (a 421
// greeting or answer to USER) 12015; the network's failures have their own numbers.
int NumberFor(CURLcode code, const FtpConnection &connection);
// The same from what the request saw: the replies, oldest first, and whether it had to open the
// session (and so log in) first.
int NumberFor(CURLcode code, const QList<FtpReply> &replies, bool openedSession);

// The server's words as a message shows them: the reply's text, said to be no FTP answer when
// its code is out of the protocol's range (not 100 to 599).
QString ServerText(const FtpReply &reply);
// What a message shows of a failed request on connection: its security problem when it has
// one, else ServerText of the last reply.
QString Detail(const FtpConnection &connection);

// The text left in GetLastErrorMessage: Description(number), " Message: ", the number,
// " error code: ", the operation; for 12003 the server's last reply alone (or the description
// when the server said nothing); for the security numbers the detail in place of the
// description.
QString Compose(int number, const QString &operation, const QString &serverReply);

} // namespace FtpErrors
