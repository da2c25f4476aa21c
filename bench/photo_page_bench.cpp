// Build All for a benchmark: the pictures already in a working folder (named "<group>_<name>")
// become the photo page "Bench" on an FTP server, through the program's own job. Prints the
// run's outcome and the page's pointer.
//
//   tarnwick_photopage_bench [--live [--cancel-in sizing|upload]] WORK SERVER USER PASSWORD [PAGE]
//
// Without --live the job runs with no window. With --live the main window is on screen with its
// progress frame and dlgFTP (any platform, offscreen too), a 10 ms timer stands in for the
// window's own events and repaints the progress frame at every tick, and the run reports the
// longest time the event loop went unserved during the sizing, the local build and the upload,
// with the status and step texts that stood when each of those gaps began.
// --cancel-in presses the progress frame's CancelButton once: at the 10th picture of the sizing,
// or at the 21st section of the upload; the run then reports how soon the job returned.
//
// HOME should point at a scratch folder: the program's data tree is made there.

#include "DialogTransferUi.h"
#include "Folders.h"
#include "GuiJobUi.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoBuild.h"
#include "PhotoPage.h"
#include "TransferSteps.h"
#include "TransferUi.h"
#include "cFTP.h"
#include "dlgFTP.h"
#include "frmMain.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFrame>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>

#include <array>
#include <functional>

#include <cstdio>

namespace {

// Answers the name prompt with the page's name and everything else with OK. With a window, the
// status and step texts go to its progress frame.
class BenchUi final : public JobUi
{
public:
    explicit BenchUi(QString name, frmMain *window = nullptr)
        : m_name(std::move(name)), m_window(window)
    {
    }
    void ShowInputBox(JobState &state) override { state.UserResponse = m_name; }
    Answer Message(const QString &text, const QString &, Buttons, Icon,
                   std::optional<Answer>) override
    {
        std::fprintf(stderr, "message: %s\n", qPrintable(text));
        return Answer::Ok;
    }
    void ShowScrollMessage(const QString &) override {}
    void SetStatusText(const QString &text) override
    {
        if (m_window)
            m_window->jobUi().SetStatusText(text);
        if (onStatus)
            onStatus(text);
    }
    void SetStepOf(const QString &text) override
    {
        if (m_window)
            m_window->jobUi().SetStepOf(text);
    }
    bool OpenUrl(const QUrl &) override { return true; }
    void SetClipboard(QMimeData *data) override
    {
        pointer = data->text();
        delete data;
    }
    void ProcessEvents() override { QCoreApplication::processEvents(); }
    QString pointer;
    std::function<void(const QString &)> onStatus;

private:
    QString m_name;
    frmMain *m_window;
};

class BenchWindow final : public TransferWindow, public PhotoBuildWindow
{
public:
    BenchWindow(cFTP &ftp, FtpAccount account, QString work, frmMain *window)
        : m_ftp(ftp), m_account(std::move(account)), m_work(std::move(work)), m_window(window)
    {
    }
    FtpAccount account() const override { return m_account; }
    void ReloadFTPList() override { m_ftp.GetDirectoryListing(QStringLiteral("*.*")); }
    QString UploadPath() const override { return m_path; }
    void showUploadPath(const QString &directory) override
    {
        m_path = QStringLiteral("www.example.com") + directory;
    }
    void cmdDisconnect() override { m_ftp.CloseConnection(); }
    PhotoBuildOptions options() const override
    {
        PhotoBuildOptions options;
        options.ChoosenUploadPath = m_work;
        return options;
    }
    bool titlePrompt() const override { return false; }
    bool filePrompt() const override { return false; }
    bool skipImageInfo() const override { return false; }
    bool runWithoutConnections() const override { return false; }
    // No lists, pointers or caption: the bench has no photo frame.
    void refreshReadyList() override {}
    void refreshHistoryList() override {}
    void refreshSourceList() override {}
    void selectReadyRow(int, bool) override {}
    void showThumbnail(const QString &) override {}
    void setBusy(bool) override {}
    void setCaption(const QString &) override {}
    void shapeEvent(int) override {}
    void DoCleanup() override {}
    void setPagePointer(const QString &) override {}
    void setThumbnailPointers(const QString &) override {}
    void showProgressFrame(bool show) override
    {
        if (m_window)
            m_window->showProgressFrame(show);
    }

private:
    cFTP &m_ftp;
    FtpAccount m_account;
    QString m_work;
    QString m_path;
    frmMain *m_window;
};

// The three stretches of a Build All, told apart by the progress frame's status text.
enum Phase
{
    Sizing,   // the prompts and the Sml_ and Lrg_ copies
    Building, // the History file and Photos.htm
    Upload,   // connecting, the directories, every file sent, disconnecting
};

// Watches a Build All on the window: how long the event loop went unserved in each phase, and,
// when asked, one press of CancelButton.
class LiveWatch
{
public:
    LiveWatch(frmMain &window, DialogTransferUi &progress, QString cancelIn)
        : m_window(window), m_progress(progress), m_cancelIn(std::move(cancelIn))
    {
        QObject::connect(&m_ticker, &QTimer::timeout, [this] { tick(); });
    }

