// Build All for a benchmark: the pictures already in a working folder (named "<group>_<name>")
// become the photo page "Bench" on an FTP server, through the program's own job, with no
// window. Prints the run's outcome and the page's pointer.
//
//   tarnwick_photopage_bench WORK SERVER USER PASSWORD [PAGE]
//
// HOME should point at a scratch folder: the program's data tree is made there.

#include "Folders.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoBuild.h"
#include "PhotoPage.h"
#include "TransferSteps.h"
#include "TransferUi.h"
#include "cFTP.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QTextStream>

#include <cstdio>

namespace {

// Answers the name prompt with the page's name and everything else with OK.
class BenchUi final : public JobUi
{
public:
    explicit BenchUi(QString name) : m_name(std::move(name)) {}
    void ShowInputBox(JobState &state) override { state.UserResponse = m_name; }
    Answer Message(const QString &text, const QString &, Buttons, Icon) override
    {
        std::fprintf(stderr, "message: %s\n", qPrintable(text));
        return Answer::Ok;
    }
    void ShowScrollMessage(const QString &) override {}
    void SetStatusText(const QString &) override {}
    void SetStepOf(const QString &) override {}
    bool OpenUrl(const QUrl &) override { return true; }
    void SetClipboard(QMimeData *data) override
    {
        pointer = data->text();
        delete data;
    }
    void ProcessEvents() override { QCoreApplication::processEvents(); }
    QString pointer;

private:
    QString m_name;
};

class BenchWindow final : public TransferWindow, public PhotoBuildWindow
{
public:
    BenchWindow(cFTP &ftp, FtpAccount account, QString work)
        : m_ftp(ftp), m_account(std::move(account)), m_work(std::move(work))
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

private:
    cFTP &m_ftp;
    FtpAccount m_account;
    QString m_work;
    QString m_path;
};

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 5) {
        std::fprintf(stderr, "usage: %s WORK SERVER USER PASSWORD [PAGE]\n", argv[0]);
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
    PhotoPage &page = PhotoPage::instance();
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

    cFTP ftp;
    JobState &state = JobState::instance();
    BenchUi ui(args.size() > 5 ? args.at(5) : QStringLiteral("Bench"));
    SilentTransferUi progress;
    BenchWindow window(ftp, {args.at(2), args.at(3), args.at(4)}, work);
    TransferContext context{ftp, ui, state, window, progress};
    const PhotoBuildOutcome outcome = PhotoBuildJob(page, context, window).cmdBuildAll();
    std::printf("%s %s\n", outcome == PhotoBuildOutcome::Sent ? "sent" : "not-sent",
                qPrintable(ui.pointer));
    return outcome == PhotoBuildOutcome::Sent ? 0 : 1;
}
