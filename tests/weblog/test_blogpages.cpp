#include "BlogFeed.h"
#include "BlogPages.h"
#include "Helpers.h"
#include "PictureSizing.h"
#include "ScriptedUi.h"
#include "Settings.h"
#include "TestMain.h"
#include "WebLogFixture.h"

#include <QDomDocument>
#include <QPainter>
#include <QTemporaryDir>
#include <QUrl>
#include <QXmlStreamReader>

using namespace BuildBlog;
using namespace WebLogFixture;

namespace {

struct Built
{
    BlogPagesResult page;
    BlogPagesResult comments;
    QString html;
    QString commentsHtml;
};

BlogPageOptions defaultOptions()
{
    BlogPageOptions options;
    options.txtWebSite = QStringLiteral("www.example.org");
    options.BlogDirName = QStringLiteral("Web_Log");
    return options;
}

Built build(BlogRecords &records, ScriptedUi &ui, JobState &state,
            const BlogPageOptions &options = defaultOptions())
{
    BlogPageBuilder builder(records, options, ui, state);
    Built built;
    built.page = builder.BuildBlogLocally();
    built.comments = builder.BuildBlogCommentsLocally();
    built.html = readText(WebLogFolder(records.main.FileName) + "/Web_Log.htm");
    built.commentsHtml = readText(WebLogFolder(records.main.FileName) + "/Comments.htm");
    return built;
}

// The headings of the sections in the order the page shows them.
QStringList headings(const QString &html)
{
    QStringList found;
    static const QRegularExpression heading(QStringLiteral("<h2>([^<]*)</h2>"));
    for (auto it = heading.globalMatch(html); it.hasNext();)
        found << it.next().captured(1);
    found.removeAll(QStringLiteral("Links"));
    return found;
}

} // namespace

// Web_Log.htm, Comments.htm, the section pictures and feed.xml built on this computer from the
// records and the default templates.
class TestBlogPages : public QObject
{
    Q_OBJECT
private:
    JobState state;
    ScriptedUi ui;

private slots:
    void init()
    {
        ClearTemporaryHome();
        QVERIFY(installBlogTemplates());
        state.reset();
        ui = ScriptedUi();
    }

    void aWebLogWithoutSectionsIsTopEnd1AndEnd3()
    {
        BlogRecords records = newWebLog("Empty", "Nothing yet");
        const Built built = build(records, ui, state);
        QCOMPARE(built.page.outcome, BlogPagesOutcome::Built);
        QCOMPARE(built.page.sectionsWritten, 0);
        QVERIFY(built.html.startsWith("<!DOCTYPE html>"));
        QVERIFY(built.html.contains("<h1>Nothing yet</h1>"));
        QVERIFY(built.html.contains("<aside class=\"pointers\">"));
        QVERIFY(built.html.trimmed().endsWith("</html>"));
        QVERIFY(!built.html.contains("<article"));
        QCOMPARE(tidyErrors(WebLogFolder("Empty") + "/Web_Log.htm"), QString());
        QCOMPARE(tidyErrors(WebLogFolder("Empty") + "/Comments.htm"), QString());
    }

    void anOldRecordWithoutColoursGivesThePageItsDefaultColours()
    {
        writeText(MainRecordPath("Old"), "FileName = Old\r\nMainTitle = Old one\r\n");
        BlogRecords records;
        records.main.FileName = QStringLiteral("Old");
        QVERIFY(LoadBlogMain(records));
        QVERIFY(records.main.BackgroundColor.isEmpty());
        const Built built = build(records, ui, state);
        QCOMPARE(built.page.outcome, BlogPagesOutcome::Built);
        // Each colour line of the style sheet stands twice: the fixed one and the one the
        // record fills, which falls back to the same default.
        QCOMPARE(built.html.count("background-color: #7FFF7F;"), 2);
        QCOMPARE(built.html.count("color: #7F7FFF;"), 4);
        QCOMPARE(built.html.count("      color: #000000;"), 2);
        QVERIFY(!built.html.contains("!!"));
        QVERIFY(!built.html.contains(": ;"));
    }