    void start()
    {
        m_sinceTick.start();
        m_run.start();
        m_ticker.start(10);
    }
    void stop()
    {
        m_ticker.stop();
        note(m_sinceTick.elapsed());
    }
    // Each status text the job shows, as it shows it.
    void status(const QString &text)
    {
        m_status = text;
        if (text == QLatin1String("Saving Information") ||
            text == QLatin1String("Building Locally"))
            m_phase = Building;
        else if (m_phase == Building)
            m_phase = Upload;
    }

    std::array<qint64, 3> longestGap{};
    std::array<QString, 3> longestGapStatus; // the status text when that gap began
    int ticks = 0;
    QString cancelledAt; // the status and step texts when CancelButton was pressed
    QElapsedTimer sinceCancel;

private:
    // A gap counts in the phase it began in.
    void note(qint64 gap)
    {
        if (gap > longestGap[m_tickPhase]) {
            longestGap[m_tickPhase] = gap;
            longestGapStatus[m_tickPhase] =
                m_tickStatus + QStringLiteral(" / ") + m_tickStep +
                QStringLiteral(" / %1 ms into the run").arg(m_run.elapsed() - gap);
        }
        m_tickPhase = m_phase;
        m_tickStatus = m_status;
        m_tickStep = m_window.Stepof()->text();
    }

    void tick()
    {
        note(m_sinceTick.restart());
        ++ticks;
        if (m_window.ProgressFrame()->isVisible())
            m_window.ProgressFrame()->repaint();
        if (dlgFTP *dialog = m_progress.dialog(); dialog && dialog->isVisible())
            dialog->repaint();
        if (!cancelledAt.isEmpty() || m_cancelIn.isEmpty())
            return;
        // "10 of 50" while sizing; "Currently loading section 21 of 102" while sending.
        const QString step = m_window.Stepof()->text();
        const bool now = (m_cancelIn == QLatin1String("sizing") && m_phase == Sizing &&
                          m_status == QLatin1String("Sizing Photos") &&
                          step.section(QLatin1Char(' '), 0, 0).toInt() >= 10) ||
                         (m_cancelIn == QLatin1String("upload") && m_phase == Upload &&
                          step.section(QLatin1Char(' '), 3, 3).toInt() >= 21);
        if (!now)
            return;
        cancelledAt = m_status + QStringLiteral(" / ") + step;
        sinceCancel.start();
        m_window.findChild<QPushButton *>(QStringLiteral("CancelButton"))->click();
    }

