#include "BlogRecords.h"
#include "Folders.h"
#include "LocalWebSpace.h"
#include "Settings.h"
#include "TestMain.h"
#include "WebLogFixture.h"
#include "WebLogFrame.h"
#include "WebLogInstall.h"
#include "WebSpace.h"
#include "WebSpaceInstall.h"
#include "cFTP.h"
#include "frmAction.h"
#include "frmInputBox.h"
#include "frmMain.h"
#include "frmSpelling.h"

#include <QAbstractButton>
#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QQueue>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

using namespace WebLogFixture;

namespace {

// Answers what comes up while a click runs, as the user would: prompts from a queue, message
// boxes with Yes or OK, the spelling dialog from its own queue, Take an Action by closing it.
struct Driver
{
    QQueue<QString> answers;
    QQueue<QString> spelling; // "SpellChange:word", "SpellIgnore", ...
    QStringList prompts;
    QStringList messages;
    QStringList misspelt;
    QStringList actions;
    frmMain *window = nullptr;

    void tick()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible())
                continue;
            if (auto *box = qobject_cast<frmInputBox *>(widget)) {
                prompts << box->findChild<QLabel *>(QStringLiteral("Label1"))->text();
                if (!answers.isEmpty())
                    box->findChild<QLineEdit *>(QStringLiteral("Text1"))
                        ->setText(answers.dequeue());
                box->findChild<QPushButton *>(QStringLiteral("InputBoxOK"))->click();
                return;
            }
            if (auto *box = qobject_cast<QMessageBox *>(widget)) {
                messages << box->text();
                if (QAbstractButton *yes = box->button(QMessageBox::Yes))
                    yes->click();
                else if (QAbstractButton *ok = box->button(QMessageBox::Ok))
                    ok->click();
                else
                    box->accept();
                return;
            }
            if (auto *dialog = qobject_cast<frmSpelling *>(widget)) {
                misspelt << dialog->findChild<QLabel *>(QStringLiteral("SpellWord"))->text();
                const QString answer =
                    spelling.isEmpty() ? QStringLiteral("SpellCancel") : spelling.dequeue();
                const QString word = answer.section(QLatin1Char(':'), 1);
                if (!word.isEmpty()) {
                    auto *list =
                        dialog->findChild<QListWidget *>(QStringLiteral("SpellSuggestions"));
                    const auto found = list->findItems(word, Qt::MatchExactly);
                    if (!found.isEmpty())
                        list->setCurrentItem(found.first());
                }
                dialog->findChild<QPushButton *>(answer.section(QLatin1Char(':'), 0, 0))->click();
                return;
            }
            if (qobject_cast<frmAction *>(widget)) {
                actions << window->state().CurrentPointer;
                widget->hide();
                return;
            }
        }
    }
};

// The HTTP status of a GET of url ("000" when nothing answered).
QString httpStatus(const QString &url)
{
    QProcess curl;
    curl.start(QStringLiteral("curl"),
               {QStringLiteral("-s"), QStringLiteral("-o"), QStringLiteral("/dev/null"),
                QStringLiteral("-w"), QStringLiteral("%{http_code}"), QStringLiteral("-m"),
                QStringLiteral("20"), url});
    if (!curl.waitForFinished(30000))
        return QStringLiteral("no curl");
    return QString::fromLatin1(curl.readAllStandardOutput()).trimmed();
}

QString httpText(const QString &url)
{
    QProcess curl;
    curl.start(QStringLiteral("curl"),
               {QStringLiteral("-s"), QStringLiteral("-m"), QStringLiteral("20"), url});
    curl.waitForFinished(30000);
    return QString::fromUtf8(curl.readAllStandardOutput());
}

// Every link and picture of the page at url that goes over HTTP, each fetched; the ones that
// did not answer 200, with their status.
QStringList brokenLinks(const QString &url, int *checked)
{
    QStringList broken;
    const QString html = httpText(url);
    if (html.isEmpty())
        return {url + QStringLiteral(" gave nothing")};
    for (const QString &link : pageLinks(html)) {
        const QUrl target = QUrl(url).resolved(QUrl(link));
        if (target.scheme() != QLatin1String("http"))
            continue; // mailto: links are for the mail program
        ++*checked;
        const QString status = httpStatus(QString::fromLatin1(target.toEncoded()));
        if (status != QLatin1String("200"))
            broken << target.toString() + QStringLiteral(" -> ") + status;
    }
    return broken;
}

} // namespace

// A new user's Web Log from the first click to the page on a web space of this computer: the
// same server that tools/local-webspace runs, reached over FTP by the program and over HTTP by
// the test.
class TestWebLogGui : public QObject
{
    Q_OBJECT
private:
    static QPushButton *button(QWidget *root, const char *name)
    {
        auto *found = root->findChild<QPushButton *>(QString::fromLatin1(name));
        if (!found)
            qWarning("no button %s", name);
        return found;
    }

