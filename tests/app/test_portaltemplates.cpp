// The default Portal templates, walked by the program's template walker over the default links.
#include "Cabinet.h"
#include "Folders.h"
#include "RecordFile.h"
#include "Settings.h"
#include "TemplateState.h"
#include "TemplateWalker.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

const QStringList TemplateNames = {"Top.txt",          "BodySub1.txt", "BodySub2Cat.txt",
                                   "BodySub3Link.txt", "BodySub4.txt", "End.txt"};

// Lays the store out as the Portal build does: head, each category with its links, a column
// break when the column is full, then the tail.
QString buildPage(const QString &startup, int columns, int rowsPerColumn)
{
    TemplateState state;
    state.PortalColumns = columns;
    QString html;
    QTextStream page(&html);
    auto walk = [&](const QString &name) {
        const TemplateWalkResult result = FillTemplateFile(startup + u'/' + name, page, state);
        if (!result.complete || !result.error.isEmpty())
            qWarning() << name << result.error;
        return result.complete;
    };
    bool ok = walk("Top.txt");
    int rows = 0;
    const QDir dir(startup);
    for (const QString &cat :
         dir.entryList({"*.Cat"}, QDir::Files, QDir::Name | QDir::IgnoreCase)) {
        state.File11Selected = cat;
        ok = walk("BodySub2Cat.txt") && ok;
        ++rows;
        const QDir links(dir.filePath(cat.chopped(4)));
        const QStringList ptrs =
            links.entryList({"*.ptr"}, QDir::Files, QDir::Name | QDir::IgnoreCase);
        for (const QString &ptr : ptrs) {
            const RecordFileResult record =
                ReadRecordFile(links.filePath(ptr), RecordDecoding::Raw);
            state.link.LinkName = GetRecordValue(record.text, "LinkName");
            state.link.URLName = GetRecordValue(record.text, "URLName");
            state.link.Bullet = QString::number(GetRecordValue(record.text, "Bullet").toInt());
            ok = walk("BodySub3Link.txt") && ok;
        }
        rows += int(ptrs.size());
        if (rows > rowsPerColumn) {
            rows = 0;
            ok = walk("BodySub1.txt") && ok;
        }
    }
    ok = walk("BodySub4.txt") && ok;
    ok = walk("End.txt") && ok;
    page.flush();
    return ok ? html : QString();
}

} // namespace

class TestPortalTemplates : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_home;
    QString startup() const { return Folders::StartupFolder(); }

