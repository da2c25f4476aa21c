#include "HTMLMake.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "TestMain.h"
#include "frmAction.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest/qtestspontaneevent.h>

namespace {

const QChar VT(11);

// Records how many messages had been shown when a URL was opened, to check the order.
class OrderUi final : public ScriptedUi
{
public:
    bool OpenUrl(const QUrl &url) override
    {
        messagesBeforeOpen.append(messages.size());
        return ScriptedUi::OpenUrl(url);
    }
    QList<qsizetype> messagesBeforeOpen;
};

const QString SpacesWarning = QStringLiteral(
    "Error - Your file name contains spaces that will not transfer to email correctly. Verify If "
    "the pointer in the email is correct. If not use a <Ctrl V> to replace the implanted pointer.");
const QString LongWarning = QStringLiteral(
    "If the pointer in the email is greater than the length of a line, then pointer can be "
    "corrupted with a Carrage Return. Set your emails to a larger line length. Select the menu "
    "item Tools, Options. Then select the Mail Format tab and the Settings button.");

} // namespace

class TestFrmAction : public QObject
{
    Q_OBJECT
    JobState m_state;

private:
    template <typename T> static T *child(QWidget &form, const char *name)
    {
        T *widget = form.findChild<T *>(QString::fromLatin1(name));
        if (widget == nullptr)
            qFatal("no widget %s", name);
        return widget;
    }
    static void click(QWidget &form, const char *name)
    {
        QTest::mouseClick(child<QPushButton>(form, name), Qt::LeftButton);
    }

private slots:
    void init()
    {
        m_state.reset();
        m_state.ShowTakeAction = {};
    }

    void captions()
    {
        ScriptedUi ui;
        JobState &state = m_state;
        frmAction form(ui, state);
        QCOMPARE(form.windowTitle(), QStringLiteral("Take an action..."));
        QCOMPARE(child<QPushButton>(form, "CopyPointerToClipButton")->text(),
                 QStringLiteral("Copy the Pointer to the clipboard as a link"));
        QCOMPARE(child<QPushButton>(form, "SendEmail")->text(),
                 QStringLiteral("Send This Pointer in an Email "));
        QCOMPARE(child<QPushButton>(form, "ViewButton")->text(),
                 QStringLiteral("View The Web Page"));
        QCOMPARE(child<QPushButton>(form, "CloseButton")->text(),
                 QStringLiteral("Back to Previous"));
        QCOMPARE(child<QLineEdit>(form, "txtSubject")->text(),
                 QStringLiteral("See the link to my page"));
        QCOMPARE(child<QPlainTextEdit>(form, "txtBody")->toPlainText(),
                 QStringLiteral("Select the pointer below to view the page..."));
        QCOMPARE(child<QLabel>(form, "Label3")->text(),
                 QStringLiteral("The Web page pointer is copied to the clipboard. You can paste it "
                                "in an email message  (Ctrl+v) as a hyperlink. This works best if "
                                "your email format is HTML."));
        QCOMPARE(child<QLabel>(form, "lblSubject")->text(), QStringLiteral("Subject for email"));
        QCOMPARE(child<QLabel>(form, "lblBody")->text(),
                 QStringLiteral("Text message (max 200 Characters)"));
        QVERIFY(form.findChild<QMenu *>(QStringLiteral("HelpMenu")));
        QVERIFY(form.findChild<QAction *>(QStringLiteral("HelpActionMenu")));
        QVERIFY(form.findChild<QPushButton *>(QStringLiteral("HelpButton")));
        QVERIFY(form.findChild<QTimer *>(QStringLiteral("Timer1")));
    }

