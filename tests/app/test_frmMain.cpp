#include "DefaultData.h"
#include "DriveList.h"
#include "Folders.h"
#include "HelpWindow.h"
#include "InstructionForm.h"
#include "JobState.h"
#include "ModalAnswer.h"
#include "Settings.h"
#include "ShellTestFunctions.h"
#include "StepRing.h"
#include "TestMain.h"
#include "frmMain.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFrame>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTimer>

#include <memory>
#include <set>

using IntSet = std::set<int>;
Q_DECLARE_METATYPE(IntSet)

namespace {

// Answers every message box that comes up, Ok to the default data's error and No to the
// rest, noting the texts, until stopped.
struct Answerer
{
    QTimer timer;
    QStringList texts;
    Answerer()
    {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            texts << box->text();
            const bool error = box->text() == DefaultDataMissingMessage;
            if (QAbstractButton *button = box->button(error ? QMessageBox::Ok : QMessageBox::No))
                button->click();
            else
                box->reject();
        });
        timer.start(10);
    }
};

QStringList colourAndFontKeys()
{
    return {QStringLiteral("PhotoBGColor"),   QStringLiteral("PhotoTitleColor"),
            QStringLiteral("PhotoTextColor"), QStringLiteral("PhotoFont"),
            QStringLiteral("MstrBGColor"),    QStringLiteral("MstrTitleColor"),
            QStringLiteral("MstrTextColor"),  QStringLiteral("MstrFont")};
}

} // namespace

class TestFrmMain : public QObject
{
    Q_OBJECT
    // The job-wide state of this test program, as the program makes one for its run.
    JobState m_state;

    std::unique_ptr<frmMain> m_main;
    ShellTestLog m_log;

    // A window with six functions joined, before its Load.
    std::unique_ptr<frmMain> makeWindow()
    {
        auto window = std::make_unique<frmMain>(m_state);
        m_log = ShellTestLog();
        JoinTestFunctions(*window, m_log);
        return window;
    }

    // A window as the program starts it; the first run answers the spelling question with No.
    void start()
    {
        m_main = makeWindow();
        if (GetSetting(QStringLiteral("entry")).isEmpty())
            answerMessageBox(QMessageBox::No);
        m_main->Load();
        m_main->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
    }

    template <typename T> T *child(const QString &name) const
    {
        return m_main->findChild<T *>(name);
    }
    QAction *action(const QString &name) const { return child<QAction>(name); }
    static void settle()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

private slots:
    void init()
    {
        m_main.reset();
        ClearTemporaryHome();
        m_state.reset();
        SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
        start();
    }
    void cleanup() { m_main.reset(); }

    void everyNamedControlExists()
    {
        QStringList widgets = {QStringLiteral("StartFrame"),
                               QStringLiteral("TabStrip1"),
                               QStringLiteral("ReturnToStartButton"),
                               QStringLiteral("HelpButton"),
                               QStringLiteral("ProgressFrame"),
                               QStringLiteral("Status_text"),
                               QStringLiteral("Stepof"),
                               QStringLiteral("CancelButton"),
                               QStringLiteral("ProgressBar1"),
                               QStringLiteral("Text2"),
                               QStringLiteral("Image7_0"),
                               QStringLiteral("Image7_1"),
                               QStringLiteral("txtServer"),
                               QStringLiteral("txtWebSite"),
                               QStringLiteral("txtUser"),
                               QStringLiteral("txtPassword"),
                               QStringLiteral("txtEmailID"),
                               QStringLiteral("txtDefaultAuthor"),
                               QStringLiteral("WebRoot"),
                               QStringLiteral("FTPRoot"),
                               QStringLiteral("ClientRoot"),
                               QStringLiteral("UploadPath")};
        for (int i = 0; i < 6; ++i) {
            widgets << QStringLiteral("FunctionSelectButton_%1").arg(i)
                    << QStringLiteral("TabFrame_%1").arg(i);
        }
        for (int i = 0; i < 27; ++i)
            widgets << QStringLiteral("Shape1_%1").arg(i);
        for (const QString &name : widgets)
            QVERIFY2(child<QWidget>(name), qPrintable(name));

        QStringList actions = {
            QStringLiteral("SetupPrompt"),       QStringLiteral("RunWithoutMenu"),
            QStringLiteral("HighLightSteps"),    QStringLiteral("AboutMenu"),
            QStringLiteral("ExitMenu"),          QStringLiteral("SpellCheckOn"),
            QStringLiteral("CheckSpellingMenu"), QStringLiteral("CheckSpellingAllMenu"),
            QStringLiteral("XPorBetter")};
        for (int i = 0; i < 6; ++i)
            actions << QStringLiteral("TabMenu_%1").arg(i) << QStringLiteral("InstrMenu_%1").arg(i);
        for (const QString &name : actions)
            QVERIFY2(action(name), qPrintable(name));
        for (const char *timer : {"Timer1", "Timer2", "Timer3", "Timer4"})
            QVERIFY(child<QTimer>(QString::fromLatin1(timer)));
    }

    void captionsAndStartState()
    {
        const QStringList captions = {
            QStringLiteral("Send a Photo Page"), QStringLiteral("Backup Files "),
            QStringLiteral("Send a File"),       QStringLiteral("Build a Web Log"),
            QStringLiteral("Build a Portal"),    QStringLiteral("FTP Control && Settings")};
        for (int i = 0; i < 6; ++i)
            QCOMPARE(child<QPushButton>(QStringLiteral("FunctionSelectButton_%1").arg(i))->text(),
                     captions.at(i));
        QCOMPARE(child<QTabBar>(QStringLiteral("TabStrip1"))->count(), 6);
        QVERIFY(m_main->StartFrame()->isVisible());
        for (int i = 0; i < 6; ++i)
            QVERIFY(!m_main->TabFrame(i)->isVisible());
        QVERIFY(!m_main->ProgressFrame()->isVisible());
        QCOMPARE(m_main->windowTitle(), QStringLiteral("Tarnwick - Ready to Connect"));
        QVERIFY(!action(QStringLiteral("RunWithoutMenu"))->isChecked());
        QVERIFY(action(QStringLiteral("HighLightSteps"))->isChecked());
        QCOMPARE(action(QStringLiteral("SetupPrompt"))->text(),
                 QStringLiteral("&Configuration Settings"));
    }

