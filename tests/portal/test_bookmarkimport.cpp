#include "BookmarkFiles.h"
#include "BookmarkImport.h"
#include "BuildStartup.h"
#include "Folders.h"
#include "PortalBuild.h"
#include "PortalFixture.h"
#include "TemplateState.h"
#include "TestMain.h"

#include <QDir>
#include <QTest>

using namespace BookmarkImport;
using namespace PortalFixture;

namespace {

const ImportCategory *categoryNamed(const ImportPlan &plan, const QString &name)
{
    for (const ImportCategory &category : plan.categories) {
        if (category.name == name)
            return &category;
    }
    return nullptr;
}

QStringList categoryNames(const ImportPlan &plan)
{
    QStringList names;
    for (const ImportCategory &category : plan.categories)
        names << category.name;
    return names;
}

ImportPlan planFor(const QByteArray &bytes)
{
    const BookmarkFileResult file = BookmarkFile::ReadBookmarks(bytes, "bookmarks.html");
    if (!file.ok)
        qWarning("%s", qPrintable(file.message));
    return PlanBookmarkImport(file, Folders::StartupFolder());
}

PageLink readLink(const QString &category, const QString &name)
{
    PageLink link;
    BuildStartup::LoadPageLink(startup(category + "/" + name + ".ptr"), link);
    return link;
}

void addExistingLink(const QString &category, const QString &name, const QString &url)
{
    BuildStartup::MakeCategory(category);
    PageLink link;
    link.LinkName = name;
    link.URLName = url;
    QVERIFY(BuildStartup::SavePageLink(BuildStartup::PageLinkPath(startup(category), name), link));
}

} // namespace

