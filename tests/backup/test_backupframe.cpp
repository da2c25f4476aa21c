#include "BackupFixture.h"
#include "InstructionForm.h"
#include "StepRing.h"
#include "TestMain.h"

#include <QFrame>
#include <QLabel>
#include <QTabBar>
#include <QTreeWidget>

// The Backup page as it joins the window: instructions, rings, help, the list and its view.
class TestBackupFrame : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<BackupFixture> m_fx;
    std::unique_ptr<QTemporaryDir> m_docs;
    const QDateTime Then = QDateTime(QDate(2026, 1, 5), QTime(9, 7, 0));

    QString doc(const QString &name) const { return m_docs->filePath(name); }
    // One entry up to date, one changed since, one whose file is gone.
    void listThree()
    {
        makeLocalFile(doc(QStringLiteral("green.txt")), "same", Then);
        makeLocalFile(doc(QStringLiteral("red.txt")), "changed", Then);
        makeLocalFile(doc(QStringLiteral("gone.txt")), "gone", Then);
        const QString site = QStringLiteral("example.org");
        m_fx->frame->list().AppendBackupRecord(
            listedRecord(doc(QStringLiteral("green.txt")), site, false, true));
        m_fx->frame->list().AppendBackupRecord(
            listedRecord(doc(QStringLiteral("red.txt")), site, false, false));
        m_fx->frame->list().AppendBackupRecord(
            listedRecord(doc(QStringLiteral("gone.txt")), site, true, true));
        QFile::remove(doc(QStringLiteral("gone.txt")));
    }
    QColor textColour(const QString &box) const
    {
        return m_fx->field(box)->palette().color(QPalette::Text);
    }

