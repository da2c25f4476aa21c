#include "UploadSteps.h"

#include "JobUi.h"
#include "cFTP.h"

#include <QFileInfo>

QString DirectoryFailureText()
{
    return QStringLiteral(
        "Failed to create/find a directory, retry. Note:On some servers the root (main directory) "
        "for the FTP site is not at the same level as the web directory. This can cause problems. "
        "Contact your ISP and have them set the FTP root to the same level as the Web directory. "
        "Another option is for you to change the root path of this program under the 'Standard "
        "FTP and settings' function, then select 'Advanced settings'.");
}

UploadSteps SessionUploadSteps(cFTP &ftp, JobUi &ui, std::function<void()> reloadList)
{
    UploadSteps steps;
    steps.UploadFileToFTP = [&ftp](const QString &local) {
        const QString name = QFileInfo(local).fileName();
        // The old copy goes first: a failed upload leaves no stale file behind.
        ftp.DeleteFTPFile(name);
        ftp.FTPUploadFile(local, name);
    };
    steps.DownloadFileToFTP = [&ftp](const QString &remoteName, const QString &local) {
        ftp.FTPDownloadFile(local, remoteName);
    };
    steps.verifyUploadPath = [&ftp](const QString &expected) {
        const QString directory = ftp.GetFTPDirectory().trimmed();
        return !(directory == QLatin1String("/") || directory.isEmpty() ||
                 !directory.contains(expected));
    };
    steps.CheckFTPDir = [&ftp, &ui, reloadList](const QString &name) {
        QString directory = name;
        directory.replace(QLatin1Char(' '), QLatin1Char('_'));
        if (const cDirItem *item = ftp.Directory().Item(directory))
            return item->isDirectory();
        if (ftp.CreateFTPDirectory(directory)) {
            if (reloadList)
                reloadList();
            return true;
        }
        ui.Message(DirectoryFailureText(), QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                   JobUi::Icon::Warning);
        return false;
    };
    return steps;
}

bool EnsureFTPDirectory(cFTP &ftp, JobUi &ui, const UploadSteps &steps, const QString &name,
                        const std::function<void()> &reloadList,
                        const std::function<void()> &showUploadPath)
{
    if (!steps.CheckFTPDir(name))
        return false;
    QString directory = name;
    directory.replace(QLatin1Char(' '), QLatin1Char('_'));
    const cDirItem *item = ftp.Directory().Item(directory);
    if (!item || !item->isDirectory()) {
        ui.SetStatusText(QStringLiteral("Creating a directory"));
        if (!ftp.CreateFTPDirectory(directory))
            return false;
        reloadList();
        item = ftp.Directory().Item(directory);
        if (!item || !item->isDirectory())
            return false;
    }
    if (!ftp.SetFTPDirectory(item->Name))
        return false;
    reloadList();
    showUploadPath();
    return true;
}
