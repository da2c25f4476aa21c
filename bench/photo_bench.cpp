// Sizes every picture of a working folder as the photo page build does (CopyPhotos: an "Lrg_"
// and an "Sml_" copy of each) and reports the wall time and the peak memory of the process.
// With --from SOURCE, every picture of SOURCE is first put onto the working folder as the copy
// button does (a HEIC, WebP, PNG or TIFF converted to a JPEG, THREADS at most at once within the
// sizing budget).
//
//   tarnwick_photo_bench [--from SOURCE] WORK TARGET [SMALL% LARGE% [THREADS [QUALITY]]]

#include "CopyPhotos.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoPage.h"
#include "ReadyListConversions.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMimeData>
#include <QTextStream>

#include <sys/resource.h>

namespace {

class ConsoleUi final : public JobUi
{
public:
    void ShowInputBox(JobState &state) override { state.UserResponse = JobState::Skip; }
    Answer Message(const QString &text, const QString &, Buttons, Icon,
                   std::optional<Answer>) override
    {
        QTextStream(stderr) << text << '\n';
        ++messages;
        return Answer::Ok;
    }
    void ShowScrollMessage(const QString &) override {}
    void SetStatusText(const QString &) override {}
    void SetStepOf(const QString &) override {}
    bool OpenUrl(const QUrl &) override { return false; }
    void SetClipboard(QMimeData *data) override { delete data; }
    void ProcessEvents() override { QCoreApplication::processEvents(); }

    int messages = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments();
    QString from;
    if (args.size() > 2 && args.at(1) == QStringLiteral("--from")) {
        from = args.at(2);
        args.remove(1, 2);
    }
    if (args.size() < 3) {
        QTextStream(stderr) << "usage: tarnwick_photo_bench [--from SOURCE] WORK TARGET "
                               "[SMALL% LARGE% [THREADS [QUALITY]]]\n";
        return 2;
    }
    CopyPhotosInput input;
    input.ChoosenUploadPath = args.at(1);
    input.My_resize_0 = args.value(3, QStringLiteral("15"));
    input.My_resize_1 = args.value(4, QStringLiteral("30"));
    input.threads = args.value(5, QStringLiteral("0")).toInt();
    input.jpeg = JpegOptionsFor(args.value(6, QStringLiteral("100")));
    QDir().mkpath(args.at(1));
    QDir().mkpath(args.at(2));

    ConsoleUi ui;
    JobState state;
    PhotoPage page;
    QElapsedTimer timer;
    timer.start();
    int failed = 0;
    int mostAtOnce = 0;
    if (!from.isEmpty()) {
        // As the copy button does: the conversions run on worker threads within the sizing
        // budget, taken back in the list's order.
        ReadyListConversions conversions(input.threads);
        const auto finishOldest = [&] {
            const QString message = conversions.takeOldest().message;
            if (!message.isEmpty()) {
                QTextStream(stderr) << message << '\n';
                ++failed;
            }
        };
        for (const QString &name : ListSourcePictureFiles(from)) {
            const QString source = from + QLatin1Char('/') + name;
            const qint64 bytes = ReadyListConversions::ConversionBytes(source);
            while (!conversions.hasRoom(bytes))
                finishOldest();
            conversions.start(source,
                              input.ChoosenUploadPath + QStringLiteral("/00050_") +
                                  ReadyListName(name),
                              bytes);
        }
        while (conversions.pending() > 0)
            finishOldest();
        mostAtOnce = conversions.mostAtOnce();
    }
    const qint64 converted = timer.elapsed();
    const bool ok = CopyPhotos(args.at(2), false, input, page, ui, state) && failed == 0;
    const qint64 elapsed = timer.elapsed();

    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    QTextStream(stdout) << "pictures " << ListPictureFiles(input.ChoosenUploadPath).size()
                        << " seconds " << QString::number(elapsed / 1000.0, 'f', 2)
                        << " converting " << QString::number(converted / 1000.0, 'f', 2)
                        << " converted_at_once " << mostAtOnce
                        << " peak_mb "
                        << QString::number(usage.ru_maxrss / 1024.0, 'f', 0) << " messages "
                        << ui.messages << '\n';
    return ok && ui.messages == 0 ? 0 : 1;
}
