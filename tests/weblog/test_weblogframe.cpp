#include "BlogRecords.h"
#include "Folders.h"
#include "HelpWindow.h"
#include "InstructionForm.h"
#include "Settings.h"
#include "StepRing.h"
#include "TestMain.h"
#include "WebLogFixture.h"
#include "WebLogFrame.h"
#include "WebLogInstall.h"
#include "WebLogSpelling.h"
#include "WebSpace.h"
#include "WebSpaceFixture.h"
#include "WordChecker.h"
#include "frmSpelling.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTimer>

using namespace BuildBlog;

namespace {

// Clicks the named button of the spelling dialog as soon as it shows, once per name given.
void answerSpelling(QStringList buttons, QStringList *seen = nullptr)
{
    auto *timer = new QTimer;
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, [timer, buttons, seen]() mutable {
        auto *dialog = qobject_cast<frmSpelling *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        if (buttons.isEmpty()) {
            timer->deleteLater();
            return;
        }
        if (seen)
            *seen << dialog->findChild<QLabel *>("SpellWord")->text();
        // "SpellChange:word" picks that suggestion first.
        const QString answer = buttons.takeFirst();
        const QString word = answer.section(':', 1);
        if (!word.isEmpty()) {
            auto *list = dialog->findChild<QListWidget *>("SpellSuggestions");
            const auto found = list->findItems(word, Qt::MatchExactly);
            if (found.isEmpty())
                qWarning("no suggestion %s", qPrintable(word));
            else
                list->setCurrentItem(found.first());
        }
        dialog->findChild<QPushButton *>(answer.section(':', 0, 0))->click();
        if (buttons.isEmpty())
            timer->deleteLater();
    });
    timer->start();
}

// Options > Spell Check On, with its question answered Yes in the real message box.
void turnSpellingOn(frmMain &window)
{
    QTimer::singleShot(0, [] {
        std::function<void()> answer;
        answer = [&answer] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (box)
                box->button(QMessageBox::Yes)->click();
            else
                QTimer::singleShot(5, answer);
        };
        answer();
    });
    window.SpellCheckOn()->trigger();
}

} // namespace

// The Build a Web Log tab on the real main window: Web Logs, sections, pointers and comments
// made and removed through its controls, the tab rules, help pages, rings and the spelling
// check of the Options menu.
class TestWebLogFrame : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<WebSpaceFixture> fixture;
    WebLogParts parts;
    WebLogFrame *frame = nullptr;

    QPushButton *button(const char *name)
    {
        auto *found = fixture->window->findChild<QPushButton *>(QString::fromLatin1(name));
        if (!found)
            qWarning("no button %s", name);
        return found;
    }
    template <typename T> T *child(const char *name)
    {
        return frame->findChild<T *>(QString::fromLatin1(name));
    }

    void openNewWebLog(const QString &name)
    {
        fixture->ui.answerPrompt(name);
        button("addNewBlogFileButton")->click();
    }
    void addSection(const QString &title)
    {
        frame->TabStrip3_Click(2);
        fixture->ui.answerPrompt(title);
        button("BlogAddItem")->click();
    }

