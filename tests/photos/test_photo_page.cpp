#include "CopyPhotos.h"
#include "History.h"
#include "JobState.h"
#include "PhotoPage.h"
#include "PictureFixtures.h"
#include "ScriptedUi.h"
#include "TemplateState.h"
#include "TemplateWalker.h"
#include "TestMain.h"

#include <QDir>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>
#include <QUrl>

using namespace Fixtures;

// The default photo page templates filled for a page of twelve photos: a complete page whose
// every picture and link is a file beside it.
namespace {

QString templateFolder()
{
    return QStringLiteral(TARNWICK_SOURCE_DIR) + "/data/templates";
}

QImage scene(int index, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor::fromHsv((index * 29) % 360, 120, 250));
    sky.setColorAt(1, QColor::fromHsv((index * 29 + 40) % 360, 200, 120));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor::fromHsv((index * 53) % 360, 160, 230));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPoint(size.width() * (index % 4 + 1) / 5, size.height() / 3),
                        size.height() / 6, size.height() / 6);
    return image;
}

// Walks the templates as the photo page is built: the top, one block per photo in the order of
// the group numbers (by name inside a group), the end.
QString buildPage(const QString &workFolder, PhotoPage &page, const QString &title,
                  const QString &intro)
{
    TemplateState state;
    state.PageTitle = title;
    state.PageGroupInfo = intro;
    state.photoInfo = [&page](const QString &entry) { return PhotoInfoOf(page, entry); };
    state.File3 = ListPictureFiles(workFolder);
    QString html;
    QTextStream out(&html);
    const QString folder = templateFolder();
    FillTemplateFile(FindTemplateFile(folder, "Top.txt"), out, state);
    int highest = 0;
    for (int i = 0; i < state.File3.size(); ++i) {
        const int row =
            FindPhoto(page, RemoveGroupNumber(state.File3[i]), GetGroupNumber(state.File3[i]));
        if (PhotoPage::isRow(row))
            highest = std::max(highest, int(NumericValue(page.PhotoOrder[row])));
    }
    for (int k = 1; k <= highest; ++k) {
        for (int i = 0; i < state.File3.size(); ++i) {
            const int row =
                FindPhoto(page, RemoveGroupNumber(state.File3[i]), GetGroupNumber(state.File3[i]));
            if (!PhotoPage::isRow(row) || int(NumericValue(page.PhotoOrder[row])) != k)
                continue;
            state.CurrentPhotoRow = i;
            const QString block = page.PhotoLeft[row] == "True" ? "Left.txt" : "Right.txt";
            FillTemplateFile(FindTemplateFile(folder, block), out, state);
        }
    }
    FillTemplateFile(FindTemplateFile(folder, "End.txt"), out, state);
    out.flush();
    return html;
}

// Tags that must close, in order; void elements are passed over.
bool tagsBalance(const QString &html, QString *why)
{
    static const QStringList voidTags = {"meta", "img", "br", "hr", "link", "input", "source"};
    static const QRegularExpression tag("<(/?)([a-zA-Z][a-zA-Z0-9]*)[^>]*>");
    QStringList open;
    auto it = tag.globalMatch(html);
    while (it.hasNext()) {
        const auto match = it.next();
        const QString name = match.captured(2).toLower();
        if (voidTags.contains(name))
            continue;
        if (match.captured(1).isEmpty()) {
            open.append(name);
        } else if (open.isEmpty() || open.takeLast() != name) {
            *why = "unbalanced </" + name + "> at " + QString::number(match.capturedStart());
            return false;
        }
    }
    if (!open.isEmpty()) {
        *why = "left open: " + open.join(",");
        return false;
    }
    return true;
}

// The page as a browser shows it: comments taken out.
QString withoutComments(QString html)
{
    static const QRegularExpression comment("<!--.*?-->",
                                            QRegularExpression::DotMatchesEverythingOption);
    return html.remove(comment);
}

} // namespace

