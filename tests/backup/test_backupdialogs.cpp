#include "BackupFixture.h"
#include "DialogMultiFile.h"
#include "TestMain.h"
#include "frmDialogUpload.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QListView>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTimer>

namespace {

// Answers the next message box with the given button; records its title and text.
struct Answered
{
    QString title;
    QString text;
};
std::shared_ptr<Answered> answerBox(QMessageBox::StandardButton button)
{
    auto seen = std::make_shared<Answered>();
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, seen, button] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            seen->title = box->windowTitle();
            seen->text = box->text();
            box->button(button)->click();
        }
    });
    timer->start();
    return seen;
}

} // namespace

// The two file search dialogs.
class TestBackupDialogs : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;

    QString path(const QString &relative) const { return m_dir.filePath(relative); }
    static void waitForSearch(DialogMultiFile &dialog)
    {
        if (!dialog.searching())
            return;
        QSignalSpy done(&dialog, &DialogMultiFile::searchFinished);
        QVERIFY(done.wait(60000));
    }
    // Shows the dialog and waits for the search of its start folder.
    static void showAndWait(DialogMultiFile &dialog)
    {
        QSignalSpy done(&dialog, &DialogMultiFile::searchFinished);
        dialog.show();
        QVERIFY(done.wait(60000));
    }
    static QListWidget *list(DialogMultiFile &dialog, int index)
    {
        return dialog.findChild<QListWidget *>(QStringLiteral("List1_%1").arg(index));
    }
    static QStringList rows(QListWidget *list)
    {
        QStringList texts;
        for (int row = 0; row < list->count(); ++row)
            texts << list->item(row)->text();
        return texts;
    }