private slots:
    void init()
    {
        ClearTemporaryHome();
        m_docs = std::make_unique<QTemporaryDir>();
        m_fx = std::make_unique<BackupFixture>();
        m_fx->window->HighLightSteps()->setChecked(true);
    }
    void cleanup() { m_fx.reset(); }

    void theFunctionJoinsWithItsInstructionsAndRings()
    {
        QVERIFY(m_fx->window->hasFunction(1));
        QVERIFY(m_fx->window->TabFrame(1)->isAncestorOf(m_fx->frame));
        SaveSetting(QStringLiteral("BackupInstructionView"), QStringLiteral("Show"));
        m_fx->window->resize(1200, 800);
        m_fx->window->show();
        m_fx->window->FunctionSelectButton_Click(1);
        InstructionForm *form = m_fx->window->instructionForm(1);
        QVERIFY(form);
        QCOMPARE(form->objectName(), QStringLiteral("InstructionPageBackup"));
        QStringList texts;
        for (const QLabel *label : form->findChildren<QLabel *>())
            texts << label->text();
        for (const QString &step :
             {QStringLiteral("Important files that should be uploaded to your website can be "
                             "selected by clicking on the 'Add New Files to Backup' button."),
              QStringLiteral("Click on a file name in the list to view its current status. "),
              QStringLiteral("If the file has changed since the last backup, the text in the "
                             "boxes will turn red."),
              QStringLiteral("If the file does not need updating, the text in the boxes will be "
                             "green. "),
              QStringLiteral("If a file cannot be found, the location path will turn red."),
              QStringLiteral("You can either remove the file or search for the new file "
                             "location."),
              QStringLiteral("Select scan to search through the list and backup the files as "
                             "needed.")})
            QVERIFY2(texts.contains(step), qPrintable(step));
        // Opened: the first step green, the next one shown.
        QVERIFY(m_fx->window->ring(12)->isShown());
        QCOMPARE(m_fx->window->ring(12)->colour(), frmMain::RingGreen);
        QVERIFY(m_fx->window->ring(13)->isShown());
        m_fx->window->shapeEvent(31);
        QVERIFY(!m_fx->window->ring(12)->isShown());
        QCOMPARE(m_fx->window->ring(13)->colour(), frmMain::RingGreen);
    }

    void theHelpPageFollowsTheListView()
    {
        m_fx->open();
        QCOMPARE(m_fx->window->helpContext(), 8);
        m_fx->button(QStringLiteral("ListViewButton"))->click();
        QVERIFY(m_fx->frame->findChild<QTreeWidget *>(QStringLiteral("BackupListView"))->isVisible());
        QCOMPARE(m_fx->window->helpContext(), 7);
        m_fx->button(QStringLiteral("ListViewButton"))->click();
        QCOMPARE(m_fx->window->helpContext(), 8);
    }

    void theTabRefreshesTheListFromTheFile()
    {
        m_fx->open();
        QCOMPARE(m_fx->fileList()->count(), 0);
        listThree();
        // The file changed behind the page's back: the tab's click shows it as it stands.
        m_fx->window->TabStrip1()->setCurrentIndex(2);
        QCOMPARE(m_fx->fileList()->count(), 0);
        m_fx->window->TabStrip1()->setCurrentIndex(1);
        QCOMPARE(m_fx->fileList()->count(), 3);
    }

    void aClickShowsTheEntryInRedOrGreen()
    {
        listThree();
        m_fx->open();
        m_fx->click(QStringLiteral("green.txt"));
        QCOMPARE(m_fx->field(QStringLiteral("CurrentDateOfTheFile"))->text(), FileDateText(Then));
        QCOMPARE(m_fx->field(QStringLiteral("NumberOfBackupTimesOfItem"))->text(),
                 QStringLiteral("1"));
        QCOMPARE(textColour(QStringLiteral("DateModifiedOfItem")), QColor(0, 192, 0));
        QCOMPARE(textColour(QStringLiteral("LocationPathOfItem")), QColor(0, 192, 0));
        QVERIFY(m_fx->button(QStringLiteral("RelocateFileButton"))->isHidden());
        QVERIFY(!m_fx->button(QStringLiteral("RecompressButton"))->isEnabled());

        m_fx->click(QStringLiteral("red.txt"));
        QCOMPARE(textColour(QStringLiteral("DateModifiedOfItem")), QColor(255, 0, 0));
        QCOMPARE(textColour(QStringLiteral("CurrentDateOfTheFile")), QColor(255, 0, 0));
        QCOMPARE(textColour(QStringLiteral("DateBackupOfItem")), QColor(255, 0, 0));

        m_fx->click(QStringLiteral("gone.txt"));
        auto *report = m_fx->frame->findChild<QLabel *>(QStringLiteral("ReportIfFound"));
        QCOMPARE(report->text(), QStringLiteral("The File is not in the expected location"));
        QCOMPARE(report->palette().color(QPalette::WindowText), QColor(255, 0, 0));
        QCOMPARE(textColour(QStringLiteral("LocationPathOfItem")), QColor(255, 0, 0));
        QVERIFY(m_fx->button(QStringLiteral("RelocateFileButton"))->isVisible());
        QVERIFY(m_fx->frame->findChild<QLabel *>(QStringLiteral("Label18"))->isHidden());
    }

    void withSeveralSelectedTheLastOneClickedShows()
    {
        listThree();
        m_fx->open();
        m_fx->select({QStringLiteral("green.txt"), QStringLiteral("red.txt"),
                      QStringLiteral("gone.txt")});
        m_fx->click(QStringLiteral("red.txt"));
        m_fx->select({QStringLiteral("green.txt"), QStringLiteral("red.txt"),
                      QStringLiteral("gone.txt")});
        QCOMPARE(m_fx->fileList()->selectedItems().size(), 3);
        QCOMPARE(m_fx->field(QStringLiteral("UploadpathOfItem"))->text(),
                 QStringLiteral("example.org/Backup/red.txt"));
    }

    void theListViewShowsTheStateOfEveryEntry()
    {
        listThree();
        m_fx->open();
        m_fx->button(QStringLiteral("ListViewButton"))->click();
        auto *view = m_fx->frame->findChild<QTreeWidget *>(QStringLiteral("BackupListView"));
        QCOMPARE(view->topLevelItemCount(), 3);
        QMap<QString, QTreeWidgetItem *> rows;
        for (int i = 0; i < view->topLevelItemCount(); ++i)
            rows.insert(view->topLevelItem(i)->text(0), view->topLevelItem(i));
        QCOMPARE(rows.value(QStringLiteral("green.txt"))->text(1), QStringLiteral("Backed up"));
        QCOMPARE(rows.value(QStringLiteral("green.txt"))->foreground(1).color(), QColor(0, 192, 0));
        QCOMPARE(rows.value(QStringLiteral("red.txt"))->text(1),
                 QStringLiteral("Changed since the last backup"));
        QCOMPARE(rows.value(QStringLiteral("red.txt"))->foreground(1).color(), QColor(255, 0, 0));
        QCOMPARE(rows.value(QStringLiteral("gone.txt"))->text(1),
                 QStringLiteral("The File is not in the expected location"));
        QCOMPARE(rows.value(QStringLiteral("gone.txt"))->text(5), QStringLiteral("gone_txt.CAB"));
    }

    void theDirectoryNameIsSavedAsItIsTyped()
    {
        m_fx->field(QStringLiteral("BackupDirName"))->setText(QStringLiteral("My Backups"));
        QCOMPARE(GetSetting(QStringLiteral("BackupDirName")), QStringLiteral("My Backups"));
        QCOMPARE(m_fx->frame->jobs().backupDirectory(), QStringLiteral("My_Backups"));
    }

    void aJobCoversTheListAndButtonsAndLeavesTheStatusInSight()
    {
        listThree();
        m_fx->open();
        // What every job does at its start and its end.
        m_fx->frame->enableBackups(false);
        QWidget *cover = m_fx->window->ProgressFrame();
        QVERIFY(cover->isVisible());
        const QRect covered = cover->geometry();
        const QPoint scan = m_fx->button(QStringLiteral("ScanAndBackupButton"))
                                ->mapTo(m_fx->window->centralWidget(), QPoint(5, 5));
        QVERIFY(covered.contains(scan));
        auto *status = m_fx->frame->findChild<QWidget *>(QStringLiteral("BackupStatusFrame"));
        const QRect statusRect(status->mapTo(m_fx->window->centralWidget(), QPoint(0, 0)),
                               status->size());
        QVERIFY(!covered.intersects(statusRect));
        // A window made larger meanwhile keeps it so.
        m_fx->window->resize(1300, 900);
        QTest::qWait(50);
        QVERIFY(!cover->geometry().intersects(
            QRect(status->mapTo(m_fx->window->centralWidget(), QPoint(0, 0)), status->size())));
        m_fx->frame->enableBackups(true);
        QVERIFY(!cover->isVisible());
    }
};

TARNWICK_TEST_MAIN(TestBackupFrame)
#include "test_backupframe.moc"