class TestPhotoPage : public QObject
{
    Q_OBJECT
private slots:
    void defaultTemplatesHoldOnlyKnownPlaceholders_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"Top.txt", "Left.txt", "Right.txt", "End.txt"})
            QTest::newRow(name) << QString(name);
    }
    void defaultTemplatesHoldOnlyKnownPlaceholders()
    {
        QFETCH(QString, name);
        QFile file(templateFolder() + "/" + name);
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
        static const QRegularExpression token("!![A-Za-z_0-9]+!!");
        for (const QString &line : lines) {
            QVERIFY2(!line.startsWith("!!"), qPrintable(line));
            QVERIFY2(!line.contains("<|>"), qPrintable(line));
            QString rest = line;
            auto it = token.globalMatch(line);
            while (it.hasNext()) {
                const QString found = it.next().captured();
                TemplateState state;
                state.PageTitle = "t";
                QVERIFY2(GetActionData(found, state) != found, qPrintable(found));
                QVERIFY2(found.startsWith("!!PHOTO_"), qPrintable(found));
                rest.remove(found);
            }
            // Nothing but whole placeholders carries the marks.
            QVERIFY2(!rest.contains("!!"), qPrintable(line));
        }
    }

    // An empty title ("||Blank||" at the prompt) takes its own line out, not the page's <title>.
    void anEmptyTitleLeavesThePageItsTitleElement()
    {
        QTemporaryDir dir;
        PhotoPage page;
        const QString html = buildPage(dir.path(), page, QString(), "Intro");
        QCOMPARE(html.count("<title>"), 1);
        QCOMPARE(html.count("</title>"), 1);
        QVERIFY(html.indexOf("<title>") < html.indexOf("</title>"));
        QVERIFY(html.indexOf("</title>") < html.indexOf("</head>"));
        QVERIFY(!html.contains("<h1>"));
        QString why;
        QVERIFY2(tagsBalance(withoutComments(html), &why), qPrintable(why));
    }

    void twelvePhotosMakeACompletePage()
    {
        QTemporaryDir dir;
        const QString work = dir.filePath("work");
        const QString pageFolder = dir.filePath("work/page");
        QDir().mkpath(pageFolder);
        const QString sourceFolder = qEnvironmentVariable("TARNWICK_PHOTO_PAGE_SOURCE");
        QStringList sources;
        if (!sourceFolder.isEmpty())
            sources = QDir(sourceFolder).entryList({"*.jpg"}, QDir::Files, QDir::Name);

        const QStringList names = {"Harbour.jpg", "Old town.jpg",   "Bridge, evening.jpg",
                                   "Café.jpg",    "Tower_Left.jpg", "Market.jpg",
                                   "Park.jpg",    "River.jpg",      "Museum.jpg",
                                   "Straße.jpg",  "Beach.jpg",      "Home again.jpg"};
        PhotoPage page;
        for (int i = 0; i < names.size(); ++i) {
            // Two groups: the first eight in group 1, the rest in group 2; one picture with a
            // group of 0 is never shown.
            const QString group = i < 8 ? "00001" : "00002";
            const QString file = work + "/" + group + "_" + names[i];
            if (i < sources.size())
                QVERIFY(QFile::copy(sourceFolder + "/" + sources[i], file));
            else
                QVERIFY(writeJpeg(file, scene(i, i % 3 ? QSize(800, 600) : QSize(600, 800))));
            const int row = page.PhotoNumber++;
            page.PhotoName[row] = names[i];
            page.PhotoPath[row] = "/home/ann/Pictures";
            page.PhotoRotate[row] = names[i].contains("_Left") ? "_Left" : "";
            page.PhotoInfo[row] = QString("Photo %1: %2 <|> the day's walk.")
                                      .arg(i + 1)
                                      .arg(QString(names[i]).remove(".jpg"));
            page.PhotoLeft[row] = i % 2 ? "True" : "False";
            page.PhotoOrder[row] = group;
        }
        page.PhotoInfo[4] = "Wow!! What a view";
        page.PhotoInfo[7] = ""; // no text: the caption line goes, the photo stays
        QVERIFY(writeJpeg(work + "/00000_Hidden.jpg", scene(99, QSize(80, 60))));

        ScriptedUi ui;
        JobState state;
        CopyPhotosInput input;
        input.ChoosenUploadPath = work;
        QVERIFY(CopyPhotos(pageFolder, true, input, page, ui, state));
        const QString html =
            buildPage(work, page, "Trip to NY May 2007", "A week in the city, twelve photos!");
        QFile out(pageFolder + "/Photos.htm");
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(html.toUtf8());
        out.close();

        QVERIFY(html.startsWith("<!DOCTYPE html>\n<html lang=\"en\">"));
        QVERIFY(html.contains("<meta charset=\"utf-8\">"));
        QVERIFY(html.contains("name=\"viewport\""));
        QVERIFY(html.contains(QRegularExpression("<title>\\s*Trip to NY May 2007\\s*</title>")));
        QVERIFY(html.contains("<h1>Trip to NY May 2007</h1>"));
        QVERIFY(html.contains("A week in the city, twelve photos!"));
        QVERIFY(html.contains("Wow!! What a view"));
        QVERIFY(html.contains("Photo 1: Harbour ! the day's walk."));
        QVERIFY(!html.contains("!!PHOTO"));
        QVERIFY(!html.contains("<|>"));
        QVERIFY(!html.contains("Hidden"));
        QVERIFY(html.trimmed().endsWith("</html>"));
        const QString shown = withoutComments(html);
        QString why;
        QVERIFY2(tagsBalance(shown, &why), qPrintable(why));
        QCOMPARE(shown.count("<figure class=\"photo left\">"), 6);
        QCOMPARE(shown.count("<figure class=\"photo right\">"), 6);
        QCOMPARE(shown.count("<figcaption>"), 11 + 1); // and the view's own

        // Every thumbnail: width and height given, a link to its larger copy, the photo's text
        // as its alternative text, or its file name when it has none.
        static const QRegularExpression image("<img ([^>]*)>");
        auto images = image.globalMatch(shown);
        int count = 0;
        while (images.hasNext()) {
            const QString attributes = images.next().captured(1);
            ++count;
            QVERIFY2(attributes.contains("width=\"400\" height=\"300\""), qPrintable(attributes));
            QVERIFY2(!attributes.contains("alt=\"\""), qPrintable(attributes));
        }
        QCOMPARE(count, 12);
        QVERIFY(shown.contains("alt=\"Photo 1: Harbour ! the day's walk.\">"));
        QVERIFY(shown.contains("alt=\"Wow!! What a view\">"));
        QVERIFY(shown.contains("alt=\"Sml_00001_River.jpg\" class=\"named\""));
        QVERIFY(shown.contains(QRegularExpression(
            "<a href=\"Lrg_00001_Harbour.jpg\">\\s*<img src=\"Sml_00001_Harbour.jpg\"")));
        // The view over the page comes with the page; without scripts the links stay links.
        QVERIFY(shown.contains("<dialog class=\"viewer\""));
        QCOMPARE(shown.count("<script>"), 1);
        QVERIFY(shown.contains("event.preventDefault()"));

        // Every picture and link names a file beside the page; nothing is fetched from elsewhere.
        static const QRegularExpression link("(?:src|href)=\"([^\"]*)\"");
        QStringList targets;
        auto it = link.globalMatch(shown);
        while (it.hasNext())
            targets.append(it.next().captured(1));
        QCOMPARE(targets.size(), 24);
        for (const QString &target : targets) {
            QVERIFY2(!target.contains(':') && !target.contains('/'), qPrintable(target));
            const QString file = QUrl::fromPercentEncoding(target.toUtf8());
            QVERIFY2(QFile::exists(pageFolder + "/" + file), qPrintable(file));
        }
        // Photos appear by group, and by name inside a group.
        QVERIFY(html.indexOf("Sml_00001_Tower_Left.jpg") < html.indexOf("Sml_00002_Beach.jpg"));
        QVERIFY(html.indexOf("Sml_00001_Bridge,%20evening.jpg") <
                html.indexOf("Sml_00001_Harbour.jpg"));

        const QString keep = qEnvironmentVariable("TARNWICK_PHOTO_PAGE_OUT");
        if (!keep.isEmpty()) {
            QDir(keep).removeRecursively();
            QDir().mkpath(keep);
            for (const QString &name : QDir(pageFolder).entryList(QDir::Files))
                QFile::copy(pageFolder + "/" + name, keep + "/" + name);
        }
    }
};

TARNWICK_TEST_MAIN(TestPhotoPage)
#include "test_photo_page.moc"
