#include "BuildStartup.h"
#include "JobState.h"
#include "LocalWebSpace.h"
#include "PortalFixture.h"
#include "PortalFrame.h"
#include "PortalInstall.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TestMain.h"
#include "WebSpace.h"
#include "WebSpaceInstall.h"
#include "cFTP.h"
#include "frmInputBox.h"
#include "frmMain.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QQueue>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

using namespace BuildStartup;
using namespace PortalFixture;

namespace {

// Answers what comes up while a click runs, as the user would: prompts from a queue, message
// boxes from a queue of buttons (Yes or OK when it is empty).
struct Driver
{
    QQueue<QString> answers;
    QQueue<QMessageBox::StandardButton> buttons;
    QStringList prompts;
    QStringList messages;

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
                QAbstractButton *chosen = nullptr;
                if (!buttons.isEmpty())
                    chosen = box->button(buttons.dequeue());
                if (!chosen)
                    chosen = box->button(QMessageBox::Yes);
                if (!chosen)
                    chosen = box->button(QMessageBox::Ok);
                if (chosen)
                    chosen->click();
                else
                    box->accept();
                return;
            }
        }
    }
};

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

} // namespace

// A new user's portal from the default links to the page on a web space of this computer: three
// Categories and twelve links added through the tab, bullets chosen, a logo, built on the disk
// and then sent; the page on the server links every Page Link and has every picture it names.
class TestPortalGui : public QObject
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
    void aNewUsersPortalBuiltLocallyThenSent()
    {
        QVERIFY(installDefaultPortal());
        QTemporaryDir served, pictures;
        LocalWebSpace local;
        const auto account = local.start(served.path(), "tarnwick", "secret");
        QVERIFY2(account, qPrintable(local.lastError()));
        QImage logo(240, 80, QImage::Format_RGB32);
        logo.fill(QColor("#204080"));
        QVERIFY(logo.save(pictures.filePath("Family Logo.jpg")));
        SaveSetting("PortalIntructionView", "Hide");

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        WebSpace &webSpace = InstallWebSpace(window, ftp);
        const PortalParts parts = InstallPortalParts(window, webSpace);
        PortalFrame *frame = parts.frame;
        frame->services().chooseLogo = [&](const QString &) {
            return pictures.filePath("Family Logo.jpg");
        };
        window.txtServer()->setText(account->server);
        window.txtUser()->setText(account->user);
        window.txtPassword()->setText(account->password);
        window.txtWebSite()->setText(account->webSite);
        window.resize(1280, 820);
        window.show();

        Driver driver;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(3);

        window.findChild<QPushButton *>("FunctionSelectButton_4")->click();
        QVERIFY(frame->isVisible());
        QCOMPARE(frame->File11()->count(), 6);

        struct NewLink
        {
            QString category, name, url;
            int bullet;
        };
        const QList<NewLink> links{
            {"Music", "Radio Three", "https://radio.example.org/three", 1},
            {"Music", "Jazz, Blues and Soul", "https://jazz.example.org/", 2},
            {"Music", "Bandcamp", "https://bandcamp.example.com/", -1},
            {"Music", "Concerts", "https://concerts.example.net/list", 5},
            {"Shops", "www.bakery.example", "https://www.bakery.example/", 3},
            {"Shops", "Books", "https://books.example.com/", -1},
            {"Shops", "Cheese",
             QString::fromUtf8("https://shop.example.de/käse/suche?q=Bergkäse&seite=2"), 7},
            {"Shops", "Garden", "https://garden.example.com/", -1},
            {"Family", "Photos", "https://photos.example.org/family", 11},
            {"Family", "School", "https://school.example.edu/", -1},
            {"Family", "Recipes", "https://recipes.example.org/?sort=new&tag=soup", 13},
            {"Family", "Calendar", "https://calendar.example.org/", 0},
        };
        for (const char *name : {"Music", "Shops", "Family"}) {
            const QString category = QString::fromLatin1(name);
            driver.answers.enqueue(category);
            button(frame, "AddNewCatButton")->click();
            QCOMPARE(frame->File11()->currentItem()->text(), category + ".Cat");
            for (const NewLink &link : links) {
                if (link.category != category)
                    continue;
                driver.answers.enqueue(link.name);
                driver.answers.enqueue(link.url);
                button(frame, "AndNewLinkButton")->click();
                QCOMPARE(frame->File21()->currentItem()->text(), link.name + ".ptr");
                QCOMPARE(frame->borderedBullet(), 9);
                if (link.bullet >= 0) {
                    frame->Image111(link.bullet)->click();
                    QCOMPARE(frame->borderedBullet(), link.bullet);
                }
            }
        }
        QCOMPARE(frame->File11()->count(), 9);
        QVERIFY(driver.messages.isEmpty());
        button(frame, "SearchLogoButton")->click();
        frame->SULogoH()->selectAll();
        QTest::keyClicks(frame->SULogoH(), "60");
        QTest::keyClick(frame->SULogoH(), Qt::Key_Return);
        QCOMPARE(GetSetting(SettingKey::LogoPointerWidth), QString("180"));
        shot(&window, "portal-tab.png");

        // Built on this computer first.
        driver.buttons.enqueue(QMessageBox::No);
        button(frame, "BuildStartupButton")->click();
        QTRY_VERIFY(!parts.controller->running());
        QCOMPARE(parts.controller->lastOutcome(), PortalOutcome::KeptLocal);
        const QString localPage = startup("Portal.htm");
        QCOMPARE(QGuiApplication::clipboard()->text(), localPage);
        QVERIFY(driver.messages.contains("The pointer, '" + localPage +
                                         "' has been copied to the clipboard. Use <ctrl> v to "
                                         "paste into your browser home page"));
        QCOMPARE(tidyErrors(localPage), QString());

        // Then sent.
        driver.buttons.enqueue(QMessageBox::Yes);
        button(frame, "BuildStartupButton")->click();
        QTRY_VERIFY(!parts.controller->running());
        QCOMPARE(parts.controller->lastOutcome(), PortalOutcome::Sent);
        const QString pointer = "http://" + account->webSite + "/Portal/Portal.htm";
        QCOMPARE(QGuiApplication::clipboard()->text(), pointer);
        QCOMPARE(state.CurrentPointer, pointer);

        const QString remote = served.filePath("Portal");
        const QString html = QString::fromUtf8(readBytes(remote + "/Portal.htm"));
        QCOMPARE(html.toUtf8(), readBytes(localPage));
        // Every Page Link of the store is linked to its address, in a page of two columns.
        QVERIFY(html.contains("flex-basis: calc(50% - 1.5rem)"));
        const auto onPage = pageLinks(html);
        int stored = 0;
        for (const QString &category : CategoryFiles()) {
            for (const QString &file : PageLinkFiles(CategoryFolder(category))) {
                PageLink link;
                QVERIFY(LoadPageLink(CategoryFolder(category) + "/" + file, link).ok);
                ++stored;
                bool found = false;
                for (const auto &shown : onPage)
                    found = found || shown.second == link.URLName;
                QVERIFY2(found, qPrintable(file + " " + link.URLName));
            }
        }
        QCOMPARE(onPage.size(), stored);
        QVERIFY(onPage.contains({"Jazz, Blues and Soul", "https://jazz.example.org/"}));
        QVERIFY(onPage.contains({"wwwbakeryexample", "https://www.bakery.example/"}));
        QVERIFY(onPage.contains(
            {"Cheese", "https://shop.example.de/k%C3%A4se/suche?q=Bergk%C3%A4se&seite=2"}));
        // Every bullet and the logo it names stand beside it, and the web server gives them.
        QStringList pictures_ = pageBullets(html);
        pictures_.removeDuplicates();
        QVERIFY(pictures_.contains("Arrow13.gif"));
        QVERIFY(pictures_.contains("Arrow0.gif"));
        pictures_ << "NewW2.gif"
                  << "Family%20Logo.jpg";
        QVERIFY(html.contains("src=\"Family%20Logo.jpg\" height=\"60\" width=\"180\""));
        for (const QString &picture : pictures_) {
            QVERIFY2(QFileInfo(remote + "/" + QString(picture).replace("%20", " ")).isFile(),
                     qPrintable(picture));
            QCOMPARE(httpStatus("http://" + account->webSite + "/Portal/" + picture),
                     QString("200"));
        }
        QCOMPARE(httpStatus(pointer), QString("200"));
        QCOMPARE(tidyErrors(remote + "/Portal.htm"), QString());
        shot(&window, "portal-built.png");
        // The page and its pictures as the web space has them, for screenshots in a browser.
        const QString keep = qEnvironmentVariable("TARNWICK_SCREENSHOT_DIR");
        if (!keep.isEmpty()) {
            QDir().mkpath(keep + "/portal-page");
            for (const QString &file : QDir(remote).entryList(QDir::Files))
                QFile::copy(remote + "/" + file, keep + "/portal-page/" + file);
        }
    }
};

TARNWICK_TEST_MAIN(TestPortalGui)
#include "test_portal_gui.moc"
