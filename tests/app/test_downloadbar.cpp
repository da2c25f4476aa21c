#include "FtpTestServer.h"
#include "JobState.h"
#include "TestMain.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProgressBar>
#include <QTemporaryDir>

// ProgressBar1 of the main window following the block transfers of the window's FTP session.
class TestDownloadBar : public QObject
{
    Q_OBJECT

    struct Seen
    {
        bool shown;
        int value;
        int maximum;
    };

private slots:
    void blockDownloadShowsMovesAndHidesTheBar()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        const qint64 size = 100 * 1024 + 77;
        {
            QFile remote(server.localPath(QStringLiteral("/big.bin")));
            QVERIFY(remote.open(QIODevice::WriteOnly));
            QVERIFY(remote.write(QByteArray(size, 'b')) == size);
        }
        QTemporaryDir local;

        JobState state;
        frmMain window(state);
        cFTP ftp(state);
        window.followBlockTransfers(ftp);
        window.showProgressFrame(true);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QProgressBar *bar = window.ProgressBar1();
        QVERIFY(bar->isHidden()); // hidden but for a download, even with the frame up

        // The bar as each step of the download leaves it.
        QList<Seen> steps;
        connect(&ftp, &cFTP::DownloadBarValue, this, [&] {
            steps.append({!bar->isHidden(), bar->value(), bar->maximum()});
        });
        QVERIFY(ftp.OpenConnection(server.server(), server.user(), server.password()));
        ftp.SetTransferBinary();
        QVERIFY2(ftp.FTPDownloadFile(local.filePath(QStringLiteral("big.bin")),
                                     QStringLiteral("big.bin")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(QFileInfo(local.filePath(QStringLiteral("big.bin"))).size(), size);

        QCOMPARE(steps.size(), int(size / 255));
        QVERIFY(steps.first().shown);
        QCOMPARE(steps.first().maximum, int(size));
        QCOMPARE(steps.first().value, 255);
        for (int i = 1; i < steps.size(); ++i) {
            QVERIFY(steps.at(i).shown);
            QCOMPARE(steps.at(i).value, steps.at(i - 1).value + 255);
        }
        QCOMPARE(steps.last().value, int(size / 255 * 255));
        QVERIFY(bar->isHidden());
        QCOMPARE(bar->maximum(), int(size));

        // A failed download hides it again too; a download that can't start never shows it.
        bool shownAgain = false;
        connect(&ftp, &cFTP::DownloadBarShown, this, [&] { shownAgain = !bar->isHidden(); });
        QVERIFY(!ftp.FTPDownloadFile(QDir(local.path()).filePath(QStringLiteral("no/such/x")),
                                     QStringLiteral("big.bin")));
        QVERIFY(shownAgain);
        QVERIFY(bar->isHidden());
        shownAgain = false;
        QVERIFY(!ftp.FTPDownloadFile(local.filePath(QStringLiteral("n.bin")),
                                     QStringLiteral("none.bin")));
        QVERIFY(!shownAgain);
        QVERIFY(bar->isHidden());

        // An upload's progress moves the bar's range without showing it.
        const QString up = local.filePath(QStringLiteral("up.bin"));
        {
            QFile file(up);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.write(QByteArray(3000, 'u')) == 3000);
        }
        bool hiddenThroughout = true;
        connect(&ftp, &cFTP::FileTransferProgress, this,
                [&] { hiddenThroughout = hiddenThroughout && bar->isHidden(); });
        QVERIFY(ftp.FTPUploadFile(up, QStringLiteral("up.bin")));
        QVERIFY(hiddenThroughout);
        QCOMPARE(bar->maximum(), 3000);
        QCOMPARE(bar->value(), 3000 / 255 * 255);
    }
};

TARNWICK_TEST_MAIN(TestDownloadBar)
#include "test_downloadbar.moc"
