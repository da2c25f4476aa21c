#include "GuiJobUi.h"
#include "HelpWindow.h"
#include "JobState.h"
#include "MessageWithScroll.h"
#include "ModalAnswer.h"
#include "ShellExecute.h"
#include "TestMain.h"
#include "frmInputBox.h"
#include "frmMain.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

// Stands in for the desktop's opener of one URL scheme.
class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl &url) { urls << url; }
};

class TestFrmInputBox : public QObject
{
    Q_OBJECT
    // The job-wide state of this test program, as the program makes one for its run.
    JobState m_state;

    frmMain *m_main = nullptr;

    // Asks through the real prompt; action runs on the open form.
    QString ask(const QString &defaultText, const QString &mode, int maxLength,
                std::function<void(frmInputBox *)> action)
    {
        whenModal<frmInputBox>(std::move(action));
        JobState &state = m_state;
        state.PromptText = QStringLiteral("Enter the title of the page.");
        state.UserResponse = defaultText;
        state.PromptMode = mode;
        state.PromptMaxLength = maxLength;
        m_main->jobUi().ShowInputBox(state);
        return state.UserResponse;
    }

    template <typename T> static T *child(QWidget *form, const char *name)
    {
        return form->findChild<T *>(QString::fromLatin1(name));
    }

private slots:
    void initTestCase()
    {
        m_main = new frmMain(m_state);
        m_main->show();
    }
    void cleanupTestCase() { delete m_main; }
    void init() { m_state.reset(); }

    void answers_data()
    {
        QTest::addColumn<QString>("defaultText");
        QTest::addColumn<QString>("typed"); // replaces the text when not null
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty OK gives Blank") << "" << QString() << "||Blank||";
        QTest::newRow("cleared default gives Blank") << "Summer"
                                                     << ""
                                                     << "||Blank||";
        QTest::newRow("unchanged default comes back")
            << "Summer 2024" << QString() << "Summer 2024";
        QTest::newRow("typed text") << "Summer"
                                    << "Winter walk"
                                    << "Winter walk";
        QTest::newRow("blanks kept") << ""
                                     << "  two  "
                                     << "  two  ";
    }
    void answers()
    {
        QFETCH(QString, defaultText);
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        const QString answer =
            ask(defaultText, QStringLiteral("Hide"), 0, [typed](frmInputBox *box) {
                auto *text = child<QLineEdit>(box, "Text1");
                if (!typed.isNull()) {
                    text->clear();
                    QTest::keyClicks(text, typed);
                }
                child<QPushButton>(box, "InputBoxOK")->click();
            });
        QCOMPARE(answer, expected);
        QCOMPARE(m_state.PromptMode, QStringLiteral("Hide"));
    }

    void loadShowsQuestionAndDefaultSelected()
    {
        QString label, text, selected;
        bool focus = false;
        ask(QStringLiteral("My page"), QStringLiteral("Hide"), 0, [&](frmInputBox *box) {
            label = child<QLabel>(box, "Label1")->text();
            auto *edit = child<QLineEdit>(box, "Text1");
            text = edit->text();
            selected = edit->selectedText();
            focus = edit->hasFocus() || box->focusWidget() == edit;
            child<QPushButton>(box, "InputBoxOK")->click();
        });
        QCOMPARE(label, QStringLiteral("Enter the title of the page."));
        QCOMPARE(text, QStringLiteral("My page"));
        QCOMPARE(selected, QStringLiteral("My page"));
        QVERIFY(focus);
    }

    void hideModeOffersOnlyOkAndCancel()
    {
        bool option0 = true, option1 = true, skip = true, ok = false, cancel = false;
        ask(QString(), QStringLiteral("Hide"), 0, [&](frmInputBox *box) {
            option0 = child<QRadioButton>(box, "Option1_0")->isVisible();
            option1 = child<QRadioButton>(box, "Option1_1")->isVisible();
            skip = child<QPushButton>(box, "SkipButton")->isVisible();
            ok = child<QPushButton>(box, "InputBoxOK")->isVisible();
            cancel = child<QPushButton>(box, "InputBoxCancel")->isVisible();
            child<QPushButton>(box, "InputBoxOK")->click();
        });
        QVERIFY(!option0);
        QVERIFY(!option1);
        QVERIFY(!skip);
        QVERIFY(ok);
        QVERIFY(cancel);
    }

