#pragma once

#include "FtpTestServer.h"
#include "TransferSteps.h"
#include "cFTP.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

// The window as the upload steps see it, over a real cFTP: the account of a test server, the
// listing refreshed into cFTP::Directory(), and UploadPath as a web address.
class TestTransferWindow final : public TransferWindow
{
public:
    TestTransferWindow(cFTP &ftp, const FtpTestServer &server)
        : m_ftp(ftp), m_account{server.server(), server.user(), server.password()}
    {
    }

    FtpAccount account() const override { return m_account; }
    void ReloadFTPList() override
    {
        ++reloads;
        m_ftp.GetDirectoryListing(QStringLiteral("*.*"));
    }
    QString UploadPath() const override { return m_uploadPath; }
    void showUploadPath(const QString &directory) override
    {
        m_uploadPath = QStringLiteral("http://www.example.com") + directory;
    }
    void cmdDisconnect() override
    {
        ++disconnects;
        m_ftp.CloseConnection();
    }

private:
    cFTP &m_ftp;

public:
    FtpAccount m_account;
    int reloads = 0;
    int disconnects = 0;

private:
    QString m_uploadPath;
};

inline void WriteTestFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), qint64(content.size()));
}

inline QByteArray ReadTestFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray("<missing>");
    return file.readAll();
}

inline QByteArray TestPattern(qint64 size)
{
    QByteArray data(size, Qt::Uninitialized);
    for (qint64 i = 0; i < size; ++i)
        data[i] = char((i * 13 + i / 1021) & 0xff);
    return data;
}