// An import of a browser's bookmarks into the link store: which Category each folder becomes,
// the names made file names, the links already there skipped and counted, and the writing of
// thousands of links, stopped part way or whole.
class TestBookmarkImport : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ClearTemporaryHome();
        QVERIFY(installEmptyPortal());
    }

    void firefoxFoldersBecomeCategoriesNamedByTheirPlace()
    {
        const ImportPlan plan = planFor(BookmarkFiles::firefox());
        QCOMPARE(categoryNames(plan),
                 (QStringList{"Mozilla Firefox", "Bookmarks Menu", "Bookmarks Toolbar", "News",
                              "News - Local", "Other Bookmarks"}));
        QCOMPARE(plan.links, 8);
        QCOMPARE(plan.newCategories, 6);
        QCOMPARE(plan.duplicates, 0);
        QCOMPARE(plan.notWeb, 2);
        const ImportCategory *menu = categoryNamed(plan, "Bookmarks Menu");
        QVERIFY(menu);
        QCOMPARE(menu->links[0].name, QString::fromUtf8("Café & Bar - Le Marché"));
        QVERIFY(menu->links[0].renamed);
        QCOMPARE(menu->links[0].title, QString::fromUtf8("Café & Bar: \"Le Marché\""));
        // The host in its ASCII form, letters beyond ASCII and the comma %-escaped: the record
        // keeps the whole address.
        QVERIFY2(menu->links[0].url.startsWith("https://xn--"), qPrintable(menu->links[0].url));
        QVERIFY2(menu->links[0].url.endsWith("/carte?jour=lundi%2Cmardi"),
                 qPrintable(menu->links[0].url));
        const ImportCategory *other = categoryNamed(plan, "Other Bookmarks");
        QVERIFY(other);
        QCOMPARE(other->links[0].name, QString("Slash - Back-slash - Pipe Star Angle"));
    }

    void chromiumFoldersBecomeCategoriesNamedByTheirPlace()
    {
        const ImportPlan plan = planFor(BookmarkFiles::chromium());
        QCOMPARE(categoryNames(plan),
                 (QStringList{"Bookmarks bar", "Travel - Trains", "Travel", "Other bookmarks"}));
        QCOMPARE(plan.links, 6);
        const ImportCategory *trains = categoryNamed(plan, "Travel - Trains");
        QVERIFY(trains);
        QCOMPARE(trains->links[0].name, QString::fromUtf8("Deutsche Bahn – Fahrkarten"));
        QVERIFY(!trains->links[0].renamed);
        QCOMPARE(trains->links[1].url, QString("https://xn--mnchen-3ya.example/stra%C3%9Fe"));
    }

    void theImportWritesCategoriesAndLinksThatReadBack()
    {
        const ImportPlan plan = planFor(BookmarkFiles::chromium());
        const ImportResult result = ApplyBookmarkImport(plan);
        QVERIFY2(result.failures.isEmpty(), qPrintable(result.failures.join("\n")));
        QCOMPARE(result.linksWritten, 6);
        QCOMPARE(result.categoriesMade, 4);
        QVERIFY(!result.cancelled);
        QCOMPARE(BuildStartup::CategoryFiles(),
                 (QStringList{"Bookmarks bar.Cat", "Other bookmarks.Cat", "Travel - Trains.Cat",
                              "Travel.Cat"}));
        QCOMPARE(readBytes(startup("Travel - Trains.Cat")),
                 QByteArray("directory file Travel - Trains\r\n"));
        const PageLink bahn =
            readLink("Travel - Trains", QString::fromUtf8("Deutsche Bahn – Fahrkarten"));
        QCOMPARE(bahn.URLName, QString("https://www.bahn.de/"));
        QCOMPARE(bahn.Bullet, qint16(9));
        const PageLink org = readLink("Bookmarks bar", "It's the Org");
        QCOMPARE(org.URLName, QString("https://www.example.org/"));
        // A name beyond ASCII keeps its letters in the file's name; the record's text keeps
        // what the record format keeps.
        QVERIFY(
            QFileInfo::exists(startup(QString::fromUtf8("Other bookmarks/日本語のページ.ptr"))));
    }

    void theImportedStoreBuildsIntoThePage()
    {
        QVERIFY(ApplyBookmarkImport(planFor(BookmarkFiles::firefox())).failures.isEmpty());
        TemplateState state;
        PageLink current;
        const PortalPageResult page = BuildPortalPage(Folders::StartupFolder(), state, current);
        QVERIFY2(page.written, qPrintable(page.message));
        QCOMPARE(page.categories, 6);
        QCOMPARE(page.links, 8);
        const QString html = QString::fromUtf8(readBytes(startup("Portal.htm")));
        QVERIFY(html.contains("href=\"https://www.wikipedia.org/\""));
        QVERIFY(html.contains("lundi%2Cmardi"));
    }

    void aLinkAlreadyInItsCategoryIsSkippedAndCounted()
    {
        // The same addresses spelt as a user types them: no trailing slash, upper-case host.
        addExistingLink("Travel", "SNCF", "https://WWW.sncf-connect.com");
        addExistingLink("Bookmarks bar", "My Example", "https://example.com/");
        // The same address in another Category is no duplicate.
        addExistingLink("Elsewhere", "Bahn", "https://www.bahn.de/");
        const ImportPlan plan = planFor(BookmarkFiles::chromium());
        QCOMPARE(plan.duplicates, 2);
        QCOMPARE(plan.links, 4);
        const ImportCategory *travel = categoryNamed(plan, "Travel");
        QVERIFY(travel && travel->exists);
        QVERIFY(travel->links.isEmpty());
        QCOMPARE(travel->duplicates.size(), 1);
        QCOMPARE(plan.newCategories, 2); // "Travel - Trains" and "Other bookmarks"
        const ImportResult result = ApplyBookmarkImport(plan);
        QCOMPARE(result.linksWritten, 4);
        QCOMPARE(BuildStartup::PageLinkFiles(startup("Bookmarks bar")),
                 (QStringList{"It's the Org.ptr", "My Example.ptr"}));
        QCOMPARE(readLink("Travel", "SNCF").URLName, QString("https://WWW.sncf-connect.com"));

        // A second import of the same file adds nothing.
        const ImportPlan again = planFor(BookmarkFiles::chromium());
        QCOMPARE(again.links, 0);
        QCOMPARE(again.duplicates, 6);
    }

    void anExistingCategoryIsMatchedIgnoringCase()
    {
        addExistingLink("TRAVEL", "Ferry", "https://ferry.example/");
        const ImportPlan plan = planFor(BookmarkFiles::chromium());
        const ImportCategory *travel = categoryNamed(plan, "TRAVEL");
        QVERIFY(travel && travel->exists);
        QVERIFY(!categoryNamed(plan, "Travel"));
        QVERIFY(ApplyBookmarkImport(plan).failures.isEmpty());
        QCOMPARE(BuildStartup::PageLinkFiles(startup("TRAVEL")),
                 (QStringList{"Ferry.ptr", "SNCF Connect.ptr"}));
    }

    void aFolderWithoutItsCategoryFileKeepsItsLinks()
    {
        // A Category deleted earlier leaves its folder; the import brings it back and does not
        // write over or double what the folder holds.
        addExistingLink("Travel", "SNCF Connect", "https://elsewhere.example/");
        QVERIFY(QFile::remove(startup("Travel.Cat")));
        const ImportPlan plan = planFor(BookmarkFiles::chromium());
        const ImportCategory *travel = categoryNamed(plan, "Travel");
        QVERIFY(travel && !travel->exists);
        QCOMPARE(travel->links.size(), 1);
        QCOMPARE(travel->links[0].name, QString("SNCF Connect (2)"));
        QVERIFY(ApplyBookmarkImport(plan).failures.isEmpty());
        QCOMPARE(readLink("Travel", "SNCF Connect").URLName, QString("https://elsewhere.example/"));
        QCOMPARE(readLink("Travel", "SNCF Connect (2)").URLName,
                 QString("https://www.sncf-connect.com/"));
        QVERIFY(QFileInfo::exists(startup("Travel.Cat")));
    }

    void namesThatCantBeFileNamesAreMadeLegal_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("name");
        QTest::newRow("colon") << "News: today"
                               << "News - today";
        QTest::newRow("slashes and pipe") << "a/b\\c|d"
                                          << "a-b-c-d";
        QTest::newRow("marks left out") << "What? *Now* <b>\"x\"</b>"
                                        << "What Now bx-b";
        QTest::newRow("blanks and line breaks") << "  two\t\nlines  "
                                                << "two lines";
        QTest::newRow("dots at the ends") << "...example.com."
                                          << "example.com";
        QTest::newRow("only marks") << "???"
                                    << "fallback";
        QTest::newRow("empty") << ""
                               << "fallback";
        QTest::newRow("long") << QString("word ").repeated(30)
                              << QString("word ").repeated(12).trimmed();
        QTest::newRow("beyond ASCII kept")
            << QString::fromUtf8("Ünïcødé 😀 名前") << QString::fromUtf8("Ünïcødé 😀 名前");
    }
    void namesThatCantBeFileNamesAreMadeLegal()
    {
        QFETCH(QString, title);
        QFETCH(QString, name);
        const QString legal = LegalName(title, "fallback");
        QCOMPARE(legal, name);
        QVERIFY(BuildStartup::FileNameProblem(legal).isEmpty());
        QVERIFY(legal.size() <= MaxNameLength);
    }

    void aFolderNamedLikeThePortalsOwnFilesGetsANameOfItsOwn()
    {
        const QByteArray bytes = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<H1>B</H1>\n<DL><p>\n"
                                 "<DT><H3>Portal.htm</H3>\n<DL><p>\n"
                                 "<DT><A HREF=\"https://a.example/\">A</A>\n</DL><p>\n"
                                 "<DT><H3>News.Cat</H3>\n<DL><p>\n"
                                 "<DT><A HREF=\"https://b.example/\">B</A>\n</DL><p>\n"
                                 "<DT><H3>Top.txt</H3>\n<DL><p>\n"
                                 "<DT><A HREF=\"https://c.example/\">C</A>\n</DL><p>\n"
                                 "</DL><p>\n";
        const ImportPlan plan = planFor(bytes);
        QCOMPARE(categoryNames(plan), (QStringList{"Portal.htm (2)", "News Cat", "Top.txt (2)"}));
        QVERIFY(ApplyBookmarkImport(plan).failures.isEmpty());
        QVERIFY(QFileInfo(startup("Top.txt")).isFile());
        TemplateState state;
        PageLink current;
        QVERIFY(BuildPortalPage(Folders::StartupFolder(), state, current).written);
        QVERIFY(QFileInfo(startup("Portal.htm")).isFile());
    }

    void linksOfOneNameGetNumbers()
    {
        const QByteArray bytes = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<H1>B</H1>\n<DL><p>\n"
                                 "<DT><A HREF=\"https://a.example/\">Home</A>\n"
                                 "<DT><A HREF=\"https://b.example/\">Home</A>\n"
                                 "<DT><A HREF=\"https://c.example/\">HOME</A>\n"
                                 "<DT><A HREF=\"https://a.example\">Home again</A>\n"
                                 "<DT><A HREF=\"https://d.example/x\"></A>\n"
                                 "</DL><p>\n";
        const ImportPlan plan = planFor(bytes);
        QCOMPARE(plan.categories.size(), 1);
        QStringList names;
        for (const ImportLink &link : plan.categories[0].links)
            names << link.name;
        QCOMPARE(names, (QStringList{"Home", "Home (2)", "HOME (3)", "d.example"}));
        QCOMPARE(plan.duplicates, 1);
        QVERIFY(ApplyBookmarkImport(plan).failures.isEmpty());
        QCOMPARE(BuildStartup::PageLinkFiles(startup("B")).size(), 4);
    }

    void fiveThousandLinksAreWrittenAndAStopKeepsWhatIsWritten()
    {
        const ImportPlan plan = planFor(BookmarkFiles::large(50, 100));
        QCOMPARE(plan.links, 5000);
        QCOMPARE(plan.categories.size(), 100);
        QCOMPARE(plan.categories[1].name, QString("Folder 0 - Part 0"));

        // Stopped after the 1,234th link: those stay, nothing more is written.
        int calls = 0;
        const ImportResult stopped = ApplyBookmarkImport(plan, [&calls](int done, int total) {
            ++calls;
            return !(done == 1234 && total == 5000);
        });
        QVERIFY(stopped.cancelled);
        QCOMPARE(stopped.linksWritten, 1234);
        QCOMPARE(calls, 1234);
        int onDisk = 0;
        for (const QString &cat : BuildStartup::CategoryFiles())
            onDisk += int(BuildStartup::PageLinkFiles(BuildStartup::CategoryFolder(cat)).size());
        QCOMPARE(onDisk, 1234);

        // The rest, planned again: what is there is skipped.
        const ImportPlan rest = planFor(BookmarkFiles::large(50, 100));
        QCOMPARE(rest.duplicates, 1234);
        QCOMPARE(rest.links, 5000 - 1234);
        const ImportResult whole = ApplyBookmarkImport(rest);
        QCOMPARE(whole.linksWritten, 5000 - 1234);
        onDisk = 0;
        for (const QString &cat : BuildStartup::CategoryFiles())
            onDisk += int(BuildStartup::PageLinkFiles(BuildStartup::CategoryFolder(cat)).size());
        QCOMPARE(onDisk, 5000);
        QCOMPARE(readLink("Folder 49 - Part 49", "Page 4999 & more").URLName,
                 QString("https://site4999.example/page?id=4999"));
    }
};

TARNWICK_TEST_MAIN(TestBookmarkImport)
#include "test_bookmarkimport.moc"