private slots:
    void init()
    {
        ClearTemporaryHome();
        QVERIFY(WebLogFixture::installBlogTemplates());
        SetSpellingDictionaryFolders({});
        SaveSetting("BlogIntructionView", "Hide");
        SaveSetting("HighLightSteps", "True");
        fixture = std::make_unique<WebSpaceFixture>();
        fixture->install();
        WebSpace *webSpace = fixture->window->findChild<WebSpace *>();
        QVERIFY(webSpace);
        parts = InstallWebLogParts(*fixture->window, *webSpace);
        frame = parts.frame;
        fixture->window->txtDefaultAuthor()->setText("Ann");
        fixture->showFunction(3);
    }
    void cleanup() { fixture.reset(); }

    void aNewWebLogAndANewSectionWithAllFourBoxesTicked()
    {
        openNewWebLog("Trip: Notes.");
        QCOMPARE(fixture->ui.prompts.first().text,
                 QString("Enter a name for the Web Log file. (This is for file keeping only)..."));
        QVERIFY(fixture->ui.prompts.first().defaultText.startsWith("Web Log 20"));
        QVERIFY(QFileInfo(MainRecordPath("Trip Notes")).isFile());
        QCOMPARE(frame->File6(0)->currentItem()->text(), QString("Trip Notes.blg"));
        QVERIFY(frame->webLogOpen());
        QCOMPARE(child<QLabel>("Label2")->text(), QString("Web Log: Trip Notes"));
        QCOMPARE(frame->records().main.TitleColor, GetSetting("MstrTitleColor", "#008000"));
        QCOMPARE(frame->records().main.ShowPointers, QString("Yes"));

        addSection("Day 1: Arrival");
        QVERIFY(QFileInfo(SectionRecordPath("Trip Notes", "Day 1 Arrival")).isFile());
        QVERIFY(!frame->BlogItemSelectFrame()->isVisible());
        QVERIFY(frame->BlogText()->isVisible());
        for (int i = 0; i < 4; ++i)
            QVERIFY(child<QCheckBox>(QString("ShowBLogCheck_%1").arg(i).toLatin1())->isChecked());
        QCOMPARE(child<QLineEdit>("BlogAuthor")->text(), QString("Ann"));
        QCOMPARE(child<QLineEdit>("DisplayedSubTitle")->text(), QString("Day 1: Arrival"));
        QCOMPARE(frame->records().section.Position, QString("Left"));
        QCOMPARE(frame->records().section.Order, QString("0"));

        // Every change goes to the record at once.
        frame->BlogText()->setFocus();
        QTest::keyClicks(frame->BlogText(), "We arrived.");
        QTest::keyClick(frame->BlogText(), Qt::Key_Return);
        QTest::keyClicks(frame->BlogText(), "Rain.");
        child<QCheckBox>("ShowBLogCheck_1")->click();
        BlogRecords back;
        back.main.FileName = "Trip Notes";
        back.section.SubTitle = "Day 1 Arrival";
        QVERIFY(LoadBlogSection(back));
        QCOMPARE(back.section.BlogText, QString("We arrived.\r\nRain."));
        QCOMPARE(back.section.ShowDate, QString("False"));
        QCOMPARE(back.section.ShowAuthor, QString("True"));
    }

    void aBarCantBeTypedIntoTheText()
    {
        openNewWebLog("Bars");
        addSection("S");
        frame->BlogText()->setFocus();
        QTest::keyClicks(frame->BlogText(), "a|b");
        QCOMPARE(frame->BlogText()->toPlainText(), QString("ab"));
        frame->BlogText()->insertPlainText("c||d");
        QCOMPARE(frame->BlogText()->toPlainText(), QString("abcd"));
        QCOMPARE(frame->records().section.BlogText, QString("abcd"));
    }

    void anOrderAboveTheCountResetsWithTheMessage()
    {
        openNewWebLog("Orders");
        addSection("Only");
        auto *order = child<QLineEdit>("OrderItem");
        order->setText("5");
        frame->OrderItem_LostFocus();
        QCOMPARE(fixture->ui.messageTexts().last(),
                 QString("The Order number is greater than the number of sections in the list. "
                         "Please reenter (0 is default)."));
        QCOMPARE(order->text(), QString("0"));
        QCOMPARE(order->selectedText(), QString("0"));
        addSection("Second");
        order->setText("1");
        frame->OrderItem_LostFocus();
        QCOMPARE(frame->records().section.Order, QString("1"));
    }

    void aTabWithoutAWebLogGoesBackToTheFirst()
    {
        for (int tab : {1, 3, 4}) {
            fixture->ui.messages.clear();
            frame->TabStrip3_Click(tab);
            QCOMPARE(fixture->ui.messageTexts(),
                     QStringList{"You need to select or create a page to view."});
            QCOMPARE(fixture->ui.messages.first().title, QString("Tarnwick"));
            QCOMPARE(frame->TabStrip3()->currentIndex(), 0);
            QVERIFY(frame->BlogPageFrame(1)->isVisible());
        }
        fixture->ui.messages.clear();
        frame->TabStrip3_Click(2);
        QVERIFY(fixture->ui.messages.isEmpty());
        QCOMPARE(frame->TabStrip3()->currentIndex(), 2);
    }

    void tagButtonsWrapTheMarkedText()
    {
        openNewWebLog("Tags");
        addSection("T");
        frame->BlogText()->setPlainText("make this bold");
        button("Command7_0")->click();
        QCOMPARE(fixture->ui.messageTexts().last(),
                 QString("Highlight a section of text, then select this button"));
        QTextCursor cursor = frame->BlogText()->textCursor();
        cursor.setPosition(10);
        cursor.setPosition(14, QTextCursor::KeepAnchor);
        frame->BlogText()->setTextCursor(cursor);
        button("Command7_0")->click();
        QCOMPARE(frame->BlogText()->toPlainText(), QString("make this <b>bold</b>"));
        cursor.setPosition(0);
        cursor.setPosition(4, QTextCursor::KeepAnchor);
        frame->BlogText()->setTextCursor(cursor);
        button("Command7_1")->click();
        QCOMPARE(frame->BlogText()->toPlainText(),
                 QString("<Center>make</Center> this <b>bold</b>"));
        QCOMPARE(frame->records().section.BlogText, frame->BlogText()->toPlainText());
    }

    void removingAsksFirst()
    {
        openNewWebLog("Remove");
        addSection("Gone");
        button("BlogSelectItem")->click();
        frame->File5()->clearSelection();
        button("BlogRemove")->click();
        QCOMPARE(fixture->ui.messageTexts().last(), QString("Need to select a section first."));
        frame->File5()->item(0)->setSelected(true);
        fixture->ui.answerMessage(JobUi::Answer::Cancel);
        button("BlogRemove")->click();
        QCOMPARE(fixture->ui.messageTexts().last(),
                 QString("Are you sure you what to remove this section from this page? (This "
                         "cannot be undone.)"));
        QCOMPARE(fixture->ui.messages.last().title, QString("Need to know..."));
        QVERIFY(QFileInfo(SectionRecordPath("Remove", "Gone")).isFile());
        fixture->ui.answerMessage(JobUi::Answer::Ok);
        button("BlogRemove")->click();
        QVERIFY(!QFileInfo(SectionRecordPath("Remove", "Gone")).exists());
        QCOMPARE(frame->File5()->count(), 0);

        frame->TabStrip3_Click(0);
        frame->File6(0)->clearSelection();
        button("RemoveBlogFileButton")->click();
        QCOMPARE(fixture->ui.messageTexts().last(), QString("Need to select a page first."));
        frame->File6(0)->item(0)->setSelected(true);
        fixture->ui.answerMessage(JobUi::Answer::Ok);
        button("RemoveBlogFileButton")->click();
        QCOMPARE(fixture->ui.messageTexts().last(),
                 QString("Are you sure you want to delete this Web Log? (This can not be "
                         "undone.)"));
        QVERIFY(!QFileInfo(MainRecordPath("Remove")).exists());
        QVERIFY(!frame->webLogOpen());
    }

    void pointersAndCommentsAreAddedThroughPrompts()
    {
        openNewWebLog("Links");
        frame->TabStrip3_Click(3);
        fixture->ui.answerPrompt("Travel");
        fixture->ui.answerPrompt("Ferries");
        fixture->ui.answerPrompt("http://ferries.example.org/");
        button("AddNewPtrButton")->click();
        QCOMPARE(fixture->ui.prompts.at(1).text, QString("Enter the category for this pointer"));
        QCOMPARE(fixture->ui.prompts.at(1).defaultText, QString("Pointers of Interest"));
        QCOMPARE(fixture->ui.prompts.at(1).maxLength, 35);
        QCOMPARE(child<QListWidget>("File8")->count(), 1);
        QVERIFY(QFileInfo(Folders::MasterPointerFolder() + "/Travel - Ferries.ptr").isFile());
        child<QListWidget>("File8")->item(0)->setSelected(true);
        frame->File8_Click();
        QCOMPARE(child<QLineEdit>("PtrURLTxt")->text(), QString("http://ferries.example.org/"));
        QVERIFY(!child<QLineEdit>("PtrURLTxt")->isEnabled());

        // A prompt left ends the pointer without a record.
        fixture->ui.answerPrompt("!!Skip!!");
        button("AddNewPtrButton")->click();
        QCOMPARE(child<QListWidget>("File8")->count(), 1);

        fixture->ui.answerPrompt("From Bob");
        button("AddNewCommentButton")->click();
        QCOMPARE(fixture->ui.prompts.last().maxLength, 30);
        QCOMPARE(child<QListWidget>("File9")->count(), 1);
        child<QPlainTextEdit>("CommentTxt")->setPlainText("Great trip!\nSee you.");
        BlogRecords back;
        back.main.FileName = "Links";
        back.comment.FileName = "From Bob";
        QVERIFY(LoadBlogComment(back));
        QCOMPARE(back.comment.Comment, QString("Great trip!\r\nSee you."));

        child<QCheckBox>("ShowPointersCk")->click();
        back.main.FileName = "Links";
        QVERIFY(LoadBlogMain(back));
        QCOMPARE(back.main.ShowPointers, QString("No"));

        // The pool: a pointer copied into another Web Log.
        openNewWebLog("Other");
        frame->TabStrip3_Click(3);
        button("CopyFromMstrPtrButton")->click();
        auto *pool = child<QListWidget>("File10");
        QVERIFY(child<QFrame>("MstrPtrFrame")->isVisible());
        QCOMPARE(pool->count(), 1);
        pool->item(0)->setSelected(true);
        button("Command2")->click();
        QVERIFY(!child<QFrame>("MstrPtrFrame")->isVisible());
        QCOMPARE(child<QListWidget>("File8")->count(), 1);
        QVERIFY(QFileInfo(PointerRecordPath("Other", "Travel - Ferries")).isFile());
    }

    void colourBoxesNeedAWebLogAndGoToItsRecord()
    {
        frame->pageColour_Click(0);
        QCOMPARE(fixture->ui.messageTexts().last(),
                 QString("You need to create a file before setting this color."));
        openNewWebLog("Colours");
        QString offered;
        frame->services().chooseColour = [&](const QString &start, QWidget *) {
            offered = start;
            return std::optional<QString>("#123456");
        };
        frame->services().chooseFont = [](const QString &, QWidget *) {
            return std::optional<QString>("Liberation Serif");
        };
        frame->TabStrip3_Click(1);
        button("BlogTitleColor")->click();
        QCOMPARE(offered, GetSetting("MstrTitleColor", "#008000"));
        button("PageFont")->click();
        BlogRecords back;
        back.main.FileName = "Colours";
        QVERIFY(LoadBlogMain(back));
        QCOMPARE(back.main.TitleColor, QString("#123456"));
        QCOMPARE(back.main.FontType, QString("Liberation Serif"));
        // A cancelled picker changes nothing.
        frame->services().chooseColour = [](const QString &, QWidget *) {
            return std::optional<QString>();
        };
        button("BlogTitleColor")->click();
        QVERIFY(LoadBlogMain(back));
        QCOMPARE(back.main.TitleColor, QString("#123456"));
        // The master page's boxes go to the settings.
        frame->services().chooseColour = [](const QString &, QWidget *) {
            return std::optional<QString>("#ABCDEF");
        };
        frame->TabStrip3_Click(4);
        button("MasterBackgroundColor")->click();
        QCOMPARE(GetSetting("MstrBGColor"), QString("#ABCDEF"));
    }

    void theProgramsOwnPickersServeTheBoxes()
    {
        openNewWebLog("Pickers");
        frame->TabStrip3_Click(1);
        QString opened;
        QTimer::singleShot(0, [&opened] {
            std::function<void()> answer;
            answer = [&answer, &opened] {
                QWidget *dialog = QApplication::activeModalWidget();
                if (!dialog || dialog->objectName() != "frmSelectColor") {
                    QTimer::singleShot(5, answer);
                    return;
                }
                opened = dialog->findChild<QLineEdit *>("RGB_2")->text();
                for (int i = 0; i < 3; ++i)
                    dialog->findChild<QLineEdit *>(QString("RGB_%1").arg(i))
                        ->setText(QString::number(0x12 + i * 0x22));
                dialog->findChild<QPushButton *>("ColorOKButton")->click();
            };
            answer();
        });
        button("BlogBackgroundColor")->click();
        QCOMPARE(opened, QString("255")); // "#7F7Fff" opens with its blue at 255
        QCOMPARE(frame->records().main.BackgroundColor, QString("#123456"));
        QCOMPARE(button("BlogBackgroundColor")->toolTip(), QString("#123456"));

        const QString font = frame->records().main.FontType;
        QTimer::singleShot(0, [] {
            std::function<void()> answer;
            answer = [&answer] {
                QWidget *dialog = QApplication::activeModalWidget();
                if (!dialog || dialog->objectName() != "frmFont") {
                    QTimer::singleShot(5, answer);
                    return;
                }
                dialog->findChild<QPushButton *>("CancelButton")->click();
            };
            answer();
        });
        button("PageFont")->click();
        QCOMPARE(frame->records().main.FontType, font);
    }

    void helpPagesFollowTheTab()
    {
        frmMain &window = *fixture->window;
        QCOMPARE(window.helpContext(), 10);
        openNewWebLog("Help");
        frame->TabStrip3_Click(1);
        QCOMPARE(window.helpContext(), 10);
        frame->TabStrip3_Click(2);
        QVERIFY(frame->BlogItemSelectFrame()->isVisible());
        QCOMPARE(window.helpContext(), 12);
        addSection("S");
        QCOMPARE(window.helpContext(), 13);
        frame->showUploadFiles({"Web_Log.htm"});
        QCOMPARE(window.helpContext(), 11);
        frame->showSectionList();
        frame->TabStrip3_Click(3);
        QCOMPARE(window.helpContext(), 14);
        frame->TabStrip3_Click(4);
        QCOMPARE(window.helpContext(), 15);
    }

    void ringsPointAtTheNextStep()
    {
        frmMain &window = *fixture->window;
        window.FunctionSelectButton_Click(3);
        QVERIFY(window.ring(5)->isShown());
        QVERIFY(window.ring(6)->isShown());
        QCOMPARE(window.ring(5)->colour(), frmMain::RingGreen);
        QCOMPARE(window.ring(5)->target(), button("addNewBlogFileButton"));
        openNewWebLog("Rings");
        // Opened: the list and the Open button are next.
        QVERIFY(window.ring(6)->isShown());
        QVERIFY(window.ring(23)->isShown());
        QVERIFY(!window.ring(5)->isShown());
        addSection("S");
        for (int ring : {8, 9, 15, 26})
            QVERIFY(window.ring(ring)->isShown());
        QTest::keyClicks(frame->BlogText(), "x");
        QVERIFY(window.ring(4)->isShown());
        QCOMPARE(window.ring(4)->colour(), frmMain::RingYellow);
        QCOMPARE(window.ring(4)->target(), button("BlogBuild"));
    }

    void theInstructionPageAndTheListOnOpening()
    {
        frmMain &window = *fixture->window;
        WebLogFixture::newWebLog("Made Elsewhere", "x");
        SaveSetting("BlogIntructionView", "Show");
        window.FunctionSelectButton_Click(3);
        QVERIFY(window.instructionForm(3));
        QCOMPARE(window.instructionForm(3)->objectName(), QString("InstructionPageBlog"));
        QCOMPARE(frame->File6(0)->count(), 1);
        QCOMPARE(frame->TabStrip3()->currentIndex(), 0);
    }

    void checkSpellingCorrectsTheOpenSection()
    {
        frmMain &window = *fixture->window;
        QVERIFY(parts.spelling->available());
        QVERIFY(!window.SpellCheckOn()->isChecked());
        turnSpellingOn(window);
        QVERIFY(window.SpellCheckOn()->isChecked());
        QCOMPARE(GetSetting("SpellCheck"), QString("True"));
        QVERIFY(window.CheckSpellingMenu()->isEnabled());
        QVERIFY(window.CheckSpellingAllMenu()->isEnabled());

        openNewWebLog("Spell");
        addSection("S");
        frame->BlogText()->setPlainText("We arived at <b>the</b> harbor.");
        QStringList seen;
        answerSpelling({"SpellChange:arrived"}, &seen);
        window.CheckSpellingMenu()->trigger();
        QCOMPARE(seen.size(), 1);
        QVERIFY(seen.first().contains("arived"));
        QCOMPARE(frame->BlogText()->toPlainText(), QString("We arrived at <b>the</b> harbor."));
        QCOMPARE(frame->records().section.BlogText, QString("We arrived at <b>the</b> harbor."));

        // A cancelled check keeps what was changed before and all the rest.
        frame->BlogText()->setPlainText("Teh cat and teh dog.");
        answerSpelling({"SpellChange:The", "SpellCancel"});
        window.CheckSpellingMenu()->trigger();
        QCOMPARE(frame->BlogText()->toPlainText(), QString("The cat and teh dog."));

        // An empty text is not checked.
        frame->BlogText()->clear();
        const int shown = int(fixture->ui.messages.size());
        window.CheckSpellingMenu()->trigger();
        QCOMPARE(fixture->ui.messages.size(), shown);
    }

    void checkSpellingAllGoesThroughEverySection()
    {
        frmMain &window = *fixture->window;
        turnSpellingOn(window);
        openNewWebLog("All");
        addSection("One");
        frame->BlogText()->setPlainText("Frist section.");
        addSection("Two");
        frame->BlogText()->setPlainText("Secnod section.");
        QStringList seen;
        answerSpelling({"SpellChange:First", "SpellChange:Second"}, &seen);
        window.CheckSpellingAllMenu()->trigger();
        QCOMPARE(seen.size(), 2);
        BlogRecords back;
        back.main.FileName = "All";
        back.section.SubTitle = "One";
        QVERIFY(LoadBlogSection(back));
        QCOMPARE(back.section.BlogText, QString("First section."));
        back.section.SubTitle = "Two";
        QVERIFY(LoadBlogSection(back));
        QCOMPARE(back.section.BlogText, QString("Second section."));
        QCOMPARE(fixture->ui.messageTexts().last(), QString("The spelling check is complete."));
    }

    void withSpellCheckingOffTheTextPassesUnchanged()
    {
        QCOMPARE(parts.spelling->SpellChecker("Teh"), QString("Teh"));
        QVERIFY(!QApplication::activeModalWidget());
    }

    void withoutADictionaryTheEntriesStayDisabled()
    {
        // The window joined again, on a system without any dictionary.
        QTemporaryDir empty;
        SetSpellingDictionaryFolders({empty.path()});
        fixture = std::make_unique<WebSpaceFixture>();
        fixture->install();
        parts = InstallWebLogParts(*fixture->window, *fixture->window->findChild<WebSpace *>());
        frame = parts.frame;
        fixture->showFunction(3);
        frmMain &window = *fixture->window;
        turnSpellingOn(window);
        QVERIFY(window.SpellCheckOn()->isChecked());
        QVERIFY(!parts.spelling->available());
        QVERIFY(!window.spellChecker());
        QVERIFY(!window.CheckSpellingMenu()->isEnabled());
        QVERIFY(!window.CheckSpellingAllMenu()->isEnabled());
        openNewWebLog("NoDict");
        addSection("S");
        frame->BlogText()->setPlainText("Teh text stays.");
        parts.spelling->CheckSpellingMenu_Click();
        QCOMPARE(frame->BlogText()->toPlainText(), QString("Teh text stays."));
        QCOMPARE(parts.spelling->SpellChecker("Teh"), QString("Teh"));
        SetSpellingDictionaryFolders({});
    }
};

TARNWICK_TEST_MAIN(TestWebLogFrame)
#include "test_weblogframe.moc"