private slots:
    void initTestCase()
    {
        makeLocalFile(path(QStringLiteral("docs/a.txt")), "a");
        makeLocalFile(path(QStringLiteral("docs/b.doc")), "b");
        makeLocalFile(path(QStringLiteral("docs/sub/c.txt")), "c");
        makeLocalFile(path(QStringLiteral("docs/sub/deeper/d.txt")), "d");
    }

    void theStartFolderIsSearchedAsSoonAsTheDialogShows()
    {
        DialogMultiFile dialog(nullptr, path(QStringLiteral("docs")));
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Find files to backup"));
        QCOMPARE(dialog.dialogState(), QStringLiteral("Waiting"));
        QSignalSpy done(&dialog, &DialogMultiFile::searchFinished);
        dialog.show();
        QVERIFY(done.wait(60000));
        QCOMPARE(rows(list(dialog, 0)),
                 (QStringList{path(QStringLiteral("docs/a.txt")), path(QStringLiteral("docs/b.doc"))}));
        QCOMPARE(rows(list(dialog, 1)),
                 (QStringList{path(QStringLiteral("docs/")), path(QStringLiteral("docs/"))}));
        QCOMPARE(rows(list(dialog, 2)), (QStringList{QStringLiteral("a.txt"), QStringLiteral("b.doc")}));
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("FilesFoundLabel"))->text(),
                 QStringLiteral("2  Files Found  "));
        auto *action = dialog.findChild<QPushButton *>(QStringLiteral("cmdAction_0"));
        QCOMPARE(action->text(), QStringLiteral("&Find Files"));
    }

    void patternsAndSubFolders()
    {
        DialogMultiFile dialog(nullptr, path(QStringLiteral("docs")));
        waitForSearch(dialog);
        dialog.findChild<QLineEdit *>(QStringLiteral("Text1"))->setText(QStringLiteral("txt"));
        dialog.findChild<QCheckBox *>(QStringLiteral("Check1"))->setChecked(true);
        dialog.findChild<QPushButton *>(QStringLiteral("cmdAction_0"))->click();
        QCOMPARE(dialog.findChild<QPushButton *>(QStringLiteral("cmdAction_0"))->text(),
                 QStringLiteral("Cancel Search"));
        waitForSearch(dialog);
        QCOMPARE(rows(list(dialog, 2)), (QStringList{QStringLiteral("a.txt"), QStringLiteral("c.txt"),
                                                   QStringLiteral("d.txt")}));
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("FilesFoundLabel"))->text(),
                 QStringLiteral("3  Files Found  "));
    }

    void aCancelledSearchKeepsWhatItFound()
    {
        // A wide tree, so that the search is still under way when Cancel Search is pressed.
        for (int i = 0; i < 400; ++i)
            makeLocalFile(path(QStringLiteral("wide/f%1/x.txt").arg(i)), "x");
        DialogMultiFile dialog(nullptr, path(QStringLiteral("wide")));
        dialog.findChild<QCheckBox *>(QStringLiteral("Check1"))->setChecked(true);
        auto *action = dialog.findChild<QPushButton *>(QStringLiteral("cmdAction_0"));
        action->click();
        action->click();
        waitForSearch(dialog);
        QCOMPARE(action->text(), QStringLiteral("&Find Files"));
        const int found = list(dialog, 0)->count();
        QVERIFY(found <= 400);
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("FilesFoundLabel"))->text(),
                 QString::number(found) + QStringLiteral("  Files Found  "));
        QCOMPARE(list(dialog, 2)->count(), found);
    }

    void namesOnlySelectAllInverseAndOk()
    {
        DialogMultiFile dialog(nullptr, path(QStringLiteral("docs")));
        showAndWait(dialog);
        auto *names = dialog.findChild<QCheckBox *>(QStringLiteral("ShowNameCkbox"));
        names->click();
        QVERIFY(list(dialog, 2)->isVisible());
        QVERIFY(!list(dialog, 0)->isVisible());
        dialog.findChild<QPushButton *>(QStringLiteral("SelectAllDialogButton"))->click();
        QCOMPARE(list(dialog, 0)->selectedItems().size(), 2);
        QCOMPARE(list(dialog, 2)->selectedItems().size(), 2);
        list(dialog, 2)->item(0)->setSelected(false);
        dialog.findChild<QPushButton *>(QStringLiteral("InverseSelectDialogButton"))->click();
        QVERIFY(list(dialog, 2)->item(0)->isSelected());
        QVERIFY(!list(dialog, 2)->item(1)->isSelected());
        dialog.findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
        QCOMPARE(dialog.dialogState(), QStringLiteral("Pending"));
        QVERIFY(!dialog.isVisible());
        const FileChoice choice = dialog.choice();
        QVERIFY(choice.pending);
        QCOMPARE(choice.files.size(), 1);
        QCOMPARE(choice.files.first().name, QStringLiteral("a.txt"));
        QCOMPARE(choice.files.first().folder, path(QStringLiteral("docs/")));
    }

    void okWithNothingSelectedAsks()
    {
        DialogMultiFile dialog(nullptr, path(QStringLiteral("docs")));
        showAndWait(dialog);
        auto asked = answerBox(QMessageBox::No);
        dialog.findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
        QCOMPARE(asked->title, QStringLiteral("Need to know..."));
        QCOMPARE(asked->text, QStringLiteral("Nothing was selected. Do you want to exit?"));
        QVERIFY(dialog.isVisible());
        asked = answerBox(QMessageBox::Yes);
        dialog.findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.dialogState(), QStringLiteral("Waiting"));
        QVERIFY(!dialog.choice().pending);
    }

    void cancelSaysCancelled()
    {
        DialogMultiFile dialog(nullptr, path(QStringLiteral("docs")));
        dialog.show();
        dialog.findChild<QPushButton *>(QStringLiteral("CancelButton"))->click();
        QCOMPARE(dialog.dialogState(), QStringLiteral("Cancelled"));
        QVERIFY(!dialog.isVisible());
    }

    void theCompressionBoxIsKeptInTheSettings()
    {
        SaveSetting(QStringLiteral("Compression"), QStringLiteral("0"));
        {
            DialogMultiFile dialog(nullptr, path(QStringLiteral("docs")));
            auto *check = dialog.findChild<QCheckBox *>(QStringLiteral("CompressFileCheck"));
            QCOMPARE(check->text(), QStringLiteral("Compress these files"));
            QVERIFY(!check->isChecked());
            check->click();
            QCOMPARE(GetSetting(QStringLiteral("Compression")), QStringLiteral("1"));
        }
        DialogMultiFile again(nullptr, path(QStringLiteral("docs")));
        QVERIFY(again.findChild<QCheckBox *>(QStringLiteral("CompressFileCheck"))->isChecked());
        again.findChild<QCheckBox *>(QStringLiteral("CompressFileCheck"))->click();
        QCOMPARE(GetSetting(QStringLiteral("Compression")), QStringLiteral("0"));
    }

    void goTakesATypedFolderOrSaysItIsNotThere()
    {
        DialogMultiFile dialog(nullptr, path(QStringLiteral("docs")));
        auto *typed = dialog.findChild<QLineEdit *>(QStringLiteral("DirPath"));
        typed->setText(path(QStringLiteral("docs/sub")));
        dialog.findChild<QPushButton *>(QStringLiteral("DisplayDirButton"))->click();
        QCOMPARE(dialog.folder(), path(QStringLiteral("docs/sub")));
        auto asked = answerBox(QMessageBox::Ok);
        typed->setText(path(QStringLiteral("nowhere")));
        dialog.findChild<QPushButton *>(QStringLiteral("DisplayDirButton"))->click();
        QCOMPARE(asked->text, QStringLiteral("Path not found."));
        QCOMPARE(dialog.folder(), path(QStringLiteral("docs/sub")));
    }

    void theFolderDialogGivesItsFolderOrNothing()
    {
        {
            frmDialogUpload dialog(path(QStringLiteral("docs")));
            QCOMPARE(dialog.windowTitle(), QStringLiteral("File To Upload"));
            auto *text = dialog.findChild<QLineEdit *>(QStringLiteral("PathText"));
            QCOMPARE(text->text(), path(QStringLiteral("docs")));
            auto *files = dialog.findChild<QListView *>(QStringLiteral("File1"));
            QCOMPARE(files->model()->rowCount(), 2);
            dialog.findChild<QPushButton *>(QStringLiteral("SelectAllButton"))->click();
            QCOMPARE(files->selectionModel()->selectedRows().size(), 2);
            dialog.setFolder(path(QStringLiteral("docs/sub")));
            QCOMPARE(text->text(), path(QStringLiteral("docs/sub")));
            dialog.findChild<QCheckBox *>(QStringLiteral("Check1"))->setChecked(true);
            dialog.findChild<QPushButton *>(QStringLiteral("OKButton"))->click();
            QCOMPARE(dialog.chosenFolder(), path(QStringLiteral("docs/sub")));
            QCOMPARE(dialog.foundFiles().size(), 2);
            QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("FilesFoundLabel"))->text(),
                     QStringLiteral("2  Files Found  "));
        }
        frmDialogUpload cancelled(path(QStringLiteral("docs")));
        cancelled.findChild<QPushButton *>(QStringLiteral("CancelButton"))->click();
        QCOMPARE(cancelled.chosenFolder(), QString());
    }
};

TARNWICK_TEST_MAIN(TestBackupDialogs)
#include "test_backupdialogs.moc"
