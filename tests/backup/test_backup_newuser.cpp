// Backup Files tried as a new user tries it: the real window with its real prompts and dialogs,
// against the local web space (FTP and HTTP on loopback) that "Try it on this computer" starts.
#include "BackupFixture.h"
#include "DialogMultiFile.h"
#include "LocalWebSpace.h"
#include "TestMain.h"
#include "WebSpaceInstall.h"
#include "frmDialogUpload.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QMessageBox>
#include <QQueue>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTimer>
#include <QUrl>

namespace {

// Answers every message box that comes up, from a script of (start of the text, button); a box
// that the script doesn't expect is answered No (or OK) and recorded as unexpected.
class BoxAnswerer final : public QObject
{
public:
    BoxAnswerer()
    {
        m_timer.setInterval(10);
        connect(&m_timer, &QTimer::timeout, this, &BoxAnswerer::look);
        m_timer.start();
    }
    void expect(const QString &start, QMessageBox::StandardButton button)
    {
        m_script.enqueue({start, button});
    }
    QStringList seen;
    QStringList unexpected;
    bool done() const { return m_script.isEmpty(); }

private:
    void look()
    {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible() || box == m_last)
            return;
        m_last = box;
        seen << box->text();
        QMessageBox::StandardButton button = QMessageBox::No;
        if (!m_script.isEmpty() && box->text().startsWith(m_script.head().first)) {
            button = m_script.dequeue().second;
        } else {
            unexpected << box->text();
            if (!box->button(QMessageBox::No))
                button = QMessageBox::Ok;
        }
        if (QAbstractButton *press = box->button(button))
            press->click();
        else
            box->reject();
    }

    QTimer m_timer;
    QPointer<QMessageBox> m_last;
    QQueue<QPair<QString, QMessageBox::StandardButton>> m_script;
};

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

