#include "FtpConnection.h"
#include "FtpErrors.h"
#include "FtpControlTab.h"
#include "SendFileFrame.h"
#include "ServerFaults.h"
#include "WaitNotice.h"
#include "frmErrUpload.h"
#include "Settings.h"
#include "StepRing.h"
#include "TestMain.h"
#include "WebSpaceFixture.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QTimer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>

Q_DECLARE_METATYPE(ServerFault)

// The texts of the error forms that came up while a test ran, one for each form.
struct ErrorForms
{
    QStringList texts;
    QPointer<frmErrUpload> last;
    QTimer poll;
    ErrorForms()
    {
        QObject::connect(&poll, &QTimer::timeout, [this] {
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                auto *form = qobject_cast<frmErrUpload *>(widget);
                if (form && form->isVisible() && form != last) {
                    last = form;
                    texts << form->findChild<QLabel *>(QStringLiteral("Label1"))->text();
                }
            }
        });
        poll.start(2);
    }
};

// Send a File from the frame, against a real server.
class TestSendAFile : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<WebSpaceFixture> m_fx;
    FtpControlTab *m_tab = nullptr;
    SendFileFrame *m_frame = nullptr;
    QTemporaryDir m_local;

    QString home(const QString &remote) const { return m_server->localPath(remote); }
    QString localFile(const QString &name, const QByteArray &content)
    {
        const QString path = m_local.filePath(name);
        writeFile(path, content);
        return path;
    }
    void send(const QString &file, const QString &name)
    {
        m_frame->FileToSend()->setText(file);
        m_frame->sName()->setText(name);
        m_frame->findChild<QPushButton *>(QStringLiteral("SendThisFileButton"))->click();
    }
    // Logins since the start of the case.
    int logins() const { return m_server->countCommands(QStringLiteral("USER")) - m_loginsBefore; }
    int m_loginsBefore = 0;
    int m_mkdBefore = 0;

    QString pointer() const { return m_fx->ui.clipboard ? m_fx->ui.clipboard->text() : QString(); }

