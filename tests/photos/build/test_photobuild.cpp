#include "BuildFixture.h"
#include "History.h"
#include "JobState.h"
#include "RecordFile.h"
#include "ScriptedUi.h"
#include "TestMain.h"
#include "TransferUi.h"

#include <QColor>
#include <QMimeData>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace BuildFixture;

namespace {

// The last value given to property in the rule for selector of the page's style sheet.
QString cssValue(const QString &page, const QString &selector, const QString &property)
{
    const QRegularExpression rule(QStringLiteral("\\n\\s*") +
                                  QRegularExpression::escape(selector) +
                                  QStringLiteral("\\s*\\{([^}]*)\\}"));
    const QString body = rule.match(page).captured(1);
    const QRegularExpression declaration(QStringLiteral("(?:^|[;\\s])") +
                                         QRegularExpression::escape(property) +
                                         QStringLiteral("\\s*:\\s*([^;]+);"));
    QString value;
    for (auto it = declaration.globalMatch(body); it.hasNext();)
        value = it.next().captured(1).trimmed();
    return value;
}

// PSNR in dB between two pictures of one size over red, green and blue.
double psnr(const QImage &a, const QImage &b)
{
    if (a.size() != b.size() || a.isNull())
        return 0;
    const QImage x = a.convertToFormat(QImage::Format_RGB888);
    const QImage y = b.convertToFormat(QImage::Format_RGB888);
    double squares = 0;
    for (int row = 0; row < x.height(); ++row) {
        const uchar *p = x.constScanLine(row);
        const uchar *q = y.constScanLine(row);
        for (int i = 0; i < x.width() * 3; ++i)
            squares += double(p[i] - q[i]) * double(p[i] - q[i]);
    }
    const double mse = squares / (double(x.width()) * x.height() * 3);
    return mse == 0 ? 99 : 10 * std::log10(255.0 * 255.0 / mse);
}

// A JPEG written in progressive scans: its frame marker is SOF2.
bool isProgressiveJpeg(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll().contains(QByteArray("\xFF\xC2", 2));
}

// The contrast ratio of two colours as the web's accessibility guidelines count it.
double contrast(const QColor &a, const QColor &b)
{
    const auto luminance = [](const QColor &colour) {
        const auto linear = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const double x = luminance(a) + 0.05;
    const double y = luminance(b) + 0.05;
    return std::max(x, y) / std::min(x, y);
}

} // namespace

// Build All against a real FTP server: twelve pictures from a folder to a page on the web space.
class TestPhotoBuild : public QObject
{
    Q_OBJECT

private:
    // One run's world: a server, a source folder of twelve photos, the working folder with the
    // Ready to Send list, the record and the seams.
    struct World
    {
        explicit World(const FtpTestServer::Options &serverOptions = {}) : server(serverOptions) {}
        FtpTestServer server;
        QTemporaryDir source;
        QTemporaryDir working;
        JobState state;
        cFTP ftp{state};
        ScriptedUi ui;
        SilentTransferUi progress;
        std::unique_ptr<BuildTestWindow> window;
        std::unique_ptr<TransferContext> context;

        QString workingPath() const { return working.path(); }
        QString remote(const QString &path) const { return server.localPath(path); }
        PhotoBuildOutcome run()
        {
            PhotoBuildJob job(state.current<PhotoPage>(), *context, *window);
            const PhotoBuildOutcome outcome = job.cmdBuildAll();
            lastPageName = job.PageName;
            lastImageRoot = job.ImageRoot;
            return outcome;
        }
        QString lastPageName;
        QString lastImageRoot;
    };

    // The twelve photos: two in group 00050, one in group 00000, one turned left.
    static QList<Photo> twelve()
    {
        return {{QStringLiteral("Harbour.jpg"), QStringLiteral("00010")},
                {QStringLiteral("Bridge.jpg"), QStringLiteral("00020")},
                {QStringLiteral("Museum.jpg"), QStringLiteral("00030")},
                {QStringLiteral("Park.jpg"), QStringLiteral("00040")},
                {QStringLiteral("Zoo.jpg"), QStringLiteral("00050")},
                {QStringLiteral("Aquarium.jpg"), QStringLiteral("00050")},
                {QStringLiteral("Skyline.jpg"), QStringLiteral("00060")},
                {QStringLiteral("Tree_Left.jpg"), QStringLiteral("00070"), QStringLiteral("_Left")},
                {QStringLiteral("Ferry.jpg"), QStringLiteral("00080")},
                {QStringLiteral("Market.jpg"), QStringLiteral("00090")},
                {QStringLiteral("Spare.jpg"), QStringLiteral("00000")},
                {QStringLiteral("Station.jpg"), QStringLiteral("00100")}};
    }
    // The page's expected order: by group, by name inside a group; group 0 left out.
    static QStringList expectedOrder()
    {
        return {QStringLiteral("Sml_00010_Harbour.jpg"),  QStringLiteral("Sml_00020_Bridge.jpg"),
                QStringLiteral("Sml_00030_Museum.jpg"),   QStringLiteral("Sml_00040_Park.jpg"),
                QStringLiteral("Sml_00050_Aquarium.jpg"), QStringLiteral("Sml_00050_Zoo.jpg"),
                QStringLiteral("Sml_00060_Skyline.jpg"),  QStringLiteral("Sml_00070_Tree_Left.jpg"),
                QStringLiteral("Sml_00080_Ferry.jpg"),    QStringLiteral("Sml_00090_Market.jpg"),
                QStringLiteral("Sml_00100_Station.jpg")};
    }

