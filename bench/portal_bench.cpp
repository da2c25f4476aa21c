// The portal page build of a large link store, without the upload: 100 Categories of 50 Page
// Links each (5,000 links) walked through the default templates into Portal.htm, timed over
// several runs.
//
//   tarnwick_portal_bench <staged data folder> [categories] [links each] [runs]
#include "BuildStartup.h"
#include "DefaultData.h"
#include "Folders.h"
#include "JobUi.h"
#include "PortalBuild.h"
#include "TemplateState.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

class QuietUi final : public JobUi
{
public:
    void ShowInputBox(JobState &) override {}
    Answer Message(const QString &, const QString &, Buttons, Icon, std::optional<Answer>) override
    {
        return Answer::Ok;
    }
    void ShowScrollMessage(const QString &) override {}
    void SetStatusText(const QString &) override {}
    void SetStepOf(const QString &) override {}
    bool OpenUrl(const QUrl &) override { return true; }
    void SetClipboard(QMimeData *) override {}
    void ProcessEvents() override {}
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QCoreApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <staged data folder> [categories] [links] [runs]\n",
                     argv[0]);
        return 2;
    }
    const int categories = argc > 2 ? std::atoi(argv[2]) : 100;
    const int linksEach = argc > 3 ? std::atoi(argv[3]) : 50;
    const int runs = argc > 4 ? std::atoi(argv[4]) : 7;

    QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/.config")).toLocal8Bit());
    Folders::SetProgramFolder(QString::fromLocal8Bit(argv[1]));
    Folders::MakeFolderTree();
    QuietUi ui;
    CopyFiles(ui);
    QDir startup(Folders::StartupFolder());
    for (const QFileInfo &info : startup.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (info.isDir())
            QDir(info.filePath()).removeRecursively();
        else if (info.suffix() == QLatin1String("Cat"))
            QFile::remove(info.filePath());
    }
    for (int c = 0; c < categories; ++c) {
        const QString name = QStringLiteral("Category %1").arg(c, 3, 10, QLatin1Char('0'));
        BuildStartup::MakeCategory(name);
        const QString folder = BuildStartup::CategoryFolder(name + QStringLiteral(".Cat"));
        for (int l = 0; l < linksEach; ++l) {
            const QString link = QStringLiteral("Link %1 of %2").arg(l).arg(c);
            BuildStartup::SavePageLink(
                BuildStartup::PageLinkPath(folder, link),
                {link, QStringLiteral("https://site%1.example.org/page/%2?x=1&y=2").arg(c).arg(l),
                 qint16(l % 14)});
        }
    }

    std::vector<double> times;
    PortalPageResult result;
    for (int run = 0; run < runs; ++run) {
        TemplateState state;
        PageLink current;
        QElapsedTimer timer;
        timer.start();
        result = BuildPortalPage(Folders::StartupFolder(), state, current);
        times.push_back(timer.nsecsElapsed() / 1e9);
    }
    std::sort(times.begin(), times.end());
    const qint64 size = QFileInfo(Folders::StartupFolder() + QStringLiteral("/Portal.htm")).size();
    std::printf("portal build: %d categories, %d links, %d rows, %d columns, page %lld bytes%s\n",
                result.categories, result.links, result.layout.rows, result.layout.PortalColumns,
                static_cast<long long>(size), result.written ? "" : " (NOT WRITTEN)");
    std::printf("  %d runs: fastest %.3f s, median %.3f s, slowest %.3f s\n", runs, times.front(),
                times[times.size() / 2], times.back());
    return result.written ? 0 : 1;
}
