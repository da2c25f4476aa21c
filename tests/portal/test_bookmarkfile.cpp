#include "BookmarkFile.h"
#include "BookmarkFiles.h"
#include "TestMain.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace BookmarkFile;

namespace {

const BookmarkFolder *folderNamed(const BookmarkFileResult &file, const QStringList &path)
{
    for (const BookmarkFolder &folder : file.folders) {
        if (folder.path == path)
            return &folder;
    }
    return nullptr;
}

QStringList paths(const BookmarkFileResult &file)
{
    QStringList all;
    for (const BookmarkFolder &folder : file.folders)
        all << folder.path.join(QLatin1Char('/'));
    return all;
}

} // namespace

// The reader of the bookmarks files that browsers export: the folders, links, entities,
// separators and icons of Firefox's and Chromium's exports, and the files that are not
// bookmarks or are damaged.
class TestBookmarkFile : public QObject
{
    Q_OBJECT
private slots:
    void firefoxExportGivesItsFoldersAndLinks()
    {
        const BookmarkFileResult file = ReadBookmarks(BookmarkFiles::firefox(), "bookmarks.html");
        QVERIFY2(file.ok, qPrintable(file.message));
        QCOMPARE(file.heading, QString("Bookmarks Menu"));
        QCOMPARE(paths(file), (QStringList{"Mozilla Firefox", "Bookmarks Menu", "Bookmarks Toolbar",
                                           "News", "News/Local", "Other Bookmarks"}));
        QCOMPARE(file.links, 8);
        QCOMPARE(file.notWeb, 2); // the bookmarklet and the place: query
        QCOMPARE(file.separators, 2);
        QCOMPARE(file.folderCount, 5);

        const BookmarkFolder *menu = folderNamed(file, {"Bookmarks Menu"});
        QVERIFY(menu);
        QCOMPARE(menu->links.size(), 2);
        QCOMPARE(menu->links[0].title, QString::fromUtf8("Café & Bar: \"Le Marché\""));
        QCOMPARE(menu->links[0].url,
                 QString::fromUtf8("https://café-du-marché.example/carte?jour=lundi,mardi"));
        QCOMPARE(menu->links[1].title, QString("Example"));

        const BookmarkFolder *news = folderNamed(file, {"News"});
        QVERIFY(news);
        QCOMPARE(news->links.size(), 1);
        QCOMPARE(news->links[0].title, QString::fromUtf8("Новости"));
        const BookmarkFolder *firefox = folderNamed(file, {"Mozilla Firefox"});
        QVERIFY(firefox);
        QCOMPARE(firefox->links[0].url, QString("https://support.mozilla.org/products/firefox"));
        QCOMPARE(firefox->links[0].title, QString("Get Help"));
        const BookmarkFolder *other = folderNamed(file, {"Other Bookmarks"});
        QVERIFY(other);
        QCOMPARE(other->links.size(), 1);
        QCOMPARE(other->links[0].title, QString("Slash / Back\\slash | Pipe? Star* <Angle>"));
    }

    void chromiumExportGivesItsFoldersAndLinks()
    {
        const BookmarkFileResult file = ReadBookmarks(BookmarkFiles::chromium(), "bookmarks.html");
        QVERIFY2(file.ok, qPrintable(file.message));
        QCOMPARE(file.heading, QString("Bookmarks"));
        // The bar's own name is left out of the folders inside it.
        QCOMPARE(paths(file),
                 (QStringList{"Bookmarks bar", "Travel/Trains", "Travel", "Other bookmarks"}));
        QCOMPARE(file.links, 6);
        QCOMPARE(file.notWeb, 1);
        const BookmarkFolder *bar = folderNamed(file, {"Bookmarks bar"});
        QVERIFY(bar);
        QCOMPARE(bar->links[1].title, QString("It's the \"Org\""));
        const BookmarkFolder *trains = folderNamed(file, {"Travel", "Trains"});
        QVERIFY(trains);
        QCOMPARE(trains->links[0].title, QString::fromUtf8("Deutsche Bahn – Fahrkarten"));
        QCOMPARE(trains->links[1].url, QString("https://xn--mnchen-3ya.example/stra%C3%9Fe"));
        QCOMPARE(trains->links[1].title, QString::fromUtf8("München Straße"));
        const BookmarkFolder *other = folderNamed(file, {"Other bookmarks"});
        QVERIFY(other);
        QCOMPARE(other->links[0].title, QString::fromUtf8("日本語のページ"));
    }

