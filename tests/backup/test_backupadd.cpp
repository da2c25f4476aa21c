#include "BackupFixture.h"
#include "DialogMultiFile.h"
#include "StepRing.h"
#include "TestMain.h"
#include "frmDialogUpload.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTimer>

#include <csignal>

#include <sys/resource.h>

namespace {

// Acts on the next modal dialog of type T once it is open.
template <typename T> void whenModal(std::function<void(T *)> action)
{
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, action] {
        if (auto *dialog = qobject_cast<T *>(QApplication::activeModalWidget());
            dialog && dialog->isVisible()) {
            timer->stop();
            timer->deleteLater();
            action(dialog);
        }
    });
    timer->start();
}

// In the file search dialog: searches folder, picks the files of these names, sets the
// compression box and presses OK.
void pickFiles(const QString &folder, const QStringList &names, bool compress)
{
    whenModal<DialogMultiFile>([folder, names, compress](DialogMultiFile *dialog) {
        // The search of the start folder that began by itself ends first.
        if (dialog->searching()) {
            QSignalSpy done(dialog, &DialogMultiFile::searchFinished);
            done.wait(60000);
        }
        dialog->setFolder(folder);
        QSignalSpy done(dialog, &DialogMultiFile::searchFinished);
        dialog->findChild<QPushButton *>(QStringLiteral("cmdAction_0"))->click();
        if (dialog->searching())
            done.wait(60000);
        auto *check = dialog->findChild<QCheckBox *>(QStringLiteral("CompressFileCheck"));
        if (check->isChecked() != compress)
            check->click();
        auto *names2 = dialog->findChild<QListWidget *>(QStringLiteral("List1_2"));
        auto *shown = dialog->findChild<QListWidget *>(QStringLiteral("List1_0"));
        for (int row = 0; row < names2->count(); ++row)
            shown->item(row)->setSelected(names.contains(names2->item(row)->text()));
        dialog->findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
    });
}

void chooseFolder(const QString &folder)
{
    whenModal<frmDialogUpload>([folder](frmDialogUpload *dialog) {
        dialog->setFolder(folder);
        dialog->findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
    });
}

} // namespace

// Adding files and compressed directories, on the real page with its real dialogs.
class TestBackupAdd : public QObject
{
    Q_OBJECT
public:
    TestBackupAdd() { m_unprivileged = DropFileAccessOverrides(); }

private:
    bool m_unprivileged = false;
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<BackupFixture> m_fx;
    std::unique_ptr<QTemporaryDir> m_docs;
    const QString Site = QStringLiteral("example.org");

    QString doc(const QString &name) const { return m_docs->filePath(name); }
    QString remote(const QString &name) const
    {
        return m_server->localPath(QStringLiteral("/Backup/") + name);
    }
    BackupRecord recordOf(const QString &name)
    {
        BackupRecord record;
        BackupList fresh(m_fx->backupFolder());
        fresh.ReadBackupRecord(name, record);
        return record;
    }
    QStringList messageTexts() const
    {
        QStringList texts;
        for (const auto &shown : m_fx->ui.messages)
            texts << shown.text;
        return texts;
    }
    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < m_fx->fileList()->count(); ++row)
            names << m_fx->fileList()->item(row)->text();
        return names;
    }
    int logins() const { return m_server->countCommands(QStringLiteral("USER")); }
    const QString WebPageQuestion = QStringLiteral(
        "The Backup Web Page Index you are about to build replaces the previous Backup Web Page "
        "Index. Are you sure you want to build the Backup Web Page Index?");

