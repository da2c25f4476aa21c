#pragma once

#include "DialogTransferUi.h"
#include "FtpControlTab.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "SendFileFrame.h"
#include "Settings.h"
#include "StartupPage.h"
#include "TestMain.h"
#include "WebSpaceInstall.h"
#include "cFTP.h"
#include "dlgFTP.h"
#include "frmMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>

#include <memory>

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

// The parts of the web space in a window it has joined.
struct WebSpaceParts
{
    explicit WebSpaceParts(const frmMain &window)
        : tab(window.findChild<FtpControlTab *>()), sendFile(window.findChild<SendFileFrame *>()),
          page(window.findChild<StartupPage *>())
    {
    }
    FtpControlTab *tab;
    SendFileFrame *sendFile;
    StartupPage *page;
};

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

    // What each case starts from: an empty home, the server's folder emptied (unless told to
    // keep what the case put there), and a new window with the web space joined to it as the
    // program joins it.
    static std::unique_ptr<WebSpaceFixture> fresh(const FtpTestServer &server,
                                                  bool emptyServer = true)
    {
        ClearTemporaryHome();
        if (emptyServer)
            clearFolder(server.homePath());
        auto fixture = std::make_unique<WebSpaceFixture>();
        fixture->install();
        return fixture;
    }

    FtpControlTab *tab() const { return window->findChild<FtpControlTab *>(); }
    SendFileFrame *sendFile() const { return window->findChild<SendFileFrame *>(); }
    StartupPage *page() const { return window->findChild<StartupPage *>(); }

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

// The body of a page or file fetched over HTTP (curl), or "<fetch failed>".
inline QByteArray FetchOverHttp(const QString &url)
{
    QProcess curl;
    curl.start(QStringLiteral("curl"),
               {QStringLiteral("-sf"), QStringLiteral("--max-time"), QStringLiteral("10"), url});
    curl.waitForFinished(15000);
    return curl.exitCode() == 0 ? curl.readAllStandardOutput() : QByteArray("<fetch failed>");
}

// Answers every message box on screen (No to a question, OK otherwise) and closes Take an
// Action; returns what the boxes said.
inline QStringList AnswerOpenBoxes()
{
    QStringList said;
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (!widget->isVisible())
            continue;
        if (auto *box = qobject_cast<QMessageBox *>(widget)) {
            said.append(box->text());
            QAbstractButton *button = box->button(QMessageBox::No);
            if (!button)
                button = box->button(QMessageBox::Ok);
            if (button)
                button->click();
        } else if (widget->objectName() == QLatin1String("frmAction")) {
            if (auto *close = widget->findChild<QPushButton *>(QStringLiteral("CloseButton")))
                close->click();
        }
    }
    return said;
}
