#include "BookmarkFiles.h"
#include "BookmarkImportDialog.h"
#include "BuildStartup.h"
#include "HttpTestServer.h"
#include "LinkCheckDialog.h"
#include "PortalFixture.h"
#include "PortalFrame.h"
#include "PortalInstall.h"
#include "Settings.h"
#include "WebSpace.h"
#include "WebSpaceFixture.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

using namespace BuildStartup;
using namespace PortalFixture;

namespace {

// Far above what any step takes; each wait ends at the event it waits for.
constexpr int EventWaitMs = 120000;

QStringList items(const QListWidget *list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i)
        names << list->item(i)->text();
    return names;
}

void shot(QWidget *widget, const char *name)
{
    const QString folder = qEnvironmentVariable("TARNWICK_SCREENSHOT_DIR");
    if (!folder.isEmpty())
        widget->grab().save(folder + QLatin1Char('/') + QLatin1String(name));
}

} // namespace

// Import Bookmarks and Check Links on the Build a Portal tab of the real window: the preview
// of an import, its writing and its stop, the messages of files that can't be imported, and a
// check of the Page Links against a real HTTP server with the marks it leaves, the update of a
// moved link and Cancel.
class TestPortalBookmarksGui : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<WebSpaceFixture> fixture;
    PortalFrame *frame = nullptr;
    QTemporaryDir files;
    HttpTestServer http;
    QString chosenFile;

    ScriptedUi &ui() { return fixture->ui; }

    QString writeBookmarks(const QString &name, const QByteArray &bytes)
    {
        const QString path = files.filePath(name);
        writeBytes(path, bytes);
        return path;
    }
    BookmarkImportDialog *openImport(const QString &path)
    {
        chosenFile = path;
        frame->ImportBookmarksButton()->click();
        BookmarkImportDialog *dialog = nullptr;
        const bool shown = QTest::qWaitFor(
            [&] {
                dialog = frame->importDialog();
                return dialog && dialog->isVisible();
            },
            EventWaitMs);
        return shown ? dialog : nullptr;
    }
    void selectCategory(const QString &file)
    {
        const auto found = frame->File11()->findItems(file, Qt::MatchExactly);
        QVERIFY2(!found.isEmpty(), qPrintable(file));
        frame->File11_Click(frame->File11()->row(found.first()));
    }
    QListWidgetItem *linkItem(const QString &file)
    {
        const auto found = frame->File21()->findItems(file, Qt::MatchExactly);
        return found.isEmpty() ? nullptr : found.first();
    }
    void addLink(const QString &category, const QString &name, const QString &url)
    {
        MakeCategory(category);
        PageLink link;
        link.LinkName = name;
        link.URLName = url;
        QVERIFY(SavePageLink(PageLinkPath(startup(category), name), link));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(files.isValid());
        QVERIFY2(http.start(), qPrintable(http.errorString()));
    }

    void init()
    {
        ClearTemporaryHome();
        QVERIFY(installEmptyPortal());
        SaveSetting("PortalIntructionView", "Hide");
        fixture = std::make_unique<WebSpaceFixture>();
        fixture->install();
        WebSpace *webSpace = fixture->window->findChild<WebSpace *>();
        QVERIFY(webSpace);
        frame = InstallPortalParts(*fixture->window, *webSpace).frame;
        frame->services().chooseBookmarks = [this] { return chosenFile; };
        fixture->showFunction(4);
        QVERIFY(frame->isVisible());
    }
    void cleanup()
    {
        fixture.reset();
        frame = nullptr;
    }

    void theButtonsAndTheMenuEntryAreOffered()
    {
        QVERIFY(frame->CheckLinksButton()->isVisible());
        QVERIFY(frame->ImportBookmarksButton()->isVisible());
        auto *menu = fixture->window->findChild<QAction *>("ImportBookmarksMenu");
        QVERIFY(menu);
        QCOMPARE(menu->text(), QString("Import Bookmarks..."));
        // The menu opens the tab and asks for the file; nothing chosen, nothing happens.
        fixture->window->FunctionSelectButton_Click(0);
        chosenFile.clear();
        menu->trigger();
        QVERIFY(frame->isVisible());
        QVERIFY(!frame->importDialog());
    }

    void aFirefoxExportIsPreviewedThenImported()
    {
        addLink("News", "Old News",
                "https://www.example.ru/%D0%BD%D0%BE%D0%B2%D0%BE%D1%81%D1%82%D0%B8");
        frame->opened(false);
        BookmarkImportDialog *dialog =
            openImport(writeBookmarks("bookmarks.html", BookmarkFiles::firefox()));
        QVERIFY(dialog);
        QVERIFY(dialog->isModal() || dialog->windowModality() != Qt::NonModal);
        const QString summary = dialog->findChild<QLabel *>("ImportSummary")->text();
        QVERIFY2(summary.contains("7 Page Links will be added to 5 Categories (all of them new)"),
                 qPrintable(summary));
        QVERIFY2(summary.contains("1 link is in its Category already and will be skipped"),
                 qPrintable(summary));
        QVERIFY2(summary.contains("2 links are not web pages"), qPrintable(summary));
        auto *tree = dialog->findChild<QTreeWidget *>("ImportTree");
        QVERIFY(tree);
        QStringList tops;
        for (int i = 0; i < tree->topLevelItemCount(); ++i)
            tops << tree->topLevelItem(i)->text(0);
        QCOMPARE(tops, (QStringList{"Mozilla Firefox", "Bookmarks Menu", "Bookmarks Toolbar",
                                    "News", "News - Local", "Other Bookmarks"}));
        QVERIFY(tree->topLevelItem(3)->text(2).startsWith("adds to the Category there"));
        QVERIFY(tree->topLevelItem(3)->text(2).contains("1 there already"));
        dialog->resize(820, 600);
        shot(dialog, "portal-import-preview.png");

        QSignalSpy imported(dialog, &BookmarkImportDialog::imported);
        dialog->findChild<QPushButton *>("ImportButton")->click();
        QVERIFY(imported.wait(EventWaitMs) || imported.count() == 1);
        QTRY_VERIFY_WITH_TIMEOUT(!frame->importDialog(), EventWaitMs);
        QCOMPARE(ui().messageTexts().last(),
                 QString("7 Page Links were added, 5 new Categories made."));
        QCOMPARE(items(frame->File11()),
                 (QStringList{"Bookmarks Menu.Cat", "Bookmarks Toolbar.Cat", "Mozilla Firefox.Cat",
                              "News - Local.Cat", "News.Cat", "Other Bookmarks.Cat"}));
        selectCategory("Bookmarks Menu.Cat");
        QCOMPARE(items(frame->File21()),
                 (QStringList{QString::fromUtf8("Café & Bar - Le Marché.ptr"), "Example.ptr"}));
        frame->File21_Click(0);
        QVERIFY(frame->URLTxt()->text().endsWith("carte?jour=lundi%2Cmardi"));
        QCOMPARE(frame->borderedBullet(), 9);
    }

    void cancelInThePreviewAddsNothing()
    {
        BookmarkImportDialog *dialog =
            openImport(writeBookmarks("c.html", BookmarkFiles::chromium()));
        QVERIFY(dialog);
        dialog->findChild<QPushButton *>("CancelImportButton")->click();
        QTRY_VERIFY_WITH_TIMEOUT(!frame->importDialog(), EventWaitMs);
        QVERIFY(CategoryFiles().isEmpty());
        QCOMPARE(frame->File11()->count(), 0);
    }

    void fiveThousandLinksAreWrittenWithTheBarMovingAndCancelStopsThem()
    {
        BookmarkImportDialog *dialog =
            openImport(writeBookmarks("large.html", BookmarkFiles::large(50, 100)));
        QVERIFY(dialog);
        QVERIFY2(dialog->summary().contains("5,000 Page Links will be added to 100 Categories"),
                 qPrintable(dialog->summary()));
        auto *bar = dialog->findChild<QProgressBar *>("ImportProgress");
        // The window's event loop runs while the links are written: the bar takes each value
        // as it comes. Cancel is clicked once 500 are written.
        QList<int> values;
        bool cancelClicked = false;
        connect(dialog, &BookmarkImportDialog::progressed, dialog, [&](int done, int) {
            values << done;
            if (done >= 500 && !cancelClicked) {
                cancelClicked = true;
                dialog->findChild<QPushButton *>("CancelImportButton")->click();
            }
        });
        QSignalSpy imported(dialog, &BookmarkImportDialog::imported);
        dialog->findChild<QPushButton *>("ImportButton")->click();
        QVERIFY(!dialog->findChild<QPushButton *>("ImportButton")->isEnabled());
        QVERIFY(imported.wait(EventWaitMs) || imported.count() == 1);
        QVERIFY(cancelClicked);
        QVERIFY(values.size() >= 500);
        const ImportResult result = imported.at(0).at(0).value<ImportResult>();
        QVERIFY(result.cancelled);
        QVERIFY(result.linksWritten >= 500 && result.linksWritten < 5000);
        QCOMPARE(bar->value(), values.last());
        int onDisk = 0;
        for (const QString &cat : CategoryFiles())
            onDisk += int(PageLinkFiles(CategoryFolder(cat)).size());
        QCOMPARE(onDisk, result.linksWritten);
        QVERIFY2(ui().messageTexts().last().startsWith(
                     QString("The import was stopped: %1 Page Links were added")
                         .arg(result.linksWritten)),
                 qPrintable(ui().messageTexts().last()));
    }

    void filesThatCantBeImportedSaySoAndAddNothing_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("words");
        const QByteArray whole = BookmarkFiles::firefox();
        QTest::newRow("cut short") << whole.left(whole.size() * 2 / 3) << "ends too early";
        QByteArray junk = BookmarkFiles::chromium();
        junk.insert(200, QByteArray("\0\x01\xff\xfe junk", 10));
        QTest::newRow("junk") << junk << "holds bytes that are not text";
        QTest::newRow("not bookmarks")
            << QByteArray("<html><body>Hello</body></html>") << "is not a bookmarks file";
    }
    void filesThatCantBeImportedSaySoAndAddNothing()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, words);
        chosenFile = writeBookmarks("bad.html", bytes);
        const int before = int(ui().messages.size());
        frame->ImportBookmarksButton()->click();
        QTRY_VERIFY_WITH_TIMEOUT(ui().messages.size() > before, EventWaitMs);
        QVERIFY2(ui().messages.last().text.contains(words), qPrintable(ui().messages.last().text));
        QCOMPARE(ui().messages.last().title, QString("Import Bookmarks"));
        QVERIFY(!frame->importDialog());
        QVERIFY(CategoryFiles().isEmpty());
        QVERIFY(frame->ImportBookmarksButton()->isEnabled());
    }

    void checkLinksMarksTheListAndUpdatesAMovedLink()
    {
        addLink("Sites", "Fine", http.url("/ok/fine"));
        addLink("Sites", "Moved", http.url("/moved"));
        addLink("Sites", "Gone", http.url("/gone"));
        addLink("Sites", "No Head", http.url("/nohead"));
        addLink("Sites", "Refused", http.refusedUrl());
        addLink("Quiet", "Silent", http.url("/silent/gui"));
        frame->opened(false);
        frame->services().linkCheck.timeoutMs = 1500;
        selectCategory("Sites.Cat");
        frame->File21_Click(frame->File21()->row(linkItem("Moved.ptr")));
        QCOMPARE(frame->URLTxt()->text(), http.url("/moved"));

        frame->CheckLinksButton()->click();
        LinkCheckDialog *dialog = frame->checkDialog();
        QVERIFY(dialog);
        QVERIFY(dialog->isVisible());
        QVERIFY(!dialog->isModal()); // the window stays in use
        QSignalSpy finished(dialog, &LinkCheckDialog::checkFinished);
        QVERIFY(finished.wait(EventWaitMs) || finished.count() == 1);
        QCOMPARE(finished.at(0).at(0).toBool(), false);
        QVERIFY2(
            dialog->statusText().startsWith("All 6 Page Links checked: 2 ok, 1 moved, 3 dead."),
            qPrintable(dialog->statusText()));

        // The marks in the tab's list.
        QCOMPARE(linkItem("Fine.ptr")->data(Qt::UserRole).toString(), QString("ok"));
        QCOMPARE(linkItem("Moved.ptr")->data(Qt::UserRole).toString(), QString("moved"));
        QCOMPARE(linkItem("Gone.ptr")->data(Qt::UserRole).toString(), QString("dead"));
        QCOMPARE(linkItem("Gone.ptr")->toolTip(), QString("dead: 404 Not Found"));
        QCOMPARE(linkItem("No Head.ptr")->data(Qt::UserRole).toString(), QString("ok"));
        QCOMPARE(linkItem("Refused.ptr")->toolTip(), QString("dead: Connection refused"));
        selectCategory("Quiet.Cat");
        QVERIFY(linkItem("Silent.ptr")->toolTip().startsWith("dead: No answer within"));
        selectCategory("Sites.Cat");
        frame->File21_Click(frame->File21()->row(linkItem("Moved.ptr")));

        auto *list = dialog->list();
        QTreeWidgetItem *moved = nullptr;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            if (list->topLevelItem(i)->text(0) == "Moved")
                moved = list->topLevelItem(i);
        }
        QVERIFY(moved);
        QCOMPARE(moved->checkState(0), Qt::Checked);
        QVERIFY(moved->text(3).startsWith("moved: Moved to " + http.url("/ok/new")));
        auto *update = dialog->findChild<QPushButton *>("UpdateMovedButton");
        QVERIFY(update->isEnabled());
        dialog->resize(880, 420);
        shot(dialog, "portal-check-links.png");
        shot(fixture->window.get(), "portal-check-links-tab.png");

        update->click();
        PageLink link;
        QVERIFY(LoadPageLink(startup("Sites/Moved.ptr"), link).ok);
        QCOMPARE(link.URLName, http.url("/ok/new"));
        QCOMPARE(link.LinkName, QString("Moved"));
        QCOMPARE(link.Bullet, qint16(9));
        QCOMPARE(frame->URLTxt()->text(), http.url("/ok/new")); // the link on show follows
        QCOMPARE(linkItem("Moved.ptr")->data(Qt::UserRole).toString(), QString("ok"));
        QVERIFY(dialog->statusText().contains("1 Page Link now leads to its new address."));
        QVERIFY(!update->isEnabled());
        dialog->findChild<QPushButton *>("CloseCheckButton")->click();
        QTRY_VERIFY_WITH_TIMEOUT(!frame->checkDialog(), EventWaitMs);
    }

    void cancelAnswersWhileTheServerIsSilent()
    {
        const int silentBefore = http.silentRequests();
        addLink("Quiet", "A One", http.url("/silent/g1"));
        addLink("Quiet", "B Two", http.url("/silent/g2"));
        addLink("Quiet", "C Three", http.url("/ok/three"));
        frame->opened(false);
        frame->services().linkCheck.timeoutMs = 3600 * 1000; // only Cancel can end this
        frame->services().linkCheck.parallel = 2;
        frame->CheckLinksButton()->click();
        LinkCheckDialog *dialog = frame->checkDialog();
        QVERIFY(dialog);
        QTRY_VERIFY_WITH_TIMEOUT(http.silentRequests() >= silentBefore + 2, EventWaitMs);
        QVERIFY(dialog->running());
        QVERIFY(dialog->statusText().startsWith("Checking the Page Links: 0 of 3 answered."));
        QSignalSpy finished(dialog, &LinkCheckDialog::checkFinished);
        dialog->findChild<QPushButton *>("CancelCheckButton")->click();
        QCOMPARE(finished.count(), 1); // at once
        QCOMPARE(finished.at(0).at(0).toBool(), true);
        QVERIFY2(dialog->statusText().startsWith("The check was cancelled: 0 of 3 answered."),
                 qPrintable(dialog->statusText()));
        QTRY_VERIFY_WITH_TIMEOUT(!dialog->running(), EventWaitMs);
        QVERIFY(!http.requests().contains("HEAD /ok/three"));
        selectCategory("Quiet.Cat");
        QCOMPARE(linkItem("A One.ptr")->data(Qt::UserRole).toString(), QString("not checked"));
    }

    void checkLinksWithoutLinksSaysSo()
    {
        frame->CheckLinksButton()->click();
        QVERIFY(!frame->checkDialog());
        QCOMPARE(ui().messageTexts().last(), QString("There are no Page Links to check yet."));
    }
};

TARNWICK_TEST_MAIN(TestPortalBookmarksGui)
#include "test_portal_bookmarks_gui.moc"