    void aFileOfFiveThousandLinksIsReadWhole()
    {
        const QByteArray bytes = BookmarkFiles::large(50, 100);
        QVERIFY(bytes.size() > 5000 * 1000); // each link carries its icon
        const BookmarkFileResult file = ReadBookmarks(bytes, "large.html");
        QVERIFY2(file.ok, qPrintable(file.message));
        QCOMPARE(file.links, 5000);
        QCOMPARE(file.folders.size(), 100);
        QCOMPARE(file.folders[0].path, (QStringList{"Folder 0"}));
        QCOMPARE(file.folders[1].path, (QStringList{"Folder 0", "Part 0"}));
        QCOMPARE(file.folders[1].links.size(), 50);
        QCOMPARE(file.folders[99].links.last().url,
                 QString("https://site4999.example/page?id=4999"));
        QCOMPARE(file.folders[99].links.last().title, QString("Page 4999 & more"));
    }

    void entitiesAreDecoded_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("decoded");
        QTest::newRow("named") << "a &amp; b &lt;c&gt; &quot;d&quot; &apos;e&apos;"
                               << "a & b <c> \"d\" 'e'";
        QTest::newRow("numeric") << "&#39;&#x2014;&#X41;&#8364;" << QString::fromUtf8("'—A€");
        QTest::newRow("beyond the first plane") << "&#x1F600;" << QString::fromUtf8("😀");
        QTest::newRow("unknown stays") << "&bogus; &amp"
                                       << "&bogus; &amp";
        QTest::newRow("no code point") << "&#xD800;&#0;&#1114112;"
                                       << "&#xD800;&#0;&#1114112;";
    }
    void entitiesAreDecoded()
    {
        QFETCH(QString, text);
        QFETCH(QString, decoded);
        QCOMPARE(DecodeEntities(text), decoded);
    }

    void aLinkWithoutAnAddressOrOfAnotherKindIsLeftOut()
    {
        const QByteArray file = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<H1>B</H1>\n<DL><p>\n"
                                "<DT><A>No address</A>\n"
                                "<DT><A HREF=\"file:///home/me/notes.txt\">Notes</A>\n"
                                "<DT><A HREF=\"about:config\">Config</A>\n"
                                "<DT><A HREF=\"http://old.example/\">Old</A>\n"
                                "</DL><p>\n";
        const BookmarkFileResult result = ReadBookmarks(file, "b.html");
        QVERIFY2(result.ok, qPrintable(result.message));
        QCOMPARE(result.links, 1);
        QCOMPARE(result.notWeb, 3);
        QCOMPARE(result.folders[0].path, (QStringList{"B"}));
    }

    void aFileCutShortGivesAClearMessageAndNoLinks_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray whole = BookmarkFiles::firefox();
        QTest::newRow("half") << whole.left(whole.size() / 2);
        QTest::newRow("inside an icon") << whole.left(whole.indexOf("base64,") + 40);
        QTest::newRow("inside a title") << whole.left(whole.indexOf(">Wikipedia") + 5);
        QTest::newRow("before the last list end") << whole.left(whole.lastIndexOf("</DL>"));
        QTest::newRow("inside the comment") << whole.left(whole.indexOf("DO NOT EDIT"));
        const QByteArray chromium = BookmarkFiles::chromium();
        QTest::newRow("chromium, inside a folder") << chromium.left(chromium.indexOf("SNCF"));
    }
    void aFileCutShortGivesAClearMessageAndNoLinks()
    {
        QFETCH(QByteArray, bytes);
        const BookmarkFileResult file = ReadBookmarks(bytes, "bookmarks.html");
        QVERIFY(!file.ok);
        QVERIFY2(file.message.contains("ends too early") &&
                     file.message.contains("'bookmarks.html'") &&
                     file.message.contains("Nothing was added"),
                 qPrintable(file.message));
        QCOMPARE(file.links, 0);
        QVERIFY(file.folders.isEmpty());
    }

    void aFileThatIsNotBookmarksSaysSo_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("a web page") << QByteArray("<!DOCTYPE html>\n<html><body><dl><dt><a "
                                                  "href=\"https://a.example/\">A</a></dl></body>"
                                                  "</html>\n");
        QTest::newRow("a picture") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
        QTest::newRow("a record file")
            << QByteArray("LinkName = NPR\r\nURLName = https://npr.org/\r\n");
        QByteArray noise(4096, '\0');
        QRandomGenerator random(7);
        for (char &c : noise)
            c = char(random.bounded(256));
        QTest::newRow("noise") << noise;
    }
    void aFileThatIsNotBookmarksSaysSo()
    {
        QFETCH(QByteArray, bytes);
        const BookmarkFileResult file = ReadBookmarks(bytes, "photo.png");
        QVERIFY(!file.ok);
        QVERIFY2(file.message.contains("'photo.png' is not a bookmarks file"),
                 qPrintable(file.message));
        QVERIFY(file.folders.isEmpty());
    }

    void junkInsideABookmarksFileIsDamage()
    {
        QByteArray bytes = BookmarkFiles::chromium();
        QByteArray junk(512, '\0');
        QRandomGenerator random(11);
        for (char &c : junk)
            c = char(random.bounded(256));
        junk[17] = '\0';
        bytes.insert(bytes.indexOf("<DT><H3"), junk);
        const BookmarkFileResult file = ReadBookmarks(bytes, "bookmarks.html");
        QVERIFY(!file.ok);
        QVERIFY2(file.message.contains("holds bytes that are not text") &&
                     file.message.contains("Nothing was added"),
                 qPrintable(file.message));
        QCOMPARE(file.links, 0);
    }

    void aBookmarksFileWithNoLinksSaysSo()
    {
        const QByteArray bytes = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<H1>Bookmarks</H1>\n"
                                 "<DL><p>\n    <DT><H3 PERSONAL_TOOLBAR_FOLDER=\"true\">Bookmarks "
                                 "bar</H3>\n    <DL><p>\n    </DL><p>\n</DL><p>\n";
        const BookmarkFileResult file = ReadBookmarks(bytes, "empty.html");
        QVERIFY(!file.ok);
        QVERIFY2(file.message.contains("holds no links"), qPrintable(file.message));
    }

    void aFileInTheOldSingleByteCodePageIsRead()
    {
        const QByteArray bytes =
            "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<H1>Favorites</H1>\n<DL><p>\n"
            "<DT><A HREF=\"http://cafe.example/\">Caf\xE9 \x80 Menu</A>\n"
            "</DL><p>\n";
        const BookmarkFileResult file = ReadBookmarks(bytes, "old.htm");
        QVERIFY2(file.ok, qPrintable(file.message));
        QCOMPARE(file.folders[0].links[0].title, QString::fromUtf8("Café € Menu"));
    }

    void deepFoldersShareTheNameOfTheirAncestor()
    {
        QByteArray bytes = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<H1>B</H1>\n<DL><p>\n";
        const int depth = 5000;
        for (int i = 0; i < depth; ++i)
            bytes += "<DT><H3>F" + QByteArray::number(i) + "</H3>\n<DL><p>\n";
        bytes += "<DT><A HREF=\"https://deep.example/\">Deep</A>\n";
        for (int i = 0; i < depth; ++i)
            bytes += "</DL><p>\n";
        bytes += "</DL><p>\n";
        const BookmarkFileResult file = ReadBookmarks(bytes, "deep.html");
        QVERIFY2(file.ok, qPrintable(file.message));
        QCOMPARE(file.folders.size(), 1);
        QCOMPARE(file.folders[0].path.size(), MaxNameDepth);
        QCOMPARE(file.folderCount, depth);
    }

    void theFileIsReadFromTheDisk()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("bookmarks_2026_11_25.html");
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(BookmarkFiles::chromium());
        out.close();
        const BookmarkFileResult file = ReadBookmarkFile(path);
        QVERIFY2(file.ok, qPrintable(file.message));
        QCOMPARE(file.links, 6);
        const BookmarkFileResult missing = ReadBookmarkFile(dir.filePath("gone.html"));
        QVERIFY(!missing.ok);
        QVERIFY2(missing.message.contains("was not found"), qPrintable(missing.message));
    }
};

TARNWICK_TEST_MAIN(TestBookmarkFile)
#include "test_bookmarkfile.moc"