    void mailtoText_data()
    {
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QString>("body");
        QTest::addColumn<QString>("pointer");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no subject")
            << ""
            << "Hi"
            << "http://s/a" << QStringLiteral("mailto:?Body=Hi") + VT + VT + "http://s/a";
        QTest::newRow("subject") << "See the link to my page"
                                 << "Hi"
                                 << "http://s/a"
                                 << QStringLiteral(
                                        "mailto:?Subject=See the link to my page&Body=Hi") +
                                        VT + VT + "http://s/a";
        QTest::newRow("empty body")
            << ""
            << ""
            << "http://s/a" << QStringLiteral("mailto:?Body=") + VT + VT + "http://s/a";
        QTest::newRow("line break")
            << "S"
            << "one\r\ntwo"
            << "http://s/a"
            << QStringLiteral("mailto:?Subject=S&Body=one") + VT + "two" + VT + VT + "http://s/a";
        QTest::newRow("blank line keeps one CR")
            << ""
            << "a\r\n\r\nb"
            << "http://p" << QStringLiteral("mailto:?Body=a") + VT + "\rb" + VT + VT + "http://p";
        QTest::newRow("lone line feed")
            << ""
            << "a\nb"
            << "http://p" << QStringLiteral("mailto:?Body=ab") + VT + VT + "http://p";
        QTest::newRow("ampersand in subject")
            << "Tom & Ann"
            << "x"
            << "http://p"
            << QStringLiteral("mailto:?Subject=Tom & Ann&Body=x") + VT + VT + "http://p";
    }
    void mailtoText()
    {
        QFETCH(QString, subject);
        QFETCH(QString, body);
        QFETCH(QString, pointer);
        QFETCH(QString, expected);
        QCOMPARE(frmAction::MailtoText(subject, body, pointer), expected);
    }

    void sendEmailOpensMailto_data()
    {
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QString>("body");
        QTest::addColumn<QString>("pointer");
        QTest::addColumn<QString>("url");
        QTest::newRow("empty subject")
            << ""
            << "Hi"
            << "http://www.site.com/Photos/a/Photos.htm"
            << "mailto:?Body=Hi%0B%0Bhttp://www.site.com/Photos/a/Photos.htm";
        QTest::newRow("defaults")
            << "See the link to my page"
            << "Select the pointer below to view the page..."
            << "www.site.com/x.htm"
            << "mailto:?Subject=See%20the%20link%20to%20my%20page&Body=Select%20the%"
               "20pointer%20below%20to%20view%20the%20page...%0B%0Bhttp://"
               "www.site.com/x.htm";
        QTest::newRow("hash and percent kept as text")
            << "Photos #3"
            << "100% sure"
            << "http://s/a#top"
            << "mailto:?Subject=Photos%20%233&Body=100%25%20sure%0B%0Bhttp://s/a%23top";
        QTest::newRow("hash without lone percent") << ""
                                                   << "See #2"
                                                   << "http://s/a"
                                                   << "mailto:?Body=See%20%232%0B%0Bhttp://s/a";
        QTest::newRow("trimmed body and lines") << ""
                                                << "  Hi\nthere  "
                                                << "  http://s/a  "
                                                << "mailto:?Body=Hi%0Bthere%0B%0Bhttp://s/a";
    }
    void sendEmailOpensMailto()
    {
        QFETCH(QString, subject);
        QFETCH(QString, body);
        QFETCH(QString, pointer);
        QFETCH(QString, url);
        m_state.CurrentPointer = pointer;
        ScriptedUi ui;
        JobState &state = m_state;
        frmAction form(ui, state);
        form.show();
        child<QLineEdit>(form, "txtSubject")->setText(subject);
        child<QPlainTextEdit>(form, "txtBody")->setPlainText(body);
        click(form, "SendEmail");
        QCOMPARE(ui.openedUrls.size(), 1);
        QCOMPARE(ui.openedUrls.first().toString(QUrl::FullyEncoded), url);
        QVERIFY(ui.messages.isEmpty());
        QVERIFY(m_state.CurrentPointer.contains(QStringLiteral("http://")));
    }

