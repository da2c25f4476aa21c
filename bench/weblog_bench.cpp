// Web Log benchmark: the local build of a large Web Log, and the spelling check of a long text.
//
//   tarnwick_weblog_bench build DATA_DIR [SECTIONS] [PICTURES] [RUNS]
//       A Web Log of SECTIONS sections (default 500), PICTURES of them (default 200) with a
//       picture, 20 pointers and 20 comments, in a fresh home folder; one build sizes the
//       pictures, then RUNS builds (default 5) are timed with the pictures already sized:
//       Web_Log.htm, its feed and Comments.htm, no upload.
//   tarnwick_weblog_bench spell TEXT_FILE
//       Loads the dictionary and finds every unknown word of the text, as the spelling check does
//       before its dialog opens; prints the times and the words found.
//   tarnwick_weblog_bench maketext TEXT_FILE [WORDS] [MISSPELT]
//       Writes a text of WORDS words (default 10000) of which MISSPELT (default 100) are not
//       words, and prints the misspelt ones.

#include "BlogPages.h"
#include "BlogRecords.h"
#include "Folders.h"
#include "JobState.h"
#include "JobUi.h"
#include "Settings.h"
#include "WordChecker.h"

#include <QColor>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>

namespace {

class QuietUi final : public JobUi
{
public:
    void ShowInputBox(JobState &) override {}
    Answer Message(const QString &text, const QString &, Buttons, Icon,
                   std::optional<Answer>) override
    {
        std::fprintf(stderr, "message: %s\n", qPrintable(text));
        return Answer::Ok;
    }
    void ShowScrollMessage(const QString &) override {}
    void SetStatusText(const QString &) override {}
    void SetStepOf(const QString &) override {}
    bool OpenUrl(const QUrl &) override { return true; }
    void SetClipboard(QMimeData *data) override { delete data; }
    void ProcessEvents() override { QCoreApplication::processEvents(); }
};

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

int build(const QString &dataDir, int sections, int pictures, int runs)
{
    QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    Folders::MakeFolderTree();
    for (const QString &name : QDir(dataDir).entryList({"B_*.txt", "BC_*.txt"}, QDir::Files))
        QFile::copy(dataDir + "/" + name, Folders::BlogFolder() + "/" + name);

    BlogRecords records;
    records.main.FileName = "Big Log";
    records.main.MainTitle = "A large Web Log";
    records.main.ShowPointers = "Yes";
    records.main.ShowCommentPage = "Yes";
    BuildBlog::SaveBlogMain(records);
    const QString pictureFolder = home.path() + "/pictures";
    QDir().mkpath(pictureFolder);
    const QString paragraph =
        "We walked along the harbour in the morning and watched the boats come in. "
        "<b>The light</b> was soft and the water calm.\r\nIn the afternoon it rained.";
    for (int i = 0; i < sections; ++i) {
        BlogSection &s = records.section;
        s = BlogSection();
        s.FileName = records.main.FileName;
        s.SubTitle = QString("Section %1").arg(i, 4, 10, QLatin1Char('0'));
        s.DisplayedSubTitle = QString("Day %1").arg(i + 1);
        s.BlogText = paragraph;
        s.Author = "Ann";
        s.BlogDate = QDate(2024, 1, 1).addDays(i).toString(Qt::ISODate);
        s.Position = i % 2 ? "Right" : "Left";
        s.Order = QString::number(i % 7);
        if (i < pictures) {
            const QString path = QString("%1/photo%2.jpg").arg(pictureFolder).arg(i);
            QImage image(800, 600, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i % 360, 160, 200));
            QPainter(&image).fillRect(0, 0, 800, 80, Qt::white);
            image.save(path, "JPEG", 85);
            s.PhotoPath = path;
            s.PhotoTitle = "A photo";
        }
        BuildBlog::SaveBlogSection(records);
    }
    for (int i = 0; i < 20; ++i) {
        records.pointer = BlogPointer();
        records.pointer.Category = QString("Category %1").arg(i / 5);
        records.pointer.DisplayName = QString("Link %1").arg(i);
        records.pointer.URL = QString("http://example.org/%1").arg(i);
        records.pointer.FileName = records.pointer.Category + " - " + records.pointer.DisplayName;
        BuildBlog::SaveBlogPointer(records);
        records.comment = BlogComment();
        records.comment.FileName = QString("Comment %1").arg(i);
        records.comment.Comment = "Lovely pictures!\r\nThanks.";
        BuildBlog::SaveBlogComment(records);
    }

