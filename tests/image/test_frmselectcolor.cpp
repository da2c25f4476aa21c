#include "Pickers.h"
#include "TestMain.h"
#include "frmSelectColor.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>

namespace {

QLineEdit *box(const frmSelectColor &d, int i)
{
    return d.findChild<QLineEdit *>(QStringLiteral("RGB_%1").arg(i));
}
QScrollBar *bar(const frmSelectColor &d, int i)
{
    return d.findChild<QScrollBar *>(QStringLiteral("VScroll1_%1").arg(i));
}
QColor sample(const frmSelectColor &d, int i)
{
    const int c =
        d.findChild<QLabel *>(QStringLiteral("bgcolor_%1").arg(i))->property("colour").toInt();
    return QColor(c & 255, (c >> 8) & 255, (c >> 16) & 255);
}

// Runs action on the colour dialog once PickColor has it on screen.
void whenColorDialog(std::function<void(frmSelectColor *)> action)
{
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, action] {
        if (auto *d = qobject_cast<frmSelectColor *>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            action(d);
        }
    });
    timer->start();
}

} // namespace

class TestFrmSelectColor : public QObject
{
    Q_OBJECT
private slots:
    void opensWithTheColourInTheBoxesAndOkWritesCapitals()
    {
        frmSelectColor d(QStringLiteral("#7F7Fff"));
        QCOMPARE(d.windowTitle(), QStringLiteral("Select a Color"));
        QCOMPARE(box(d, 0)->text(), QStringLiteral("127"));
        QCOMPARE(box(d, 1)->text(), QStringLiteral("127"));
        QCOMPARE(box(d, 2)->text(), QStringLiteral("255"));
        QCOMPARE(bar(d, 2)->value(), 255);
        QCOMPARE(sample(d, 0), QColor(127, 127, 255));
        QCOMPARE(sample(d, 1), QColor(127, 127, 255));
        QTest::mouseClick(d.findChild<QPushButton *>(QStringLiteral("ColorOKButton")),
                          Qt::LeftButton);
        QCOMPARE(d.SelectedColor(), QStringLiteral("#7F7FFF"));
        QCOMPARE(d.result(), int(QDialog::Accepted));
    }

    void anEntryOutOfRangeGoesBackToTheScrollBar()
    {
        frmSelectColor d(QStringLiteral("#102030"));
        box(d, 1)->selectAll();
        QTest::keyClicks(box(d, 1), QStringLiteral("300"));
        // "3" and "30" were taken; "300" is not, and the box shows the bar's 30 again.
        QCOMPARE(bar(d, 1)->value(), 30);
        QCOMPARE(box(d, 1)->text(), QStringLiteral("30"));
        box(d, 1)->setText(QStringLiteral("300"));
        QCOMPARE(box(d, 1)->text(), QStringLiteral("30"));
        QCOMPARE(bar(d, 1)->value(), 30);
    }

    void zeroInABoxGivesTwoZeros()
    {
        frmSelectColor d(QStringLiteral("#FFFFFF"));
        box(d, 0)->setText(QStringLiteral("0"));
        box(d, 2)->setText(QStringLiteral("9"));
        QCOMPARE(sample(d, 0), QColor(0, 255, 9));
        QCOMPARE(sample(d, 1), QColor(255, 255, 255));
        d.ColorOKButton_Click();
        QCOMPARE(d.SelectedColor(), QStringLiteral("#00FF09"));
    }

    void theScrollBarWritesTheBoxAndTheNewSample()
    {
        frmSelectColor d(QStringLiteral("#000000"));
        bar(d, 1)->setValue(171);
        QCOMPARE(box(d, 1)->text(), QStringLiteral("171"));
        QCOMPARE(sample(d, 0), QColor(0, 171, 0));
        d.ColorOKButton_Click();
        QCOMPARE(d.SelectedColor(), QStringLiteral("#00AB00"));
    }

    void aPaletteClickFillsTheBoxesRedFirst()
    {
        frmSelectColor d(QStringLiteral("#000000"));
        const auto &palette = frmSelectColor::PaletteColors();
        int index = -1;
        for (int i = 0; i < int(palette.size()); ++i) {
            const int c = palette[i];
            if ((c & 255) != ((c >> 16) & 255)) {
                index = i;
                break;
            }
        }
        QVERIFY(index >= 0);
        const int c = palette[index];
        QTest::mouseClick(d.findChild<QLabel *>(QStringLiteral("lblColor_%1").arg(index)),
                          Qt::LeftButton);
        QCOMPARE(box(d, 0)->text().toInt(), c & 255);
        QCOMPARE(box(d, 1)->text().toInt(), (c >> 8) & 255);
        QCOMPARE(box(d, 2)->text().toInt(), (c >> 16) & 255);
        QCOMPARE(sample(d, 0), QColor(c & 255, (c >> 8) & 255, (c >> 16) & 255));
        QCOMPARE(
            d.findChildren<QLabel *>(QRegularExpression(QStringLiteral("^lblColor_\\d+$"))).size(),
            26);
    }

    void pickColorGivesTheChoiceOrNothingOnCancel()
    {
        whenColorDialog([](frmSelectColor *d) {
            box(*d, 0)->setText(QStringLiteral("18"));
            QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("ColorOKButton")),
                              Qt::LeftButton);
        });
        QCOMPARE(PickColor(QStringLiteral("#0000ff")), std::optional<QString>("#1200FF"));

        whenColorDialog([](frmSelectColor *d) {
            box(*d, 0)->setText(QStringLiteral("18"));
            QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("CancelColorButton")),
                              Qt::LeftButton);
        });
        QCOMPARE(PickColor(QStringLiteral("#0000ff")), std::nullopt);
    }
};

TARNWICK_TEST_MAIN(TestFrmSelectColor)
#include "test_frmselectcolor.moc"
