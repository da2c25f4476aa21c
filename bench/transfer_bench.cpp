// Times Tarnwick's own upload path against a running FTP server; bench/transfer.sh drives it.
// Each mode is one job: it logs in, sends, and disconnects as a job does at its end.
//
//   tarnwick_transfer_bench SERVER USER PASSWORD one FILE
//       one file through UploadFileToFTP
//   tarnwick_transfer_bench SERVER USER PASSWORD many FOLDER
//       every file of FOLDER, one after another, as a job sends its files
//   tarnwick_transfer_bench SERVER USER PASSWORD live FILE
//       a large file with dlgFTP on screen: how often the window was served, and how soon
//       Cancel ended the transfer
// Prints one line "seconds=<s> ..." per run (the time inside the process, after the login of
// the directory session; bench/transfer.sh times the whole process from outside).

#include "DialogTransferUi.h"
#include "JobState.h"
#include "JobUi.h"
#include "TransferSteps.h"
#include "cFTP.h"
#include "dlgFTP.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>

#include <cstdio>

namespace {

class QuietUi final : public JobUi
{
public:
    void ShowInputBox(JobState &state) override { state.UserResponse = JobState::Skip; }
    Answer Message(const QString &, const QString &, Buttons, Icon, std::optional<Answer>) override
    {
        return Answer::Ok;
    }
    void ShowScrollMessage(const QString &) override {}
    void SetStatusText(const QString &) override {}
    void SetStepOf(const QString &) override {}
    bool OpenUrl(const QUrl &) override { return true; }
    void SetClipboard(QMimeData *data) override { delete data; }
    void ProcessEvents() override { QCoreApplication::processEvents(); }
};

class BenchWindow final : public TransferWindow
{
public:
    BenchWindow(cFTP &ftp, FtpAccount account) : m_ftp(ftp), m_account(std::move(account)) {}
    FtpAccount account() const override { return m_account; }
    void ReloadFTPList() override { m_ftp.GetDirectoryListing(QStringLiteral("*.*")); }
    QString UploadPath() const override { return QStringLiteral("http://127.0.0.1/"); }
    void showUploadPath(const QString &) override {}
    void cmdDisconnect() override { m_ftp.CloseConnection(); }

private:
    cFTP &m_ftp;
    FtpAccount m_account;
};

int fail(const QString &text)
{
    std::fprintf(stderr, "%s\n", qPrintable(text));
    return 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 6)
        return fail(QStringLiteral(
            "usage: tarnwick_transfer_bench SERVER USER PASSWORD one|many|live PATH"));
    const FtpAccount account{args[1], args[2], args[3]};
    const QString mode = args[4];
    const QString path = args[5];

    JobState state;
    cFTP ftp(state);
    QuietUi ui;
    BenchWindow window(ftp, account);
    DialogTransferUi progress(state);
    TransferContext context{ftp, ui, state, window, progress};
    if (!ftp.OpenConnection(account.server, account.user, account.password))
        return fail(ftp.GetLastErrorMessage());
    ftp.SetTransferBinary();

    QElapsedTimer clock;
    if (mode == QLatin1String("one")) {
        state.BackgroundRequested = true;
        clock.start();
        const bool sent = UploadFileToFTP(context, path);
        ftp.CloseConnection();
        std::printf("seconds=%.3f sent=%d\n", clock.nsecsElapsed() / 1e9, int(sent));
        return sent ? 0 : 1;
    }
    if (mode == QLatin1String("many")) {
        state.BackgroundRequested = true;
        const QStringList names = QDir(path).entryList(QDir::Files, QDir::Name);
        int sent = 0;
        clock.start();
        for (const QString &name : names)
            sent += UploadFileToFTP(context, QDir(path).filePath(name)) ? 1 : 0;
        ftp.CloseConnection();
        std::printf("seconds=%.3f files=%d sent=%d\n", clock.nsecsElapsed() / 1e9,
                    int(names.size()), sent);
        return sent == names.size() ? 0 : 1;
    }
    if (mode == QLatin1String("live")) {
        const qint64 size = QFileInfo(path).size();
        qint64 longestGap = 0;
        int ticks = 0;
        int repaints = 0;
        double lastValue = -1;
        bool cancelPressed = false;
        QElapsedTimer sinceTick;
        QElapsedTimer sinceCancel;
        QTimer ticker;
        QObject::connect(&ticker, &QTimer::timeout, [&] {
            if (!cancelPressed)
                longestGap = std::max(longestGap, sinceTick.restart());
            ++ticks;
            dlgFTP *dialog = progress.dialog();
            if (!dialog || !dialog->isVisible())
                return;
            dialog->flood()->repaint();
            if (dialog->flood()->value() != lastValue) {
                lastValue = dialog->flood()->value();
                ++repaints;
            }
            // Cancel at half way, as a user would: the button, then Yes to the question.
            if (!cancelPressed && lastValue >= size / 2.0) {
                cancelPressed = true;
                QTimer::singleShot(30, [&] {
                    if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
                        box->button(QMessageBox::Yes)->click();
                    sinceCancel.start();
                });
                dialog->findChild<QPushButton *>(QStringLiteral("Command1"))->click();
            }
        });
        sinceTick.start();
        ticker.start(10);
        clock.start();
        const bool sent = UploadFileToFTP(context, path);
        const double cancelSeconds = sinceCancel.isValid() ? sinceCancel.nsecsElapsed() / 1e9 : -1;
        std::printf("seconds=%.3f sent=%d ticks=%d longest_gap_ms=%lld bar_values=%d "
                    "cancel_to_return_s=%.3f cancelled=%d\n",
                    clock.nsecsElapsed() / 1e9, int(sent), ticks, longestGap, repaints,
                    cancelSeconds, int(state.UploadCancelled));
        return 0;
    }
    return fail(QStringLiteral("unknown mode ") + mode);
}
