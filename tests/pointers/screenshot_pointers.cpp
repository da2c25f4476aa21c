// Draws the Take an Action window, the folder picker and the zoom window as a user sees them
// and writes each to a PNG file in the folder given as the first argument. Run it on a real
// display (or under xvfb-run) to look at the forms.
#include "FileListModel.h"
#include "HTMLMake.h"
#include "JobState.h"
#include "PickerFixtures.h"
#include "ScriptedUi.h"
#include "frmAction.h"
#include "frmDialogPg.h"
#include "frmZoom.h"

#include <QApplication>
#include <QDir>
#include <QListView>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool save(QWidget &widget, const QString &folder, const QString &name)
{
    widget.show();
    if (!QTest::qWaitForWindowExposed(&widget))
        return false;
    QTest::qWait(200);
    return widget.grab().save(folder + QLatin1Char('/') + name);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath();
    QDir().mkpath(folder);
    bool ok = true;

    ScriptedUi ui;
    JobState state;
    state.CurrentPointer = QStringLiteral("http://www.example.com/Photos/Trip_to_NY/Photos.htm");
    {
        frmAction action(ui, state);
        ok &= save(action, folder, QStringLiteral("frmAction.png"));
    }

    QTemporaryDir pictures;
    WriteTestJpeg(pictures.filePath(QStringLiteral("Beach at noon.jpg")), 640, 480);
    WriteTestJpeg(pictures.filePath(QStringLiteral("harbour.JPG")), 480, 640);
    WriteTestJpeg(pictures.filePath(QStringLiteral("Panorama.jpg")), 1200, 300, 1);
    WriteTextFile(pictures.filePath(QStringLiteral("notes.txt")), "x");
    QDir(pictures.path()).mkdir(QStringLiteral("Summer 2024"));
    QDir(pictures.path()).mkdir(QStringLiteral("family"));
    {
        frmDialogPg picker(true, pictures.path());
        ok &= save(picker, folder, QStringLiteral("frmDialogPg.png"));
        QTest::mouseClick(picker.findChild<QPushButton *>(QStringLiteral("ViewContentButton")),
                          Qt::LeftButton);
        auto *files = picker.findChild<QListView *>(QStringLiteral("File1"));
        const QModelIndex first = files->model()->index(0, 0);
        QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualRect(first).center());
        ok &= save(picker, folder, QStringLiteral("frmDialogPg_content.png"));
        const QModelIndex second = files->model()->index(1, 0);
        QTest::mouseClick(files->viewport(), Qt::LeftButton, {},
                          files->visualRect(second).center());
        ok &= save(picker, folder, QStringLiteral("frmDialogPg_portrait.png"));

        frmZoom zoom(pictures.filePath(QStringLiteral("harbour.JPG")), 0);
        zoom.resize(500, 400);
        ok &= save(zoom, folder, QStringLiteral("frmZoom.png"));
    }
    return ok ? 0 : 1;
}
