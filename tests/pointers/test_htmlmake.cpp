#include "HTMLMake.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "Settings.h"
#include "TestMain.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

class TestHtmlMake : public QObject
{
    Q_OBJECT
    JobState m_state;
private slots:
    void init()
    {
        ClearTemporaryHome();
        m_state.reset();
        m_state.ShowTakeAction = {};
    }

    void removeFtpRoot_data()
    {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no root") << ""
                                 << "www.site.com/Photos/a"
                                 << "www.site.com/Photos/a";
        QTest::newRow("blank root") << "   "
                                    << "www.site.com/x"
                                    << "www.site.com/x";
        QTest::newRow("root in caption") << "public_html"
                                         << "www.site.com/public_html/Photos/a"
                                         << "www.site.com/Photos/a";
        QTest::newRow("root trimmed") << "  public_html "
                                      << "www.site.com/public_html/Photos/a"
                                      << "www.site.com/Photos/a";
        QTest::newRow("deep root") << "home/ann/public_html"
                                   << "ann.example.org/home/ann/public_html/Web_Log/x.htm"
                                   << "ann.example.org/Web_Log/x.htm";
        QTest::newRow("root missing") << "public_html"
                                      << "www.site.com/Photos/a"
                                      << "";
        QTest::newRow("root without slash behind") << "public_html"
                                                   << "www.site.com/public_html"
                                                   << "";
        QTest::newRow("slash root") << "/"
                                    << "www.site.com/Photos/a"
                                    << "";
        QTest::newRow("first occurrence only") << "www"
                                               << "site/www/a/www/b"
                                               << "site/a/www/b";
        QTest::newRow("case matters") << "Public_HTML"
                                      << "site/public_html/a"
                                      << "";
    }
    void removeFtpRoot()
    {
        QFETCH(QString, root);
        QFETCH(QString, path);
        QFETCH(QString, expected);
        SaveSetting(QStringLiteral("FTPRoot"), root);
        QCOMPARE(RemoveFTPRoot(path), expected);
    }

    void makePointer_data()
    {
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("blank");
        QTest::addColumn<QString>("expected");
        QTest::newRow("page") << "public_html"
                              << "www.site.com/public_html/Photos/Trip_to_NY/Photos.htm"
                              << "_"
                              << "http://www.site.com/Photos/Trip_to_NY/Photos.htm";
        QTest::newRow("blanks to underscore") << ""
                                              << "www.site.com/Photos/Trip to NY/Photos.htm"
                                              << "_"
                                              << "http://www.site.com/Photos/Trip_to_NY/Photos.htm";
        QTest::newRow("blanks to %20") << ""
                                       << "www.site.com/files/my file.doc"
                                       << "%20"
                                       << "http://www.site.com/files/my%20file.doc";
        QTest::newRow("empty path") << ""
                                    << ""
                                    << "_"
                                    << "http://";
        QTest::newRow("root missing gives bare http") << "public_html"
                                                      << "www.site.com/Photos/a"
                                                      << "_"
                                                      << "http://";
        QTest::newRow("already http") << ""
                                      << "http://www.site.com/a b"
                                      << "%20"
                                      << "http://www.site.com/a%20b";
        QTest::newRow("https site") << ""
                                    << "https://www.site.com/a"
                                    << "_"
                                    << "https://www.site.com/a";
        QTest::newRow("old local path") << ""
                                        << "C:\\Tarnwick\\x y.htm"
                                        << "_"
                                        << "C:\\Tarnwick\\x y.htm";
        QTest::newRow("local path") << ""
                                    << "/home/ann/Tarnwick/x y.htm"
                                    << "%20"
                                    << "/home/ann/Tarnwick/x y.htm";
        QTest::newRow("one blank") << ""
                                   << " "
                                   << "_"
                                   << "http://_";
    }
    void makePointer()
    {
        QFETCH(QString, root);
        QFETCH(QString, path);
        QFETCH(QString, blank);
        QFETCH(QString, expected);
        SaveSetting(QStringLiteral("FTPRoot"), root);
        QCOMPARE(MakePointer(path, blank), expected);
    }

    void copyPointerPutsPlainTextAndOpensTakeAction()
    {
        SaveSetting(QStringLiteral("FTPRoot"), QStringLiteral("public_html"));
        ScriptedUi ui;
        JobState &state = m_state;
        QString seenPointer;
        int calls = 0;
        m_state.ShowTakeAction = [&](JobUi &, JobState &) {
            ++calls;
            seenPointer = m_state.CurrentPointer;
            // The clipboard is already filled when the window comes up.
            QVERIFY(ui.clipboard);
        };
        const QString result = CopyPointer(
            ui, state, QStringLiteral("www.site.com/public_html/Photos/My Trip/Photos.htm"),
            QString(), QStringLiteral("_"));
        const QString expected = QStringLiteral("http://www.site.com/Photos/My_Trip/Photos.htm");
        QCOMPARE(result, expected);
        QCOMPARE(m_state.CurrentPointer, expected);
        QCOMPARE(calls, 1);
        QCOMPARE(seenPointer, expected);
        QVERIFY(ui.clipboard);
        QCOMPARE(ui.clipboard->text(), expected);
        QVERIFY(!ui.clipboard->hasFormat(GetHTMLFormat()));
    }