private slots:
    void initTestCase()
    {
        m_server = std::make_unique<FtpTestServer>();
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
    }

    void init()
    {
        m_fx = WebSpaceFixture::fresh(*m_server);
        m_fx->window->HighLightSteps()->setChecked(true);
        m_tab = m_fx->tab();
        m_frame = m_fx->sendFile();
        m_fx->showFunction(2);
        m_fx->fillAccount(*m_server);
        m_loginsBefore = m_server->countCommands(QStringLiteral("USER"));
        m_mkdBefore = m_server->countCommands(QStringLiteral("MKD"));
    }

    void cleanup() { m_fx.reset(); }

    void emptyNameAndEmptyAnswerGiveTransfer()
    {
        const QString file = localFile(QStringLiteral("notes.txt"), "hello");
        m_fx->ui.answerPrompt(QString());
        send(file, QString());
        QCOMPARE(m_fx->ui.prompts.size(), 1);
        QCOMPARE(m_fx->ui.prompts.first().text,
                 QStringLiteral("Please enter a name for this directory. If you are sending this "
                                "to someone you might want to use their initials."));
        QCOMPARE(m_fx->ui.prompts.first().mode, QStringLiteral("Hide"));
        static const QRegularExpression defaultName(
            QStringLiteral("^FileDirectory  \\d{4} \\d{2} \\d{2} \\d{2} \\d{1,2}$"));
        QVERIFY2(defaultName.match(m_fx->ui.prompts.first().defaultText).hasMatch(),
                 qPrintable(m_fx->ui.prompts.first().defaultText));
        QCOMPARE(readFile(home("/Transfer/notes.txt")), QByteArray("hello"));
        QCOMPARE(pointer(), QStringLiteral("http://example.org/Transfer/notes.txt"));
        QCOMPARE(m_frame->sName()->text(), QStringLiteral("Transfer"));
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(m_fx->ui.messages.isEmpty());
        QCOMPARE(m_fx->state.UserResponse, QString());
    }

    void defaultAnswerNamesTheDirectoryByTheTime()
    {
        const QString file = localFile(QStringLiteral("a.txt"), "a");
        m_fx->ui.answerPrompt(QStringLiteral("FileDirectory  2026 01 05 09 7"));
        send(file, QString());
        QCOMPARE(readFile(home("/FileDirectory__2026_01_05_09_7/a.txt")), QByteArray("a"));
    }

    void blanksBecomeUnderscoresAndPercentTwenty()
    {
        const QString file = localFile(QStringLiteral("my report.pdf"), "pdf");
        send(file, QStringLiteral("for Ann"));
        QVERIFY(m_fx->ui.prompts.isEmpty());
        QCOMPARE(readFile(home("/for_Ann/my report.pdf")), QByteArray("pdf"));
        QCOMPARE(pointer(), QStringLiteral("http://example.org/for_Ann/my%20report.pdf"));
        QCOMPARE(m_frame->sName()->text(), QStringLiteral("for_Ann"));
    }

    void onlyBadCharactersSendNothing()
    {
        const QString file = localFile(QStringLiteral("a.txt"), "a");
        m_fx->ui.answerPrompt(QStringLiteral("../#@~"));
        send(file, QString());
        QCOMPARE(logins(), 0);
        QVERIFY(QDir(m_server->homePath()).isEmpty());
        QVERIFY(pointer().isEmpty());
        QVERIFY(m_fx->ui.messages.isEmpty());
        QVERIFY(m_fx->window->ring(10)->isShown());
    }

    void typedNameIsCleanedAsTyped()
    {
        QLineEdit *field = m_frame->sName();
        field->clear();
        QTest::keyClicks(field, QStringLiteral("A.n/n"));
        QCOMPARE(field->text(), QStringLiteral("Ann"));
        QCOMPARE(field->cursorPosition(), 3);
        field->setText(QStringLiteral("abcd"));
        field->setCursorPosition(1);
        QTest::keyClicks(field, QStringLiteral("x"));
        QCOMPARE(field->text(), QStringLiteral("axbcd"));
        QCOMPARE(field->cursorPosition(), 2);
    }

    void sendingTwiceReplacesTheFile()
    {
        const QString file = localFile(QStringLiteral("list.txt"), "first");
        send(file, QStringLiteral("AB"));
        writeFile(file, "second, longer");
        send(file, QStringLiteral("AB"));
        QCOMPARE(readFile(home("/AB/list.txt")), QByteArray("second, longer"));
        QVERIFY(m_server->commands().contains(QStringLiteral("DELE list.txt")));
        QCOMPARE(m_server->countCommands(QStringLiteral("MKD")) - m_mkdBefore, 1);
        QCOMPARE(QDir(home("/AB")).entryList(QDir::Files), QStringList{QStringLiteral("list.txt")});
    }

    void cancelAtThePromptStillSendsThenStops()
    {
        // A cancel is only looked at after the transfer: the directory "!!Skip!!" is made and
        // the file sent, but no pointer is made.
        const QString file = localFile(QStringLiteral("a.txt"), "a");
        m_fx->ui.answerPrompt(JobState::Skip);
        send(file, QString());
        QCOMPARE(readFile(home("/!!Skip!!/a.txt")), QByteArray("a"));
        QVERIFY(pointer().isEmpty());
        QVERIFY(!m_fx->ftp->IsConnected());
    }

    void vanishedFileIsTold()
    {
        const QString file = localFile(QStringLiteral("gone.txt"), "x");
        QFile::remove(file);
        send(file, QStringLiteral("AB"));
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QVERIFY(m_fx->ui.messages.first().text.contains(file));
        QCOMPARE(logins(), 0);
        QVERIFY(pointer().isEmpty());
        // The frame stays usable: the same send works once the file is back.
        writeFile(file, "back");
        send(file, QStringLiteral("AB"));
        QCOMPARE(readFile(home("/AB/gone.txt")), QByteArray("back"));
    }

    void failedLoginIsSilent_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("password");
        QTest::newRow("wrong password") << QString() << "nope";
        QTest::newRow("unknown server") << "no-such-host.invalid" << QString();
    }
    void failedLoginIsSilent()
    {
        QFETCH(QString, server);
        QFETCH(QString, password);
        if (!server.isEmpty())
            m_fx->window->txtServer()->setText(server);
        if (!password.isEmpty())
            m_fx->window->txtPassword()->setText(password);
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("AB"));
        QVERIFY(m_fx->ui.messages.isEmpty());
        QVERIFY(pointer().isEmpty());
        QVERIFY(!QFileInfo::exists(home("/AB")));
        QVERIFY(m_fx->window->ring(10)->isShown());
    }

    void faultsOfTheServer_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults())
            QTest::newRow(name) << fault;
    }

    void faultsOfTheServer()
    {
        QFETCH(ServerFault, fault);
        SetServerLimits(QStringLiteral("1"));
        FtpTestServer::Options options;
        options.faults = {fault.fault};
        FtpTestServer bad(options);
        QVERIFY2(bad.start(), qPrintable(bad.errorString()));
        if (fault.fault == QLatin1String("unresolvable"))
            fault.number = UnresolvableNumber(1000);
        m_fx->fillAccount(bad);
        QStringList connects;
        QObject::connect(&m_tab->waitNotice(), &WaitNotice::shown, [&connects](const QString &t) {
            if (t.startsWith(QStringLiteral("Connecting to ")))
                connects << t;
        });
        ErrorForms forms;
        LoopTurns loop;
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("AB"));
        loop.stop();
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        QVERIFY(m_fx->ui.messages.isEmpty());
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(!m_fx->ftp->Transfers().IsOpen());
        if (fault.atLogin) {
            // One attempt to connect, which fails without a word; nothing goes out.
            QCOMPARE(connects.size(), 1);
            QVERIFY(forms.texts.isEmpty());
            QVERIFY(pointer().isEmpty());
        } else {
            // The file's three attempts each meet the fault and show its text; the pointer is
            // still made, as the job does not ask whether the file arrived.
            const QString text = FtpErrors::Description(fault.number);
            QCOMPARE(forms.texts, (QStringList{text, text, text}));
            QVERIFY(!QFileInfo::exists(bad.localPath(QStringLiteral("/AB/a.txt"))));
            QVERIFY(!QFileInfo::exists(bad.localPath(QStringLiteral("/AB/a.txt.tarnwick-part"))));
            QCOMPARE(pointer(), QStringLiteral("http://example.org/AB/a.txt"));
        }
        QVERIFY(m_tab->waitNotice().text().isEmpty());
        QVERIFY(m_fx->window->ring(10)->isShown());
    }

    void cancelDuringAFault_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults()) {
            if (fault.waits)
                QTest::newRow(name) << fault;
        }
    }

    void cancelDuringAFault()
    {
        QFETCH(ServerFault, fault);
        SetServerLimits(QStringLiteral("600"));
        FtpTestServer::Options options;
        options.faults = {fault.fault};
        FtpTestServer bad(options);
        QVERIFY2(bad.start(), qPrintable(bad.errorString()));
        m_fx->fillAccount(bad);
        const QString waitFor = fault.atLogin ? QStringLiteral("Connecting to ")
                                              : QStringLiteral("Waiting for ");
        auto scope = std::make_unique<QObject>();
        int presses = 0;
        QObject::connect(&m_tab->waitNotice(), &WaitNotice::shown, scope.get(),
                         [&](const QString &text) {
                             if (!text.startsWith(waitFor))
                                 return;
                             ++presses;
                             QTimer::singleShot(50, scope.get(), [this] {
                                 m_fx->window
                                     ->findChild<QPushButton *>(QStringLiteral("CancelWaitButton"))
                                     ->click();
                             });
                         });
        ErrorForms forms;
        LoopTurns loop;
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("AB"));
        loop.stop();
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        // One press ended the job where it stood: no further wait, nothing sent or said.
        QCOMPARE(presses, 1);
        QVERIFY(m_fx->ui.messages.isEmpty());
        QVERIFY(forms.texts.isEmpty());
        QVERIFY(pointer().isEmpty());
        QCOMPARE(bad.countCommands(QStringLiteral("STOR")), 0);
        QCOMPARE(bad.countCommands(QStringLiteral("MKD")), 0);
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(!m_fx->ftp->Transfers().IsOpen());
        QVERIFY(m_tab->waitNotice().text().isEmpty());
        // Ready for the next try, which works against the right server (and is not pressed).
        scope.reset();
        SetServerLimits(QStringLiteral("20"));
        m_fx->fillAccount(*m_server);
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("AB"));
        QCOMPARE(readFile(home("/AB/a.txt")), QByteArray("a"));
    }

    void runWithoutConnectionsSendsNothing()
    {
        m_fx->window->RunWithoutMenu()->setChecked(true);
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("AB"));
        QCOMPARE(logins(), 0);
        QVERIFY(pointer().isEmpty());
    }

    void rootsShapeThePathAndThePointer()
    {
        QDir().mkpath(home("/www"));
        m_fx->window->FTPRoot()->setText(QStringLiteral("www"));
        m_fx->window->ClientRoot()->setText(QStringLiteral("Ann Lee"));
        send(localFile(QStringLiteral("a b.txt"), "ab"), QStringLiteral("Mon"));
        QCOMPARE(readFile(home("/www/Ann_Lee/Mon/a b.txt")), QByteArray("ab"));
        QCOMPARE(pointer(), QStringLiteral("http://example.org/Ann_Lee/Mon/a%20b.txt"));
    }

    void clientRootThatIsAFileStops()
    {
        writeFile(home("/Ann"), "a file, not a directory");
        m_fx->window->ClientRoot()->setText(QStringLiteral("Ann"));
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("Mon"));
        QVERIFY(pointer().isEmpty());
        QVERIFY(!QFileInfo::exists(home("/Mon")));
        QVERIFY(!m_fx->ftp->IsConnected());
        // The disconnect comes last and leaves the rings of the FTP tab.
        QVERIFY(m_fx->window->ring(14)->isShown());
        QVERIFY(!m_fx->window->ring(10)->isShown());
    }

    void nameThatIsAFileStops()
    {
        writeFile(home("/Mon"), "a file");
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("Mon"));
        QVERIFY(pointer().isEmpty());
        QCOMPARE(readFile(home("/Mon")), QByteArray("a file"));
        QVERIFY(!m_fx->ftp->IsConnected());
        // As for a ClientRoot that is a file: the job's end, then the disconnect's rings.
        QVERIFY(m_fx->window->ring(14)->isShown());
        QVERIFY(!m_fx->window->ring(10)->isShown());
        QVERIFY(m_fx->state.UserResponse.isEmpty());
    }

    void directoryThatCantBeMadeIsTold()
    {
        FtpTestServer::Options options;
        options.permissions = QStringLiteral("elr");
        FtpTestServer readOnly(options);
        QVERIFY2(readOnly.start(), qPrintable(readOnly.errorString()));
        m_fx->fillAccount(readOnly);
        send(localFile(QStringLiteral("a.txt"), "a"), QStringLiteral("Mon"));
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QVERIFY(m_fx->ui.messages.first().text.startsWith(
            QStringLiteral("Failed to create/find a directory, retry.")));
        QVERIFY(pointer().isEmpty());
    }
};

TARNWICK_TEST_MAIN(TestSendAFile)
#include "test_sendafile.moc"