    void sectionsFollowTheirOrderThenTheirNames_data()
    {
        QTest::addColumn<QStringList>("orders");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("0 2 1") << QStringList{"0", "2", "1"}
                               << QStringList{"Alpha", "Gamma", "Beta"};
        QTest::newRow("all 0") << QStringList{"0", "0", "0"}
                               << QStringList{"Alpha", "Beta", "Gamma"};
        QTest::newRow("2 0 0") << QStringList{"2", "0", "0"}
                               << QStringList{"Beta", "Gamma", "Alpha"};
    }
    void sectionsFollowTheirOrderThenTheirNames()
    {
        QFETCH(QStringList, orders);
        QFETCH(QStringList, expected);
        BlogRecords records = newWebLog("Sequence", "Sequence");
        // Made in another order than the names, so the files' order decides.
        addSection(records, "Gamma", "g", orders.at(2));
        addSection(records, "Alpha", "a", orders.at(0));
        addSection(records, "Beta", "b", orders.at(1));
        const Built built = build(records, ui, state);
        QCOMPARE(headings(built.html), expected);
        // The records of the last entry of the list are current afterwards.
        QCOMPARE(records.section.SubTitle, QStringLiteral("Gamma"));
    }

    void aSectionWhoseOrderIsNoPlaceIsLeftOut()
    {
        BlogRecords records = newWebLog("Odd", "Odd");
        addSection(records, "Kept", "k", "1");
        addSection(records, "Too far", "t", "9");
        addSection(records, "Half", "h", "0.5");
        const Built built = build(records, ui, state);
        QCOMPARE(headings(built.html), QStringList{"Kept"});
        // The records stay as they were.
        QVERIFY(QFileInfo(SectionRecordPath("Odd", "Too far")).isFile());
    }

    void leftAndRightSectionsUseTheirTemplates()
    {
        BlogRecords records = newWebLog("Sides", "Sides");
        addSection(records, "One", "left one", "0", QString(), "Left");
        addSection(records, "Two", "right one", "0", QString(), "Right");
        addSection(records, "Three", "empty counts as right", "0", QString(), QString());
        const Built built = build(records, ui, state);
        QCOMPARE(built.html.count("class=\"section left\""), 1);
        QCOMPARE(built.html.count("class=\"section right\""), 2);
    }

    void optionalLinesVanish()
    {
        BlogRecords records = newWebLog("Plain", "Plain");
        addSection(records, "Bare", "Only text");
        records.section.ShowAuthor = "False";
        records.section.ShowDate = "False";
        records.section.ShowLine = "False";
        records.section.ShowComment = "False";
        SaveBlogSection(records);
        SaveSetting("EmailID", "ann@example.org");
        const Built built = build(records, ui, state);
        QVERIFY(built.html.contains("Only text"));
        QVERIFY(!built.html.contains("Written by"));
        QVERIFY(!built.html.contains("class=\"date\""));
        QVERIFY(!built.html.contains("class=\"line\""));
        QVERIFY(!built.html.contains("mailto:"));
        // No picture: the picture's lines vanish, "Sml_" alone never reaches the page.
        QVERIFY(!built.html.contains("<figure"));
        QVERIFY(!built.html.contains("Sml_"));

        records.section.ShowAuthor = "True";
        records.section.ShowLine = "";
        records.section.ShowComment = "";
        SaveBlogSection(records);
        const Built shown = build(records, ui, state);
        QVERIFY(shown.html.contains("Written by Ann"));
        QVERIFY(shown.html.contains("border-top-width: 5px"));
        QVERIFY(shown.html.contains("mailto:ann@example.org"));
    }

    void aLineWithTwoPlaceholdersGoesWhenTheSecondGivesNothing()
    {
        BlogRecords records = newWebLog("Caption", "Caption");
        QTemporaryDir pictures;
        QVERIFY(makePhoto(pictures.filePath("view.jpg"), Qt::blue));
        addSection(records, "Seen", "text", "0", pictures.filePath("view.jpg"));
        records.section.PhotoTitle.clear();
        SaveBlogSection(records);
        const Built built = build(records, ui, state);
        // The caption line holds the picture's name and the empty caption: it goes whole.
        QVERIFY(built.html.contains("src=\"Sml_view.jpg\""));
        QVERIFY(!built.html.contains("<figcaption"));
    }