    void sendEmailWarnings_data()
    {
        QTest::addColumn<QString>("pointer");
        QTest::addColumn<QStringList>("warnings");
        const QString base = QStringLiteral("http://www.site.com/files/");
        QTest::newRow("76 with %20")
            << base + QStringLiteral("a%20b") + QString(76 - base.size() - 5, QLatin1Char('x'))
            << QStringList{SpacesWarning, LongWarning};
        QTest::newRow("%20 only") << base + QStringLiteral("a%20b.doc")
                                  << QStringList{SpacesWarning};
        QTest::newRow("76 long") << base + QString(76 - base.size(), QLatin1Char('x'))
                                 << QStringList{LongWarning};
        QTest::newRow("75 long") << base + QString(75 - base.size(), QLatin1Char('x'))
                                 << QStringList{};
    }
    void sendEmailWarnings()
    {
        QFETCH(QString, pointer);
        QFETCH(QStringList, warnings);
        m_state.CurrentPointer = pointer;
        OrderUi ui;
        JobState &state = m_state;
        frmAction form(ui, state);
        click(form, "SendEmail");
        QStringList shown;
        for (const auto &message : ui.messages)
            shown.append(message.text);
        QCOMPARE(shown, warnings);
        QCOMPARE(ui.openedUrls.size(), 1);
        QCOMPARE(ui.messagesBeforeOpen, QList<qsizetype>{warnings.size()});
        QVERIFY(ui.openedUrls.first().toString(QUrl::FullyEncoded).endsWith(pointer));
    }

    void copyAsLink_data()
    {
        QTest::addColumn<QString>("pointer");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("fragment");
        QTest::newRow("blank answer gives Pointer")
            << "http://site/a"
            << ""
            << "<a title=\"http://site/a\" href=\"http://site/a\">Pointer</a></font>";
        QTest::newRow("own label")
            << "http://site/a"
            << "Our trip"
            << "<a title=\"http://site/a\" href=\"http://site/a\">Our trip</a></font>";
        QTest::newRow("http added")
            << "site/b.htm"
            << "See"
            << "<a title=\"http://site/b.htm\" href=\"http://site/b.htm\">See</a></font>";
    }
    void copyAsLink()
    {
        QFETCH(QString, pointer);
        QFETCH(QString, answer);
        QFETCH(QString, fragment);
        m_state.CurrentPointer = pointer;
        ScriptedUi ui;
        JobState &state = m_state;
        ui.answerPrompt(answer);
        frmAction form(ui, state);
        form.show();
        click(form, "CopyPointerToClipButton");

        QCOMPARE(ui.prompts.size(), 1);
        QCOMPARE(ui.prompts.first().text,
                 QStringLiteral("What would you like to see to click on as a pointer?"));
        QCOMPARE(ui.prompts.first().defaultText,
                 QStringLiteral("Click here to follow the pointer"));
        QCOMPARE(ui.prompts.first().mode, QStringLiteral("Hide"));
        QCOMPARE(ui.prompts.first().maxLength, 50);
        QCOMPARE(state.PromptMaxLength, 0);

        QVERIFY(ui.clipboard);
        QCOMPARE(GetHTMLClipboard(ui.clipboard.get()), fragment);
        QCOMPARE(
            ui.clipboard->html(),
            QStringLiteral("<HTML><BODY><FONT FACE=Arial SIZE=1 COLOR=BLUE><!--StartFragment -->") +
                fragment + QStringLiteral("<!--EndFragment --></FONT></BODY></HTML>"));
        QVERIFY(
            fragment.contains(QStringLiteral("\"") + ui.clipboard->text() + QStringLiteral("\"")));
        QVERIFY(m_state.CurrentPointer.startsWith(QStringLiteral("http://")) ||
                m_state.CurrentPointer.startsWith(QLatin1Char('/')));
        const QByteArray entry = ui.clipboard->data(GetHTMLFormat());
        QVERIFY(entry.startsWith("Version:1.0\r\nStartHTML:0000000105\r\n"));

        QCOMPARE(ui.messages.size(), 1);
        QCOMPARE(ui.messages.first().title, QStringLiteral("Pointer complete"));
        QCOMPARE(
            ui.messages.first().text,
            QStringLiteral("The Web page pointer has been copied to the clipboard. To paste the "
                           "pointer into an Email message, press CTRL+v."));
        QVERIFY(child<QTimer>(form, "Timer1")->isActive());
    }