private slots:
    void initTestCase()
    {
        m_server = std::make_unique<FtpTestServer>();
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
    }

    void init()
    {
        ClearTemporaryHome();
        clearFolder(m_server->homePath());
        m_docs = std::make_unique<QTemporaryDir>();
        m_fx = std::make_unique<BackupFixture>();
        m_fx->window->HighLightSteps()->setChecked(true);
        m_fx->open();
        m_fx->fillAccount(*m_server, Site);
    }
    void cleanup() { m_fx.reset(); }

    void newFilesAreSentAtOnceAndListed()
    {
        makeLocalFile(doc(QStringLiteral("a.txt")), "alpha");
        makeLocalFile(doc(QStringLiteral("b.txt")), "beta");
        makeLocalFile(doc(QStringLiteral("c.txt")), "gamma");
        pickFiles(m_docs->path(), {QStringLiteral("a.txt"), QStringLiteral("c.txt")}, false);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("AddNewFileButton"))->click();
        QCOMPARE(readFile(remote(QStringLiteral("a.txt"))), QByteArray("alpha"));
        QCOMPARE(readFile(remote(QStringLiteral("c.txt"))), QByteArray("gamma"));
        QVERIFY(!QFile::exists(remote(QStringLiteral("b.txt"))));
        QCOMPARE(listed(), (QStringList{QStringLiteral("a.txt"), QStringLiteral("c.txt")}));
        const BackupRecord a = recordOf(QStringLiteral("a.txt"));
        QCOMPARE(a.LocationPath, m_docs->path() + QLatin1Char('/'));
        QCOMPARE(a.DateModified, FileDateTime(doc(QStringLiteral("a.txt"))));
        QCOMPARE(a.NumberOfBackupTimes, qint16(1));
        QCOMPARE(a.CompressFile, false);
        QCOMPARE(a.UploadPath, QStringLiteral("example.org/Backup/a.txt"));
        QCOMPARE(a.LengthOfTheFile, 5.0);
        QCOMPARE(messageTexts(), QStringList{WebPageQuestion});
        QVERIFY(m_fx->window->ring(13)->isShown());
        QCOMPARE(m_fx->ui.statusTexts.mid(0, 2),
                 (QStringList{QStringLiteral("Starting Backups"),
                              QStringLiteral("Backing up the selected file(s)")}));
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(!m_fx->window->ProgressFrame()->isVisible());
    }

    void compressedFilesGoAsCabinets()
    {
        const QByteArray content = randomBytes(100000) + QByteArray(100000, 'x');
        makeLocalFile(doc(QStringLiteral("report.doc")), content);
        pickFiles(m_docs->path(), {QStringLiteral("report.doc")}, true);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("AddNewFileButton"))->click();
        const auto files = unpackWithGcab(remote(QStringLiteral("report_doc.CAB")));
        QCOMPARE(files.value(QStringLiteral("report.doc")), content);
        const BackupRecord record = recordOf(QStringLiteral("report.doc"));
        QVERIFY(record.CompressFile);
        QCOMPARE(record.UploadPath, QStringLiteral("example.org/Backup/report_doc.CAB"));
        QCOMPARE(record.LengthOfTheFile, double(content.size()));
        // The copy went; the cabinet stays where it was made.
        QVERIFY(!QFile::exists(m_fx->backupFolder() + QStringLiteral("/report.doc")));
        QVERIFY(QFile::exists(m_fx->backupFolder() + QStringLiteral("/report_doc.CAB")));
    }

    void aFileAlreadyListedIsToldAndNotSentAgain()
    {
        makeLocalFile(doc(QStringLiteral("a.txt")), "alpha");
        BackupRecord old = listedRecord(doc(QStringLiteral("a.txt")), Site, false, true);
        old.LocationPath = QStringLiteral("/elsewhere/");
        m_fx->frame->list().AppendBackupRecord(old);
        const QByteArray before = readFile(m_fx->frame->list().listPath());
        pickFiles(m_docs->path(), {QStringLiteral("a.txt")}, false);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("AddNewFileButton"))->click();
        QCOMPARE(messageTexts().first(),
                 QStringLiteral("This file (a.txt) already exits in the backup list:\rNew "
                                "location - ") +
                     m_docs->path() +
                     QStringLiteral("/\rOld location - /elsewhere/\rIf the "
                                    "directories are not the same remove the "
                                    "file and add the new file to the "
                                    "backuplist."));
        QVERIFY(!QFile::exists(remote(QStringLiteral("a.txt"))));
        QCOMPARE(readFile(m_fx->frame->list().listPath()), before);
    }

    void cancellingTheDialogEndsWithoutAConnectionAfterTheQuestion()
    {
        const int before = logins();
        whenModal<DialogMultiFile>([](DialogMultiFile *dialog) {
            dialog->findChild<QPushButton *>(QStringLiteral("CancelButton"))->click();
        });
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("AddNewFileButton"))->click();
        QCOMPARE(logins(), before);
        QCOMPARE(messageTexts(), QStringList{WebPageQuestion});
        QVERIFY(!QFile::exists(m_fx->frame->list().listPath()));
    }

    void aRefusedLoginSaysSoAndListsNothing()
    {
        makeLocalFile(doc(QStringLiteral("a.txt")), "alpha");
        m_fx->window->txtPassword()->setText(QStringLiteral("wrong"));
        pickFiles(m_docs->path(), {QStringLiteral("a.txt")}, false);
        m_fx->button(QStringLiteral("AddNewFileButton"))->click();
        QCOMPARE(messageTexts(), QStringList{QStringLiteral("Error connecting to your Website.")});
        QVERIFY(listed().isEmpty());
        QCOMPARE(recordOf(QStringLiteral("a.txt")).Filename, QString());
    }

    void withoutConnectionsFilesAreListedAsDue()
    {
        makeLocalFile(doc(QStringLiteral("a.txt")), "alpha");
        m_fx->window->RunWithoutMenu()->setChecked(true);
        const int before = logins();
        pickFiles(m_docs->path(), {QStringLiteral("a.txt")}, false);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("AddNewFileButton"))->click();
        QCOMPARE(logins(), before);
        QCOMPARE(listed(), QStringList{QStringLiteral("a.txt")});
        // Nothing went out, so the next scan finds it changed.
        const BackupRecord record = recordOf(QStringLiteral("a.txt"));
        QCOMPARE(record.DateModified, QString());
        m_fx->window->RunWithoutMenu()->setChecked(false);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        QCOMPARE(readFile(remote(QStringLiteral("a.txt"))), QByteArray("alpha"));
    }

    void aFileThatCantBeReadIsToldAndLeftOut()
    {
        if (!m_unprivileged)
            QSKIP("file permissions can't be made to apply to this process");
        makeLocalFile(doc(QStringLiteral("a-locked.doc")), "locked");
        makeLocalFile(doc(QStringLiteral("b-open.doc")), "open");
        QFile::setPermissions(doc(QStringLiteral("a-locked.doc")), QFileDevice::Permissions());
        pickFiles(m_docs->path(), {QStringLiteral("a-locked.doc"), QStringLiteral("b-open.doc")},
                  true);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("AddNewFileButton"))->click();
        QCOMPARE(messageTexts().first(),
                 QStringLiteral("Permission denied - ") + doc(QStringLiteral("a-locked.doc")) +
                     QStringLiteral(" (This file may be opened by another program)"));
        QCOMPARE(listed(), QStringList{QStringLiteral("b-open.doc")});
        QVERIFY(unpackWithGcab(remote(QStringLiteral("b-open_doc.CAB")))
                    .contains(QStringLiteral("b-open.doc")));
    }

    void aFolderBecomesACompressedDirectoryWithAPlaceHolder()
    {
        const QString folder = doc(QStringLiteral("My Tax Papers"));
        makeLocalFile(folder + QStringLiteral("/2025/march.pdf"), randomBytes(30000, 1));
        makeLocalFile(folder + QStringLiteral("/2025/receipts/shop.txt"), "receipt");
        makeLocalFile(folder + QStringLiteral("/summary.txt"), "summary");
        chooseFolder(folder);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("CreateCompressedDirButton"))->click();
        const QString name = QStringLiteral("DirFile_My_Tax_Papers.cab");
        const auto files = unpackWithGcab(remote(name));
        QCOMPARE(files.keys(), (QStringList{QStringLiteral("2025/march.pdf"),
                                            QStringLiteral("2025/receipts/shop.txt"),
                                            QStringLiteral("summary.txt")}));
        QCOMPARE(files.value(QStringLiteral("2025/march.pdf")), randomBytes(30000, 1));
        const QString holder = folder + QLatin1Char('/') + name;
        QCOMPARE(readFile(holder), (PlaceHolderText() + QStringLiteral("\r\n")).toLatin1());
        const BackupRecord record = recordOf(name);
        QCOMPARE(record.LocationPath, folder + QLatin1Char('/'));
        QVERIFY(record.CompressFile);
        QCOMPARE(record.NumberOfBackupTimes, qint16(1));
        QCOMPARE(record.DateModified, FileDateTime(holder));
        QCOMPARE(record.LengthOfTheFile, double(QFileInfo(remote(name)).size()));
        QCOMPARE(record.UploadPath, QStringLiteral("example.org/Backup/") + name);
        QCOMPARE(listed(), QStringList{name});
        QCOMPARE(m_fx->ui.statusTexts.at(1), QStringLiteral("Backing up the selected Directory"));

        // The same folder again is refused.
        m_fx->ui.messages.clear();
        chooseFolder(folder);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("CreateCompressedDirButton"))->click();
        QVERIFY(messageTexts().first().startsWith(
            QStringLiteral("This file (DirFile_My_Tax_Papers.cab) already exits")));

        // Updated, the folder is packed again in place of the place holder, and the next scan
        // sends it and puts the place holder back.
        makeLocalFile(folder + QStringLiteral("/new.txt"), "added later");
        m_fx->click(name);
        QVERIFY(m_fx->button(QStringLiteral("RecompressButton"))->isEnabled());
        m_fx->select({name});
        m_fx->button(QStringLiteral("RecompressButton"))->click();
        QVERIFY(unpackWithGcab(holder).contains(QStringLiteral("new.txt")));
        m_fx->ui.messages.clear();
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        QVERIFY(messageTexts().first().startsWith(QStringLiteral("1 of 1")));
        const auto outer = unpackWithGcab(remote(QStringLiteral("DirFile_My_Tax_Papers_cab.CAB")));
        QCOMPARE(outer.keys(), QStringList{name});
        QCOMPARE(readFile(holder), (PlaceHolderText() + QStringLiteral("\r\n")).toLatin1());
        QCOMPARE(recordOf(name).NumberOfBackupTimes, qint16(2));
        QCOMPARE(recordOf(name).UploadPath,
                 QStringLiteral("example.org/Backup/DirFile_My_Tax_Papers_cab.CAB"));
    }

    void aFullDiskWhileTheFolderIsPackedListsNothing()
    {
        const QString folder = doc(QStringLiteral("Big"));
        makeLocalFile(folder + QStringLiteral("/a.bin"), randomBytes(300000, 2));
        makeLocalFile(folder + QStringLiteral("/b.bin"), randomBytes(300000, 3));
        const int before = logins();
        chooseFolder(folder);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit saved = limit;
        std::signal(SIGXFSZ, SIG_IGN);
        limit.rlim_cur = 400 * 1024;
        setrlimit(RLIMIT_FSIZE, &limit);
        m_fx->button(QStringLiteral("CreateCompressedDirButton"))->click();
        setrlimit(RLIMIT_FSIZE, &saved);
        QVERIFY2(messageTexts().first().startsWith(QStringLiteral("The folder ") + folder +
                                                   QStringLiteral(" could not be compressed: ")),
                 qPrintable(messageTexts().first()));
        QVERIFY(messageTexts().first().contains(QStringLiteral("File too large")));
        QCOMPARE(QDir(folder).entryList(QDir::Files),
                 (QStringList{QStringLiteral("a.bin"), QStringLiteral("b.bin")}));
        QCOMPARE(logins(), before);
        QVERIFY(listed().isEmpty());
        QVERIFY(m_fx->frame->list().FileNames().isEmpty());
    }

    void cancellingTheFolderDialogAsksOnlyAboutThePage()
    {
        const int before = logins();
        whenModal<frmDialogUpload>([](frmDialogUpload *dialog) {
            dialog->findChild<QPushButton *>(QStringLiteral("CancelButton"))->click();
        });
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("CreateCompressedDirButton"))->click();
        QCOMPARE(messageTexts(), QStringList{WebPageQuestion});
        QCOMPARE(logins(), before);
    }
};

TARNWICK_TEST_MAIN(TestBackupAdd)
#include "test_backupadd.moc"