    std::unique_ptr<World> makeWorld(const FtpTestServer::Options &options = {}, bool start = true)
    {
        auto world = std::make_unique<World>(options);
        if (start && !world->server.start())
            qWarning("%s", qPrintable(world->server.errorString()));
        world->window =
            std::make_unique<BuildTestWindow>(world->ftp, world->server, world->workingPath());
        world->context = std::make_unique<TransferContext>(
            TransferContext{world->ftp, world->ui, world->state, *world->window, world->progress});
        const QList<Photo> photos = twelve();
        const QColor colours[] = {Qt::red,      Qt::green,    Qt::blue,        Qt::cyan,
                                  Qt::magenta,  Qt::yellow,   Qt::darkRed,     Qt::darkGreen,
                                  Qt::darkBlue, Qt::darkCyan, Qt::darkMagenta, Qt::gray};
        for (int i = 0; i < photos.size(); ++i) {
            const QString name = photos.at(i).name;
            const bool turned = name.contains(QLatin1String("_Left"));
            makePhoto(world->source.filePath(name), colours[i], turned ? 240 : 320,
                      turned ? 320 : 240);
        }
        ClearHistory(world->state.current<PhotoPage>());
        putOnList(world->state.current<PhotoPage>(), world->source.path(), world->workingPath(),
                  photos);
        return world;
    }

    static QStringList remoteFiles(const World &world, const QString &folder)
    {
        return QDir(world.remote(folder)).entryList(QDir::Files, QDir::Name);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(installTemplates());
        QVERIFY2(!FtpTestServer::pythonProgram().isEmpty(), "python3-pyftpdlib is needed");
    }

    void cleanName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("cleaned");
        QTest::newRow("plain") << "Trip to NY May 2007"
                               << "Trip to NY May 2007";
        QTest::newRow("dots go") << "St. Ives. 2007"
                                 << "St Ives 2007";
        QTest::newRow("extension stays") << "a.b.jpg"
                                         << "ab.jpg";
        QTest::newRow("dots behind the extension stay") << "x.y.h.z"
                                                        << "xy.h.z";
        QTest::newRow("no extension") << "x.y.htm.z"
                                      << "xyhtmz";
        QTest::newRow("marks") << "A&B+C'D%E#F@G~H;I:J^K"
                               << "ABCDEFGHIJK";
        QTest::newRow("brackets") << "<a>{b}[c]"
                                  << "abc";
        QTest::newRow("slashes") << "a/b\\c?d*e|f\"g"
                                 << "abcdefg";
        QTest::newRow("only bad characters") << "...??**"
                                             << "";
    }
    void cleanName()
    {
        QFETCH(QString, name);
        QFETCH(QString, cleaned);
        QCOMPARE(CleanName(name), cleaned);
    }

    void defaultNameHasTheDigitsOfNow()
    {
        const QString name = DefaultPageName();
        QVERIFY(QRegularExpression(QStringLiteral("^Photo\\d{10}$")).match(name).hasMatch());
    }