    void anExclamationMarkInATitleReachesThePage()
    {
        BlogRecords records = newWebLog("Wow", "Wow!! Great!");
        addSection(records, "Hello!", "Hi! there");
        const Built built = build(records, ui, state);
        QVERIFY(built.html.contains("<h1>Wow!! Great!</h1>"));
        QVERIFY(built.html.contains("<h2>Hello!</h2>"));
        QVERIFY(built.html.contains("Hi! there"));
        QVERIFY(!built.html.contains("<|>"));
    }

    void textLinesBecomeParagraphsAndTagsStay()
    {
        BlogRecords records = newWebLog("Tags", "Tags");
        addSection(records, "Tagged", "First <b>bold</b>\r\nSecond <i>it</i> <u>under</u>");
        const Built built = build(records, ui, state);
        QVERIFY(built.html.contains("First <b>bold</b><p>Second <i>it</i> <u>under</u>"));
        QCOMPARE(tidyErrors(WebLogFolder("Tags") + "/Web_Log.htm"), QString());
    }

    void picturesAreSizedByTheWebLogPercentage()
    {
        SaveSetting("Blog_resize", "25");
        BlogRecords records = newWebLog("Pics", "Pics");
        QTemporaryDir pictures;
        QVERIFY(makePhoto(pictures.filePath("My View.jpg"), Qt::darkGreen, 800, 600));
        addSection(records, "Seen", "text", "0", pictures.filePath("My View.jpg"));
        BlogPageOptions options = defaultOptions();
        options.Blog_resize = "25";
        const Built built = build(records, ui, state, options);
        QCOMPARE(built.page.picturesSized, 1);
        const QString made = WebLogFolder("Pics") + "/Sml_My View.jpg";
        QCOMPARE(QImage(made).size(), QSize(200, 150));
        QVERIFY(built.html.contains("src=\"Sml_My%20View.jpg\""));
        QVERIFY(built.html.contains("<figcaption data-for=\"Sml_My%20View.jpg\">The view"));
        // The source picture is only read.
        QCOMPARE(QImage(pictures.filePath("My View.jpg")).size(), QSize(800, 600));

        // A copy that is still good is not made again; a new percentage makes it again.
        const Built again = build(records, ui, state, options);
        QCOMPARE(again.page.picturesSized, 0);
        options.Blog_resize = "50";
        const Built larger = build(records, ui, state, options);
        QCOMPARE(larger.page.picturesSized, 1);
        QCOMPARE(QImage(made).size(), QSize(400, 300));
        QCOMPARE(tidyErrors(WebLogFolder("Pics") + "/Web_Log.htm"), QString());
    }

    void aPictureAlreadyReducedIsNotReducedAgain()
    {
        BlogRecords records = newWebLog("Small", "Small");
        QTemporaryDir pictures;
        QVERIFY(makePhoto(pictures.filePath("Sml_done.jpg"), Qt::red, 120, 90));
        addSection(records, "Done", "text", "0", pictures.filePath("Sml_done.jpg"));
        const Built built = build(records, ui, state);
        QCOMPARE(QImage(WebLogFolder("Small") + "/Sml_Sml_done.jpg").size(), QSize(120, 90));
        QVERIFY(built.html.contains("src=\"Sml_Sml_done.jpg\""));
    }

    void aMissingPictureOrOneThatIsNoPictureLeavesItsSectionWithout()
    {
        BlogRecords records = newWebLog("Faults", "Faults");
        QTemporaryDir pictures;
        const QString broken = pictures.filePath("broken.jpg");
        QVERIFY(writeText(broken, "this is no JPEG"));
        addSection(records, "Gone", "gone text", "0", pictures.filePath("gone.jpg"));
        addSection(records, "Broken", "broken text", "0", broken);
        const Built built = build(records, ui, state);
        QCOMPARE(built.page.outcome, BlogPagesOutcome::Built);
        QCOMPARE(built.page.pictureFaults.size(), 2);
        QVERIFY(built.page.pictureFaults.join("\n").contains("gone.jpg"));
        QVERIFY(built.html.contains("gone text"));
        QVERIFY(built.html.contains("broken text"));
        QVERIFY(!built.html.contains("<img"));
        QVERIFY(!QFileInfo(WebLogFolder("Faults") + "/Sml_broken.jpg").exists());
        // The records keep their pictures, for when the files are back.
        records.section.SubTitle = "Gone";
        QVERIFY(LoadBlogSection(records));
        QCOMPARE(records.section.PhotoPath, pictures.filePath("gone.jpg"));
    }