private slots:
    void initTestCase()
    {
        Folders::MakeFolderTree();
        const CabinetResult result = ExtractCabinet(
            QStringLiteral(TARNWICK_STAGED_DATA_DIR "/Tarnwicklib.cab"), Folders::HomeFolder());
        QVERIFY2(result.ok, qPrintable(result.message));
    }

    void templatesHoldOnlyKnownPlaceholders()
    {
        static const QRegularExpression token(QStringLiteral("!![A-Za-z_]+!!"));
        static const QStringList known = {
            "!!SUUserName!!",        "!!SULogo!!",       "!!SULogoHeight!!", "!!SULogoWidth!!",
            "!!SUCategory!!",        "!!SUBullet!!",     "!!SULink!!",       "!!SUURL!!",
            "!!SUBackgroundColor!!", "!!SUTitleColor!!", "!!SUTextColor!!",  "!!SUTextFont!!",
            "!!SUTotalWidth!!",      "!!SUColWidth!!"};
        for (const QString &name : TemplateNames) {
            QFile file(startup() + u'/' + name);
            QVERIFY2(file.open(QIODevice::ReadOnly | QIODevice::Text), qPrintable(name));
            const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
            for (const QString &line : lines) {
                // A placeholder in the first column would never be filled.
                QVERIFY2(!line.startsWith(u'!'), qPrintable(name + ": " + line));
                QString rest = line;
                for (auto it = token.globalMatch(line); it.hasNext();) {
                    const QString found = it.next().captured();
                    QVERIFY2(known.contains(found), qPrintable(name + ": " + found));
                    rest.remove(found);
                }
                QVERIFY2(!rest.contains(QStringLiteral("!!")), qPrintable(name + ": " + line));
            }
        }
    }

    void oneColumnPage()
    {
        SaveSetting("Author", "Ann Example");
        const QString html = buildPage(startup(), 1, 200);
        QVERIFY(!html.isEmpty());
        QVERIFY(!html.contains(QStringLiteral("!!")));
        QVERIFY(html.contains(QStringLiteral("max-width: calc(420px + 2rem)")));
        QVERIFY(html.contains(QStringLiteral("flex-basis: calc(100% - 1.5rem)")));
        QVERIFY(html.contains(QStringLiteral("<p class=\"owner\">Ann Example</p>")));
        QVERIFY(html.contains(QStringLiteral("background-color: #7FFF7F;")));
        // No logo chosen: the logo line is left out.
        QVERIFY(!html.contains(QStringLiteral("class=\"logo\" src")));
        QVERIFY(html.contains(QStringLiteral("<h2>Office Tools</h2>")));
        QVERIFY(html.contains(QStringLiteral(
            "<a class=\"link\" href=\"https://tools.usps.com/zip-code-lookup.htm\"><img "
            "src=\"Arrow9.gif\"")));
        QVERIFY(html.contains(QStringLiteral("<span>Zipcode Search</span>")));
        QCOMPARE(html.count(QStringLiteral("<div")), html.count(QStringLiteral("</div>")));
        QVERIFY(html.trimmed().endsWith(QStringLiteral("</html>")));

        // Every bullet a link names is one of the shipped pictures.
        static const QRegularExpression bullet(QStringLiteral("src=\"(Arrow\\d+\\.gif)\""));
        int links = 0;
        for (auto it = bullet.globalMatch(html); it.hasNext(); ++links)
            QVERIFY(QFile::exists(startup() + u'/' + it.next().captured(1)));
        QVERIFY(links > 20);
        QVERIFY(QFile::exists(startup() + "/NewW2.gif"));
    }

    void twoColumnPageBreaksBetweenCategories()
    {
        SaveSetting("Author", QString());
        SaveSetting("SUBackgroundColor", "#FFEEDD");
        const QString html = buildPage(startup(), 2, 20);
        QVERIFY(!html.isEmpty());
        QVERIFY(html.contains(QStringLiteral("max-width: calc(840px + 2rem)")));
        QVERIFY(html.contains(QStringLiteral("flex-basis: calc(50% - 1.5rem)")));
        QVERIFY(html.contains(QStringLiteral("background-color: #FFEEDD;")));
        QVERIFY(!html.contains(QStringLiteral("class=\"owner\"")));
        QVERIFY(html.count(QStringLiteral("<div class=\"column\">")) >= 2);
        QCOMPARE(html.count(QStringLiteral("<div")), html.count(QStringLiteral("</div>")));
    }

    void logoLineWhenALogoIsChosen()
    {
        QTemporaryDir pictures;
        QFile logo(pictures.filePath("My Logo.gif"));
        QVERIFY(logo.open(QIODevice::WriteOnly));
        logo.write("GIF89a");
        logo.close();
        SaveSetting("LogoPointer", logo.fileName());
        SaveSetting("LogoPointerHeight", "60");
        SaveSetting("LogoPointerWidth", "120");
        const QString html = buildPage(startup(), 1, 200);
        QVERIFY(html.contains(QStringLiteral("<img class=\"logo\" src=\"My%20Logo.gif\" "
                                             "height=\"60\" width=\"120\" alt=\"Logo\">")));
        QVERIFY(QFile::exists(startup() + "/My Logo.gif"));
    }
};

TARNWICK_TEST_MAIN(TestPortalTemplates)
#include "test_portaltemplates.moc"