    frmMain &m_window;
    DialogTransferUi &m_progress;
    QString m_cancelIn;
    QTimer m_ticker;
    QElapsedTimer m_sinceTick;
    Phase m_phase = Sizing;
    QString m_status;
    Phase m_tickPhase = Sizing;
    QString m_tickStatus;
    QString m_tickStep;
    QElapsedTimer m_run;
};

const char *outcomeName(PhotoBuildOutcome outcome)
{
    switch (outcome) {
    case PhotoBuildOutcome::Sent:
        return "sent";
    case PhotoBuildOutcome::NoImages:
        return "no-images";
    case PhotoBuildOutcome::Skipped:
        return "skipped";
    case PhotoBuildOutcome::BuiltLocally:
        return "built-locally";
    case PhotoBuildOutcome::Failed:
        return "failed";
    case PhotoBuildOutcome::WrongPath:
        return "wrong-path";
    case PhotoBuildOutcome::Cancelled:
        return "cancelled";
    default:
        return "other";
    }
}

int countFiles(const QString &folder, const QString &pattern)
{
    return int(QDir(folder).entryList({pattern}, QDir::Files).size());
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QStringList args = app.arguments();
    bool live = false;
    QString cancelIn;
    for (int i = 1; i < args.size();) {
        if (args.at(i) == QLatin1String("--live")) {
            live = true;
            args.removeAt(i);
        } else if (args.at(i) == QLatin1String("--cancel-in") && i + 1 < args.size()) {
            cancelIn = args.at(i + 1);
            args.remove(i, 2);
        } else {
            ++i;
        }
    }
    if (args.size() < 5 ||
        (!cancelIn.isEmpty() &&
         (!live || (cancelIn != QLatin1String("sizing") && cancelIn != QLatin1String("upload"))))) {
        std::fprintf(stderr,
                     "usage: %s [--live [--cancel-in sizing|upload]] WORK SERVER USER PASSWORD "
                     "[PAGE]\n",
                     argv[0]);
        return 2;
    }
    Folders::MakeFolderTree();
    for (const char *name : {"Top.txt", "Left.txt", "Right.txt", "End.txt"}) {
        const QString target = Folders::PhotosFolder() + QLatin1Char('/') + QLatin1String(name);
        if (!QFile::exists(target) &&
            !QFile::copy(Folders::ProgramFolder() + QLatin1Char('/') + QLatin1String(name),
                         target)) {
            std::fprintf(stderr, "no photo templates in %s\n",
                         qPrintable(Folders::ProgramFolder()));
            return 2;
        }
    }

    const QString work = QDir(args.at(1)).absolutePath();
    JobState state;
    PhotoPage &page = state.current<PhotoPage>();
    for (const QString &entry : ListPictureFiles(work)) {
        const int n = page.PhotoNumber;
        if (!PhotoPage::isRow(n))
            break;
        page.PhotoName[n] = RemoveGroupNumber(entry);
        page.PhotoPath[n] = work;
        page.PhotoOrder[n] = GetGroupNumber(entry);
        page.PhotoLeft[n] = n % 2 ? QStringLiteral("True") : QStringLiteral("False");
        page.PhotoInfo[n] = page.PhotoName[n];
        ++page.PhotoNumber;
    }

    cFTP ftp(state);
    std::unique_ptr<frmMain> window;
    if (live) {
        window = std::make_unique<frmMain>(state);
        window->resize(1200, 800);
        window->show();
        // The window is painted once before the press, as it is when a user presses Build All.
        QElapsedTimer shown;
        shown.start();
        while (shown.elapsed() < 500)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    BenchUi ui(args.size() > 5 ? args.at(5) : QStringLiteral("Bench"), window.get());
    SilentTransferUi silent;
    DialogTransferUi dialogs(state, window.get());
    TransferUi &progress = live ? static_cast<TransferUi &>(dialogs) : silent;
    BenchWindow benchWindow(ftp, {args.at(2), args.at(3), args.at(4)}, work, window.get());
    TransferContext context{ftp, ui, state, benchWindow, progress};
    PhotoBuildJob job(page, context, benchWindow);

    std::unique_ptr<LiveWatch> watch;
    if (live) {
        watch = std::make_unique<LiveWatch>(*window, dialogs, cancelIn);
        ui.onStatus = [&watch](const QString &text) { watch->status(text); };
        watch->start();
    }
    QElapsedTimer clock;
    clock.start();
    const PhotoBuildOutcome outcome = job.cmdBuildAll();
    const double seconds = clock.nsecsElapsed() / 1e9;
    const qint64 cancelToReturn =
        watch && watch->sinceCancel.isValid() ? watch->sinceCancel.elapsed() : -1;
    std::printf("%s %s\n", outcome == PhotoBuildOutcome::Sent ? "sent" : "not-sent",
                qPrintable(ui.pointer));
    if (!live)
        return outcome == PhotoBuildOutcome::Sent ? 0 : 1;

    watch->stop();
    // Made copies on disk when the job returned, and a second later: nothing goes on behind it.
    const int madeAtReturn = countFiles(job.ImageRoot, QStringLiteral("Lrg_*"));
    QElapsedTimer settle;
    settle.start();
    while (settle.elapsed() < 1000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    const int madeLater = countFiles(job.ImageRoot, QStringLiteral("Lrg_*"));
    std::printf(
        "live: seconds=%.3f ticks=%d longest_gap_ms sizing=%lld building=%lld upload=%lld\n",
        seconds, watch->ticks, watch->longestGap[Sizing], watch->longestGap[Building],
        watch->longestGap[Upload]);
    for (const Phase phase : {Sizing, Building, Upload})
        std::printf("gap: %s %lld ms, began at \"%s\"\n",
                    phase == Sizing     ? "sizing"
                    : phase == Building ? "building"
                                        : "upload",
                    watch->longestGap[phase], qPrintable(watch->longestGapStatus[phase]));
    if (!cancelIn.isEmpty())
        std::printf("cancel: in=%s at=\"%s\" cancel_to_return_ms=%lld outcome=%s "
                    "lrg_copies_at_return=%d lrg_copies_1s_later=%d\n",
                    qPrintable(cancelIn), qPrintable(watch->cancelledAt), cancelToReturn,
                    outcomeName(outcome), madeAtReturn, madeLater);
    return 0;
}