    void pointersAreGroupedByCategory()
    {
        BlogRecords records = newWebLog("Links", "Links");
        addSection(records, "S", "s");
        addPointer(records, "News", "Daily", "http://example.org/daily");
        addPointer(records, "News", "Weekly", "http://example.org/weekly");
        addPointer(records, "Tools", "Maps", "http://example.org/maps");
        const Built built = build(records, ui, state);
        QCOMPARE(built.html.count("<h3>News</h3>"), 1);
        QCOMPARE(built.html.count("<h3>Tools</h3>"), 1);
        QCOMPARE(built.html.count("class=\"link\""), 3);
        QVERIFY(built.html.indexOf("Weekly") < built.html.indexOf("<h3>Tools</h3>"));
        QVERIFY(built.html.contains("flex-basis: 25%"));

        BlogPageOptions hidden = defaultOptions();
        hidden.ShowPointersCk = false;
        const Built without = build(records, ui, state, hidden);
        QCOMPARE(without.html.count("class=\"link\""), 0);
        QVERIFY(without.html.contains("flex-basis: 98%"));
    }

    void aFirstPointerWithoutCategoryTakesTheSecondTemplate()
    {
        BlogRecords records = newWebLog("NoCat", "NoCat");
        addPointer(records, "", "Plain", "http://example.org/plain");
        const Built built = build(records, ui, state);
        QCOMPARE(built.html.count("class=\"link\""), 1);
        QVERIFY(!built.html.contains("<h3>"));
    }

    void commentPageAndItsLink()
    {
        BlogRecords records = newWebLog("Talk", "Talk");
        addSection(records, "S", "s");
        addComment(records, "First", "Nice!\r\nSecond line");
        addComment(records, "Second", "Thanks");
        const Built built = build(records, ui, state);
        QVERIFY(built.html.contains(
            "<a href=\"http://www.example.org/Web_Log/Talk/Comments.htm\">View Comments</a> (2)"));
        QCOMPARE(built.commentsHtml.count("class=\"comment\""), 2);
        QVERIFY(built.commentsHtml.contains("Nice!\r\nSecond line"));
        QVERIFY(built.commentsHtml.contains("href=\"Web_Log.htm\""));
        QCOMPARE(tidyErrors(WebLogFolder("Talk") + "/Comments.htm"), QString());

        BlogPageOptions hidden = defaultOptions();
        hidden.ShowCommentCk = false;
        QVERIFY(!build(records, ui, state, hidden).html.contains("View Comments"));
    }

    void aSiteTypedWithItsSchemeIsNotDoubled()
    {
        BlogRecords records = newWebLog("Local Site", "L");
        BlogPageOptions options = defaultOptions();
        options.txtWebSite = "http://127.0.0.1:8080";
        options.ClientRoot = "ann";
        const Built built = build(records, ui, state, options);
        QVERIFY(built.html.contains(
            "href=\"http://127.0.0.1:8080/ann/Web_Log/Local_Site/Comments.htm\""));
    }

