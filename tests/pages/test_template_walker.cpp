#include "Folders.h"
#include "Settings.h"
#include "TemplateState.h"
#include "TemplateWalker.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QTextStream>

namespace {

struct Walk
{
    QString page;
    TemplateWalkResult result;
};

Walk walk(const QString &templateText, TemplateState &state)
{
    QString source = templateText;
    QTextStream in(&source, QIODevice::ReadOnly);
    Walk out;
    QTextStream page(&out.page, QIODevice::WriteOnly);
    out.result = FillTemplate(in, page, state);
    return out;
}

QString fill(const QString &templateText, TemplateState &state)
{
    return walk(templateText, state).page;
}

QString fillLine(const QString &line, TemplateState &state)
{
    return fill(line + "\n", state);
}

} // namespace

class TestTemplateWalker : public QObject
{
    Q_OBJECT
private slots:
    void init() { ClearTemporaryHome(); }

    void placeholderInFirstColumnIsWrittenAsItStands()
    {
        TemplateState state;
        state.PageTitle = "Trip";
        QCOMPARE(fillLine("!!PHOTO_title!!", state), QString("!!PHOTO_title!!\n"));
        QCOMPARE(fillLine(" !!PHOTO_title!!", state), QString(" Trip\n"));
        QCOMPARE(fillLine("!!PHOTO_title!! !!PHOTO_title!!", state),
                 QString("!!PHOTO_title!! Trip\n"));
    }

