#include "ShellExecute.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

QString ShellErrorText(int code)
{
    switch (code) {
    case 0:
    case 8:
        return QStringLiteral("Out of memory");
    case 2:
        return QStringLiteral("File not found");
    case 3:
        return QStringLiteral("Path not found");
    case 5:
        return QStringLiteral("Path/file access error");
    case 11:
        return QStringLiteral("The executable file is invalid or corrupt");
    case 26:
        return QStringLiteral("A sharing violation occurred.");
    case 27:
        return QStringLiteral("This file type does not have a valid file association.");
    case 28:
        return QStringLiteral(
            "The file could not be opened due to time out.  Please try again in a moment.");
    case 29:
        return QStringLiteral("The file could not be opened because the DDE transaction failed.  "
                              "Please try again in a moment.");
    case 30:
        return QStringLiteral("The file could not be opened because the target application is "
                              "busy.  Please try again in a moment.");
    case 31:
        return QStringLiteral("No application is associated with this file type.");
    case 32:
        return QStringLiteral("The specified dynamic-link library was not found.");
    default:
        return QStringLiteral(
            "An error occurred occurred whilst trying to open or print the selected file.");
    }
}

namespace {

QUrl toUrl(const QString &target, int &code)
{
    if (target.startsWith(QLatin1Char('/'))) {
        if (!QFileInfo::exists(target)) {
            code = QFileInfo::exists(QFileInfo(target).path()) ? 2 : 3;
            return {};
        }
        return QUrl::fromLocalFile(target);
    }
    // mailto: texts may hold control characters; tolerant mode escapes them.
    QUrl url(target, QUrl::TolerantMode);
    if (url.scheme().isEmpty())
        url = QUrl(QStringLiteral("http://") + target, QUrl::TolerantMode);
    return url;
}

} // namespace

ShellResult mShellExecute(QWidget *owner, const QUrl &url)
{
    if (url.isLocalFile())
        return mShellExecute(owner, url.toLocalFile());
    ShellResult result;
    if (!url.isValid() || !QDesktopServices::openUrl(url))
        result.code = 31;
    if (!result.ok())
        QMessageBox::warning(owner, QStringLiteral("Tarnwick"), ShellErrorText(result.code));
    return result;
}

ShellResult mShellExecute(QWidget *owner, const QString &target)
{
    int code = 33;
    const QUrl url = toUrl(target.trimmed(), code);
    if (code <= 32) {
        ShellResult result;
        result.code = code;
        QMessageBox::warning(owner, QStringLiteral("Tarnwick"), ShellErrorText(result.code));
        return result;
    }
    if (url.isLocalFile()) {
        ShellResult result;
        if (!QDesktopServices::openUrl(url)) {
            result.code = 31;
            QMessageBox::warning(owner, QStringLiteral("Tarnwick"), ShellErrorText(result.code));
        }
        return result;
    }
    return mShellExecute(owner, url);
}