    void comesBackToTheFrontAfterTheNotice()
    {
        m_state.CurrentPointer = QStringLiteral("http://site/a");
        QWidget owner;
        owner.show();
        ScriptedUi ui;
        JobState &state = m_state;
        ui.answerPrompt(QStringLiteral("Look"));
        frmAction form(ui, state, &owner);
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        // The main window comes to the front, as it does when a notice over it closes; the
        // timer started by the copy brings this window back.
        owner.activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), &owner);
        click(form, "CopyPointerToClipButton");
        QCOMPARE(ui.messages.size(), 1);
        QTRY_COMPARE(QApplication::activeWindow(), &form);
        QVERIFY(!child<QTimer>(form, "Timer1")->isActive());
    }

    void copyAsLinkStops_data()
    {
        QTest::addColumn<bool>("skip");
        QTest::addColumn<QString>("answer");
        QTest::newRow("skipped") << true << "";
        QTest::newRow("blanks only") << false << "   ";
    }
    void copyAsLinkStops()
    {
        QFETCH(bool, skip);
        QFETCH(QString, answer);
        m_state.CurrentPointer = QStringLiteral("site/a");
        ScriptedUi ui;
        JobState &state = m_state;
        if (!skip)
            ui.answerPrompt(answer);
        frmAction form(ui, state);
        click(form, "CopyPointerToClipButton");
        QCOMPARE(ui.prompts.size(), 1);
        QVERIFY(!ui.clipboard);
        QVERIFY(ui.messages.isEmpty());
        QCOMPARE(m_state.CurrentPointer, QStringLiteral("site/a"));
    }

    void view_data()
    {
        QTest::addColumn<QString>("pointer");
        QTest::addColumn<QString>("url");
        QTest::newRow("page") << "http://www.site.com/Photos/a/Photos.htm"
                              << "http://www.site.com/Photos/a/Photos.htm";
        QTest::newRow("trimmed") << "  http://www.site.com/a%20b.doc  "
                                 << "http://www.site.com/a%20b.doc";
        QTest::newRow("local file") << "/home/ann/Tarnwick/x y.htm"
                                    << "file:///home/ann/Tarnwick/x%20y.htm";
    }
    void view()
    {
        QFETCH(QString, pointer);
        QFETCH(QString, url);
        m_state.CurrentPointer = pointer;
        ScriptedUi ui;
        JobState &state = m_state;
        frmAction form(ui, state);
        click(form, "ViewButton");
        QCOMPARE(ui.openedUrls.size(), 1);
        QCOMPARE(ui.openedUrls.first().toString(QUrl::FullyEncoded), url);
        QVERIFY(ui.messages.isEmpty());
    }

    void viewEmptyPointerDoesNothing()
    {
        m_state.CurrentPointer = QStringLiteral("   ");
        ScriptedUi ui;
        JobState &state = m_state;
        frmAction form(ui, state);
        click(form, "ViewButton");
        QVERIFY(ui.openedUrls.isEmpty());
    }

    void nothingToOpenLeavesTheWindowUp()
    {
        m_state.CurrentPointer = QStringLiteral("http://site/a");
        ScriptedUi ui;
        ui.openUrlResult = false;
        JobState &state = m_state;
        frmAction form(ui, state);
        form.show();
        click(form, "ViewButton");
        click(form, "SendEmail");
        QCOMPARE(ui.openedUrls.size(), 2);
        QVERIFY(ui.messages.isEmpty());
        QVERIFY(form.isVisible());
    }

    void bodyHoldsAtMost200()
    {
        ScriptedUi ui;
        JobState &state = m_state;
        frmAction form(ui, state);
        form.show();
        auto *body = child<QPlainTextEdit>(form, "txtBody");
        body->clear();
        body->setFocus();
        QTest::keyClicks(body, QString(230, QLatin1Char('k')));
        QCOMPARE(body->toPlainText().size(), 200);
    }

    void helpButtonAndMenu()
    {
        ScriptedUi ui;
        JobState &state = m_state;
        frmAction form(ui, state);
        int asked = 0;
        connect(&form, &frmAction::helpRequested, this, [&] { ++asked; });
        click(form, "HelpButton");
        form.findChild<QAction *>(QStringLiteral("HelpActionMenu"))->trigger();
        QCOMPARE(asked, 2);
    }

    void copyPointerWaitsForTheWindow_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("Back to Previous") << "button";
        QTest::newRow("Escape") << "escape";
        QTest::newRow("close box") << "close";
    }
    void copyPointerWaitsForTheWindow()
    {
        QFETCH(QString, how);
        QWidget owner;
        owner.show();
        int helpCalls = 0;
        frmAction::Install(m_state, &owner, [&] { ++helpCalls; });
        ScriptedUi ui;
        JobState &state = m_state;
        bool sawWindow = false;
        QTimer::singleShot(50, this, [&] {
            auto *window = owner.findChild<frmAction *>(QStringLiteral("frmAction"));
            sawWindow = window != nullptr && window->isVisible();
            if (window == nullptr)
                return;
            QCOMPARE(window->findChild<QLineEdit *>(QStringLiteral("PointerText"))->text(),
                     QStringLiteral("http://www.site.com/a.htm"));
            QTest::mouseClick(window->findChild<QPushButton *>(QStringLiteral("HelpButton")),
                              Qt::LeftButton);
            // Help leaves the window up.
            QVERIFY(window->isVisible());
            if (how == QStringLiteral("button"))
                QTest::mouseClick(window->findChild<QPushButton *>(QStringLiteral("CloseButton")),
                                  Qt::LeftButton);
            else if (how == QStringLiteral("escape"))
                QTest::keyClick(window, Qt::Key_Escape);
            else
                window->close();
        });
        QTimer failsafe;
        failsafe.setSingleShot(true);
        connect(&failsafe, &QTimer::timeout, this, [&] {
            if (auto *window = owner.findChild<frmAction *>())
                window->hide();
        });
        failsafe.start(5000);
        CopyPointer(ui, state, QStringLiteral("www.site.com/a.htm"), QString(),
                    QStringLiteral("_"));
        QVERIFY(failsafe.isActive());
        QVERIFY(sawWindow);
        QCOMPARE(helpCalls, 1);
        QCOMPARE(ui.clipboard->text(), QStringLiteral("http://www.site.com/a.htm"));
        QTRY_VERIFY(owner.findChild<frmAction *>() == nullptr);
        m_state.ShowTakeAction = {};
    }

    void minimisingTheOwnerDoesNotEndTheWait()
    {
        QWidget owner;
        owner.show();
        frmAction::Install(m_state, &owner, [] {});
        ScriptedUi ui;
        JobState &state = m_state;
        bool stillThere = false;
        QTimer::singleShot(50, this, [&] {
            auto *window = owner.findChild<frmAction *>();
            QVERIFY(window != nullptr);
            // The hide event the system sends when the main window is minimised.
            QHideEvent spontaneous;
            QSpontaneKeyEvent::setSpontaneous(&spontaneous);
            QApplication::instance()->notify(window, &spontaneous);
            QTimer::singleShot(50, this, [&] {
                stillThere = owner.findChild<frmAction *>() != nullptr;
                if (auto *window = owner.findChild<frmAction *>())
                    window->hide();
            });
        });
        CopyPointer(ui, state, QStringLiteral("www.site.com/a.htm"), QString(),
                    QStringLiteral("_"));
        QVERIFY(stillThere);
        m_state.ShowTakeAction = {};
    }
};

TARNWICK_TEST_MAIN(TestFrmAction)
#include "test_frmaction.moc"