    void emptyTitleDropsTheWholeLine_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("alone") << " !!PHOTO_title!!";
        QTest::newRow("with text") << "<h1>!!PHOTO_title!!</h1> and more text";
        QTest::newRow("other placeholder before") << " !!PHOTO_font!! !!PHOTO_title!!";
        QTest::newRow("other placeholder after") << " !!PHOTO_title!! !!PHOTO_font!!";
    }
    void emptyTitleDropsTheWholeLine()
    {
        QFETCH(QString, line);
        TemplateState state;
        QCOMPARE(fill("a\n" + line + "\nb\n", state), QString("a\nb\n"));
    }

    void marksInTextSurviveTheWalk_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("double mark") << "Wow!! Great";
        QTest::newRow("single") << "Hi!";
        QTest::newRow("escape text typed") << "a <|> b";
    }
    void marksInTextSurviveTheWalk()
    {
        QFETCH(QString, title);
        TemplateState state;
        state.PageTitle = title;
        QString expected = title;
        expected.replace("<|>", "!");
        QCOMPARE(fillLine("<h1>!!PHOTO_title!!</h1>", state), "<h1>" + expected + "</h1>\n");
    }

    void marksPushedBeyondTheEscapeBoundBreakTheLine()
    {
        // "!!PHOTO_font!!" escapes to "<|><|>PHOTO_font!!": the last marks stay bare, open a
        // token that never closes, and the rest of the template is lost.
        TemplateState state;
        state.PageTitle = "!!PHOTO_font!!";
        const Walk out = walk("a\n <h1>!!PHOTO_title!!</h1>\nb\n", state);
        QCOMPARE(out.page, QString("a\n"));
        QVERIFY(!out.result.complete);
    }

    void escapeStopsAtTheTextsFirstLength()
    {
        // Each escape adds two characters; marks pushed past the first length stay bare.
        QCOMPARE(EscapeMarks("!!!!"), QString("<|><|>!!"));
        QCOMPARE(EscapeMarks("a!b"), QString("a<|>b"));
        QCOMPARE(EscapeMarks(""), QString(""));
    }

    void escapeMarkWithoutPlaceholderBecomesMark()
    {
        TemplateState state;
        QCOMPARE(fillLine("<|>", state), QString("!\n"));
        QCOMPARE(fillLine("x <|><|> y", state), QString("x !! y\n"));
    }

    void linesWithoutPlaceholderPassUnchanged()
    {
        TemplateState state;
        QCOMPARE(fill("<!DOCTYPE html>\n\n  plain ! text\n", state),
                 QString("<!DOCTYPE html>\n\n  plain ! text\n"));
    }

    void sectionWithoutPictureLosesItsPictureLines_data()
    {
        QTest::addColumn<QString>("photoPath");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no picture") << ""
                                    << "a\nb\n";
        QTest::newRow("no folder part") << "tree.jpg"
                                        << "a\nb\n";
        QTest::newRow("picture") << "/home/ann/My tree.jpg"
                                 << "a\n<img src=\"Sml_My%20tree.jpg\">\nb\n";
        QTest::newRow("old record path") << "C:\\Pics\\tree.jpg"
                                         << "a\n<img src=\"Sml_tree.jpg\">\nb\n";
    }
    void sectionWithoutPictureLosesItsPictureLines()
    {
        QFETCH(QString, photoPath);
        QFETCH(QString, expected);
        TemplateState state;
        state.section.PhotoPath = photoPath;
        QCOMPARE(fill("a\n<img src=\"!!IMAGE_NAME_SUB!!\">\nb\n", state), expected);
    }

    void ruleLineFollowsShowLine_data()
    {
        QTest::addColumn<QString>("showLine");
        QTest::addColumn<QString>("expected");
        QTest::newRow("False") << "False"
                               << "";
        QTest::newRow("True") << "True"
                              << "<hr size=5>\n";
        QTest::newRow("empty") << ""
                               << "<hr size=5>\n";
        QTest::newRow("other") << "false"
                               << "<hr size=5>\n";
    }
    void ruleLineFollowsShowLine()
    {
        QFETCH(QString, showLine);
        QFETCH(QString, expected);
        TemplateState state;
        state.section.ShowLine = showLine;
        QCOMPARE(fillLine("<hr size=!!BLOG_LINE!!>", state), expected);
    }

    void portalColumns_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<QString>("colWidth");
        QTest::addColumn<QString>("totalWidth");
        QTest::newRow("1") << 1 << "100%"
                           << "420";
        QTest::newRow("2") << 2 << "50%"
                           << "840";
        QTest::newRow("3") << 3 << "33%"
                           << "1260";
    }
    void portalColumns()
    {
        QFETCH(int, columns);
        QFETCH(QString, colWidth);
        QFETCH(QString, totalWidth);
        TemplateState state;
        state.PortalColumns = columns;
        QCOMPARE(GetActionData("!!SUColWidth!!", state), colWidth);
        QCOMPARE(GetActionData("!!SUTotalWidth!!", state), totalWidth);
    }

    void noColumnsDropsTheWidthLine()
    {
        TemplateState state;
        state.PortalColumns = 0;
        QCOMPARE(fill("a\n <td width=!!SUColWidth!!>\nb\n", state), QString("a\nb\n"));
        QVERIFY(!state.lastError.isEmpty());
    }

    void tableSizesAddUpToWhole_data()
    {
        QTest::addColumn<bool>("showPointers");
        QTest::addColumn<int>("pointers");
        QTest::addColumn<QString>("first");
        QTest::newRow("shown, some") << true << 3 << "75%";
        QTest::newRow("shown, none") << true << 0 << "98%";
        QTest::newRow("hidden, some") << false << 3 << "98%";
        QTest::newRow("hidden, none") << false << 0 << "98%";
    }
    void tableSizesAddUpToWhole()
    {
        QFETCH(bool, showPointers);
        QFETCH(int, pointers);
        QFETCH(QString, first);
        TemplateState state;
        state.ShowPointersCk = showPointers;
        state.File8Count = pointers;
        const QString one = GetActionData("!!SizeTable1!!", state);
        const QString two = GetActionData("!!SizeTable2!!", state);
        QCOMPARE(one, first);
        QCOMPARE(one.chopped(1).toInt() + two.chopped(1).toInt(), 100);
    }

    void settingsRows_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("fallback");
        QTest::newRow("photo bg") << "!!PHOTO_Background_color!!"
                                  << "PhotoBGColor"
                                  << "#7F7FFF";
        QTest::newRow("photo font") << "!!PHOTO_font!!"
                                    << "PhotoFont"
                                    << "Arial";
        QTest::newRow("photo title") << "!!PHOTO_title_color!!"
                                     << "PhotoTitleColor"
                                     << "#008000";
        QTest::newRow("photo text") << "!!PHOTO_text_color!!"
                                    << "PhotoTextColor"
                                    << "#000000";
        QTest::newRow("master bg is a font") << "!!BLOG_MAIN_Background_color!!"
                                             << "MstrBGColor"
                                             << "Arial";
        QTest::newRow("master font") << "!!BLOG_MAIN_font!!"
                                     << "MstrFont"
                                     << "Arial";
        QTest::newRow("user") << "!!SUUserName!!"
                              << "Author"
                              << "";
        QTest::newRow("logo h") << "!!SULogoHeight!!"
                                << "LogoPointerHeight"
                                << "145";
        QTest::newRow("logo w") << "!!SULogoWidth!!"
                                << "LogoPointerWidth"
                                << "145";
        QTest::newRow("su bg") << "!!SUBackgroundColor!!"
                               << "SUBackgroundColor"
                               << "#7FFF7F";
        QTest::newRow("su title") << "!!SUTitleColor!!"
                                  << "SUTitleColor"
                                  << "#7F7FFF";
        QTest::newRow("su text") << "!!SUTextColor!!"
                                 << "SUTextColor"
                                 << "#000000";
        QTest::newRow("su font") << "!!SUTextFont!!"
                                 << "SUPageFont"
                                 << "Arial";
    }
    void settingsRows()
    {
        QFETCH(QString, token);
        QFETCH(QString, key);
        QFETCH(QString, fallback);
        TemplateState state;
        QCOMPARE(GetActionData(token, state), fallback);
        SaveSetting(key, "#123456 value");
        // Read at each use: the next line already shows the change.
        QCOMPARE(GetActionData(token, state), QString("#123456 value"));
    }

    void emailFollowsShowComment()
    {
        TemplateState state;
        SaveSetting("EmailID", "ann@example.org");
        QCOMPARE(GetActionData("!!EMAIL_NAME!!", state), QString("ann@example.org"));
        state.section.ShowComment = "False";
        QCOMPARE(GetActionData("!!EMAIL_NAME!!", state), QString("!!Skip!!"));
        QCOMPARE(fillLine(" mail !!EMAIL_NAME!!", state), QString());
    }

    void blogRows()
    {
        TemplateState state;
        QCOMPARE(GetActionData("!!BLOG_Background_color!!", state), QString("#7FFF7F"));
        QCOMPARE(GetActionData("!!BLOG_title_color!!", state), QString("#7F7FFF"));
        QCOMPARE(GetActionData("!!BLOG_SUB_Color!!", state), QString("#000000"));
        state.blogPage.BackgroundColor = "#010203";
        state.blogPage.TitleColor = "#040506";
        state.blogPage.SubTextColor = "#070809";
        state.blogPage.FontType = "Verdana";
        state.blogPage.MainTitle = "My!log";
        state.blogPage.MainDate = "2024-05-01";
        state.section.DisplayedSubTitle = "Sub!";
        state.section.PhotoTitle = "Pic!";
        state.section.BlogDate = "May 1";
        state.section.Author = "Ann";
        state.Comment = "Nice!";
        state.MasterTitle = "All!";
        QCOMPARE(GetActionData("!!BLOG_Background_color!!", state), QString("#010203"));
        QCOMPARE(GetActionData("!!BLOG_title_color!!", state), QString("#040506"));
        QCOMPARE(GetActionData("!!BLOG_SUB_Color!!", state), QString("#070809"));
        QCOMPARE(GetActionData("!!BLOG_font!!", state), QString("Verdana"));
        QCOMPARE(GetActionData("!!BLOG_title!!", state), QString("My<|>log"));
        QCOMPARE(GetActionData("!!BLOG_date!!", state), QString("2024-05-01"));
        QCOMPARE(GetActionData("!!BLOG_MAIN_date!!", state), QString("2024-05-01"));
        QCOMPARE(GetActionData("!!BLOG_SUB_title!!", state), QString("Sub<|>"));
        QCOMPARE(GetActionData("!!BLOG_SUB_picture_title!!", state), QString("Pic<|>"));
        QCOMPARE(GetActionData("!!Blog_Comment_text!!", state), QString("Nice<|>"));
        QCOMPARE(GetActionData("!!BLOG_MAIN_title!!", state), QString("All<|>"));
        QCOMPARE(GetActionData("!!BLOG_SUB_date!!", state), QString("May 1"));
        QCOMPARE(GetActionData("!!BLOG_author!!", state), QString("Ann"));
        state.section.ShowDate = "False";
        state.section.ShowAuthor = "False";
        QCOMPARE(GetActionData("!!BLOG_SUB_date!!", state), QString("!!Skip!!"));
        QCOMPARE(GetActionData("!!BLOG_author!!", state), QString("!!Skip!!"));
    }

    void sectionTextTurnsBreaksIntoParagraphs()
    {
        TemplateState state;
        state.section.BlogText = "One\r\nTwo";
        QCOMPARE(GetActionData("!!BLOG_SUB_text!!", state), QString("One<p>Two"));
        state.section.BlogText = "Hi! you";
        QCOMPARE(fillLine(" !!BLOG_SUB_text!!", state), QString(" Hi! you\n"));
        // One pass with the first length as its bound: the removed line feed lets the next
        // character slip by, and the mark pushed past the bound stays bare.
        state.section.BlogText = "One\r\n!Two!";
        QCOMPARE(GetActionData("!!BLOG_SUB_text!!", state), QString("One<p>!Two!"));
        state.section.BlogText = "a\nb";
        QCOMPARE(GetActionData("!!BLOG_SUB_text!!", state), QString("ab"));
    }

    void pointerRowsFollowShowPointers()
    {
        TemplateState state;
        state.pointer = {"News!", "Paper", "http://example.org/"};
        QCOMPARE(GetActionData("!!PtrCategory!!", state), QString("!!Skip!!"));
        QCOMPARE(GetActionData("!!HyperLinkURL!!", state), QString("!!Skip!!"));
        QCOMPARE(GetActionData("!!HyperLinkPtrName!!", state), QString("!!Skip!!"));
        state.ShowPointersCk = true;
        QCOMPARE(GetActionData("!!PtrCategory!!", state), QString("News<|>"));
        QCOMPARE(GetActionData("!!HyperLinkURL!!", state), QString("http://example.org/"));
        QCOMPARE(GetActionData("!!HyperLinkPtrName!!", state), QString("Paper"));
    }

    void commentRowsFollowShowComments()
    {
        TemplateState state;
        state.blogPage.FileName = "My Log";
        state.txtWebSite = "www.example.org";
        state.BlogDirName = "Blogs";
        state.File9Count = 4;
        QCOMPARE(GetActionData("!!CommentPtrURL!!", state), QString("!!Skip!!"));
        QCOMPARE(GetActionData("!!CommentPtrName!!", state), QString("!!Skip!!"));
        QCOMPARE(GetActionData("!!NumberOfComments!!", state), QString("!!Skip!!"));
        QVERIFY(state.UploadPathCaption.isEmpty());
        state.ShowCommentCk = true;
        QCOMPARE(GetActionData("!!CommentPtrName!!", state), QString("View Comments"));
        QCOMPARE(GetActionData("!!NumberOfComments!!", state), QString("4"));
        QCOMPARE(GetActionData("!!CommentPtrURL!!", state),
                 QString("http://www.example.org/Blogs/My_Log/Comments.htm"));
        QCOMPARE(state.CurrentPageName, QString("My_Log"));
        QCOMPARE(state.UploadPathCaption, QString("www.example.org/Blogs/My_Log/Comments.htm"));
        state.ClientRoot = "ann";
        QCOMPARE(GetActionData("!!CommentPtrURL!!", state),
                 QString("http://www.example.org/ann/Blogs/My_Log/Comments.htm"));
    }

    void masterPointerFillsAnEmptyFolder()
    {
        TemplateState state;
        state.BlogDirName = "Blogs";
        state.txtWebSite = "www.example.org";
        state.CurrentPageName = "My_Log";
        state.MasterLinkFile = "Web_Log.htm";
        QCOMPARE(GetActionData("!!BLOG_MAIN_pointer!!", state),
                 QString("http://www.example.org/Blogs/My_Log/Web_Log.htm"));
        QCOMPARE(state.blogPage.DirectorySavedTo, QString("Blogs"));
        state.blogPage.DirectorySavedTo = "Old";
        QCOMPARE(GetActionData("!!BLOG_MAIN_pointer!!", state),
                 QString("http://www.example.org/Old/My_Log/Web_Log.htm"));
    }

    void aSiteTypedWithItsSchemeKeepsIt()
    {
        TemplateState state;
        state.blogPage.FileName = "My Log";
        state.BlogDirName = "Blogs";
        state.ShowCommentCk = true;
        state.CurrentPageName = "My_Log";
        state.MasterLinkFile = "Web_Log.htm";
        state.txtWebSite = "http://127.0.0.1:8080";
        QCOMPARE(GetActionData("!!CommentPtrURL!!", state),
                 QString("http://127.0.0.1:8080/Blogs/My_Log/Comments.htm"));
        QCOMPARE(GetActionData("!!BLOG_MAIN_pointer!!", state),
                 QString("http://127.0.0.1:8080/Blogs/My_Log/Web_Log.htm"));
        state.txtWebSite = "https://example.org";
        QCOMPARE(GetActionData("!!BLOG_MAIN_pointer!!", state),
                 QString("https://example.org/Blogs/My_Log/Web_Log.htm"));
    }

    void portalLinkRows()
    {
        TemplateState state;
        state.link = {"Weather", "http://weather.example/", "3"};
        state.File11Selected = "Fun!.Cat";
        QCOMPARE(GetActionData("!!SUBullet!!", state), QString("Arrow3.gif"));
        QCOMPARE(GetActionData("!!SULink!!", state), QString("Weather"));
        QCOMPARE(GetActionData("!!SUURL!!", state), QString("http://weather.example/"));
        QCOMPARE(GetActionData("!!SUCategory!!", state), QString("Fun<|>"));
    }

    void logoIsCopiedIntoThePortalFolder()
    {
        Folders::MakeFolderTree();
        TemplateState state;
        QCOMPARE(fill("a\n <img src=\"!!SULogo!!\">\nb\n", state), QString("a\nb\n"));
        const QString logo = TestHomePath() + "/my logo.gif";
        QFile file(logo);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("GIF89a");
        file.close();
        SaveSetting("LogoPointer", logo);
        QCOMPARE(GetActionData("!!SULogo!!", state), QString("my%20logo.gif"));
        QVERIFY(QFile::exists(Folders::StartupFolder() + "/my logo.gif"));
        // Met again: copied again over the first copy.
        QCOMPARE(GetActionData("!!SULogo!!", state), QString("my%20logo.gif"));
    }

    void photoRowsNameTheListEntry()
    {
        // The page's record knows two of the three pictures on the list.
        const QMap<QString, QString> record = {{"00050_Tree.jpg", "A tree!"},
                                               {"00050_My dog.jpg", "Rex"}};
        TemplateState state;
        state.photoInfo = [&record](const QString &entry) -> std::optional<QString> {
            if (!record.contains(entry))
                return std::nullopt;
            return record.value(entry);
        };
        state.File3 = QStringList{"00050_My dog.jpg", "00050_Tree.jpg", "00007_Stray.jpg"};
        state.CurrentPhotoRow = 0;
        QCOMPARE(GetActionData("!!PHOTO_SmlFileName!!", state), QString("Sml_00050_My%20dog.jpg"));
        QCOMPARE(GetActionData("!!PHOTO_LrgFileName!!", state), QString("Lrg_00050_My%20dog.jpg"));
        QCOMPARE(GetActionData("!!PHOTO_Information!!", state), QString("Rex"));
        state.CurrentPhotoRow = 1;
        QCOMPARE(fillLine(" <p>!!PHOTO_Information!!</p>", state), QString(" <p>A tree!</p>\n"));
        // A file in the list with no row in the record: its text line goes.
        state.CurrentPhotoRow = 2;
        QCOMPARE(fill("a\n <p>!!PHOTO_Information!!</p>\nb\n", state), QString("a\nb\n"));
        // A row beyond the list gives "Sml_" alone, and the line goes with it.
        state.CurrentPhotoRow = 7;
        QCOMPARE(fill("a\n <img src=\"!!PHOTO_SmlFileName!!\">\nb\n", state), QString("a\nb\n"));
    }

    void pageTitleAndIntroduction()
    {
        TemplateState state;
        state.PageTitle = "Trip to NY";
        state.PageGroupInfo = "We went!";
        QCOMPARE(fill(" <h1>!!PHOTO_title!!</h1>\n <p>!!PHOTO_Photos_info!!</p>\n", state),
                 QString(" <h1>Trip to NY</h1>\n <p>We went!</p>\n"));
    }

    void unknownPlaceholderStaysAndItsClosingMarkOpensTheNext()
    {
        TemplateState state;
        state.PageTitle = "T";
        // "!! x !!" is taken as the next token and stays too; the title behind it is found.
        QCOMPARE(fillLine(" !!NOPE!! x !!PHOTO_title!!", state), QString(" !!NOPE!! x T\n"));
        QCOMPARE(fillLine(" !!NOPE!! x !! !!PHOTO_title!!", state), QString(" !!NOPE!! x !! T\n"));
    }

    void strayMarkAtSecondColumnDropsTheLineOnly()
    {
        TemplateState state;
        const Walk out = walk("a\n!!! stray\nb\n", state);
        QCOMPARE(out.page, QString("a\nb\n"));
        QVERIFY(out.result.complete);
    }

    void strayMarkLaterLosesTheRestOfTheTemplate_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("lone mark") << "  Wow!! no end";
        QTest::newRow("unknown then nothing") << "  !!NOPE!! and text";
        QTest::newRow("unknown then lone") << "  !!NOPE!! a !!PHOTO_font";
    }
    void strayMarkLaterLosesTheRestOfTheTemplate()
    {
        QFETCH(QString, line);
        TemplateState state;
        const Walk out = walk("first\n" + line + "\nnever\nwritten\n", state);
        QCOMPARE(out.page, QString("first\n"));
        QVERIFY(!out.result.complete);
        QCOMPARE(out.result.linesRead, 2);
    }

    void selfRepeatingSettingEndsTheWalk()
    {
        SaveSetting("PhotoFont", "x!!PHOTO_font!!");
        TemplateState state;
        const Walk out = walk("a\n f=!!PHOTO_font!!\nb\n", state);
        QCOMPARE(out.page, QString("a\n"));
        QVERIFY(!out.result.complete);
    }

    // A title whose marks lie beyond the escape's bound brings in its own placeholder again at
    // each filling; the walk stops at its work bound, as at a line grown too long, instead of
    // copying the growing line ten thousand times (an input found by fuzz_template).
    void titleHoldingItsOwnPlaceholderEndsTheWalkWithinItsBound()
    {
        TemplateState state;
        state.PageTitle = QString(40, QLatin1Char('!')) + QStringLiteral("!!PHOTO_title!!");
        QVERIFY(EscapeMarks(state.PageTitle).contains(QStringLiteral("!!PHOTO_title!!")));
        const Walk out = walk("a\n <title>!!PHOTO_title!!</title>\nb\n", state);
        QCOMPARE(out.page, QString("a\n"));
        QVERIFY(!out.result.complete);
        QCOMPARE(out.result.error, QStringLiteral("Out of string space"));
        QVERIFY2(out.result.charactersCopied <= TemplateWalkResult::MaxWorkPerLine,
                 qPrintable(QString::number(out.result.charactersCopied)));
    }

    void emptyTokenLineIsDropped()
    {
        TemplateState state;
        QCOMPARE(GetActionData("", state), QString());
        QCOMPARE(GetActionData("!!whatever!!", state), QString("!!whatever!!"));
        QCOMPARE(GetActionData("!!photo_title!!", state), QString("!!photo_title!!"));
    }

    void getFileName_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::newRow("unix") << "/home/ann/tree.jpg"
                              << "tree.jpg";
        QTest::newRow("windows") << "C:\\Pics\\tree.jpg"
                                 << "tree.jpg";
        QTest::newRow("no separator") << "tree.jpg"
                                      << "";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("trailing") << "/home/ann/"
                                  << "";
    }
    void getFileName()
    {
        QFETCH(QString, path);
        QFETCH(QString, name);
        QCOMPARE(GetFileName(path), name);
    }

    void templateNamesMatchWithoutCase()
    {
        const QString folder = TestHomePath() + "/tpl";
        QDir().mkpath(folder);
        QFile file(folder + "/B_End2.txt");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(" <b>!!SULink!!</b>\n<|>\n");
        file.close();
        const QString found = FindTemplateFile(folder, "B_end2.txt");
        QCOMPARE(QFileInfo(found).fileName(), QString("B_End2.txt"));
        TemplateState state;
        state.link.LinkName = "L";
        QString out;
        QTextStream page(&out);
        QVERIFY(FillTemplateFile(found, page, state).complete);
        QCOMPARE(out, QString(" <b>L</b>\n!\n"));
        QVERIFY(!FillTemplateFile(folder + "/missing.txt", page, state).complete);
    }

    void templateSavedWithByteOrderMarkAndCrLf()
    {
        const QString folder = TestHomePath() + "/tpl";
        QDir().mkpath(folder);
        QFile file(folder + "/Top.txt");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("\xEF\xBB\xBF<p>caf\xC3\xA9</p>\r\n <b>!!PHOTO_title!!</b>\r\n");
        file.close();
        TemplateState state;
        state.PageTitle = "T";
        QString out;
        QTextStream page(&out);
        QVERIFY(FillTemplateFile(folder + "/Top.txt", page, state).complete);
        QCOMPARE(out, QString::fromUtf8("<p>café</p>\n <b>T</b>\n"));
    }

    void nonAsciiTextPassesThrough()
    {
        TemplateState state;
        state.PageTitle = QString::fromUtf8("Café – Zürich");
        QCOMPARE(fillLine(" !!PHOTO_title!!", state), QString::fromUtf8(" Café – Zürich\n"));
    }
};

TARNWICK_TEST_MAIN(TestTemplateWalker)
#include "test_template_walker.moc"
