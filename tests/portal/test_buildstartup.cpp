#include "BuildStartup.h"
#include "Folders.h"
#include "PortalFixture.h"
#include "TestMain.h"

#include <QTest>

using namespace BuildStartup;
using namespace PortalFixture;

// The link store: Page Link records, Categories and their folders, names that can't be files,
// and records cut short, garbled or holding a bullet that does not exist.
class TestBuildStartup : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ClearTemporaryHome();
        Folders::MakeFolderTree();
    }

    void aPageLinkIsWrittenInItsRecordFormat()
    {
        const PageLink link{"Tools", "http://tools.example.org/a,b", 3};
        const QString path = startup("Office/Tools.ptr");
        QVERIFY(SavePageLink(path, link));
        QCOMPARE(readBytes(path), QByteArray("LinkName = Tools\r\nURLName = "
                                             "http://tools.example.org/a,b\r\nBullet = 3\r\n\r\n"));
    }

    void aNameWithDotsIsTheFileNameAndReadsBackWithoutThem()
    {
        PageLink link{"www.example.com", "http://www.example.com/", 4};
        const QString path = PageLinkPath(startup("News"), link.LinkName);
        QCOMPARE(QFileInfo(path).fileName(), QString("www.example.com.ptr"));
        QVERIFY(SavePageLink(path, link));
        PageLink back;
        QVERIFY(LoadPageLink(path, back).ok);
        QCOMPARE(back.LinkName, QString("wwwexamplecom"));
        QCOMPARE(back.URLName, QString("http://www.example.com/"));
        QCOMPARE(back.Bullet, qint16(4));
    }

    void aCommaInANameComesBackEscaped()
    {
        const QString path = startup("News/Tom, Dick.ptr");
        QVERIFY(SavePageLink(path, {"Tom, Dick", "http://a.example/", 9}));
        PageLink back;
        QVERIFY(LoadPageLink(path, back).ok);
        QCOMPARE(back.LinkName, QString("Tom|4 Dick"));
    }

    void aCommaInAnAddressEndsItAtTheNextLoad()
    {
        const QString path = startup("News/Comma.ptr");
        QVERIFY(SavePageLink(path, {"Comma", "http://a.example/x,y", 2}));
        PageLink back;
        QVERIFY(LoadPageLink(path, back).ok);
        QCOMPARE(back.URLName, QString("http://a.example/x"));
        QCOMPARE(back.Bullet, qint16(2));
    }

    void anAddressBeyondAsciiIsKeptEscaped()
    {
        const QString path = startup("Travel/Cafe.ptr");
        QVERIFY(SavePageLink(
            path, {"Cafe", QString::fromUtf8("https://de.example.org/Käse/東京?q=ä&x=1"), 1}));
        PageLink back;
        QVERIFY(LoadPageLink(path, back).ok);
        QCOMPARE(back.URLName,
                 QString("https://de.example.org/K%C3%A4se/%E6%9D%B1%E4%BA%AC?q=%C3%A4&x=1"));
    }

    void anEmptiedNameWritesNothing()
    {
        QVERIFY(!SavePageLink(startup("News/.ptr"), {"", "http://a.example/", 9}));
        QVERIFY(!QFileInfo::exists(startup("News/.ptr")));
    }

    void aNameThatCantBeAFileIsRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("legal");
        QTest::newRow("plain") << "Weather" << true;
        QTest::newRow("dots") << "www.bbc.co.uk" << true;
        QTest::newRow("comma") << "Tom, Dick" << true;
        QTest::newRow("letters") << QString::fromUtf8("Café Zürich") << true;
        QTest::newRow("slash") << "News/Sport" << false;
        QTest::newRow("backslash") << "News\\Sport" << false;
        QTest::newRow("colon") << "a:b" << false;
        QTest::newRow("star") << "a*" << false;
        QTest::newRow("question") << "why?" << false;
        QTest::newRow("quote") << "say \"hi\"" << false;
        QTest::newRow("angle") << "<b>" << false;
        QTest::newRow("bar") << "a|b" << false;
        QTest::newRow("tab") << "a\tb" << false;
        QTest::newRow("dot") << "." << false;
        QTest::newRow("dotdot") << ".." << false;
        QTest::newRow("blank") << "   " << false;
    }
    void aNameThatCantBeAFileIsRefused()
    {
        QFETCH(QString, name);
        QFETCH(bool, legal);
        QCOMPARE(FileNameProblem(name).isEmpty(), legal);
        QCOMPARE(MakeCategory(name), legal);
        if (!name.contains('/'))
            QCOMPARE(SavePageLink(PageLinkPath(startup("News"), name), {name, "http://a/", 9}),
                     legal);
        if (!legal) {
            // Nothing was made anywhere in the store.
            QCOMPARE(CategoryFiles(), QStringList());
            QCOMPARE(PageLinkFiles(startup("News")), QStringList());
            QVERIFY(FileNameProblem(name).contains(name.trimmed().isEmpty() ? "empty" : name));
        }
    }

    void aCategoryIsAFileAndAFolder()
    {
        QVERIFY(MakeCategory("Music"));
        QCOMPARE(readBytes(startup("Music.Cat")), QByteArray("directory file Music\r\n"));
        QVERIFY(QFileInfo(startup("Music")).isDir());
        QCOMPARE(CategoryFiles(), QStringList{"Music.Cat"});
        QCOMPARE(CategoryName("Music.Cat"), QString("Music"));
        QCOMPARE(CategoryFolder("Music.Cat"), startup("Music"));
    }

    void aCategoryWithoutItsFolderIsListedWithNoLinks()
    {
        QVERIFY(writeBytes(startup("Lost.Cat"), "directory file Lost\r\n"));
        QCOMPARE(CategoryFiles(), QStringList{"Lost.Cat"});
        QCOMPARE(PageLinkFiles(CategoryFolder("Lost.Cat")), QStringList());
        // A new link makes the folder it needs.
        QVERIFY(SavePageLink(PageLinkPath(CategoryFolder("Lost.Cat"), "Found"),
                             {"Found", "http://f/", 9}));
        QCOMPARE(PageLinkFiles(CategoryFolder("Lost.Cat")), QStringList{"Found.ptr"});
    }

    void aFolderWithoutItsCategoryIsNoCategoryAndKeepsItsLinks()
    {
        QVERIFY(SavePageLink(startup("Hidden/One.ptr"), {"One", "http://one/", 1}));
        QCOMPARE(CategoryFiles(), QStringList());
        // Making the Category again shows the links that were kept.
        QVERIFY(MakeCategory("Hidden"));
        QCOMPARE(PageLinkFiles(CategoryFolder("Hidden.Cat")), QStringList{"One.ptr"});
        PageLink back;
        QVERIFY(LoadPageLink(startup("Hidden/One.ptr"), back).ok);
        QCOMPARE(back.URLName, QString("http://one/"));
    }

    void listsAreSortedIgnoringCaseAndHoldOnlyTheirFiles()
    {
        for (const char *name : {"beta", "Alpha", "gamma"})
            QVERIFY(MakeCategory(name));
        QVERIFY(writeBytes(startup("notes.txt"), "x"));
        QCOMPARE(CategoryFiles(), (QStringList{"Alpha.Cat", "beta.Cat", "gamma.Cat"}));
        QVERIFY(writeBytes(startup("beta/b.ptr"), "LinkName = b\r\n"));
        QVERIFY(writeBytes(startup("beta/A.ptr"), "LinkName = A\r\n"));
        QVERIFY(writeBytes(startup("beta/readme.txt"), "x"));
        QCOMPARE(PageLinkFiles(startup("beta")), (QStringList{"A.ptr", "b.ptr"}));
    }

    void namesStartingWithADotStayInTheLists()
    {
        // A name may start with a dot; its file is then a hidden one here, and still listed.
        QVERIFY(FileNameProblem("..net news").isEmpty());
        QVERIFY(MakeCategory(".plan"));
        QCOMPARE(CategoryFiles(), QStringList{".plan.Cat"});
        QVERIFY(SavePageLink(PageLinkPath(CategoryFolder(".plan.Cat"), "..net news"),
                             {"..net news", "http://n/", 2}));
        QCOMPARE(PageLinkFiles(CategoryFolder(".plan.Cat")), QStringList{"..net news.ptr"});
    }

    void aRecordCutShortGivesWhatItHolds()
    {
        const QString path = startup("News/Cut.ptr");
        QVERIFY(writeBytes(path, "LinkName = Cut\r\nURLName = http://cut.exa"));
        PageLink back{"old", "http://old/", 3};
        const LoadResult result = LoadPageLink(path, back);
        QVERIFY(result.ok);
        QCOMPARE(back.LinkName, QString("Cut"));
        QCOMPARE(back.URLName, QString("http://cut.exa"));
        QCOMPARE(back.Bullet, NewLinkBullet);
        QVERIFY(result.bulletReplaced);
        // The file is left as it was.
        QCOMPARE(readBytes(path), QByteArray("LinkName = Cut\r\nURLName = http://cut.exa"));
    }

    void aRecordOfJunkGivesAnEmptyLink()
    {
        const QString path = startup("News/Junk.ptr");
        QByteArray junk;
        for (int i = 0; i < 512; ++i)
            junk.append(char((i * 37 + 11) % 256));
        QVERIFY(writeBytes(path, junk));
        PageLink back{"old", "http://old/", 3};
        const LoadResult result = LoadPageLink(path, back);
        QVERIFY(result.ok);
        QCOMPARE(back.LinkName, QString());
        QCOMPARE(back.URLName, QString());
        QCOMPARE(back.Bullet, NewLinkBullet);
        QCOMPARE(readBytes(path), junk);
    }

    void aMissingRecordFailsAndLeavesAnEmptyLink()
    {
        PageLink back{"old", "http://old/", 3};
        const LoadResult result = LoadPageLink(startup("News/None.ptr"), back);
        QVERIFY(!result.ok);
        QVERIFY(!result.message.isEmpty());
        QCOMPARE(back.LinkName, QString());
        QCOMPARE(back.Bullet, NewLinkBullet);
    }

    void aBulletOutOfRangeTakesTheNewLinkBullet_data()
    {
        QTest::addColumn<QByteArray>("bullet");
        QTest::addColumn<int>("expected");
        QTest::addColumn<bool>("replaced");
        QTest::newRow("0") << QByteArray("0") << 0 << false;
        QTest::newRow("13") << QByteArray("13") << 13 << false;
        QTest::newRow("14, a picture the tab does not show") << QByteArray("14") << 14 << false;
        QTest::newRow("15") << QByteArray("15") << 9 << true;
        QTest::newRow("negative") << QByteArray("-1") << 9 << true;
        QTest::newRow("too big for 16 bits") << QByteArray("99999") << 9 << true;
        QTest::newRow("junk") << QByteArray("blue") << 9 << true;
        QTest::newRow("empty") << QByteArray("") << 9 << true;
        QTest::newRow("digits then junk") << QByteArray("7x") << 7 << false;
    }
    void aBulletOutOfRangeTakesTheNewLinkBullet()
    {
        QFETCH(QByteArray, bullet);
        QFETCH(int, expected);
        QFETCH(bool, replaced);
        const QString path = startup("News/B.ptr");
        QVERIFY(writeBytes(path, "LinkName = B\r\nURLName = http://b/\r\nBullet = " + bullet +
                                     "\r\n\r\n"));
        PageLink back;
        const LoadResult result = LoadPageLink(path, back);
        QVERIFY(result.ok);
        QCOMPARE(int(back.Bullet), expected);
        QCOMPARE(result.bulletReplaced, replaced);
    }
};

TARNWICK_TEST_MAIN(TestBuildStartup)
#include "test_buildstartup.moc"