    void copyPointerWithoutWindowStillFillsClipboard()
    {
        ScriptedUi ui;
        JobState &state = m_state;
        QCOMPARE(CopyPointer(ui, state, QString(), QStringLiteral("unused"), QStringLiteral("_")),
                 QStringLiteral("http://"));
        QCOMPARE(ui.clipboard->text(), QStringLiteral("http://"));
        QCOMPARE(m_state.CurrentPointer, QStringLiteral("http://"));
    }

    void standardHeader()
    {
        QString head = PointerLinkHead();
        QString tail = PointerLinkTail();
        const QString fragment =
            PointerLinkFragment(QStringLiteral("http://site/a"), QStringLiteral("Pointer"));
        const QByteArray text = MakeHTMLFormatText(fragment, head, tail);
        const QByteArray expected =
            "Version:1.0\r\n"
            "StartHTML:0000000105\r\n"
            "EndHTML:0000000277\r\n"
            "StartFragment:0000000173\r\n"
            "EndFragment:0000000237\r\n"
            "<HTML><BODY><FONT FACE=Arial SIZE=1 COLOR=BLUE><!--StartFragment -->"
            "<a title=\"http://site/a\" href=\"http://site/a\">Pointer</a></font>"
            "<!--EndFragment --></FONT></BODY></HTML>";
        QCOMPARE(text, expected);
        QCOMPARE(head, QStringLiteral("<HTML><BODY><FONT FACE=Arial SIZE=1 COLOR=BLUE>"
                                      "<!--StartFragment -->"));
        QCOMPARE(tail, QStringLiteral("<!--EndFragment --></FONT></BODY></HTML>"));
    }

    void offsetsCountBytes_data()
    {
        QTest::addColumn<QString>("head");
        QTest::addColumn<QString>("fragment");
        QTest::addColumn<QString>("tail");
        QTest::newRow("empty") << ""
                               << ""
                               << "";
        QTest::newRow("ascii") << "<p>"
                               << "<b>x</b>"
                               << "</p>";
        QTest::newRow("accents") << QStringLiteral("<p>Caf\u00e9 ")
                                 << QStringLiteral("\u00fcber \u00e9t\u00e9")
                                 << QStringLiteral("</p>\u00e9");
        QTest::newRow("wide") << QStringLiteral("\u65e5\u672c")
                              << QStringLiteral("<a href=\"x\">\u65e5\U0001F600</a>") << "";
        QTest::newRow("place holders in text") << "aaaaaaaaaa"
                                               << "<a title=\"bbbbbbbbbb\">cccccccccc</a>"
                                               << "dddddddddd";
    }
    void offsetsCountBytes()
    {
        QFETCH(QString, head);
        QFETCH(QString, fragment);
        QFETCH(QString, tail);
        const QString originalHead = head;
        const QString originalTail = tail;
        const QByteArray text = MakeHTMLFormatText(fragment, head, tail);
        auto number = [&](const char *key) {
            const qsizetype at = text.indexOf(key) + qstrlen(key);
            return text.mid(at, 10).toLongLong();
        };
        QCOMPARE(number("StartHTML:"), 105);
        QCOMPARE(number("EndHTML:"), text.size());
        const qsizetype start = number("StartFragment:");
        const qsizetype end = number("EndFragment:");
        QCOMPARE(text.mid(start, end - start), fragment.toUtf8());
        QCOMPARE(text.mid(105, start - 105), (originalHead + "<!--StartFragment -->").toUtf8());
        QCOMPARE(text.mid(end), ("<!--EndFragment -->" + originalTail).toUtf8());
        QCOMPARE(QString::fromUtf8(text.mid(105)), head + fragment + tail);
    }

