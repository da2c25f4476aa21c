// Screenshots of Backup Files for docs/, on the real window, on a virtual screen:
//   xvfb-run -s "-screen 0 1280x800x24" <build>/bin/tarnwick_backup_screenshots <docs folder>
#include "BackupFixture.h"
#include "DialogMultiFile.h"
#include "TestMain.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

namespace {

QString g_docs;

bool shoot(QWidget *widget, const QString &name)
{
    QTest::qWait(400);
    const QString path = g_docs + QLatin1Char('/') + name;
    const bool ok = widget->grab().save(path);
    qInfo("%s %s", ok ? "wrote" : "could not write", qPrintable(path));
    return ok;
}

} // namespace

int main(int argc, char *argv[])
{
    UseTemporaryHome();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    g_docs = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath();

    BackupFixture fx;
    const QString docs = QDir::homePath() + QStringLiteral("/Documents");
    const QDateTime then(QDate(2026, 3, 1), QTime(8, 30, 0));
    const QString site = QStringLiteral("www.example.org");
    const struct
    {
        const char *name;
        bool compress;
        bool upToDate;
        int times;
    } files[] = {{"Budget 2026.ods", false, true, 4},
                 {"Letter to the bank.odt", false, false, 2},
                 {"Recipes.txt", false, true, 7},
                 {"Thesis draft.odt", true, true, 12},
                 {"Tax return.pdf", true, false, 1}};
    for (const auto &file : files) {
        const QString path = makeLocalFile(docs + QLatin1Char('/') + QLatin1String(file.name),
                                           QByteArray(2048, 'x'), then);
        BackupRecord record = listedRecord(path, site, file.compress, true);
        record.NumberOfBackupTimes = qint16(file.times);
        record.DateBackup = FileDateText(then.addDays(1));
        fx.frame->list().AppendBackupRecord(record);
        if (!file.upToDate)
            makeLocalFile(path, QByteArray(4096, 'y'), then.addDays(20));
    }
    const QString photos = docs + QStringLiteral("/Family Photos");
    QDir().mkpath(photos);
    WritePlaceHolder(photos + QStringLiteral("/DirFile_Family_Photos.cab"));
    BackupRecord folder =
        listedRecord(photos + QStringLiteral("/DirFile_Family_Photos.cab"), site, true, true);
    folder.UploadPath = site + QStringLiteral("/Backup/DirFile_Family_Photos.cab");
    fx.frame->list().AppendBackupRecord(folder);

    SaveSetting(QStringLiteral("BackupInstructionView"), QStringLiteral("Hide"));
    fx.window->resize(1200, 780);
    fx.window->show();
    fx.window->FunctionSelectButton_Click(1);
    fx.window->shapeEvent(333);
    fx.click(QStringLiteral("Letter to the bank.odt"));
    bool ok = shoot(fx.window.get(), QStringLiteral("backup-page.png"));
    fx.click(QStringLiteral("Recipes.txt"));
    ok = shoot(fx.window.get(), QStringLiteral("backup-page-green.png")) && ok;
    fx.button(QStringLiteral("ListViewButton"))->click();
    ok = shoot(fx.window.get(), QStringLiteral("backup-list-view.png")) && ok;

    DialogMultiFile dialog(fx.window.get(), docs);
    dialog.resize(900, 560);
    QSignalSpy done(&dialog, &DialogMultiFile::searchFinished);
    dialog.show();
    done.wait(10000);
    dialog.findChild<QListWidget *>(QStringLiteral("List1_0"))->item(1)->setSelected(true);
    ok = shoot(&dialog, QStringLiteral("backup-find-files.png")) && ok;
    return ok ? 0 : 1;
}