    static void shot(QWidget *window, const char *name)
    {
        const QString folder = qEnvironmentVariable("TARNWICK_SCREENSHOT_DIR");
        if (!folder.isEmpty())
            window->grab().save(folder + QLatin1Char('/') + QLatin1String(name));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(installBlogTemplates());
        QVERIFY2(!QStandardPaths::findExecutable("curl").isEmpty(), "curl is missing");
    }

    void aNewUsersWebLogAndAMasterPageOnALocalWebSpace()
    {
        QTemporaryDir served, pictures;
        LocalWebSpace local;
        const auto account = local.start(served.path(), "tarnwick", "secret");
        QVERIFY2(account, qPrintable(local.lastError()));
        // Two pages of the web space itself for the pointers to lead to.
        QVERIFY(writeText(served.filePath("Ferries.htm"), "<!DOCTYPE html><title>F</title>"));
        QVERIFY(writeText(served.filePath("Maps.htm"), "<!DOCTYPE html><title>M</title>"));
        const QString site = "http://" + account->webSite;
        QVERIFY(makePhoto(pictures.filePath("Harbour View.jpg"), Qt::darkCyan, 1600, 1200));
        SaveSetting("BlogIntructionView", "Hide");
        SaveSetting("Blog_resize", "25");

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        WebSpace &webSpace = InstallWebSpace(window, ftp);
        const WebLogParts parts = InstallWebLogParts(window, webSpace);
        WebLogFrame *frame = parts.frame;
        frmAction::Install(state, &window, [&window] { window.HelpButton_Click(); });
        frame->services().choosePicture = [&](const QString &) {
            return pictures.filePath("Harbour View.jpg");
        };
        window.txtServer()->setText(account->server);
        window.txtUser()->setText(account->user);
        window.txtPassword()->setText(account->password);
        window.txtWebSite()->setText(account->webSite);
        window.txtDefaultAuthor()->setText("Ann Walker");
        window.txtEmailID()->setText("ann@example.org");
        SaveSetting("EmailID", "ann@example.org");
        window.resize(1200, 820);
        window.show();

        Driver driver;
        driver.window = &window;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(3);

        window.findChild<QPushButton *>("FunctionSelectButton_3")->click();
        QVERIFY(frame->isVisible());
        window.SpellCheckOn()->trigger();
        QVERIFY(window.SpellCheckOn()->isChecked());

        // A new Web Log and its title.
        driver.answers.enqueue("Trip Notes");
        button(frame, "addNewBlogFileButton")->click();
        QVERIFY(frame->webLogOpen());
        frame->TabStrip3()->tabBarClicked(1);
        auto *title = frame->findChild<QLineEdit *>("BlogTitle");
        title->setFocus();
        QTest::keyClicks(title, "Trip Notes: a week by the sea!");

        // Three sections: one with a picture, one with font tags, one plain.
        frame->TabStrip3()->tabBarClicked(2);
        driver.answers.enqueue("Day one: the harbour");
        button(frame, "BlogAddItem")->click();
        QVERIFY(frame->BlogText()->isVisible());
        frame->BlogText()->setFocus();
        QTest::keyClicks(frame->BlogText(), "We arived at the harbor in the morning.");
        button(frame, "BlogBrowsePic")->click();
        QTest::keyClicks(frame->findChild<QLineEdit *>("BlogPictureTitle"), "The harbour");
        shot(&window, "weblog-section.png");

        button(frame, "BlogSelectItem")->click();
        driver.answers.enqueue("Day two");
        button(frame, "BlogAddItem")->click();
        frame->BlogText()->setFocus();
        QTest::keyClicks(frame->BlogText(), "A long walk on the beach.");
        QTextCursor cursor = frame->BlogText()->textCursor();
        cursor.setPosition(2);
        cursor.setPosition(6, QTextCursor::KeepAnchor);
        frame->BlogText()->setTextCursor(cursor);
        button(frame, "Command7_0")->click();
        cursor = frame->BlogText()->textCursor();
        cursor.movePosition(QTextCursor::End);
        cursor.movePosition(QTextCursor::Left, QTextCursor::MoveAnchor, 1);
        cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor, 5);
        frame->BlogText()->setTextCursor(cursor);
        button(frame, "Command7_3")->click();
        QCOMPARE(frame->BlogText()->toPlainText(),
                 QString("A <b>long</b> walk on the <i>beach</i>."));
        auto *order = frame->findChild<QLineEdit *>("OrderItem");
        order->setFocus();
        order->setText("1");
        frame->BlogText()->setFocus();

        button(frame, "BlogSelectItem")->click();
        driver.answers.enqueue("Day three");
        button(frame, "BlogAddItem")->click();
        frame->BlogText()->setFocus();
        QTest::keyClicks(frame->BlogText(), "Home again.");