    void theFeedIsAtomWithOneEntryPerSectionNewestFirst()
    {
        BlogRecords records = newWebLog("Feed Log", "Feed & more");
        addSection(records, "Older", "old <b>text</b>", "0", QString(), "Left", "2024-01-02");
        addSection(records, "Newest", "new text", "1", QString(), "Left", "2024-03-04");
        addSection(records, "Middle", "mid", "2", QString(), "Left", "2024-02-03");
        BlogPageOptions options = defaultOptions();
        options.txtWebSite = "http://127.0.0.1:8080";
        const Built built = build(records, ui, state, options);
        QVERIFY(built.html.contains("<link rel=\"alternate\" type=\"application/atom+xml\""));
        QVERIFY(built.html.contains("href=\"feed.xml\""));

        QFile file(WebLogFolder("Feed Log") + "/feed.xml");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QDomDocument feed;
        QVERIFY(feed.setContent(&file, true));
        const QString atom = "http://www.w3.org/2005/Atom";
        const QDomElement root = feed.documentElement();
        QCOMPARE(root.localName(), QString("feed"));
        QCOMPARE(root.namespaceURI(), atom);
        // RFC 4287: a feed has exactly one id, title and updated, an author (here, or in every
        // entry), and a self link is recommended.
        const auto only = [&](const QDomElement &parent, const QString &name) {
            const QDomNodeList list = parent.elementsByTagNameNS(atom, name);
            int direct = 0;
            QDomElement found;
            for (int i = 0; i < list.size(); ++i) {
                if (list.at(i).parentNode() == parent) {
                    ++direct;
                    found = list.at(i).toElement();
                }
            }
            return direct == 1 ? found : QDomElement();
        };
        const auto absolute = [](const QString &text) {
            const QUrl url(text);
            return url.isValid() && !url.isRelative() && !url.host().isEmpty();
        };
        QVERIFY(!only(root, "id").isNull());
        QVERIFY(absolute(only(root, "id").text()));
        QCOMPARE(only(root, "title").text(), QString("Feed & more"));
        QVERIFY(QDateTime::fromString(only(root, "updated").text(), Qt::ISODate).isValid());
        QVERIFY(!only(root, "author").isNull());
        QStringList relations;
        QDomElement self;
        for (QDomElement link = root.firstChildElement("link"); !link.isNull();
             link = link.nextSiblingElement("link")) {
            relations << link.attribute("rel");
            QVERIFY(absolute(link.attribute("href")));
            if (link.attribute("rel") == "self")
                self = link;
        }
        QVERIFY(relations.contains("alternate"));
        QCOMPARE(self.attribute("href"),
                 QString("http://127.0.0.1:8080/Web_Log/Feed_Log/feed.xml"));

        QStringList titles;
        QStringList ids;
        QDateTime previous;
        for (QDomElement entry = root.firstChildElement("entry"); !entry.isNull();
             entry = entry.nextSiblingElement("entry")) {
            QVERIFY(!only(entry, "id").isNull());
            QVERIFY(!only(entry, "title").isNull());
            QVERIFY(!only(entry, "updated").isNull());
            const QDateTime updated =
                QDateTime::fromString(only(entry, "updated").text(), Qt::ISODate);
            QVERIFY(updated.isValid());
            if (previous.isValid())
                QVERIFY(updated <= previous);
            previous = updated;
            const QDomElement link = entry.firstChildElement("link");
            QCOMPARE(link.attribute("href"),
                     QString("http://127.0.0.1:8080/Web_Log/Feed_Log/Web_Log.htm"));
            QCOMPARE(entry.firstChildElement("content").attribute("type"), QString("html"));
            titles << only(entry, "title").text();
            if (titles.last() == "Older")
                QCOMPARE(entry.firstChildElement("content").text(), QString("old <b>text</b>"));
            ids << only(entry, "id").text();
        }
        QCOMPARE(titles, QStringList({"Newest", "Middle", "Older"}));
        QCOMPARE(QSet<QString>(ids.begin(), ids.end()).size(), 3);
    }

