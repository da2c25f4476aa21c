#pragma once

#include "DialogTransferUi.h"
#include "FtpControlTab.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "SendFileFrame.h"
#include "Settings.h"
#include "WebSpaceInstall.h"
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
    JobState state;
    std::unique_ptr<frmMain> window;
    std::unique_ptr<cFTP> ftp;
    ScriptedUi ui;
    std::unique_ptr<DialogTransferUi> progress;

    WebSpaceFixture()
    {
        window = std::make_unique<frmMain>(state);
        ftp = std::make_unique<cFTP>(state);
        progress = std::make_unique<DialogTransferUi>(state, window.get());
        // A failed file's error form goes by itself at once, not after five seconds.
        progress->setErrorAutoCloseMs(10);
        window->setFtpDirectoryProvider([this] { return ftp->CurrentDirectory(); });
    }

    // The web space joined to the window as the program joins it (FTP tab, Send a File, the
    // Configuration page), over the fixture's scripted user and progress; the window owns it.
    FtpControlTab *install()
    {
        InstallWebSpace(*window, *ftp, &ui, progress.get());
        return window->findChild<FtpControlTab *>();
    }

    // The window on screen with the frame of function index open, as a click on its button
    // leaves it, less its instruction page; the rings are all hidden again.
    void showFunction(int index)
    {
        SaveSetting(QStringLiteral("SendFileInstructionView"), QStringLiteral("Hide"));
        SaveSetting(QStringLiteral("FTPControlInstructionView"), QStringLiteral("Hide"));
        window->resize(1200, 800);
        window->show();
        window->FunctionSelectButton_Click(index);
        window->shapeEvent(333);
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