    void twelvePhotosGoUpAsOnePage()
    {
        auto world = makeWorld();
        QVERIFY(world->server.isRunning());
        world->ui.answerPrompt(QStringLiteral("Trip to NY May 2007"));

        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        QCOMPARE(world->lastPageName, QStringLiteral("Trip_to_NY_May_2007"));
        for (const auto &shown : world->ui.messages)
            qWarning("message: %s", qPrintable(shown.text));
        QVERIFY(world->ui.messages.isEmpty());

        // The server holds the page and every copy it links to.
        const QString folder = QStringLiteral("/Photos/Trip_to_NY_May_2007");
        const QString page = world->remote(folder + QStringLiteral("/Photos.htm"));
        QVERIFY(QFileInfo(page).isFile());
        QCOMPARE(thumbnailsOf(page), expectedOrder());
        const QStringList onServer = remoteFiles(*world, folder);
        for (const QString &link : linksOf(page))
            QVERIFY2(onServer.contains(link), qPrintable(link));
        // Group 0 is sent, though the page doesn't show it.
        QVERIFY(onServer.contains(QStringLiteral("Sml_00000_Spare.jpg")));
        QVERIFY(onServer.contains(QStringLiteral("Lrg_00000_Spare.jpg")));
        QCOMPARE(onServer.size(), 2 * 12 + 1);
        // Copies are pictures at the chosen sizes; the turned one is upright.
        QCOMPARE(QImage(world->remote(folder + QStringLiteral("/Lrg_00010_Harbour.jpg"))).size(),
                 QSize(96, 72));
        QCOMPARE(QImage(world->remote(folder + QStringLiteral("/Sml_00010_Harbour.jpg"))).size(),
                 QSize(48, 36));
        QCOMPARE(QImage(world->remote(folder + QStringLiteral("/Lrg_00070_Tree_Left.jpg"))).size(),
                 QSize(72, 96));

        // The page's text: the default title and, without the prompt, the prompt's own wording.
        QFile pageFile(page);
        QVERIFY(pageFile.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(pageFile.readAll());
        QVERIFY(text.contains(QStringLiteral("Enter an introduction to the photo group...")));
        QVERIFY(text.contains(QStringLiteral("Caption of Aquarium.jpg")));

        // The pointer is on the clipboard and on the History tab.
        QVERIFY(world->ui.clipboard);
        QCOMPARE(world->ui.clipboard->text(),
                 QStringLiteral("http://www.example.com/Photos/Trip_to_NY_May_2007/Photos.htm"));
        QCOMPARE(world->window->pagePointer,
                 QStringLiteral("www.example.com/Photos/Trip_to_NY_May_2007/Photos.htm"));

        // The working copies and the made copies are gone; the source pictures stay.
        QVERIFY(ListPictureFiles(world->workingPath()).isEmpty());
        QVERIFY(ListPictureFiles(world->lastImageRoot).isEmpty());
        QCOMPARE(ListPictureFiles(world->source.path()).size(), 12);

        // The History file holds the page.
        PhotoPage read;
        read.FileName = QStringLiteral("Trip_to_NY_May_2007.hst");
        QVERIFY(ReadHistory(read).ok);
        QCOMPARE(read.PhotoNumber, qint16(12));
        QCOMPARE(read.Title, QStringLiteral("Photos"));
        QCOMPARE(read.PhotoName[7], QStringLiteral("Tree_Left.jpg"));
        QCOMPARE(read.PhotoRotate[7], QStringLiteral("_Left"));

        // The status texts come in the order of a run, and the counter starts at 1 of 26.
        const QStringList order = {
            QStringLiteral("Collecting Files and Information"),
            QStringLiteral("Prompt for Photo Information is Requested"),
            QStringLiteral("Sizing Photos"),
            QStringLiteral("Saving Information"),
            QStringLiteral("Building Locally"),
            QStringLiteral("Connecting"),
            QStringLiteral("Verifing Path"),
            QStringLiteral("Creating a directory"),
            QStringLiteral("Sending Files"),
            QStringLiteral("Start Upload"),
            QStringLiteral("Uploading the large copy of file: 00000_Spare.jpg"),
            QStringLiteral("Uploading the thumbnail copy of file: 00000_Spare.jpg"),
            QStringLiteral("Uploading the webpage file: Trip_to_NY_May_2007"),
            QStringLiteral("Upload complete!"),
            QStringLiteral("Disconnecting")};
        qsizetype at = 0;
        for (const QString &status : order) {
            at = world->ui.statusTexts.indexOf(status, at);
            QVERIFY2(at >= 0, qPrintable(status));
        }
        QVERIFY(world->ui.stepTexts.contains(QStringLiteral("Currently loading section 1 of 26")));
        QVERIFY(world->ui.stepTexts.contains(QStringLiteral("Currently loading section 26 of 26")));
        QVERIFY(world->window->caption.startsWith(QStringLiteral("Connected to 127.0.0.1:")));
        QVERIFY(world->window->shapeEvents.contains(0));
        QCOMPARE(world->window->cleanups, 1);
        // What the window was asked to do: the lists re-read, the hourglass off again, the
        // History tab's thumbnail pointers one line per thumbnail sent, each thumbnail shown.
        QVERIFY(world->window->readyRefreshes > 0);
        QVERIFY(world->window->historyRefreshes > 0);
        QVERIFY(!world->window->busy);
        QCOMPARE(world->window->thumbnailPointers.count(QStringLiteral("\r\n")), 12);
        QVERIFY(world->window->thumbnailPointers.contains(
            QStringLiteral("www.example.com/Photos/Trip_to_NY_May_2007/Sml_00070_Tree_Left.jpg")));
        QCOMPARE(world->window->thumbnails.size(), 12);
        QVERIFY(world->window->selectedRows.isEmpty()); // no prompt for each picture
    }

    void theTitlePromptAsksForTitleAndIntroduction()
    {
        auto world = makeWorld();
        world->window->title_prompt = true;
        world->window->RunWithoutMenu = true;
        world->state.current<PhotoPage>().Title = QStringLiteral("Old title");
        world->ui.answerPrompt(QStringLiteral("Beach"));
        world->ui.answerPrompt(QString()); // an empty title
        world->ui.answerPrompt(QStringLiteral("We went to the sea."));

        QCOMPARE(world->run(), PhotoBuildOutcome::BuiltLocally);
        QCOMPARE(world->ui.prompts.size(), 3);
        QCOMPARE(world->ui.prompts.at(0).text,
                 QStringLiteral("Enter the name of the webpage (no extention, example: 'Trip to "
                                "NY May 2007')..."));
        QCOMPARE(world->ui.prompts.at(1).text, QStringLiteral("Enter a title..."));
        QCOMPARE(world->ui.prompts.at(1).defaultText, QStringLiteral("Old title"));
        QCOMPARE(world->ui.prompts.at(2).defaultText,
                 QStringLiteral("Below are some photos from us......."));
        QCOMPARE(world->state.current<PhotoPage>().Title, QString());
        QCOMPARE(world->state.current<PhotoPage>().GroupInfo,
                 QStringLiteral("We went to the sea."));

        // Run Without Connections: the page is built, nothing goes out, the working files stay.
        QVERIFY(QFileInfo(world->lastImageRoot + QStringLiteral("/Beach/Photos.htm")).isFile());
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
        QVERIFY(!world->ui.clipboard);
        QVERIFY(world->server.commands().isEmpty());
    }

    // The page built with the default templates and the default colours: the title readable
    // on its band, the text on the page, every thumbnail of even size with its width, height
    // and alternative text, and each a plain link to its larger copy.
    void theDefaultPageIsReadableAndEven()
    {
        auto world = makeWorld();
        world->window->RunWithoutMenu = true;
        PhotoPage &record = world->state.current<PhotoPage>();
        const int quiet = FindPhoto(record, QStringLiteral("Park.jpg"), QStringLiteral("00040"));
        QVERIFY(PhotoPage::isRow(quiet));
        record.PhotoInfo[quiet].clear();
        world->ui.answerPrompt(QStringLiteral("Colours"));
        QCOMPARE(world->run(), PhotoBuildOutcome::BuiltLocally);
        const QString page = shownPage(world->lastImageRoot + QStringLiteral("/Colours/Photos.htm"));
        QVERIFY(!page.isEmpty());

        const QColor title(cssValue(page, QStringLiteral("h1"), QStringLiteral("color")));
        const QColor band(
            cssValue(page, QStringLiteral(".masthead"), QStringLiteral("background-color")));
        const QColor text(cssValue(page, QStringLiteral("body"), QStringLiteral("color")));
        const QColor ground(
            cssValue(page, QStringLiteral("body"), QStringLiteral("background-color")));
        QCOMPARE(title, QColor(QStringLiteral("#008000")));  // the setting's default
        QCOMPARE(ground, QColor(QStringLiteral("#7F7FFF"))); // the setting's default
        QVERIFY2(contrast(title, band) >= 4.5, qPrintable(QString::number(contrast(title, band))));
        QVERIFY2(contrast(text, ground) >= 4.5, qPrintable(QString::number(contrast(text, ground))));
        // The title stands on its band.
        QVERIFY(page.contains(QRegularExpression(
            QStringLiteral("<header class=\"masthead\">\\s*<h1>Photos</h1>\\s*</header>"))));

        static const QRegularExpression thumbnail(QStringLiteral(
            "<a href=\"(Lrg_[^\"]+)\">\\s*<img src=\"(Sml_[^\"]+)\" ([^>]*)>\\s*</a>"));
        int count = 0;
        for (auto it = thumbnail.globalMatch(page); it.hasNext();) {
            const auto match = it.next();
            ++count;
            QCOMPARE(match.captured(1).mid(4), match.captured(2).mid(4));
            const QString attributes = match.captured(3);
            QVERIFY2(attributes.contains(QStringLiteral("width=\"400\" height=\"300\"")),
                     qPrintable(attributes));
            const QString name = match.captured(2).mid(4 + 6); // less "Sml_" and the group
            if (name == QStringLiteral("Park.jpg"))
                QVERIFY2(attributes.contains(QStringLiteral("alt=\"Sml_00040_Park.jpg\"")),
                         qPrintable(attributes));
            else
                QVERIFY2(attributes.contains(QStringLiteral("alt=\"Caption of ") + name +
                                             QLatin1Char('"')),
                         qPrintable(attributes));
        }
        QCOMPARE(count, 11);
        QCOMPARE(page.count(QStringLiteral("<img ")), 11);
        // The view over the page, in the page itself.
        QVERIFY(page.contains(QStringLiteral("<dialog class=\"viewer\"")));
        QVERIFY(page.contains(QStringLiteral("showModal")));
    }

    // Pages light enough for a phone: at the default quality (85, progressive) the page and its
    // thumbnails, what a visitor loads first, weigh under a fifth of the same page at 100, and
    // every copy keeps a PSNR of 40 dB or more against its quality-100 twin.
    void theDefaultQualityMakesALightPage()
    {
        auto world = makeWorld();
        world->window->RunWithoutMenu = true;
        // Thumbnails of 600 x 450 pixels, about those of a 12-megapixel photo at the default 15%.
        world->window->options_.My_resize_0 = QStringLiteral("25");
        world->window->options_.My_resize_1 = QStringLiteral("50");
        // Camera-like pictures: a scene under a fine grain, as a sensor gives it.
        int seed = 1;
        for (const QString &entry : ListPictureFiles(world->workingPath()))
            QVERIFY(makeCameraPhoto(world->workingPath() + QLatin1Char('/') + entry, seed++));
        const auto build = [&](const QString &quality, const QString &keep) {
            world->window->options_.JpegQuality = quality;
            world->ui.answerPrompt(QStringLiteral("Light"));
            QCOMPARE(world->run(), PhotoBuildOutcome::BuiltLocally);
            QDir().mkpath(keep);
            QDir images(world->lastImageRoot);
            for (const QString &name : images.entryList({QStringLiteral("*_*.jpg")}, QDir::Files))
                QVERIFY(QFile::copy(images.filePath(name), keep + QLatin1Char('/') + name));
            QVERIFY(QFile::copy(world->lastImageRoot + QStringLiteral("/Light/Photos.htm"),
                                keep + QStringLiteral("/Photos.htm")));
        };
        QTemporaryDir kept;
        build(QStringLiteral("85"), kept.filePath(QStringLiteral("85")));
        build(QStringLiteral("100"), kept.filePath(QStringLiteral("100")));

        const auto weight = [&](const QString &folder) {
            qint64 bytes = QFileInfo(folder + QStringLiteral("/Photos.htm")).size();
            for (const QFileInfo &file :
                 QDir(folder).entryInfoList({QStringLiteral("Sml_*")}, QDir::Files))
                bytes += file.size();
            return bytes;
        };
        const qint64 light = weight(kept.filePath(QStringLiteral("85")));
        const qint64 full = weight(kept.filePath(QStringLiteral("100")));
        qInfo("page and thumbnails: %lld bytes at quality 85, %lld at 100", light, full);
        QVERIFY2(light * 5 < full, qPrintable(QStringLiteral("%1 against %2").arg(light).arg(full)));

        const QStringList copies =
            QDir(kept.filePath(QStringLiteral("85"))).entryList({QStringLiteral("*_*.jpg")});
        QCOMPARE(copies.size(), 24);
        double lowest = 99;
        for (const QString &name : copies) {
            const QString light85 = kept.filePath(QStringLiteral("85/") + name);
            QVERIFY2(QFile(light85).open(QIODevice::ReadOnly), qPrintable(name));
            QVERIFY(isProgressiveJpeg(light85));
            QVERIFY(!isProgressiveJpeg(kept.filePath(QStringLiteral("100/") + name)));
            const double db =
                psnr(QImage(light85), QImage(kept.filePath(QStringLiteral("100/") + name)));
            lowest = std::min(lowest, db);
            QVERIFY2(db >= 40, qPrintable(QStringLiteral("%1: %2 dB").arg(name).arg(db)));
        }
        qInfo("lowest PSNR of a copy at 85 against its twin at 100: %.1f dB", lowest);
    }

    void thePhotoPromptStoresTextAndSide()
    {
        auto world = makeWorld();
        world->window->file_prompt = true;
        world->window->RunWithoutMenu = true;
        world->ui.answerPrompt(QStringLiteral("Sides"));
        const QStringList rows = ListPictureFiles(world->workingPath());
        for (int i = 0; i < rows.size(); ++i) {
            if (i == 1)
                world->ui.answerPrompt(QString(), QStringLiteral("True")); // OK on an empty text
            else
                world->ui.answerPrompt(QStringLiteral("Text %1").arg(i),
                                       i % 3 == 0 ? QStringLiteral("True")
                                                  : QStringLiteral("False"));
        }
        QCOMPARE(world->run(), PhotoBuildOutcome::BuiltLocally);
        QCOMPARE(world->ui.prompts.at(1).text,
                 QStringLiteral("(1 of 12) Enter text associated with the image, then select "
                                "Display Left or Display Right"));
        const PhotoPage &page = world->state.current<PhotoPage>();
        const int first =
            FindPhoto(page, RemoveGroupNumber(rows.at(0)), GetGroupNumber(rows.at(0)));
        QCOMPARE(page.PhotoInfo[first], QStringLiteral("Text 0"));
        QCOMPARE(page.PhotoLeft[first], QStringLiteral("True"));
        const int second =
            FindPhoto(page, RemoveGroupNumber(rows.at(1)), GetGroupNumber(rows.at(1)));
        QCOMPARE(page.PhotoInfo[second], QStringLiteral("   "));
        const int third =
            FindPhoto(page, RemoveGroupNumber(rows.at(2)), GetGroupNumber(rows.at(2)));
        QCOMPARE(page.PhotoLeft[third], QStringLiteral("False"));

        // A picture on the left is written with the left template.
        QFile built(world->lastImageRoot + QStringLiteral("/Sides/Photos.htm"));
        QVERIFY(built.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(built.readAll());
        QVERIFY(text.contains(QStringLiteral("photo left")));
        QVERIFY(text.contains(QStringLiteral("Text 2")));
        // Each picture was shown (selected in File3) while its prompt stood.
        QCOMPARE(world->window->selectedRows, QList<int>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    }

    void leavingAPhotoPromptEndsInSilence()
    {
        auto world = makeWorld();
        world->window->file_prompt = true;
        world->ui.answerPrompt(QStringLiteral("Left half way"));
        world->ui.answerPrompt(QStringLiteral("first"), QStringLiteral("True"));
        world->ui.answerPrompt(JobState::Skip);
        QCOMPARE(world->run(), PhotoBuildOutcome::Skipped);
        QVERIFY(world->ui.messages.isEmpty());
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
        QVERIFY(ListPictureFiles(world->workingPath() + QStringLiteral("/images")).isEmpty());
        QVERIFY(world->server.commands().isEmpty());
        QCOMPARE(world->window->cleanups, 0);
    }

    void leavingTheNamePromptEndsInSilence()
    {
        auto world = makeWorld();
        world->state.current<PhotoPage>().FileName = QStringLiteral("Kept");
        // No answer scripted: the prompt is left.
        QCOMPARE(world->run(), PhotoBuildOutcome::Skipped);
        QVERIFY(world->ui.messages.isEmpty());
        QCOMPARE(world->ui.prompts.at(0).defaultText, QStringLiteral("Kept"));
        // The History as saved before the prompts; no made copies.
        QVERIFY(QFileInfo(Folders::HistoryFolder() + QStringLiteral("/Kept.hst")).isFile());
        QVERIFY(ListPictureFiles(world->workingPath() + QStringLiteral("/images")).isEmpty());
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
    }

    void anEmptyListIsRefused()
    {
        auto world = makeWorld();
        for (const QString &row : ListPictureFiles(world->workingPath()))
            QFile::remove(world->workingPath() + QLatin1Char('/') + row);
        QCOMPARE(world->run(), PhotoBuildOutcome::NoImages);
        QCOMPARE(world->ui.messages.size(), 1);
        QCOMPARE(world->ui.messages.at(0).text,
                 QStringLiteral("Images need to be selected before an upload can start."));
        QVERIFY(world->ui.prompts.isEmpty());
    }

    void aNameOfOnlyBadCharactersFindsNoPageFolder()
    {
        auto world = makeWorld();
        const QStringList before =
            QDir(Folders::HistoryFolder()).entryList({QStringLiteral("*.hst")}, QDir::Files);
        world->ui.answerPrompt(QStringLiteral("..//??**"));
        QCOMPARE(world->run(), PhotoBuildOutcome::WrongPath);
        QCOMPARE(world->lastPageName, QString());
        QCOMPARE(world->state.current<PhotoPage>().FileName, QString());
        QCOMPARE(world->ui.messages.size(), 1);
        QCOMPARE(world->ui.messages.at(0).text,
                 QStringLiteral("The connection to the upload path has failed. Select the Rebuild "
                                "option and the History file and resend."));
        QVERIFY(!world->ftp.IsConnected());
        // Nothing was sent, and no History file without a name was written.
        QCOMPARE(remoteFiles(*world, QStringLiteral("/Photos")), QStringList());
        QCOMPARE(QDir(world->remote(QStringLiteral("/Photos")))
                     .entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 QStringList());
        QCOMPARE(QDir(Folders::HistoryFolder()).entryList({QStringLiteral("*.hst")}, QDir::Files),
                 before);
        QVERIFY(!QFileInfo::exists(Folders::HistoryFolder() + QStringLiteral("/.hst")));
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
    }

    void aFileNamedPhotosTakesTheFailureBranch()
    {
        auto world = makeWorld();
        QFile blocker(world->remote(QStringLiteral("/Photos")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.write("not a folder");
        blocker.close();
        world->ui.answerPrompt(QStringLiteral("Blocked"));

        QCOMPARE(world->run(), PhotoBuildOutcome::Failed);
        QCOMPARE(world->ui.messages.size(), 1);
        QVERIFY(world->ui.messages.at(0).text.startsWith(
            QStringLiteral("failed to connect, retry. (")));
        QVERIFY(world->ui.messages.at(0).text.endsWith(QLatin1Char(')')));
        // Everything local stays for a second click.
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
        QCOMPARE(ListPictureFiles(world->lastImageRoot).size(), 24);
        QVERIFY(QFileInfo(world->lastImageRoot + QStringLiteral("/Blocked/Photos.htm")).isFile());
        QVERIFY(!world->ftp.IsConnected());
        QVERIFY(world->ui.clipboard && world->ui.clipboard->formats().isEmpty());
    }

    void aRefusedLoginTakesTheFailureBranch()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("refuse-login")};
        auto world = makeWorld(options);
        world->ui.answerPrompt(QStringLiteral("Refused"));
        QCOMPARE(world->run(), PhotoBuildOutcome::Failed);
        QCOMPARE(world->ui.messages.size(), 1);
        QVERIFY(world->ui.messages.at(0).text.startsWith(
            QStringLiteral("failed to connect, retry. (")));
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
    }

    // A refusal other than 550 when the page's folder is made is shown, and the run goes on: here
    // the folder is there already and the server says so with 553.
    void aPageFolderRefusedWithOtherThan550IsToldAndTheRunGoesOn()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("mkd-553=Refused")};
        auto world = makeWorld(options);
        QVERIFY(QDir().mkpath(world->remote(QStringLiteral("/Photos/Refused"))));
        world->ui.answerPrompt(QStringLiteral("Refused"));
        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        QCOMPARE(world->ui.messages.size(), 1);
        QVERIFY2(world->ui.messages.at(0).text.startsWith(QStringLiteral("553")),
                 qPrintable(world->ui.messages.at(0).text));
        QCOMPARE(remoteFiles(*world, QStringLiteral("/Photos/Refused")).size(), 25);
        QCOMPARE(world->ui.clipboard->text(),
                 QStringLiteral("http://www.example.com/Photos/Refused/Photos.htm"));
    }

    // After a lost session the run logs in again; a "Photos" that has become a file is told.
    void aPhotosFileFoundAtTheReconnectIsTold()
    {
        auto world = makeWorld();
        world->ui.answerPrompt(QStringLiteral("Moved"));
        const QStringList rows = ListPictureFiles(world->workingPath());
        World *w = world.get();
        bool done = false;
        world->ui.onProcessEvents = [&] {
            if (done || w->ui.statusTexts.isEmpty() ||
                w->ui.statusTexts.last() !=
                    QStringLiteral("Uploading the large copy of file: ") + rows.at(3))
                return;
            done = true;
            // The folder goes aside, a file takes its name, and the session is lost.
            const QString photos = w->remote(QStringLiteral("/Photos"));
            QVERIFY(QDir().rename(photos, w->remote(QStringLiteral("/Aside"))));
            QFile file(photos);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.close();
            w->ftp.CloseConnection();
        };
        world->run();
        QVERIFY(done);
        QVERIFY(!world->ui.messages.isEmpty());
        QCOMPARE(world->ui.messages.at(0).text, QStringLiteral("FTP Path is not a directory."));
        QVERIFY(QFileInfo(world->remote(QStringLiteral("/Photos"))).isFile());
    }

    void aDroppedConnectionIsTakenUpAgain()
    {
        auto world = makeWorld();
        world->ui.answerPrompt(QStringLiteral("Dropped"));
        const QStringList rows = ListPictureFiles(world->workingPath());
        bool restarted = false;
        World *w = world.get();
        // After the fifth photo the server goes away and comes back on another port.
        world->ui.onProcessEvents = [&] {
            if (restarted || w->ui.statusTexts.isEmpty() ||
                w->ui.statusTexts.last() !=
                    QStringLiteral("Uploading the large copy of file: ") + rows.at(5))
                return;
            restarted = true;
            QVERIFY(w->server.start());
            w->window->account_.server = w->server.server();
        };
        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        QVERIFY(restarted);
        QVERIFY(world->ui.messages.isEmpty());
        const QString folder = QStringLiteral("/Photos/Dropped");
        const QString page = world->remote(folder + QStringLiteral("/Photos.htm"));
        QCOMPARE(thumbnailsOf(page), expectedOrder());
        QCOMPARE(remoteFiles(*world, folder).size(), 25);
        QCOMPARE(world->ui.clipboard->text(),
                 QStringLiteral("http://www.example.com/Photos/Dropped/Photos.htm"));
    }

    void aLostServerIsToldAtEachReconnectAndTheRunGoesToItsEnd()
    {
        auto world = makeWorld();
        world->ui.answerPrompt(QStringLiteral("Lost"));
        const QStringList rows = ListPictureFiles(world->workingPath());
        World *w = world.get();
        world->ui.onProcessEvents = [&] {
            if (w->server.isRunning() && !w->ui.statusTexts.isEmpty() &&
                w->ui.statusTexts.last() ==
                    QStringLiteral("Uploading the large copy of file: ") + rows.at(2))
                w->server.stop();
        };
        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        // Rows 2 to 11 and the page each find the session gone and try to log in again.
        QCOMPARE(world->ui.messages.size(), int(rows.size()) - 2 + 1);
        for (const auto &message : std::as_const(world->ui.messages))
            QCOMPARE(message.text,
                     QStringLiteral("There was a error with reconnecting to the server."));
        // What went before the server was lost is there; the rest failed on its own.
        QCOMPARE(remoteFiles(*world, QStringLiteral("/Photos/Lost")).size(), 4);
        // The run ends as a run does: disconnected, the pointer made, the working copies gone;
        // the History file keeps the list for a resend.
        QVERIFY(world->ui.statusTexts.contains(QStringLiteral("Disconnecting")));
        QVERIFY(world->ui.clipboard);
        QVERIFY(world->ui.clipboard->text().endsWith(QStringLiteral("/Photos.htm")));
        QVERIFY(ListPictureFiles(world->workingPath()).isEmpty());
        PhotoPage saved;
        QVERIFY(ReadHistoryFile(saved, Folders::HistoryFolder() + QStringLiteral("/Lost.hst")).ok);
        QCOMPARE(saved.PhotoNumber, qint16(rows.size()));
    }

    void cancelStopsInSilenceAndASecondRunFinishes()
    {
        auto world = makeWorld();
        world->ui.answerPrompt(QStringLiteral("Cancelled"));
        const QStringList rows = ListPictureFiles(world->workingPath());
        World *w = world.get();
        bool cancelled = false;
        world->ui.onProcessEvents = [&] {
            if (!cancelled && !w->ui.statusTexts.isEmpty() &&
                w->ui.statusTexts.last() ==
                    QStringLiteral("Uploading the large copy of file: ") + rows.at(6)) {
                cancelled = true;
                w->state.UploadCancelled = true; // the progress frame's Cancel
            }
        };
        QCOMPARE(world->run(), PhotoBuildOutcome::Cancelled);
        QVERIFY(world->ui.messages.isEmpty());
        QVERIFY(!world->ui.clipboard || world->ui.clipboard->text().isEmpty());
        QVERIFY(!world->ftp.IsConnected());
        // Sent rows lost their made copies; the rest and all working pictures stay.
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
        QCOMPARE(ListPictureFiles(world->lastImageRoot).size(), 2 * (12 - 6));
        const QString folder = QStringLiteral("/Photos/Cancelled");
        QCOMPARE(remoteFiles(*world, folder).size(), 12);
        QVERIFY(!QFileInfo(world->remote(folder + QStringLiteral("/Photos.htm"))).exists());

        // A second press finishes the page.
        world->ui.onProcessEvents = nullptr;
        world->ui.answerPrompt(QStringLiteral("Cancelled"));
        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        QCOMPARE(remoteFiles(*world, folder).size(), 25);
        QCOMPARE(thumbnailsOf(world->remote(folder + QStringLiteral("/Photos.htm"))),
                 expectedOrder());
        QVERIFY(ListPictureFiles(world->workingPath()).isEmpty());
    }

    void aClientRootThatIsAFileTakesTheFailureBranch()
    {
        auto world = makeWorld();
        world->window->options_.ClientRoot = QStringLiteral("my site");
        QFile blocker(world->remote(QStringLiteral("/my_site")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        world->ui.answerPrompt(QStringLiteral("Client"));
        QCOMPARE(world->run(), PhotoBuildOutcome::Failed);
        QCOMPARE(world->ui.messages.last().text,
                 QStringLiteral("failed to connect, retry. (\"my_site\" on the web space is a "
                                "file, not a directory)"));
    }

    void theClientRootHoldsThePhotos()
    {
        auto world = makeWorld();
        world->window->options_.ClientRoot = QStringLiteral("ann site");
        world->ui.answerPrompt(QStringLiteral("Client page"));
        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        QVERIFY(QFileInfo(world->remote(QStringLiteral("/ann_site/Photos/Client_page/Photos.htm")))
                    .isFile());
        QCOMPARE(world->ui.clipboard->text(),
                 QStringLiteral("http://www.example.com/ann_site/Photos/Client_page/Photos.htm"));
    }
    void aPageFolderThatIsAFileEndsWithTheRebuildMessage()
    {
        auto world = makeWorld();
        QVERIFY(QDir().mkpath(world->remote(QStringLiteral("/Photos"))));
        QFile blocker(world->remote(QStringLiteral("/Photos/Blocked_page")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        world->ui.answerPrompt(QStringLiteral("Blocked page"));
        QCOMPARE(world->run(), PhotoBuildOutcome::WrongPath);
        QCOMPARE(world->ui.messages.size(), 1);
        QCOMPARE(world->ui.messages.at(0).text,
                 QStringLiteral("The connection to the upload path has failed. Select the "
                                "Rebuild option and the History file and resend."));
        QVERIFY(!world->ftp.IsConnected());
        QCOMPARE(ListPictureFiles(world->workingPath()).size(), 12);
        QVERIFY(!world->ui.clipboard);
    }
    void untickingThePhotoPromptMidwayGivesTheStandardText_data()
    {
        QTest::addColumn<bool>("blank");
        QTest::addColumn<QString>("text");
        QTest::newRow("standard text") << false << "Photo...";
        QTest::newRow("blank text") << true << "   ";
    }
    void untickingThePhotoPromptMidwayGivesTheStandardText()
    {
        QFETCH(bool, blank);
        QFETCH(QString, text);
        auto world = makeWorld();
        world->window->file_prompt = true;
        world->window->Skip_image_info = blank;
        world->window->RunWithoutMenu = true;
        world->ui.answerPrompt(QStringLiteral("Unticked"));
        world->ui.answerPrompt(QStringLiteral("The first"), QStringLiteral("True"));
        World *w = world.get();
        world->ui.onProcessEvents = [w] {
            if (w->ui.prompts.size() >= 2)
                w->window->file_prompt = false;
        };
        QCOMPARE(world->run(), PhotoBuildOutcome::BuiltLocally);
        QCOMPARE(world->ui.prompts.size(), 2);
        const PhotoPage &page = world->state.current<PhotoPage>();
        const QStringList rows = ListPictureFiles(world->workingPath());
        const int first =
            FindPhoto(page, RemoveGroupNumber(rows.at(0)), GetGroupNumber(rows.at(0)));
        QCOMPARE(page.PhotoInfo[first], QStringLiteral("The first"));
        const int last =
            FindPhoto(page, RemoveGroupNumber(rows.last()), GetGroupNumber(rows.last()));
        QCOMPARE(page.PhotoInfo[last], text);
    }

    void leavingTheTitlePromptEndsInSilence()
    {
        auto world = makeWorld();
        world->window->title_prompt = true;
        world->ui.answerPrompt(QStringLiteral("Titled"));
        world->ui.answerPrompt(JobState::Skip);
        QCOMPARE(world->run(), PhotoBuildOutcome::Skipped);
        QVERIFY(world->ui.messages.isEmpty());
        QCOMPARE(world->ui.prompts.size(), 2);
        QVERIFY(world->server.commands().isEmpty());
    }
    void aPictureNameWithBlanksIsLinkedAndSent()
    {
        auto world = makeWorld();
        QVERIFY(makePhoto(world->source.filePath(QStringLiteral("Old Mill.jpg")), Qt::darkYellow));
        QVERIFY(putOnList(world->state.current<PhotoPage>(), world->source.path(),
                          world->workingPath(),
                          {{QStringLiteral("Old Mill.jpg"), QStringLiteral("00015")}}));
        world->ui.answerPrompt(QStringLiteral("Mill"));
        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        const QString folder = QStringLiteral("/Photos/Mill");
        QVERIFY(thumbnailsOf(world->remote(folder + QStringLiteral("/Photos.htm")))
                    .contains(QStringLiteral("Sml_00015_Old%20Mill.jpg")));
        QVERIFY(
            QFileInfo(world->remote(folder + QStringLiteral("/Sml_00015_Old Mill.jpg"))).isFile());
        QVERIFY(
            QFileInfo(world->remote(folder + QStringLiteral("/Lrg_00015_Old Mill.jpg"))).isFile());
    }
    void aMadeCopyOnTheListIsPassedOver()
    {
        auto world = makeWorld();
        QVERIFY(makePhoto(world->workingPath() + QStringLiteral("/Sml_Old.jpg"), Qt::black));
        world->ui.answerPrompt(QStringLiteral("Passed over"));
        QCOMPARE(world->run(), PhotoBuildOutcome::Sent);
        const QString folder = QStringLiteral("/Photos/Passed_over");
        const QStringList onServer = remoteFiles(*world, folder);
        QCOMPARE(onServer.size(), 25);
        QVERIFY(!onServer.contains(QStringLiteral("Sml_Sml_Old.jpg")));
        // The counter counts the row but never reaches it: 26 of 28.
        QVERIFY(world->ui.stepTexts.contains(QStringLiteral("Currently loading section 1 of 28")));
        QVERIFY(world->ui.stepTexts.contains(QStringLiteral("Currently loading section 26 of 28")));
        QVERIFY(
            !world->ui.stepTexts.contains(QStringLiteral("Currently loading section 27 of 28")));
    }
};

TARNWICK_TEST_MAIN(TestPhotoBuild)
#include "test_photobuild.moc"