    // A sample Web Log as a user would fill it: the page the screenshots in docs/ show. With
    // TARNWICK_WEBLOG_PAGE_OUT set, the built folder is copied there.
    void aSampleWebLogMakesACompletePage()
    {
        SaveSetting("EmailID", "ann@example.org");
        BlogRecords records = newWebLog("Trip Notes", "Trip Notes: a week by the sea");
        records.main.BackgroundColor = "#DCEBF5";
        records.main.TitleColor = "#1F4E79";
        records.main.SubTextColor = "#1A1A1A";
        SaveBlogMain(records);
        QTemporaryDir pictures;
        const auto scene = [&](const QString &name, QColor sky, QColor ground) {
            QImage image(1200, 800, QImage::Format_RGB32);
            QPainter painter(&image);
            painter.fillRect(0, 0, 1200, 520, sky);
            painter.fillRect(0, 520, 1200, 280, ground);
            painter.setBrush(QColor(255, 236, 160));
            painter.setPen(Qt::NoPen);
            painter.drawEllipse(QPoint(900, 200), 90, 90);
            painter.end();
            const QString path = pictures.filePath(name);
            image.save(path, "JPEG", 90);
            return path;
        };
        addSection(records, "Day one: the harbour",
                   "We arrived at the harbour early in the morning, just as the fishing boats "
                   "came in.\r\nThe market was already busy: <b>fresh bread</b>, cheese and the "
                   "first strawberries of the year.",
                   "0", scene("harbour.jpg", QColor(120, 170, 220), QColor(40, 90, 140)), "Left",
                   "2024-05-01");
        addSection(records, "Day two: along the cliffs",
                   "A long walk on the cliff path to the lighthouse. <i>Windy</i>, but the view "
                   "was worth every step.",
                   "1", scene("cliffs.jpg", QColor(170, 200, 230), QColor(90, 130, 70)), "Right",
                   "2024-05-02");
        addSection(records, "Day three: rain",
                   "It rained all day. We read, played cards and "
                   "planned tomorrow's ferry trip.",
                   "2", QString(), "Left", "2024-05-03");
        addPointer(records, "Travel", "Ferry timetable", "http://ferries.example.org/");
        addPointer(records, "Travel", "Tide tables", "http://tides.example.org/");
        addPointer(records, "Friends", "Bob's photos", "http://bob.example.org/");
        addComment(records, "From Bob", "Lovely pictures! The harbour looks wonderful.");
        BlogPageOptions options = defaultOptions();
        options.Blog_resize = "40";
        const Built built = build(records, ui, state, options);
        QCOMPARE(built.page.outcome, BlogPagesOutcome::Built);
        QCOMPARE(built.page.sectionsWritten, 3);
        QCOMPARE(built.page.picturesSized, 2);
        const QString folder = WebLogFolder("Trip Notes");
        QCOMPARE(tidyErrors(folder + "/Web_Log.htm"), QString());
        QCOMPARE(tidyErrors(folder + "/Comments.htm"), QString());
        const QString out = qEnvironmentVariable("TARNWICK_WEBLOG_PAGE_OUT");
        if (!out.isEmpty()) {
            QDir().mkpath(out);
            for (const QString &name : QDir(folder).entryList(QDir::Files))
                QFile::copy(folder + "/" + name, out + "/" + name);
        }
    }

    void aMissingTemplateKeepsTheLastPage()
    {
        BlogRecords records = newWebLog("Keep", "Keep");
        addSection(records, "S", "first build");
        QCOMPARE(build(records, ui, state).page.outcome, BlogPagesOutcome::Built);
        QFile::remove(Folders::BlogFolder() + "/B_End1.txt");
        addSection(records, "S", "second build");
        const Built built = build(records, ui, state);
        QCOMPARE(built.page.outcome, BlogPagesOutcome::NotWritten);
        QVERIFY(built.page.message.contains("B_End1.txt"));
        QVERIFY(built.html.contains("first build"));
    }

    void templateNamesAreMatchedWithoutCase()
    {
        QVERIFY(QFile::rename(Folders::BlogFolder() + "/B_End2.txt",
                              Folders::BlogFolder() + "/B_end2.txt"));
        BlogRecords records = newWebLog("Case", "Case");
        addPointer(records, "News", "Daily", "http://example.org/daily");
        const Built built = build(records, ui, state);
        QCOMPARE(built.page.outcome, BlogPagesOutcome::Built);
        QVERIFY(built.html.contains("<h3>News</h3>"));
    }

    void cancelWhileSizingKeepsTheLastPage()
    {
        BlogRecords records = newWebLog("Stop", "Stop");
        QTemporaryDir pictures;
        for (int i = 0; i < 6; ++i) {
            const QString path = pictures.filePath(QString("p%1.jpg").arg(i));
            QVERIFY(makePhoto(path, QColor::fromHsv(i * 40, 200, 200), 1200, 900));
            addSection(records, QString("Pic %1").arg(i), "t", "0", path);
        }
        QVERIFY(writeText(WebLogFolder("Stop") + "/Web_Log.htm", "old page"));
        BlogPageOptions options = defaultOptions();
        options.sizingThreads = 1;
        ui.onProcessEvents = [this] {
            if (ui.stepTexts.join("\n").contains("Sizing picture 2 of"))
                state.UploadCancelled = true;
        };
        BlogPageBuilder builder(records, options, ui, state);
        const BlogPagesResult result = builder.BuildBlogLocally();
        QCOMPARE(result.outcome, BlogPagesOutcome::Cancelled);
        QCOMPARE(readText(WebLogFolder("Stop") + "/Web_Log.htm"), QString("old page"));
        QVERIFY(result.picturesSized < 6);
    }
};

TARNWICK_TEST_MAIN(TestBlogPages)
#include "test_blogpages.moc"