    void functionButtonOpensFrameAndInstructions_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("form");
        QTest::addColumn<IntSet>("rings");
        QTest::newRow("photo") << 0 << "InstructionPagePhoto" << IntSet{0, 2, 3};
        QTest::newRow("backup") << 1 << "InstructionPageBackup" << IntSet{12, 13};
        QTest::newRow("send file") << 2 << "InstructionPageSendFile" << IntSet{10, 11};
        QTest::newRow("web log") << 3 << "InstructionPageBlog" << IntSet{5, 6};
        QTest::newRow("portal") << 4 << "InstructionPagePortal" << IntSet{17, 18, 19, 20};
        QTest::newRow("ftp") << 5 << "InstructionPageFTPControls" << IntSet{14, 16};
    }
    void functionButtonOpensFrameAndInstructions()
    {
        QFETCH(int, index);
        QFETCH(QString, form);
        QFETCH(IntSet, rings);
        QSignalSpy opened(m_main.get(), &frmMain::programEnding);
        child<QPushButton>(QStringLiteral("FunctionSelectButton_%1").arg(index))->click();
        QVERIFY(!m_main->StartFrame()->isVisible());
        for (int i = 0; i < 6; ++i)
            QCOMPARE(m_main->TabFrame(i)->isVisible(), i == index);
        QCOMPARE(m_main->TabStrip1()->currentIndex(), index);
        InstructionForm *page = m_main->instructionForm(index);
        QVERIFY(page);
        QVERIFY(page->isVisible());
        QCOMPARE(page->objectName(), form);
        for (int i = 0; i < 27; ++i)
            QCOMPARE(m_main->ring(i)->isShown(), rings.count(i) == 1);
        QVERIFY(m_main->TabFrame(index)->isAncestorOf(
            child<QWidget>(QStringLiteral("TestContent_%1").arg(index))));
        QCOMPARE(m_log.opened.size(), size_t(1));
        QCOMPARE(m_log.opened.back().first, index);
        QVERIFY(!m_log.opened.back().second);
        QCOMPARE(m_log.shown, index == 0 ? 1 : 0);
        QCOMPARE(opened.count(), 0);
    }

    void aFunctionThatHasNotJoinedCannotBeOpened()
    {
        JobState state;
        frmMain bare(state);
        ShellTestLog log;
        ShellFunction one;
        one.index = 2;
        one.content = new QFrame;
        one.instructions = TestInstructions(2);
        one.opened = [&log](bool byTab) { log.opened.emplace_back(2, byTab); };
        bare.addFunction(std::move(one));
        // A second function at the same place is refused.
        ShellFunction again;
        again.index = 2;
        again.content = new QFrame;
        again.content->setObjectName(QStringLiteral("Refused"));
        bare.addFunction(std::move(again));
        QVERIFY(!bare.findChild<QFrame *>(QStringLiteral("Refused")));
        delete again.content;
        bare.Load();
        bare.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bare));

        for (int i = 0; i < frmMain::FunctionCount; ++i) {
            QCOMPARE(bare.hasFunction(i), i == 2);
            QCOMPARE(bare.findChild<QPushButton *>(QStringLiteral("FunctionSelectButton_%1").arg(i))
                         ->isEnabled(),
                     i == 2);
            QCOMPARE(bare.findChild<QAction *>(QStringLiteral("TabMenu_%1").arg(i))->isEnabled(),
                     i == 2);
            QCOMPARE(bare.findChild<QAction *>(QStringLiteral("InstrMenu_%1").arg(i))->isVisible(),
                     i == 2);
            QCOMPARE(bare.TabStrip1()->isTabEnabled(i), i == 2);
        }
        bare.FunctionSelectButton_Click(1);
        QVERIFY(bare.StartFrame()->isVisible());
        QVERIFY(!bare.TabFrame(1)->isVisible());
        QVERIFY(!bare.showInstructionForm(1));
        QVERIFY(log.opened.empty());
        bare.FunctionSelectButton_Click(2);
        QVERIFY(bare.TabFrame(2)->isVisible());
        QCOMPARE(log.opened.size(), size_t(1));
    }

    void aFunctionsMenuEntriesJoinTheMenusItNames()
    {
        JobState state;
        frmMain bare(state);
        ShellFunction function;
        function.index = 4;
        function.content = new QFrame;
        auto *import = new QAction(QStringLiteral("Import Bookmarks..."));
        import->setObjectName(QStringLiteral("ImportEntry"));
        auto *tool = new QAction(QStringLiteral("A Tool"));
        tool->setObjectName(QStringLiteral("ToolEntry"));
        function.menuEntries = {{QStringLiteral("&File"), import}, {QStringLiteral("Tools"), tool}};
        bare.addFunction(std::move(function));
        QCOMPARE(import->parent(), &bare);
        auto *fileMenu = bare.findChild<QMenu *>(QStringLiteral("FileMenu"));
        QVERIFY(fileMenu->actions().contains(import));
        const auto bar = bare.menuBar()->actions();
        QStringList titles;
        for (QAction *entry : bar)
            titles << entry->text();
        QCOMPARE(titles, QStringList({QStringLiteral("&File"), QStringLiteral("&Options"),
                                      QStringLiteral("Tools"), QStringLiteral("&Help")}));
        QVERIFY(bar.at(2)->menu()->actions().contains(tool));
    }

    void pressingTwiceClosesAndOpensTheForm()
    {
        auto *button = child<QPushButton>(QStringLiteral("FunctionSelectButton_2"));
        button->click();
        QPointer<InstructionForm> first = m_main->instructionForm(2);
        QVERIFY(first && first->isVisible());
        button->click();
        settle();
        QVERIFY(!first);
        QVERIFY(m_main->instructionForm(2));
        QVERIFY(m_main->instructionForm(2)->isVisible());

        // Closed by the user: the next press brings it back.
        m_main->instructionForm(2)->findChild<QPushButton *>(QStringLiteral("Command1"))->click();
        settle();
        QVERIFY(!m_main->instructionForm(2));
        button->click();
        QVERIFY(m_main->instructionForm(2) && m_main->instructionForm(2)->isVisible());

        // Opening another function unloads it.
        child<QPushButton>(QStringLiteral("ReturnToStartButton"))->click();
        child<QPushButton>(QStringLiteral("FunctionSelectButton_4"))->click();
        settle();
        QVERIFY(!m_main->instructionForm(2));
        QVERIFY(m_main->instructionForm(4));
    }

    void hideOnOnePageLeavesTheOthers()
    {
        child<QPushButton>(QStringLiteral("FunctionSelectButton_1"))->click();
        auto *check = m_main->instructionForm(1)->findChild<QCheckBox *>(QStringLiteral("Check1"));
        QVERIFY(check->isChecked());
        check->click();
        QCOMPARE(GetSetting(QStringLiteral("BackupInstructionView")), QStringLiteral("Hide"));

        child<QPushButton>(QStringLiteral("FunctionSelectButton_1"))->click();
        settle();
        QVERIFY(!m_main->instructionForm(1));
        child<QPushButton>(QStringLiteral("FunctionSelectButton_0"))->click();
        QVERIFY(m_main->instructionForm(0) && m_main->instructionForm(0)->isVisible());
        child<QPushButton>(QStringLiteral("FunctionSelectButton_2"))->click();
        QVERIFY(m_main->instructionForm(2) && m_main->instructionForm(2)->isVisible());
    }

    void sendFilePageWritesTheSpellingThatIsRead()
    {
        child<QPushButton>(QStringLiteral("FunctionSelectButton_2"))->click();
        m_main->instructionForm(2)->findChild<QCheckBox *>(QStringLiteral("Check1"))->click();
        QCOMPARE(GetSetting(QStringLiteral("SendFileInstructionView")), QStringLiteral("Hide"));
        QCOMPARE(GetSetting(QStringLiteral("SendFileIntructionView"), QStringLiteral("Show")),
                 QStringLiteral("Show"));
        child<QPushButton>(QStringLiteral("FunctionSelectButton_2"))->click();
        settle();
        QVERIFY(!m_main->instructionForm(2));
    }

    void instructionMenuShowsPageWhateverTheSetting()
    {
        SaveSetting(QStringLiteral("PortalIntructionView"), QStringLiteral("Hide"));
        action(QStringLiteral("InstrMenu_4"))->trigger();
        InstructionForm *page = m_main->instructionForm(4);
        QVERIFY(page && page->isVisible());
        auto *check = page->findChild<QCheckBox *>(QStringLiteral("Check1"));
        QVERIFY(!check->isChecked());
        check->click();
        QCOMPARE(GetSetting(QStringLiteral("PortalIntructionView")), QStringLiteral("Show"));
        QCOMPARE(action(QStringLiteral("InstrMenu_2"))->text(),
                 QStringLiteral("Send a File Instructions"));
        QCOMPARE(action(QStringLiteral("InstrMenu_5"))->text(),
                 QStringLiteral("FTP Controls Instructions"));
    }

    void instructionTextsAndLegend()
    {
        action(QStringLiteral("InstrMenu_2"))->trigger();
        InstructionForm *page = m_main->instructionForm(2);
        QCOMPARE(page->findChild<QLabel *>(QStringLiteral("Step_2"))->text(),
                 QStringLiteral("Step 3 of Send a File"));
        QCOMPARE(page->findChild<QLabel *>(QStringLiteral("NextActionLabel"))->text(),
                 QStringLiteral("Iindicates the next action"));
        QCOMPARE(page->findChild<QLabel *>(QStringLiteral("FinalActionLabel"))->text(),
                 QStringLiteral("Indicates the final action"));
        // Every step of the function's page, in order.
        QCOMPARE(
            page->findChildren<QLabel *>(QRegularExpression(QStringLiteral("^Step_\\d+$"))).size(),
            3);
        QCOMPARE(page->findChild<QLabel *>(QStringLiteral("Step_0"))->text(),
                 QStringLiteral("Step 1 of Send a File"));
        QCOMPARE(page->windowTitle(), QStringLiteral("Send a File - Instructions"));
        QVERIFY(page->findChild<QPushButton *>(QStringLiteral("MoreHelpButton")));
    }

    void checkBoxWritesOnlyWhileThePageShows()
    {
        InstructionForm hidden(3, TestInstructions(3), m_main.get(), {});
        auto *check = hidden.findChild<QCheckBox *>(QStringLiteral("Check1"));
        check->click();
        QVERIFY(!HasSetting(QStringLiteral("BlogIntructionView")));
        hidden.show();
        check->click();
        QCOMPARE(GetSetting(QStringLiteral("BlogIntructionView")), QStringLiteral("Show"));
        check->click();
        QCOMPARE(GetSetting(QStringLiteral("BlogIntructionView")), QStringLiteral("Hide"));
    }

    void missingHelpPageSaysSo()
    {
        QTemporaryDir empty;
        Folders::SetProgramFolder(empty.path());
        m_main->showHelpTopic(9);
        Folders::SetProgramFolder(QStringLiteral(TARNWICK_STAGED_DATA_DIR));
        const QString text = m_main->helpWindow()->browser()->toPlainText();
        QVERIFY(text.contains(QStringLiteral("Help page not found")));
        QVERIFY(text.contains(empty.path() + QStringLiteral("/help/9.html")));
        m_main->showHelpTopic(9);
        QVERIFY(
            m_main->helpWindow()->browser()->toPlainText().contains(QStringLiteral("Send a File")));
    }

    void spellCheckEntrySwitchesTheFeature()
    {
        QAction *entry = action(QStringLiteral("SpellCheckOn"));
        QVERIFY(!entry->isChecked());

        // Turning it on asks first; No changes nothing.
        auto seen = answerMessageBox(QMessageBox::No);
        entry->trigger();
        QVERIFY(seen->seen);
        QCOMPARE(seen->title, QStringLiteral("Tarnwick"));
        QVERIFY(seen->text.endsWith(QString(33, QLatin1Char(' ')) +
                                    QStringLiteral("Are You Sure You Want To Continue?")));
        QVERIFY(!entry->isChecked());
        QVERIFY(!HasSetting(QStringLiteral("SpellCheck")) ||
                GetSetting(QStringLiteral("SpellCheck")) == QStringLiteral("False"));

        seen = answerMessageBox(QMessageBox::Yes);
        entry->trigger();
        QVERIFY(entry->isChecked());
        QCOMPARE(GetSetting(QStringLiteral("SpellCheck")), QStringLiteral("True"));
        // Without a checker the two entries show but can't be chosen.
        QVERIFY(action(QStringLiteral("CheckSpellingMenu"))->isVisible());
        QVERIFY(action(QStringLiteral("CheckSpellingAllMenu"))->isVisible());
        QVERIFY(!action(QStringLiteral("CheckSpellingMenu"))->isEnabled());
        QVERIFY(!action(QStringLiteral("CheckSpellingAllMenu"))->isEnabled());
        m_main->setSpellChecker([](const QString &text) { return text; });
        QVERIFY(action(QStringLiteral("CheckSpellingMenu"))->isEnabled());
        QVERIFY(action(QStringLiteral("CheckSpellingAllMenu"))->isEnabled());

        // Turning it off asks nothing.
        seen = answerMessageBox(QMessageBox::Yes, 200);
        entry->trigger();
        QTest::qWait(300);
        QVERIFY(!entry->isChecked());
        QCOMPARE(GetSetting(QStringLiteral("SpellCheck")), QStringLiteral("False"));
        QVERIFY(!action(QStringLiteral("CheckSpellingMenu"))->isEnabled());
        QVERIFY(!action(QStringLiteral("CheckSpellingAllMenu"))->isEnabled());
        QVERIFY(!seen->seen);
    }

    void spellingEntriesWaitForAChecker()
    {
        // Stored as on: the entries are ticked on but stay disabled until a checker comes.
        SaveSetting(QStringLiteral("SpellCheck"), QStringLiteral("True"));
        start();
        QVERIFY(action(QStringLiteral("SpellCheckOn"))->isChecked());
        QVERIFY(!action(QStringLiteral("CheckSpellingMenu"))->isEnabled());
        QVERIFY(!action(QStringLiteral("CheckSpellingAllMenu"))->isEnabled());
        m_main->setSpellChecker([](const QString &text) { return text; });
        QVERIFY(action(QStringLiteral("CheckSpellingMenu"))->isEnabled());
        QVERIFY(action(QStringLiteral("CheckSpellingAllMenu"))->isEnabled());
        m_main->setSpellChecker({});
        QVERIFY(!action(QStringLiteral("CheckSpellingMenu"))->isEnabled());

        // A checker installed before Load, with the setting on.
        m_main = makeWindow();
        m_main->setSpellChecker([](const QString &text) { return text; });
        m_main->Load();
        QVERIFY(action(QStringLiteral("CheckSpellingMenu"))->isEnabled());
        QVERIFY(action(QStringLiteral("CheckSpellingAllMenu"))->isEnabled());
        // With the setting off, a checker alone does not enable them.
        SaveSetting(QStringLiteral("SpellCheck"), QStringLiteral("False"));
        m_main = makeWindow();
        m_main->setSpellChecker([](const QString &text) { return text; });
        m_main->Load();
        QVERIFY(!action(QStringLiteral("CheckSpellingMenu"))->isEnabled());
    }

    void tabMenuAndTabStripOpenFunctions()
    {
        action(QStringLiteral("TabMenu_3"))->trigger();
        QVERIFY(m_main->TabFrame(3)->isVisible());
        QCOMPARE(m_main->TabStrip1()->currentIndex(), 3);
        QVERIFY(m_main->ring(5)->isShown());

        QTabBar *tabs = m_main->TabStrip1();
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(5).center());
        QVERIFY(m_main->TabFrame(5)->isVisible());
        QVERIFY(!m_main->TabFrame(3)->isVisible());
        QCOMPARE(m_log.opened.back(), std::make_pair(5, true));
        settle();
        QVERIFY(!m_main->instructionForm(3));
        QVERIFY(m_main->instructionForm(5));
        QVERIFY(m_main->ring(14)->isShown());

        // The keyboard chooses tabs too.
        tabs->setFocus();
        QTest::keyClick(tabs, Qt::Key_Left);
        QCOMPARE(tabs->currentIndex(), 4);
        QVERIFY(m_main->TabFrame(4)->isVisible());
        QVERIFY(!m_main->TabFrame(5)->isVisible());
    }

    void returnToStart()
    {
        child<QPushButton>(QStringLiteral("FunctionSelectButton_4"))->click();
        child<QPushButton>(QStringLiteral("ReturnToStartButton"))->click();
        QVERIFY(m_main->StartFrame()->isVisible());
        for (int i = 0; i < 6; ++i)
            QVERIFY(!m_main->TabFrame(i)->isVisible());
    }

    void shapeEventTable_data()
    {
        QTest::addColumn<int>("step");
        QTest::addColumn<IntSet>("visible");
        QTest::addColumn<IntSet>("green");
        QTest::addColumn<IntSet>("yellow");
        QTest::newRow("0") << 0 << IntSet{0, 2, 3} << IntSet{0} << IntSet{};
        QTest::newRow("1") << 1 << IntSet{1, 2, 3} << IntSet{2, 3} << IntSet{};
        QTest::newRow("3") << 3 << IntSet{1, 2, 3} << IntSet{2, 3} << IntSet{1};
        QTest::newRow("10") << 10 << IntSet{5, 6} << IntSet{5} << IntSet{};
        QTest::newRow("11") << 11 << IntSet{6, 23} << IntSet{6} << IntSet{};
        QTest::newRow("16") << 16 << IntSet{6, 23} << IntSet{6, 23} << IntSet{};
        QTest::newRow("15") << 15 << IntSet{23} << IntSet{23} << IntSet{};
        QTest::newRow("12") << 12 << IntSet{7, 24, 25} << IntSet{7} << IntSet{};
        QTest::newRow("22") << 22 << IntSet{24} << IntSet{24} << IntSet{};
        QTest::newRow("23") << 23 << IntSet{24, 25} << IntSet{24, 25} << IntSet{};
        QTest::newRow("24") << 24 << IntSet{8, 9, 15, 26} << IntSet{8, 9, 15} << IntSet{};
        QTest::newRow("13") << 13 << IntSet{7, 8, 9, 15} << IntSet{8, 9, 15} << IntSet{};
        QTest::newRow("14") << 14 << IntSet{4, 8, 9, 15} << IntSet{8, 9, 15} << IntSet{4};
        QTest::newRow("20") << 20 << IntSet{10, 11} << IntSet{10} << IntSet{};
        QTest::newRow("21") << 21 << IntSet{11} << IntSet{11} << IntSet{};
        QTest::newRow("30") << 30 << IntSet{12, 13} << IntSet{12} << IntSet{};
        QTest::newRow("31") << 31 << IntSet{13} << IntSet{13} << IntSet{};
        QTest::newRow("40") << 40 << IntSet{14, 16} << IntSet{14} << IntSet{16};
        QTest::newRow("41") << 41 << IntSet{16} << IntSet{} << IntSet{16};
        QTest::newRow("50") << 50 << IntSet{17, 18, 19, 20} << IntSet{17, 18} << IntSet{};
        QTest::newRow("51") << 51 << IntSet{19, 20, 21} << IntSet{19, 20} << IntSet{21};
        QTest::newRow("52") << 52 << IntSet{17, 18, 19, 20, 21} << IntSet{17, 18, 19, 20}
                            << IntSet{21};
        QTest::newRow("333") << 333 << IntSet{} << IntSet{} << IntSet{};
        QTest::newRow("2 is not a step") << 2 << IntSet{} << IntSet{} << IntSet{};
    }
    void shapeEventTable()
    {
        QFETCH(int, step);
        QFETCH(IntSet, visible);
        QFETCH(IntSet, green);
        QFETCH(IntSet, yellow);
        // Start from everything shown in a third colour, so every change is seen.
        for (int i = 0; i < 27; ++i) {
            m_main->ring(i)->setShown(true);
            m_main->ring(i)->setColour(Qt::red);
        }
        m_main->shapeEvent(step);
        for (int i = 0; i < 27; ++i) {
            QCOMPARE(m_main->ring(i)->isShown(), visible.count(i) == 1);
            const QColor expected = green.count(i)    ? frmMain::RingGreen
                                    : yellow.count(i) ? frmMain::RingYellow
                                                      : QColor(Qt::red);
            QCOMPARE(m_main->ring(i)->colour(), expected);
        }
        QCOMPARE(frmMain::RingGreen, QColor(0x00, 0xFF, 0x00));
        QCOMPARE(frmMain::RingYellow, QColor(0xFF, 0xFF, 0x00));
    }

    void plainRingKeepsItsColour()
    {
        m_main->shapeEvent(3);
        m_main->shapeEvent(1);
        QVERIFY(m_main->ring(1)->isShown());
        QCOMPARE(m_main->ring(1)->colour(), frmMain::RingYellow);
    }

    void highlightOffHidesAll()
    {
        m_main->shapeEvent(52);
        QVERIFY(m_main->ring(21)->isShown());
        action(QStringLiteral("HighLightSteps"))->trigger();
        QVERIFY(!action(QStringLiteral("HighLightSteps"))->isChecked());
        QCOMPARE(GetSetting(QStringLiteral("HighLightSteps")), QStringLiteral("False"));
        for (int step : {0, 1, 3, 10, 40, 52})
            for (int i = 0; i < 27; ++i) {
                m_main->shapeEvent(step);
                QVERIFY(!m_main->ring(i)->isShown());
            }
        action(QStringLiteral("HighLightSteps"))->trigger();
        QCOMPARE(GetSetting(QStringLiteral("HighLightSteps")), QStringLiteral("True"));
        m_main->shapeEvent(0);
        QVERIFY(m_main->ring(0)->isShown());

        // The setting is read back at the next start.
        action(QStringLiteral("HighLightSteps"))->trigger();
        start();
        QVERIFY(!action(QStringLiteral("HighLightSteps"))->isChecked());
    }

    void ringFollowsItsControl()
    {
        child<QPushButton>(QStringLiteral("FunctionSelectButton_2"))->click();
        auto *target = new QPushButton(QStringLiteral("Select a File"), m_main->TabFrame(2));
        m_main->TabFrame(2)->layout()->addWidget(target);
        m_main->placeRing(11, target);
        m_main->shapeEvent(21);
        QTest::qWait(50);
        StepRing *ring = m_main->ring(11);
        QVERIFY(ring->isVisible());
        const QRect around(target->mapTo(ring->parentWidget(), QPoint(0, 0)), target->size());
        QVERIFY(ring->geometry().contains(around));
        // Leaving the function takes the ring off the screen but keeps its state.
        child<QPushButton>(QStringLiteral("ReturnToStartButton"))->click();
        QVERIFY(!ring->isVisible());
        QVERIFY(ring->isShown());
    }

    void cancelButtonSetsFlag()
    {
        m_main->showProgressFrame(true);
        QVERIFY(m_main->ProgressFrame()->isVisible());
        m_state.UploadCancelled = false;
        child<QPushButton>(QStringLiteral("CancelButton"))->click();
        QVERIFY(m_state.UploadCancelled);
        QVERIFY(!m_state.skipped());
        m_main->showProgressFrame(false);
        QVERIFY(!m_main->ProgressFrame()->isVisible());
    }

    void exitMenuAsks_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("ends");
        QTest::newRow("yes") << int(QMessageBox::Yes) << 1;
        QTest::newRow("no") << int(QMessageBox::No) << 0;
    }
    void exitMenuAsks()
    {
        QFETCH(int, answer);
        QFETCH(int, ends);
        QSignalSpy ending(m_main.get(), &frmMain::programEnding);
        bool closedConnection = false;
        m_main->setCloseHook([&closedConnection] { closedConnection = true; });
        auto seen = answerMessageBox(static_cast<QMessageBox::StandardButton>(answer));
        action(QStringLiteral("ExitMenu"))->trigger();
        QCOMPARE(seen->title, QStringLiteral("Exit"));
        QCOMPARE(seen->text, QStringLiteral("Are you sure you want to exit from Tarnwick?"));
        QCOMPARE(ending.count(), ends);
        QVERIFY(!closedConnection); // the menu leaves the connection as it is
    }

    void windowCloseAsks_data() { exitMenuAsks_data(); }
    void windowCloseAsks()
    {
        QFETCH(int, answer);
        QFETCH(int, ends);
        QSignalSpy ending(m_main.get(), &frmMain::programEnding);
        bool closedConnection = false;
        m_main->setCloseHook([&closedConnection] { closedConnection = true; });
        auto seen = answerMessageBox(static_cast<QMessageBox::StandardButton>(answer));
        const bool closed = m_main->close();
        QCOMPARE(seen->title, QStringLiteral("Exit"));
        QCOMPARE(closed, ends == 1);
        QCOMPARE(m_main->isVisible(), ends == 0);
        QCOMPARE(closedConnection, ends == 1);
        QCOMPARE(ending.count(), ends);
    }

    void waitCountsTicksWithTheWindowLive()
    {
        bool timerRan = false;
        QTimer::singleShot(100, [&timerRan] { timerRan = true; });
        const int ticks = m_main->TickCount();
        m_main->Wait(0.5);
        QVERIFY(timerRan);
        // Five ticks of Timer4, counted.
        QCOMPARE(m_main->TickCount() - ticks, 5);
        // No tick to wait for: it returns without turning the event loop.
        const int before = m_main->TickCount();
        bool served = false;
        QTimer::singleShot(0, [&served] { served = true; });
        m_main->Wait(0);
        QCOMPARE(m_main->TickCount(), before);
        QVERIFY(!served);
    }

    void noRemovableDriveLeavesText2Empty()
    {
        QVERIFY(IsRemovableVolume(QStringLiteral("/media/usb"), QStringLiteral("/dev/sdz1")));
        QVERIFY(IsRemovableVolume(QStringLiteral("/run/media/ann/CARD"), QString()));
        QVERIFY(!IsRemovableVolume(QStringLiteral("/"), QStringLiteral("overlay")));
        if (!LastRemovableDrive().isEmpty())
            QSKIP("this machine has a removable medium mounted");
        m_main->refreshDrives();
        QTRY_VERIFY(!m_main->findChild<QLabel *>(QStringLiteral("Text2"))->text().size() &&
                    m_main->RemovableDrive().isEmpty());
        QCOMPARE(m_main->Text2(), QString());
    }

    void uploadPathTimerWaitsForConnect()
    {
        // Load starts the other three timers; Timer3 belongs to the FTP tab's connection.
        QVERIFY(child<QTimer>(QStringLiteral("Timer1"))->isActive());
        QVERIFY(child<QTimer>(QStringLiteral("Timer4"))->isActive());
        QVERIFY(!m_main->uploadPathTimerRunning());
        QVERIFY(!child<QTimer>(QStringLiteral("Timer3"))->isActive());

        m_main->txtWebSite()->setText(QStringLiteral("http://www.example.org"));
        QString directory = QStringLiteral("/a");
        m_main->setFtpDirectoryProvider([&directory] { return directory; });
        m_main->setUploadPathTimerRunning(true);
        QVERIFY(child<QTimer>(QStringLiteral("Timer3"))->isActive());
        QTRY_COMPARE(m_main->UploadPath()->text(), QStringLiteral("http://www.example.org/a"));
        m_main->setUploadPathTimerRunning(false);
        directory = QStringLiteral("/b");
        QTest::qWait(1300);
        QCOMPARE(m_main->UploadPath()->text(), QStringLiteral("http://www.example.org/a"));
        m_main->setFtpDirectoryProvider({});
    }

    void uploadPathShowsSiteAndDirectory()
    {
        m_main->txtWebSite()->setText(QStringLiteral("http://www.example.org"));
        m_main->refreshUploadPath();
        QCOMPARE(m_main->UploadPath()->text(), QStringLiteral("http://www.example.org"));
        m_main->setFtpDirectoryProvider([] { return QStringLiteral(" /Photos/Summer "); });
        m_main->refreshUploadPath();
        QCOMPARE(m_main->UploadPath()->text(),
                 QStringLiteral("http://www.example.org/Photos/Summer"));
    }

    void startScreenAnimationMoves()
    {
        auto *page = child<QLabel>(QStringLiteral("Image7_0"));
        auto *link = child<QLabel>(QStringLiteral("Image7_1"));
        QVERIFY(page->isVisible());
        QVERIFY(!link->isVisible());
        const int start = page->x();
        QTRY_VERIFY(page->x() > start);
        QCOMPARE((page->x() - start) % 5, 0);
        // At the end mark the link travels back.
        QTRY_VERIFY_WITH_TIMEOUT(link->isVisible() && !page->isVisible(), 30000);
        const int back = link->x();
        QTRY_VERIFY(link->x() < back);
    }

    void aboutBoxShowsSystemLine()
    {
        auto seen = std::make_shared<MessageSeen>();
        whenModal<QMessageBox>([seen](QMessageBox *box) {
            seen->text = box->text();
            seen->title = box->windowTitle();
            seen->seen = true;
            box->accept();
        });
        action(QStringLiteral("AboutMenu"))->trigger();
        QVERIFY(seen->seen);
        QVERIFY(seen->text.contains(frmMain::SystemVersionLine().toHtmlEscaped()));
    }

    void aboutLineNamesSystemAndKernel()
    {
        const QString line = frmMain::SystemVersionLine();
        QVERIFY(line.contains(QStringLiteral(" Version ")));
        QVERIFY(line.endsWith(QSysInfo::kernelVersion()));
    }

    void firstRunMakesTreeWritesKeysAndAsks()
    {
        m_main.reset();
        ClearTemporaryHome();
        int setupShown = 0;
        m_main = makeWindow();
        m_main->setSetupPage([&setupShown] { ++setupShown; });
        auto seen = answerMessageBox(QMessageBox::Yes);
        m_main->Load();
        QCOMPARE(setupShown, 1);
        QVERIFY(seen->seen);
        QCOMPARE(seen->title, QStringLiteral("Tarnwick"));
        QVERIFY(seen->text.startsWith(QStringLiteral("The Spell Checker requires that you have ")));
        QVERIFY(!seen->text.contains(QStringLiteral("WORD")));
        QVERIFY(seen->text.contains(QStringLiteral("\n\n") + QString(33, QLatin1Char(' ')) +
                                    QStringLiteral("Is ")));
        QCOMPARE(GetSetting(QStringLiteral("SpellCheck")), QStringLiteral("True"));
        QVERIFY(action(QStringLiteral("SpellCheckOn"))->isChecked());
        QVERIFY(!action(QStringLiteral("CheckSpellingMenu"))->isEnabled()); // no checker yet
        QCOMPARE(GetSetting(QStringLiteral("Bit32")), QStringLiteral("True"));
        QVERIFY(action(QStringLiteral("XPorBetter"))->isChecked());
        for (const QString &folder :
             {Folders::ImagesFolder(), Folders::HistoryFolder(), Folders::BackupFolder(),
              Folders::StartupFolder(), Folders::BlogPointerFolder(),
              Folders::MasterPointerFolder(), Folders::PhotosHtmlFolder()})
            QVERIFY2(QDir(folder).exists(), qPrintable(folder));
        const QStringList eight = {"PhotoBGColor", "PhotoTitleColor", "PhotoTextColor", "PhotoFont",
                                   "MstrBGColor",  "MstrTitleColor",  "MstrTextColor",  "MstrFont"};
        for (const QString &key : eight)
            QVERIFY2(HasSetting(key), qPrintable(key));
        QCOMPARE(GetSetting(QStringLiteral("PhotoBGColor")), QStringLiteral("#7F7Fff"));
        QCOMPARE(GetSetting(QStringLiteral("MstrFont")), QStringLiteral("Arial"));
        QVERIFY(!HasSetting(QStringLiteral("SUBackgroundColor")));
        QCOMPARE(m_main->startup().ColourAndFont.PhotoTitleColor, QStringLiteral("#008000"));
        // The default data was restored: templates copied, the cabinet unpacked once.
        const CopyFilesReport &first = m_main->copyFilesReport();
        QVERIFY(!first.copied.isEmpty());
        QVERIFY(QFile::exists(Folders::PhotosFolder() + QStringLiteral("/Top.txt")));
        QVERIFY(first.unpackTried);
        QVERIFY(first.unpacked);
        QVERIFY(first.signFileFound);
        QVERIFY(QFile::exists(DefaultDataSignFile()));

        // The Configuration page is what sets entry; started again, nothing is asked.
        SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
        m_main = makeWindow();
        m_main->setSetupPage([&setupShown] { ++setupShown; });
        auto again = answerMessageBox(QMessageBox::No, 300);
        m_main->Load();
        QTest::qWait(350);
        QCOMPARE(setupShown, 1);
        QVERIFY(!again->seen);
        QVERIFY(m_main->copyFilesReport().copied.isEmpty());
        QVERIFY(!m_main->copyFilesReport().unpackTried);
        QVERIFY(m_main->copyFilesReport().signFileFound);
        QVERIFY(action(QStringLiteral("SpellCheckOn"))->isChecked());
        QCOMPARE(GetSetting(QStringLiteral("PhotoBGColor")), QStringLiteral("#7F7Fff"));
    }

    void unreadableSettingsStillReachTheStartScreen()
    {
        m_main.reset();
        ClearTemporaryHome();
        const QString conf = TestHomePath() + QStringLiteral("/.config/Tarnwick/Tarnwick.conf");
        QDir().mkpath(QFileInfo(conf).absolutePath());
        QFile file(conf);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[[[garbage\n=\n[Settings]\nServer=x\nentry=5\n");
        file.close();

        Answerer answers;
        m_main = makeWindow();
        m_main->Load();
        m_main->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
        // Read as empty: a first run, asked the spelling question, with no server.
        QCOMPARE(answers.texts.size(), 1);
        QVERIFY(answers.texts.first().startsWith(
            QStringLiteral("The Spell Checker requires that you have ")));
        QCOMPARE(m_main->txtServer()->text(), QString());
        QVERIFY(m_main->StartFrame()->isVisible());
        for (const QString &key : colourAndFontKeys())
            QVERIFY2(HasSetting(key), qPrintable(key));
        QCOMPARE(GetSetting(QStringLiteral("PhotoFont")), QStringLiteral("Arial"));
        QVERIFY(!HasSetting(QStringLiteral("Server")));
    }

    void missingDataFolderIsToldAndTheStartGoesOn()
    {
        m_main.reset();
        ClearTemporaryHome();
        QTemporaryDir parent;
        Folders::SetProgramFolder(parent.filePath(QStringLiteral("gone")));
        Answerer answers;
        m_main = makeWindow();
        m_main->Load();
        Folders::SetProgramFolder(QStringLiteral(TARNWICK_STAGED_DATA_DIR));
        m_main->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));

        // The error first, then the first run's spelling question.
        QCOMPARE(answers.texts.size(), 2);
        QCOMPARE(answers.texts.at(0), DefaultDataMissingMessage);
        QVERIFY(answers.texts.at(1).startsWith(
            QStringLiteral("The Spell Checker requires that you have ")));
        QVERIFY(m_main->copyFilesReport().messageShown);
        QVERIFY(m_main->copyFilesReport().copied.isEmpty());
        QVERIFY(m_main->StartFrame()->isVisible());
        for (const QString &folder :
             {Folders::ImagesFolder(), Folders::HistoryFolder(), Folders::BackupFolder(),
              Folders::StartupFolder(), Folders::BlogPointerFolder(),
              Folders::MasterPointerFolder(), Folders::PhotosHtmlFolder()})
            QVERIFY2(QDir(folder).exists(), qPrintable(folder));
        for (const QString &key : colourAndFontKeys())
            QVERIFY2(HasSetting(key), qPrintable(key));
    }

    void loadReadsSettingsIntoFields()
    {
        SaveSetting(QStringLiteral("Server"), QStringLiteral("ftp.example.org:2121"));
        SaveSetting(QStringLiteral("WebPage"), QStringLiteral("http://www.example.org"));
        SaveSetting(QStringLiteral("Password"), QStringLiteral("s3cret"));
        SaveSetting(QStringLiteral("ClientRoot"), QStringLiteral("ann"));
        SaveSetting(QStringLiteral("PhotoBGColor"), QStringLiteral("#112233"));
        SaveSetting(QStringLiteral("Bit32"), QStringLiteral("False"));
        start();
        QCOMPARE(m_main->txtServer()->text(), QStringLiteral("ftp.example.org:2121"));
        QCOMPARE(m_main->txtWebSite()->text(), QStringLiteral("http://www.example.org"));
        QCOMPARE(m_main->txtPassword()->text(), QStringLiteral("s3cret"));
        QCOMPARE(m_main->ClientRoot()->text(), QStringLiteral("ann"));
        QCOMPARE(m_main->LoadSpeed()->text(), QStringLiteral("0.1"));
        QCOMPARE(m_main->startup().BackupDirName, QStringLiteral("Backup"));
        QCOMPARE(m_main->startup().BlogDirName, QStringLiteral("Web_Log"));
        QCOMPARE(m_main->startup().ColourAndFont.PhotoBGColor, QStringLiteral("#112233"));
        QCOMPARE(m_main->startup().ChoosenUploadPath,
                 QDir::homePath() + QStringLiteral("/Tarnwick"));
        QVERIFY(!m_main->startup().IsNTFamily);
        QVERIFY(!action(QStringLiteral("XPorBetter"))->isChecked());

        // Bit32 removed while entry stays: the check keeps its former state.
        QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
        store.remove(QStringLiteral("Settings/Bit32"));
        store.sync();
        start();
        QVERIFY(action(QStringLiteral("XPorBetter"))->isChecked());
    }

    void loadSpeedIsSavedOnLeavingTheBox()
    {
        // The box as the photo function's settings tab shows it.
        child<QPushButton>(QStringLiteral("FunctionSelectButton_0"))->click();
        m_main->unloadInstructionForms();
        settle();
        QLineEdit *box = m_main->LoadSpeed();
        auto *other = new QLineEdit(m_main->TabFrame(0));
        m_main->TabFrame(0)->layout()->addWidget(box);
        m_main->TabFrame(0)->layout()->addWidget(other);
        m_main->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_main.get()));
        QCOMPARE(box->text(), QStringLiteral("0.1"));

        const auto storeContents = [] {
            QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
            QMap<QString, QString> values;
            for (const QString &key : store.allKeys())
                values.insert(key, store.value(key).toString());
            return values;
        };
        QMap<QString, QString> before = storeContents();

        box->setFocus();
        QTRY_VERIFY(box->hasFocus());
        box->selectAll();
        QTest::keyClicks(box, QStringLiteral("0.75"));
        QCOMPARE(box->text(), QStringLiteral("0.75"));
        QVERIFY(!HasSetting(QStringLiteral("LoadSpeed"))); // typing alone saves nothing
        other->setFocus();
        QTRY_VERIFY(other->hasFocus());
        QCOMPARE(GetSetting(QStringLiteral("LoadSpeed")), QStringLiteral("0.75"));

        // Nothing else in the store changed.
        QMap<QString, QString> after = storeContents();
        QCOMPARE(after.take(QStringLiteral("Settings/LoadSpeed")), QStringLiteral("0.75"));
        QCOMPARE(after, before);

        // The next start shows it.
        start();
        QCOMPARE(m_main->LoadSpeed()->text(), QStringLiteral("0.75"));
        QCOMPARE(m_main->startup().LoadSpeed, QStringLiteral("0.75"));
    }

    void cleanupDeletesImagesOnlyAndRunsHooks()
    {
        const QString home = Folders::HomeFolder();
        for (const char *name : {"Sml_a.jpg", "Lrg_b.JPG", "c.gif", "d.bmp", "Save.txt", "e.htm"}) {
            QFile file(home + QString::fromLatin1(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("x");
        }
        const int before = m_log.cleanups;
        m_main->DoCleanup();
        QCOMPARE(m_log.cleanups, before + 1);
        QVERIFY(!QFile::exists(home + QStringLiteral("Sml_a.jpg")));
        QVERIFY(!QFile::exists(home + QStringLiteral("Lrg_b.JPG")));
        QVERIFY(!QFile::exists(home + QStringLiteral("c.gif")));
        QVERIFY(!QFile::exists(home + QStringLiteral("d.bmp")));
        QVERIFY(QFile::exists(home + QStringLiteral("Save.txt")));
        QVERIFY(QFile::exists(home + QStringLiteral("e.htm")));
        // Opening the photo function cleans up as well.
        child<QPushButton>(QStringLiteral("FunctionSelectButton_0"))->click();
        QCOMPARE(m_log.cleanups, before + 2);
        child<QPushButton>(QStringLiteral("FunctionSelectButton_1"))->click();
        QCOMPARE(m_log.cleanups, before + 2);
    }

    void helpContextFollowsTheScreen()
    {
        QCOMPARE(m_main->helpContext(), 2);
        child<QPushButton>(QStringLiteral("FunctionSelectButton_2"))->click();
        QCOMPARE(m_main->helpContext(), 9);
        child<QPushButton>(QStringLiteral("FunctionSelectButton_4"))->click();
        QCOMPARE(m_main->helpContext(), 16);

        child<QPushButton>(QStringLiteral("FunctionSelectButton_5"))->click();
        QCOMPARE(m_main->helpContext(), 17);
        // What the function says of the screen comes first.
        QWidget *content5 = child<QWidget>(QStringLiteral("TestContent_5"));
        auto *extra = new QFrame(content5);
        extra->setObjectName(QStringLiteral("ExtraFrame"));
        content5->layout()->addWidget(extra);
        extra->show();
        QCOMPARE(m_main->helpContext(), 105);
        extra->hide();
        QCOMPARE(m_main->helpContext(), 17);

        child<QPushButton>(QStringLiteral("FunctionSelectButton_0"))->click();
        QCOMPARE(m_main->helpContext(), 6);
        QWidget *content0 = child<QWidget>(QStringLiteral("TestContent_0"));
        auto *strip = new QTabBar(content0);
        strip->setObjectName(QStringLiteral("TabStrip2"));
        for (int i = 0; i < 4; ++i)
            strip->addTab(QStringLiteral("Tab %1").arg(i));
        content0->layout()->addWidget(strip);
        strip->setCurrentIndex(1);
        QCOMPARE(m_main->helpContext(), 4);
        strip->setCurrentIndex(3);
        QCOMPARE(m_main->helpContext(), 6);

        child<QPushButton>(QStringLiteral("FunctionSelectButton_1"))->click();
        QCOMPARE(m_main->helpContext(), 8);

        m_main->hide();
        QCOMPARE(m_main->helpContext(), 1);
    }

    void helpButtonOpensTheHelpOfWhatIsShown()
    {
        auto *button = child<QPushButton>(QStringLiteral("HelpButton"));
        QCOMPARE(button->text(), QStringLiteral("Help"));
        QVERIFY(!button->isVisible()); // the start screen has the Help menu and F1
        HelpWindow *help = m_main->helpWindow();
        QVERIFY(!help->isVisible());

        child<QPushButton>(QStringLiteral("FunctionSelectButton_2"))->click();
        QVERIFY(button->isVisible());
        button->click();
        QVERIFY(help->isVisible());
        QCOMPARE(help->currentTopic(), 9);
        QVERIFY(help->browser()->toPlainText().contains(QStringLiteral("Send a File")));
        help->close();

        child<QPushButton>(QStringLiteral("FunctionSelectButton_4"))->click();
        button->click();
        QVERIFY(help->isVisible());
        QCOMPARE(help->currentTopic(), 16);
    }

    void helpPagesExistAndF1OpensTheOneOnScreen()
    {
        for (int context = 1; context <= 18; ++context)
            QVERIFY2(QFile::exists(HelpWindow::topicFile(context)),
                     qPrintable(HelpWindow::topicFile(context)));
        child<QPushButton>(QStringLiteral("FunctionSelectButton_2"))->click();
        InstructionForm *page = m_main->instructionForm(2);
        QTest::keyClick(page->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::Key_F1);
        HelpWindow *help = m_main->helpWindow();
        QVERIFY(help->isVisible());
        QCOMPARE(help->currentTopic(), 9);
        QVERIFY(help->browser()->toPlainText().contains(QStringLiteral("Send a File")));
        help->close();

        page->findChild<QPushButton *>(QStringLiteral("MoreHelpButton"))->click();
        QVERIFY(help->isVisible());
        QCOMPARE(help->currentTopic(), 9);

        child<QPushButton>(QStringLiteral("ReturnToStartButton"))->click();
        QTest::keyClick(m_main.get(), Qt::Key_F1);
        QCOMPARE(help->currentTopic(), 2);
    }
};

TARNWICK_TEST_MAIN(TestFrmMain)
#include "test_frmMain.moc"