    void clipboardEntryRoundTrip_data()
    {
        QTest::addColumn<QString>("fragment");
        QTest::newRow("link") << PointerLinkFragment(QStringLiteral("http://site/a b"),
                                                     QStringLiteral("Click here"));
        QTest::newRow("non ascii")
            << QStringLiteral("<a href=\"http://x\">Fotos von M\u00fcnchen \u65e5</a>");
        QTest::newRow("empty") << QString();
    }
    void clipboardEntryRoundTrip()
    {
        QFETCH(QString, fragment);
        ScriptedUi ui;
        QString head = PointerLinkHead();
        QString tail = PointerLinkTail();
        PutHTMLClipboard(ui, fragment, head, tail, QStringLiteral("http://site/a"));
        QVERIFY(ui.clipboard);
        QCOMPARE(GetHTMLClipboard(ui.clipboard.get()), fragment);
        QCOMPARE(ui.clipboard->html(), head + fragment + tail);
        QCOMPARE(ui.clipboard->text(), QStringLiteral("http://site/a"));
    }

    void plainTextDefaultsToVisibleText()
    {
        QString head;
        QString tail;
        std::unique_ptr<QMimeData> data(MakeHTMLClipboardData(
            PointerLinkFragment(QStringLiteral("http://s/a"), QStringLiteral("Pointer")), head,
            tail));
        QCOMPARE(data->text(), QStringLiteral("Pointer"));
    }

    void readingOddEntries_data()
    {
        QTest::addColumn<QByteArray>("entry");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no offsets") << QByteArray("<b>x</b>") << "";
        QTest::newRow("zero start")
            << QByteArray("StartFragment:0000000000\r\nEndFragment:0000000005\r\nabcdefgh") << "";
        QTest::newRow("zero end")
            << QByteArray("StartFragment:0000000003\r\nEndFragment:0000000000\r\nabcdefgh") << "";
        QTest::newRow("end before start")
            << QByteArray("StartFragment:0000000010\r\nEndFragment:0000000005\r\nabcdefgh") << "";
        QTest::newRow("hand made")
            << QByteArray("StartFragment:49\r\nEndFragment:0000000051\r\n0123456xyz") << "xy";
        QTest::newRow("past the end")
            << QByteArray("StartFragment:0000000053\r\nEndFragment:0000000099\r\nabcdef") << "def";
        QTest::newRow("measured up to the first NUL")
            << QByteArray("StartFragment:0000000050\r\nEndFragment:0000000056\r\nabc\0def", 57)
            << "abc";
    }
    void readingOddEntries()
    {
        QFETCH(QByteArray, entry);
        QFETCH(QString, expected);
        QMimeData data;
        data.setData(GetHTMLFormat(), entry);
        QCOMPARE(GetHTMLClipboard(&data), expected);
    }

    void noEntryGivesEmpty()
    {
        QMimeData data;
        data.setText(QStringLiteral("http://site/a"));
        QCOMPARE(GetHTMLClipboard(&data), QString());
        QCOMPARE(GetHTMLClipboard(nullptr), QString());
    }

    void pagePointerAsLink()
    {
        SaveSetting(QStringLiteral("FTPRoot"), QStringLiteral("public_html"));
        ScriptedUi ui;
        CopyPagePointerAsLink(ui, QStringLiteral("www.site.com/public_html/Photos/Trip/Photos.htm"),
                              QStringLiteral("Trip to NY"));
        QVERIFY(ui.clipboard);
        QCOMPARE(GetHTMLClipboard(ui.clipboard.get()),
                 QStringLiteral("<a title=\"http://www.site.com/Photos/Trip/Photos.htm\" "
                                "href=\"http://www.site.com/Photos/Trip/Photos.htm\">Click Here to "
                                "view photos of Trip to NY</a></font>"));
        QCOMPARE(ui.clipboard->text(),
                 QStringLiteral("http://www.site.com/Photos/Trip/Photos.htm"));
        QCOMPARE(ui.messages.size(), 1);
        QCOMPARE(ui.messages.first().title, QStringLiteral("Upload complete"));
        QVERIFY(ui.messages.first().text.startsWith(
            QStringLiteral("The Web page pointer has been copied to the clipboard. Using the Paste "
                           "(<ctrl> v) will retrieve the pointer. IMPORTANT:")));
    }

    void systemClipboardRoundTrip()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        QString head = PointerLinkHead();
        QString tail = PointerLinkTail();
        const QString fragment = PointerLinkFragment(QStringLiteral("http://site/Photos/x.htm"),
                                                     QStringLiteral("Pointer"));
        clipboard->setMimeData(MakeHTMLClipboardData(fragment, head, tail,
                                                     QStringLiteral("http://site/Photos/x.htm")));
        const QMimeData *data = clipboard->mimeData();
        if (data == nullptr || !data->hasFormat(GetHTMLFormat()))
            QSKIP("This platform keeps no custom clipboard types");
        QCOMPARE(GetHTMLClipboard(), fragment);
        QCOMPARE(clipboard->text(), QStringLiteral("http://site/Photos/x.htm"));
    }
};

TARNWICK_TEST_MAIN(TestHtmlMake)
#include "test_htmlmake.moc"
