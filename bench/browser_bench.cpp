// Times the web space browser's listing: ReloadFTPList of a large directory, from the LIST on
// the wire to the rows in lv, on the real tab and session.
//
//   tarnwick_browser_bench SERVER USER PASSWORD DIRECTORY [RUNS]
//
// Prints one line per run ("run N: list X ms, whole reload Y ms, rows R") and a summary line
// "best / median" for both, in milliseconds.

#include "DialogTransferUi.h"
#include "FtpControlTab.h"
#include "GuiJobUi.h"
#include "JobState.h"
#include "cFTP.h"
#include "dlgFTP.h"
#include "frmMain.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 5) {
        std::fprintf(stderr, "usage: %s SERVER USER PASSWORD DIRECTORY [RUNS]\n", argv[0]);
        return 2;
    }
    const int runs = args.size() > 5 ? args.at(5).toInt() : 10;

    JobState state;
    frmMain window(state);
    cFTP ftp(state);
    DialogTransferUi progress(state, &window);
    FtpControlTab tab(window, ftp, window.jobUi(), progress);
    tab.resize(1000, 700);
    tab.show();
    window.txtServer()->setText(args.at(1));
    window.txtUser()->setText(args.at(2));
    window.txtPassword()->setText(args.at(3));
    if (!ftp.OpenConnection(args.at(1), args.at(2), args.at(3))) {
        std::fprintf(stderr, "login failed: %s\n", qPrintable(ftp.GetLastErrorMessage()));
        return 1;
    }
    if (!ftp.SetFTPDirectory(args.at(4))) {
        std::fprintf(stderr, "no directory %s\n", qPrintable(args.at(4)));
        return 1;
    }

    QList<double> listTimes, reloadTimes;
    for (int run = 1; run <= runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        ftp.GetDirectoryListing(QStringLiteral("*.*"));
        const double list = timer.nsecsElapsed() / 1e6;

        timer.restart();
        tab.ReloadFTPList();
        QCoreApplication::processEvents(); // the rows painted
        const double reload = timer.nsecsElapsed() / 1e6;
        listTimes.append(list);
        reloadTimes.append(reload);
        std::printf("run %d: list %.1f ms, whole reload %.1f ms, rows %d\n", run, list, reload,
                    tab.lv()->topLevelItemCount());
    }
    const auto summary = [](QList<double> values) {
        std::sort(values.begin(), values.end());
        return std::make_pair(values.first(), values.at((values.size() - 1) / 2));
    };
    const auto [listBest, listMedian] = summary(listTimes);
    const auto [reloadBest, reloadMedian] = summary(reloadTimes);
    std::printf("list only: best %.1f ms, median %.1f ms\n", listBest, listMedian);
    std::printf("ReloadFTPList: best %.1f ms, median %.1f ms\n", reloadBest, reloadMedian);
    std::fflush(stdout);
    ftp.CloseConnection();
    return 0;
}