        // The misspelt word of the first section, corrected in the spelling dialog.
        driver.spelling.enqueue("SpellChange:arrived");
        window.CheckSpellingAllMenu()->trigger();
        QCOMPARE(driver.misspelt.size(), 1);
        QVERIFY(driver.misspelt.first().contains("arived"));
        QVERIFY(driver.messages.contains("The spelling check is complete."));

        // Two pointers and one comment.
        frame->TabStrip3()->tabBarClicked(3);
        for (const auto &[category, name, url] :
             {std::tuple{"Travel", "Ferries", site + "/Ferries.htm"},
              std::tuple{"Travel", "Maps", site + "/Maps.htm"}}) {
            driver.answers.enqueue(category);
            driver.answers.enqueue(name);
            driver.answers.enqueue(url);
            button(frame, "AddNewPtrButton")->click();
        }
        driver.answers.enqueue("From Bob");
        button(frame, "AddNewCommentButton")->click();
        QTest::keyClicks(frame->findChild<QPlainTextEdit *>("CommentTxt"), "Lovely pictures!");
        QCOMPARE(frame->findChild<QListWidget *>("File8")->count(), 2);
        QCOMPARE(frame->findChild<QListWidget *>("File9")->count(), 1);

        // Build Web Log.
        button(frame, "BlogBuild")->click();
        QCOMPARE(parts.controller->lastOutcome(), BlogBuildOutcome::Sent);
        const QString page = site + "/Web_Log/Trip_Notes/Web_Log.htm";
        QCOMPARE(driver.actions, QStringList{page});
        QCOMPARE(QGuiApplication::clipboard()->text(), page);
        const QString folder = served.filePath("Web_Log/Trip_Notes");
        for (const char *name : {"Web_Log.htm", "Comments.htm", "feed.xml", "Sml_Harbour View.jpg"})
            QVERIFY2(QFileInfo(folder + "/" + name).isFile(), name);
        QCOMPARE(QImage(folder + "/Sml_Harbour View.jpg").size(), QSize(400, 300));
        const QString html = httpText(page);
        QVERIFY(html.contains("<h1>Trip Notes: a week by the sea!</h1>"));
        QVERIFY(html.contains("We arrived at the harbor"));
        QVERIFY(html.contains("A <b>long</b> walk on the <i>beach</i>."));
        QVERIFY(html.indexOf("Day one") < html.indexOf("Day three"));
        QVERIFY(html.indexOf("Day three") < html.indexOf("Day two"));
        int checked = 0;
        QCOMPARE(brokenLinks(page, &checked).join("; "), QString());
        QCOMPARE(checked, 5); // the feed, the picture, the comment page, two pointers
        QCOMPARE(brokenLinks(site + "/Web_Log/Trip_Notes/Comments.htm", &checked), QStringList());
        QVERIFY(httpText(site + "/Web_Log/Trip_Notes/feed.xml").contains("<entry>"));
        QCOMPARE(tidyErrors(folder + "/Web_Log.htm"), QString());
        shot(&window, "weblog-built.png");

        // A second Web Log, and a master page of the two.
        frame->TabStrip3()->tabBarClicked(0);
        driver.answers.enqueue("Garden Diary");
        button(frame, "addNewBlogFileButton")->click();
        frame->TabStrip3()->tabBarClicked(2);
        driver.answers.enqueue("Spring");
        button(frame, "BlogAddItem")->click();
        frame->BlogText()->setFocus();
        QTest::keyClicks(frame->BlogText(), "The first tulips.");
        button(frame, "BlogBuild")->click();
        QCOMPARE(parts.controller->lastOutcome(), BlogBuildOutcome::Sent);

        frame->TabStrip3()->tabBarClicked(4);
        button(frame, "SelectAllBlogPageButton")->click();
        QCOMPARE(frame->chosenWebLogs(), QStringList({"Garden Diary.blg", "Trip Notes.blg"}));
        driver.answers.enqueue("All Of My Pages");
        button(frame, "BuildMasterBlogButton")->click();
        QCOMPARE(parts.controller->lastMasterOutcome(), MasterOutcome::Sent);
        const QString master = site + "/Web_Log/MainPage.htm";
        QCOMPARE(driver.actions.last(), master);
        QCOMPARE(QGuiApplication::clipboard()->text(), master);
        const QString masterHtml = httpText(master);
        QVERIFY(masterHtml.contains(">Trip Notes: a week by the sea!</a>"));
        QVERIFY(masterHtml.contains(">-Garden Diary-</a>"));
        checked = 0;
        QCOMPARE(brokenLinks(master, &checked), QStringList());
        QCOMPARE(checked, 2);
        shot(&window, "weblog-master.png");
        pump.stop();
    }
};

TARNWICK_TEST_MAIN(TestWebLogGui)
#include "test_weblog_gui.moc"
