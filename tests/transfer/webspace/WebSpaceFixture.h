#pragma once

#include "DialogTransferUi.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "cFTP.h"
#include "dlgFTP.h"
#include "frmMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>

#include <memory>

// The main window's fields, the FTP session and a scripted user, over a real FTP server.
struct WebSpaceFixture
{
    std::unique_ptr<frmMain> window;
    std::unique_ptr<cFTP> ftp;
    ScriptedUi ui;
    std::unique_ptr<DialogTransferUi> progress;

    WebSpaceFixture()
    {
        JobState::instance().reset();
        window = std::make_unique<frmMain>();
        ftp = std::make_unique<cFTP>();
        progress = std::make_unique<DialogTransferUi>(JobState::instance(), window.get());
        // A failed file's error form goes by itself at once, not after five seconds.
        progress->setErrorAutoCloseMs(0);
        window->setFtpDirectoryProvider([this] { return ftp->CurrentDirectory(); });
    }

    void fillAccount(const FtpTestServer &server,
                     const QString &site = QStringLiteral("example.org"))
    {
        window->txtServer()->setText(server.server());
        window->txtUser()->setText(server.user());
        window->txtPassword()->setText(server.password());
        window->txtWebSite()->setText(site);
    }
};

inline void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray("<missing>");
    return file.readAll();
}

// Empties the served folder between cases.
inline void clearFolder(const QString &path)
{
    QDir dir(path);
    const auto entries = dir.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo &info : entries) {
        if (info.isDir())
            QDir(info.filePath()).removeRecursively();
        else
            QFile::remove(info.filePath());
    }
}