void pickFiles(const QString &folder, const QStringList &names, bool compress)
{
    whenModal<DialogMultiFile>([folder, names, compress](DialogMultiFile *dialog) {
        if (dialog->searching()) {
            QSignalSpy first(dialog, &DialogMultiFile::searchFinished);
            first.wait(60000);
        }
        // Typed into the folder box and Go, as the user does.
        dialog->findChild<QLineEdit *>(QStringLiteral("DirPath"))->setText(folder);
        dialog->findChild<QPushButton *>(QStringLiteral("DisplayDirButton"))->click();
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

// Fetches a web address with an independent client (curl); "<failed>" when it can't.
QByteArray fetch(const QString &address)
{
    QProcess curl;
    curl.start(QStringLiteral("curl"),
               {QStringLiteral("-sS"), QStringLiteral("-f"),
                QString::fromLatin1(QUrl(address, QUrl::TolerantMode).toEncoded())});
    if (!curl.waitForFinished(60000) || curl.exitCode() != 0)
        return QByteArray("<failed>");
    return curl.readAllStandardOutput();
}

} // namespace

class TestBackupNewUser : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_docs;
    QTemporaryDir m_site;

    QString doc(const QString &name) const { return m_docs.filePath(name); }

private slots:
    void scanBackupPageAndLinksOnARealWebSpace()
    {
        LocalWebSpace local;
        const auto account = local.start(m_site.path(), QStringLiteral("tarnwick"),
                                         QStringLiteral("secret"));
        QVERIFY2(account, qPrintable(local.lastError()));
        const QString onServer = m_site.path() + QStringLiteral("/Backup/");

        JobState state;
        frmMain window(state);
        cFTP ftp(state);
        window.setFtpDirectoryProvider([&ftp] { return ftp.CurrentDirectory(); });
        WebSpace &webSpace = InstallWebSpace(window, ftp);
        InstallBackup(window, webSpace);
        auto *frame = window.findChild<BackupFrame *>();
        Folders::MakeFolderTree();
        SaveSetting(QStringLiteral("BackupInstructionView"), QStringLiteral("Hide"));
        window.resize(1200, 800);
        window.show();
        window.FunctionSelectButton_Click(1);
        window.txtServer()->setText(account->server);
        window.txtUser()->setText(account->user);
        window.txtPassword()->setText(account->password);
        window.txtWebSite()->setText(account->webSite);
        frame->findChild<QLineEdit *>(QStringLiteral("BackupDirName"))
            ->setText(QStringLiteral("Backup"));
        const auto button = [frame](const char *name) {
            return frame->findChild<QPushButton *>(QLatin1String(name));
        };

        // Three files, one to be compressed and one with blanks and letters beyond ASCII in its
        // name, and a folder of nested files.
        const QDateTime then(QDate(2026, 3, 1), QTime(8, 30, 0));
        const QByteArray notes = "Shopping: bread, milk\n";
        const QByteArray report = randomBytes(180000, 21) + QByteArray(180000, 'q');
        const QByteArray overview = QStringLiteral("Überblick für Łukasz\n").toUtf8();
        const QString odd = QStringLiteral("Übersicht Müller – čtvrtletí.txt");
        makeLocalFile(doc(QStringLiteral("Files/notes.txt")), notes, then);
        makeLocalFile(doc(QStringLiteral("Files/Quarterly report.doc")), report, then);
        makeLocalFile(doc(QStringLiteral("Files/") + odd), overview, then);
        const QString folder = doc(QStringLiteral("Family Photos"));
        const QByteArray picture = randomBytes(90000, 22);
        makeLocalFile(folder + QStringLiteral("/2025/summer/beach.jpg"), picture, then);
        makeLocalFile(folder + QStringLiteral("/2025/list.txt"), "who is who", then);
        makeLocalFile(folder + QStringLiteral("/readme.txt"), "family", then);

        BoxAnswerer boxes;
        const QString page = QStringLiteral("The Backup Web Page Index");
        // Add the plain files, then the compressed one.
        pickFiles(doc(QStringLiteral("Files")), {QStringLiteral("notes.txt"), odd}, false);
        boxes.expect(page, QMessageBox::No);
        button("AddNewFileButton")->click();
        pickFiles(doc(QStringLiteral("Files")), {QStringLiteral("Quarterly report.doc")}, true);
        boxes.expect(page, QMessageBox::No);
        button("AddNewFileButton")->click();
        // And the folder, compressed.
        whenModal<frmDialogUpload>([folder](frmDialogUpload *dialog) {
            dialog->findChild<QLineEdit *>(QStringLiteral("PathText"))->setText(folder);
            dialog->findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
        });
        boxes.expect(page, QMessageBox::No);
        button("CreateCompressedDirButton")->click();
        QVERIFY2(boxes.unexpected.isEmpty(), qPrintable(boxes.unexpected.join(QLatin1Char('|'))));

        auto *list = frame->findChild<QListWidget *>(QStringLiteral("BackupFileList"));
        QCOMPARE(list->count(), 4);

        // Scan & Backup: everything is up to date.
        boxes.expect(QStringLiteral("0 of 4 were uploaded"), QMessageBox::Ok);
        boxes.expect(page, QMessageBox::No);
        button("ScanAndBackupButton")->click();
        QVERIFY2(boxes.done() && boxes.unexpected.isEmpty(),
                 qPrintable(boxes.seen.join(QLatin1Char('|'))));

        // The server holds every file and cabinet, and each cabinet gives back the bytes.
        QCOMPARE(readFile(onServer + QStringLiteral("notes.txt")), notes);
        QCOMPARE(readFile(onServer + odd), overview);
        QCOMPARE(unpackWithGcab(onServer + QStringLiteral("Quarterly report_doc.CAB"))
                     .value(QStringLiteral("Quarterly report.doc")),
                 report);
        const auto photos = unpackWithGcab(onServer + QStringLiteral("DirFile_Family_Photos.cab"));
        QCOMPARE(photos.keys(), (QStringList{QStringLiteral("2025/list.txt"),
                                             QStringLiteral("2025/summer/beach.jpg"),
                                             QStringLiteral("readme.txt")}));
        QCOMPARE(photos.value(QStringLiteral("2025/summer/beach.jpg")), picture);

        // One file changes; the next scan sends that one alone.
        BackupList records(Folders::BackupFolder());
        const auto recordText = [&](const QString &name) {
            BackupRecord record;
            records.ReadBackupRecord(name, record);
            return BackupRecordText(record);
        };
        const QString reportBefore = recordText(QStringLiteral("Quarterly report.doc"));
        const QString oddBefore = recordText(odd);
        const QString photosBefore = recordText(QStringLiteral("DirFile_Family_Photos.cab"));
        BackupRecord notesBefore;
        records.ReadBackupRecord(QStringLiteral("notes.txt"), notesBefore);
        const QHash<QString, QDateTime> sentAt = {
            {odd, QFileInfo(onServer + odd).lastModified()},
            {QStringLiteral("Quarterly report_doc.CAB"),
             QFileInfo(onServer + QStringLiteral("Quarterly report_doc.CAB")).lastModified()},
            {QStringLiteral("DirFile_Family_Photos.cab"),
             QFileInfo(onServer + QStringLiteral("DirFile_Family_Photos.cab")).lastModified()}};
        const QByteArray newNotes = "Shopping: bread, milk, eggs\n";
        makeLocalFile(doc(QStringLiteral("Files/notes.txt")), newNotes, then.addDays(1));
        boxes.expect(QStringLiteral("1 of 4 were uploaded"), QMessageBox::Ok);
        boxes.expect(page, QMessageBox::No);
        button("ScanAndBackupButton")->click();
        QVERIFY2(boxes.done() && boxes.unexpected.isEmpty(),
                 qPrintable(boxes.seen.join(QLatin1Char('|'))));
        QCOMPARE(readFile(onServer + QStringLiteral("notes.txt")), newNotes);
        for (auto it = sentAt.cbegin(); it != sentAt.cend(); ++it)
            QCOMPARE(QFileInfo(onServer + it.key()).lastModified(), it.value());
        QCOMPARE(recordText(QStringLiteral("Quarterly report.doc")), reportBefore);
        QCOMPARE(recordText(odd), oddBefore);
        QCOMPARE(recordText(QStringLiteral("DirFile_Family_Photos.cab")), photosBefore);
        BackupRecord notesAfter;
        records.ReadBackupRecord(QStringLiteral("notes.txt"), notesAfter);
        QCOMPARE(notesAfter.NumberOfBackupTimes, qint16(notesBefore.NumberOfBackupTimes + 1));
        QCOMPARE(notesAfter.DateModified, FileDateText(then.addDays(1)));
        // Kept to the second: a scan within the same second as the first gives the same text.
        QVERIFY(notesAfter.DateBackup >= notesBefore.DateBackup);

        // The backup web page is built and sent, and every link on it opens over HTTP.
        button("BuildBackupWebPageButton")->click();
        QVERIFY2(boxes.unexpected.isEmpty(), qPrintable(boxes.unexpected.join(QLatin1Char('|'))));
        const QString webSite = QStringLiteral("http://") + account->webSite;
        const QByteArray html = fetch(webSite + QStringLiteral("/Backup/BackupFiles.htm"));
        QCOMPARE(html, readFile(Folders::BackupFolder() + QStringLiteral("/BackupFiles.htm")));
        static const QRegularExpression link(QStringLiteral("href=\"([^\"]+)\""));
        QStringList links;
        for (auto it = link.globalMatch(QString::fromUtf8(html)); it.hasNext();)
            links << it.next().captured(1);
        QCOMPARE(links.size(), 4);
        QMap<QString, QByteArray> fetched;
        for (const QString &address : std::as_const(links)) {
            QVERIFY2(address.startsWith(webSite + QStringLiteral("/Backup/")), qPrintable(address));
            fetched.insert(QUrl::fromPercentEncoding(address.toUtf8()).section(QLatin1Char('/'), -1),
                           fetch(address));
        }
        QCOMPARE(fetched.value(QStringLiteral("notes.txt")), newNotes);
        QCOMPARE(fetched.value(odd), overview);
        QCOMPARE(fetched.value(QStringLiteral("Quarterly report_doc.CAB")),
                 readFile(onServer + QStringLiteral("Quarterly report_doc.CAB")));
        QCOMPARE(fetched.value(QStringLiteral("DirFile_Family_Photos.cab")),
                 readFile(onServer + QStringLiteral("DirFile_Family_Photos.cab")));
        QVERIFY(QGuiApplication::clipboard()->text().endsWith(
            QStringLiteral("/Backup/BackupFiles.htm")));
    }
};

TARNWICK_TEST_MAIN(TestBackupNewUser)
#include "test_backup_newuser.moc"
