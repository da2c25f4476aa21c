#include "JobState.h"
#include "TestMain.h"
#include "dlgFTP.h"

#include <QApplication>
#include <QImage>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace {

// Answers the next question box with button when it comes up.
void answerQuestion(QMessageBox::StandardButton button, QString *asked)
{
    QTimer::singleShot(20, [button, asked] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            *asked = box->windowTitle() + QLatin1Char('|') + box->text();
            box->button(button)->click();
        }
    });
}

} // namespace

class TestDlgFtp : public QObject
{
    Q_OBJECT
    // The job-wide state of this test program, as the program makes one for its run.
    JobState m_state;
private slots:
    void init() { m_state.reset(); }

    void controlsCarryTheirNames()
    {
        dlgFTP dialog(m_state);
        QVERIFY(dialog.findChild<FloodBar *>(QStringLiteral("picFlood")));
        QVERIFY(dialog.findChild<QWidget *>(QStringLiteral("Image1")));
        QCOMPARE(dialog.findChild<QPushButton *>(QStringLiteral("Command1"))->text(),
                 QStringLiteral("Cancel"));
        QCOMPARE(dialog.findChild<QPushButton *>(QStringLiteral("Command2"))->text(),
                 QStringLiteral("Run in background"));
        QVERIFY(dialog.findChild<QTimer *>(QStringLiteral("Timer1")));
    }

    void floodText_data()
    {
        QTest::addColumn<double>("total");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("start") << 2000.0 << 0.0 << "0% Uploading a b.jpg";
        QTest::newRow("whole percent, rounded down") << 3.0 << 2.0 << "66% Uploading a b.jpg";
        QTest::newRow("done") << 10.0 << 10.0 << "100% Uploading a b.jpg";
        QTest::newRow("clamped") << 10.0 << 25.0 << "100% Uploading a b.jpg";
        QTest::newRow("zero total draws nothing") << 0.0 << 5.0 << "";
    }

    void floodText()
    {
        QFETCH(double, total);
        QFETCH(double, value);
        QFETCH(QString, text);
        dlgFTP dialog(m_state);
        dialog.FloodFillInit(total, QStringLiteral("Uploading a b.jpg"));
        dialog.FloodFillUpdate(value);
        QCOMPARE(dialog.flood()->text(), text);
    }

    void statusLineLastsUntilTheNextUpdate()
    {
        dlgFTP dialog(m_state);
        dialog.FloodFillInit(100, QStringLiteral("Uploading x"));
        dialog.FloodFillUpdate(40);
        dialog.FloodShowStatus(QStringLiteral("Connected to 10.0.0.1"));
        QCOMPARE(dialog.flood()->text(), QStringLiteral("40% Connected to 10.0.0.1"));
        dialog.FloodFillUpdate(41);
        QCOMPARE(dialog.flood()->text(), QStringLiteral("41% Uploading x"));
    }

    void barDrawsTheTextInTwoColoursAtItsEdge()
    {
        dlgFTP dialog(m_state);
        dialog.show();
        dialog.FloodFillInit(100,
                             QStringLiteral("Uploading a very long name to cover the middle.jpg"));
        dialog.FloodFillUpdate(50);
        FloodBar *bar = dialog.flood();
        bar->resize(400, 30);
        const QImage image = bar->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QRgb blue = qRgb(0, 0, 255);
        const QRgb white = qRgb(255, 255, 255);
        // The filled half is blue with white letters, the rest white with blue letters.
        QCOMPARE(image.pixel(2, 2), blue);
        QCOMPARE(image.pixel(image.width() - 3, 2), white);
        int whiteInFilled = 0;
        int blueInEmpty = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                if (x < image.width() / 2 - 2 && qRed(pixel) > 200 && qGreen(pixel) > 200)
                    ++whiteInFilled;
                if (x > image.width() / 2 + 2 && qRed(pixel) < 60 && qBlue(pixel) > 200)
                    ++blueInEmpty;
            }
        }
        QVERIFY(whiteInFilled > 10);
        QVERIFY(blueInEmpty > 10);
    }

    void cancelAsksFirst_data()
    {
        QTest::addColumn<bool>("escape");
        QTest::newRow("button") << false;
        QTest::newRow("escape key") << true;
    }

    void cancelAsksFirst()
    {
        QFETCH(bool, escape);
        JobState &state = m_state;
        dlgFTP dialog(state);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const auto press = [&] {
            if (escape)
                QTest::keyClick(&dialog, Qt::Key_Escape);
            else
                dialog.findChild<QPushButton *>(QStringLiteral("Command1"))->click();
        };
        QString asked;
        answerQuestion(QMessageBox::No, &asked);
        press();
        QCOMPARE(asked,
                 QStringLiteral("Need to know...|Are you sure you want to cancel the upload?"));
        QVERIFY(!state.skipped());
        QVERIFY(!state.UploadCancelled);
        QVERIFY(dialog.isVisible());
        QVERIFY(dialog.findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());

        bool signalled = false;
        connect(&dialog, &dlgFTP::cancelConfirmed, [&] { signalled = true; });
        answerQuestion(QMessageBox::Yes, &asked);
        press();
        QVERIFY(state.skipped());
        QVERIFY(state.UploadCancelled);
        QVERIFY(!dialog.isVisible());
        QVERIFY(signalled);
    }

    void runInBackgroundToggles()
    {
        JobState &state = m_state;
        dlgFTP dialog(state);
        auto *button = dialog.findChild<QPushButton *>(QStringLiteral("Command2"));
        button->click();
        QVERIFY(state.BackgroundRequested);
        button->click();
        QVERIFY(!state.BackgroundRequested);
    }
};

TARNWICK_TEST_MAIN(TestDlgFtp)
#include "test_dlgftp.moc"