    void optionButtons_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("firstSelected");
        QTest::addColumn<int>("click"); // -1: leave as it is
        QTest::addColumn<QString>("expectedMode");
        QTest::newRow("True selects the first") << "True" << true << -1 << "True";
        QTest::newRow("False selects the second") << "False" << false << -1 << "False";
        QTest::newRow("other text selects the second") << "" << false << -1 << "False";
        QTest::newRow("choosing the first") << "False" << false << 0 << "True";
        QTest::newRow("choosing the second") << "True" << true << 1 << "False";
    }
    void optionButtons()
    {
        QFETCH(QString, mode);
        QFETCH(bool, firstSelected);
        QFETCH(int, click);
        QFETCH(QString, expectedMode);
        bool shown = false, first = false, skipShown = false;
        ask(QStringLiteral("x"), mode, 0, [&](frmInputBox *box) {
            shown = child<QRadioButton>(box, "Option1_0")->isVisible() &&
                    child<QRadioButton>(box, "Option1_1")->isVisible();
            skipShown = child<QPushButton>(box, "SkipButton")->isVisible();
            first = child<QRadioButton>(box, "Option1_0")->isChecked();
            if (click >= 0)
                child<QRadioButton>(box, click == 0 ? "Option1_0" : "Option1_1")->click();
            child<QPushButton>(box, "InputBoxOK")->click();
        });
        QVERIFY(shown);
        QVERIFY(skipShown);
        QCOMPARE(first, firstSelected);
        QCOMPARE(m_state.PromptMode, expectedMode);
        QCOMPARE(m_state.UserResponse, QStringLiteral("x"));
    }

    void skipGivesSkipWord()
    {
        const QString answer =
            ask(QStringLiteral("Keep"), QStringLiteral("True"), 12,
                [](frmInputBox *box) { child<QPushButton>(box, "SkipButton")->click(); });
        QCOMPARE(answer, JobState::Skip);
        QCOMPARE(m_state.PromptMaxLength, 0);
        QCOMPARE(m_state.PromptMode, QStringLiteral("True"));
    }

    void maxLengthLimitsAndIsGoneAfterwards()
    {
        const QString forty(40, QLatin1Char('a'));
        QString answer = ask(QString(), QStringLiteral("Hide"), 30, [forty](frmInputBox *box) {
            QTest::keyClicks(child<QLineEdit>(box, "Text1"), forty);
            child<QPushButton>(box, "InputBoxOK")->click();
        });
        QCOMPARE(answer.size(), 30);
        QCOMPARE(m_state.PromptMaxLength, 0);
        answer = ask(QString(), QStringLiteral("Hide"), 0, [forty](frmInputBox *box) {
            QTest::keyClicks(child<QLineEdit>(box, "Text1"), forty);
            child<QPushButton>(box, "InputBoxOK")->click();
        });
        QCOMPARE(answer, forty);
    }

    void cancel_data()
    {
        QTest::addColumn<bool>("byEscape");
        QTest::newRow("Cancel button") << false;
        QTest::newRow("Escape key") << true;
    }
    void cancel()
    {
        QFETCH(bool, byEscape);
        // Yes to the question: the job is told to stop.
        auto seen = std::make_shared<MessageSeen>();
        QString answer =
            ask(QStringLiteral("Page"), QStringLiteral("Hide"), 20,
                [byEscape, &seen](frmInputBox *box) {
                    seen = answerMessageBox(QMessageBox::Yes);
                    if (byEscape)
                        QTest::keyClick(child<QLineEdit>(box, "Text1"), Qt::Key_Escape);
                    else
                        child<QPushButton>(box, "InputBoxCancel")->click();
                });
        QVERIFY(seen->seen);
        QCOMPARE(seen->title, QStringLiteral("Need to know..."));
        QCOMPARE(seen->text, QStringLiteral("Are you sure you want to cancel?"));
        QCOMPARE(answer, JobState::Skip);
        QCOMPARE(m_state.PromptMaxLength, 0);

        // No to the question: the prompt stays and can still be answered.
        bool stillOpen = false;
        answer = ask(QStringLiteral("Page"), QStringLiteral("Hide"), 0,
                     [byEscape, &stillOpen](frmInputBox *box) {
                         answerMessageBox(QMessageBox::No);
                         if (byEscape)
                             QTest::keyClick(child<QLineEdit>(box, "Text1"), Qt::Key_Escape);
                         else
                             child<QPushButton>(box, "InputBoxCancel")->click();
                         stillOpen = box->isVisible();
                         child<QPushButton>(box, "InputBoxOK")->click();
                     });
        QVERIFY(stillOpen);
        QCOMPARE(answer, QStringLiteral("Page"));
    }

    void closeBoxAsksAsCancelDoes()
    {
        auto seen = std::make_shared<MessageSeen>();
        const QString answer =
            ask(QStringLiteral("Page"), QStringLiteral("Hide"), 0, [&seen](frmInputBox *box) {
                seen = answerMessageBox(QMessageBox::Yes);
                box->close();
            });
        QVERIFY(seen->seen);
        QCOMPARE(seen->text, QStringLiteral("Are you sure you want to cancel?"));
        QCOMPARE(answer, JobState::Skip);
    }

    void helpKeyOverThePromptStaysUsable()
    {
        QPointer<HelpWindow> help;
        bool shown = false;
        ask(QString(), QStringLiteral("Hide"), 0, [&](frmInputBox *box) {
            QTest::keyClick(child<QLineEdit>(box, "Text1"), Qt::Key_F1);
            help = box->findChild<HelpWindow *>();
            shown = help && help->isVisible();
            child<QPushButton>(box, "InputBoxOK")->click();
        });
        QVERIFY(shown);
        QCOMPARE(help->currentTopic(), 2);
        help->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!help);
    }

    void enterKeyIsOk()
    {
        const QString answer = ask(QString(), QStringLiteral("Hide"), 0, [](frmInputBox *box) {
            auto *text = child<QLineEdit>(box, "Text1");
            QTest::keyClicks(text, QStringLiteral("Holiday"));
            QTest::keyClick(text, Qt::Key_Return);
        });
        QCOMPARE(answer, QStringLiteral("Holiday"));
    }

    void spellCheckButtonOnlyWithChecker()
    {
        bool shownWithout = true;
        ask(QString(), QStringLiteral("Hide"), 0, [&](frmInputBox *box) {
            shownWithout = child<QPushButton>(box, "SpellCheckButton")->isVisible();
            child<QPushButton>(box, "InputBoxOK")->click();
        });
        QVERIFY(!shownWithout);

        m_main->setSpellChecker([](const QString &text) {
            return QString(text).replace(QStringLiteral("teh"), QStringLiteral("the"));
        });
        bool shownWith = false;
        const QString answer =
            ask(QStringLiteral("teh page"), QStringLiteral("Hide"), 0, [&](frmInputBox *box) {
                auto *button = child<QPushButton>(box, "SpellCheckButton");
                shownWith = button->isVisible();
                button->click();
                child<QPushButton>(box, "InputBoxOK")->click();
            });
        m_main->setSpellChecker({});
        QVERIFY(shownWith);
        QCOMPARE(answer, QStringLiteral("the page"));
    }

    void askUserGoesThroughTheForm()
    {
        whenModal<frmInputBox>(
            [](frmInputBox *box) { child<QPushButton>(box, "InputBoxOK")->click(); });
        const QString answer =
            AskUser(m_main->jobUi(), m_state, QStringLiteral("Name?"), QStringLiteral("Photos 1"));
        QCOMPARE(answer, QStringLiteral("Photos 1"));
    }

    void scrollMessageShowsTextAndCloses()
    {
        QString shown;
        whenModal<MessageWithScroll>([&shown](MessageWithScroll *box) {
            shown = box->findChild<QPlainTextEdit *>(QStringLiteral("Text1"))->toPlainText();
            box->findChild<QPushButton *>(QStringLiteral("Command1"))->click();
        });
        const QString text = QStringLiteral("line\n").repeated(200);
        m_main->jobUi().ShowScrollMessage(text);
        QCOMPARE(shown, text);
    }

    void messageBoxCarriesTitleAndAnswer_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<int>("press");
        QTest::addColumn<int>("expected");
        QTest::newRow("yes") << int(JobUi::Buttons::YesNo) << int(QMessageBox::Yes)
                             << int(JobUi::Answer::Yes);
        QTest::newRow("no") << int(JobUi::Buttons::YesNo) << int(QMessageBox::No)
                            << int(JobUi::Answer::No);
        QTest::newRow("ok") << int(JobUi::Buttons::Ok) << int(QMessageBox::Ok)
                            << int(JobUi::Answer::Ok);
        QTest::newRow("cancel") << int(JobUi::Buttons::OkCancel) << int(QMessageBox::Cancel)
                                << int(JobUi::Answer::Cancel);
    }
    void messageBoxCarriesTitleAndAnswer()
    {
        QFETCH(int, buttons);
        QFETCH(int, press);
        QFETCH(int, expected);
        auto seen = answerMessageBox(static_cast<QMessageBox::StandardButton>(press));
        const auto answer =
            m_main->jobUi().Message(QStringLiteral("Send it now?"), QStringLiteral("Send a File"),
                                    static_cast<JobUi::Buttons>(buttons));
        QCOMPARE(int(answer), expected);
        QCOMPARE(seen->title, QStringLiteral("Send a File"));
        QCOMPARE(seen->text, QStringLiteral("Send it now?"));
    }

    void statusTextsGoToProgressFrame()
    {
        m_main->jobUi().SetStatusText(QStringLiteral("Connecting"));
        m_main->jobUi().SetStepOf(QStringLiteral("Currently loading section 1 of 9"));
        QCOMPARE(m_main->findChild<QLabel *>(QStringLiteral("Status_text"))->text(),
                 QStringLiteral("Connecting"));
        QCOMPARE(m_main->findChild<QLabel *>(QStringLiteral("Stepof"))->text(),
                 QStringLiteral("Currently loading section 1 of 9"));
    }

    void clipboardTakesMimeData()
    {
        auto *data = new QMimeData;
        data->setText(QStringLiteral("http://example.org/Photos/Summer"));
        m_main->jobUi().SetClipboard(data);
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QStringLiteral("http://example.org/Photos/Summer"));
    }

    void shellErrorTexts_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");
        QTest::newRow("0") << 0 << "Out of memory";
        QTest::newRow("8") << 8 << "Out of memory";
        QTest::newRow("2") << 2 << "File not found";
        QTest::newRow("3") << 3 << "Path not found";
        QTest::newRow("31") << 31 << "No application is associated with this file type.";
        QTest::newRow("28") << 28
                            << "The file could not be opened due to time out.  Please try again "
                               "in a moment.";
        QTest::newRow("other") << 4
                               << "An error occurred occurred whilst trying to open or print the "
                                  "selected file.";
    }
    void shellErrorTexts()
    {
        QFETCH(int, code);
        QFETCH(QString, text);
        QCOMPARE(ShellErrorText(code), text);
    }

    void openingReportsFailureInWords()
    {
        // A missing local file.
        auto seen = answerMessageBox(QMessageBox::Ok);
        ShellResult result =
            mShellExecute(m_main, TestHomePath() + QStringLiteral("/no-such-file.htm"));
        QCOMPARE(result.code, 2);
        QVERIFY(seen->seen);
        QCOMPARE(seen->text, QStringLiteral("File not found"));
        QCOMPARE(seen->title, QStringLiteral("Tarnwick"));

        // Nothing on this desktop opens the scheme.
        seen = answerMessageBox(QMessageBox::Ok);
        QVERIFY(!m_main->jobUi().OpenUrl(QUrl(QStringLiteral("tarnwick-nothing:page"))));
        QCOMPARE(seen->text, QStringLiteral("No application is associated with this file type."));

        // A scheme with an opener: no message, success.
        UrlCatcher catcher;
        QDesktopServices::setUrlHandler(QStringLiteral("tarnwicktest"), &catcher, "open");
        result = mShellExecute(m_main, QStringLiteral("tarnwicktest://site/Photos.htm"));
        QVERIFY(result.ok());
        QCOMPARE(catcher.urls.size(), 1);
        QVERIFY(m_main->jobUi().OpenUrl(QUrl(QStringLiteral("tarnwicktest:x"))));
        QCOMPARE(catcher.urls.size(), 2);
        QDesktopServices::unsetUrlHandler(QStringLiteral("tarnwicktest"));
    }
};

TARNWICK_TEST_MAIN(TestFrmInputBox)
#include "test_frmInputBox.moc"