    JobState state;
    QuietUi ui;
    BlogPageOptions options;
    options.txtWebSite = "www.example.org";
    options.Blog_resize = "15";
    QElapsedTimer clock;
    clock.start();
    BlogPagesResult first = BlogPageBuilder(records, options, ui, state).BuildBlogLocally();
    std::printf("first build, %d pictures sized: %.3f s (%d sections on the page)\n",
                first.picturesSized, clock.nsecsElapsed() / 1e9, first.sectionsWritten);

    QList<double> times;
    for (int run = 0; run < runs; ++run) {
        clock.restart();
        BlogPageBuilder builder(records, options, ui, state);
        const BlogPagesResult page = builder.BuildBlogLocally();
        const BlogPagesResult comments = builder.BuildBlogCommentsLocally();
        times << clock.nsecsElapsed() / 1e9;
        if (page.outcome != BlogPagesOutcome::Built ||
            comments.outcome != BlogPagesOutcome::Built || page.picturesSized != 0 ||
            page.sectionsWritten != sections) {
            std::printf("build failed\n");
            return 1;
        }
    }
    const QString folder = BuildBlog::WebLogFolder(records.main.FileName);
    std::printf("%d sections (%d with pictures already sized), 20 pointers, 20 comments: "
                "build without upload median %.3f s, min %.3f s, max %.3f s over %d runs; "
                "Web_Log.htm %lld bytes, feed.xml %lld bytes\n",
                sections, pictures, median(times), *std::min_element(times.begin(), times.end()),
                *std::max_element(times.begin(), times.end()), runs,
                QFileInfo(folder + "/Web_Log.htm").size(), QFileInfo(folder + "/feed.xml").size());
    return 0;
}

int makeText(const QString &path, int words, int misspelt)
{
    const QStringList vocabulary =
        QString(
            "the morning harbor boats came in and we walked along water calm light soft afternoon "
            "rain stopped evening dinner friends town market fish bread cheese wine walk beach "
            "sand "
            "shells children played ball dog ran after birds sky clear blue cloud wind cold warm "
            "house garden flowers tree green leaves road car train station ticket journey long "
            "short "
            "day night week month year small large old new good bad happy quiet loud street corner "
            "shop window door book read wrote letter mother father brother sister family home back "
            "again tomorrow yesterday today picture camera photograph mountain river bridge museum "
            "church square castle tower island ferry port ship sail north south east west")
            .split(' ');
    QStringList text;
    QStringList wrong;
    const int every = words / std::max(1, misspelt);
    for (int i = 0; i < words; ++i) {
        QString word = vocabulary.at((i * 7919) % vocabulary.size());
        if (misspelt > 0 && i % every == every / 2 && wrong.size() < misspelt) {
            word.insert(word.size() / 2, "qz");
            wrong << word;
        }
        text << word;
        if (i % 12 == 11)
            text.last() += ".";
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    file.write(text.join(' ').toUtf8());
    std::printf("%lld words, %lld misspelt\n", qlonglong(text.size()), qlonglong(wrong.size()));
    return 0;
}

int spell(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 1;
    const QString text = QString::fromUtf8(file.readAll());
    QElapsedTimer clock;
    clock.start();
    WordChecker checker;
    const double load = clock.nsecsElapsed() / 1e9;
    if (!checker.isReady()) {
        std::printf("no dictionary installed\n");
        return 1;
    }
    clock.restart();
    SpellingSession session(checker, text);
    const double find = clock.nsecsElapsed() / 1e9;
    std::printf("dictionary %s loaded in %.3f s; %d unknown words found in %.3f s; "
                "before the dialog opens: %.3f s\n",
                qPrintable(checker.dictionaryName()), load, session.found(), find, load + find);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() >= 3 && args.at(1) == "build")
        return build(args.at(2), args.value(3, "500").toInt(), args.value(4, "200").toInt(),
                     args.value(5, "5").toInt());
    if (args.size() >= 3 && args.at(1) == "spell")
        return spell(args.at(2));
    if (args.size() >= 3 && args.at(1) == "maketext")
        return makeText(args.at(2), args.value(3, "10000").toInt(), args.value(4, "100").toInt());
    std::fprintf(stderr, "usage: see the head of bench/weblog_bench.cpp\n");
    return 2;
}
