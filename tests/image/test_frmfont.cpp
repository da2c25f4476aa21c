#include "Pickers.h"
#include "TestMain.h"
#include "frmFont.h"

#include <QFontDatabase>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace {

template <typename T> T *child(const QWidget &w, const char *name)
{
    return w.findChild<T *>(QLatin1String(name));
}

QStringList rows(const QListWidget *list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i)
        names.append(list->item(i)->text());
    return names;
}

void whenFontDialog(std::function<void(frmFont *)> action)
{
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, action] {
        if (auto *d = qobject_cast<frmFont *>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            action(d);
        }
    });
    timer->start();
}

} // namespace

class TestFrmFont : public QObject
{
    Q_OBJECT
private slots:
    void opensWithTheFontAndTheScalableFamilies()
    {
        frmFont d(QStringLiteral("Liberation Serif"));
        QCOMPARE(d.windowTitle(), QStringLiteral("Select a font"));
        QCOMPARE(child<QLabel>(d, "CurrentFont")->text(), QStringLiteral("Liberation Serif"));
        QCOMPARE(child<QLabel>(d, "NewFontSelected")->text(), QStringLiteral("Liberation Serif"));
        QCOMPARE(child<QLabel>(d, "CurrentExample")->text(),
                 QStringLiteral("Font Example (ABC abc)"));
        QCOMPARE(child<QLabel>(d, "CurrentExample")->font().family(),
                 QStringLiteral("Liberation Serif"));
        QCOMPARE(d.FontTypeWanted(), 4);
        QCOMPARE(child<QPushButton>(d, "Command1")->text(), QStringLiteral("Enum TrueType Fonts"));
        const QStringList listed = rows(child<QListWidget>(d, "SystemFontList"));
        QVERIFY(listed.contains(QStringLiteral("Liberation Sans")));
        for (const QString &family : listed)
            QVERIFY2(QFontDatabase::isSmoothlyScalable(family), qPrintable(family));
        QCOMPARE(child<QRadioButton>(d, "Option1_1")->text(), QStringLiteral("Roster fonts"));
        QCOMPARE(child<QRadioButton>(d, "Option1_2")->text(), QStringLiteral("Device fonts"));
    }

    void aFamilyPickedFromTheListIsTakenOnOk()
    {
        frmFont d(QStringLiteral("Liberation Serif"));
        auto *list = child<QListWidget>(d, "SystemFontList");
        const auto found = list->findItems(QStringLiteral("Liberation Mono"), Qt::MatchExactly);
        QCOMPARE(found.size(), 1);
        list->scrollToItem(found.first());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(found.first()).center());
        QCOMPARE(child<QLabel>(d, "NewFontSelected")->text(), QStringLiteral("Liberation Mono"));
        QCOMPARE(child<QLabel>(d, "NewExample")->font().family(),
                 QStringLiteral("Liberation Mono"));
        QTest::mouseClick(child<QPushButton>(d, "OKButton"), Qt::LeftButton);
        QCOMPARE(d.SelectedFont(), QStringLiteral("Liberation Mono"));
    }

    void cancelGivesTheFontItOpenedWith()
    {
        frmFont d(QStringLiteral("Liberation Serif"));
        auto *list = child<QListWidget>(d, "SystemFontList");
        list->setCurrentRow(0);
        QVERIFY(child<QLabel>(d, "NewFontSelected")->text() != QStringLiteral("Liberation Serif") ||
                list->item(0)->text() == QStringLiteral("Liberation Serif"));
        QTest::mouseClick(child<QPushButton>(d, "CancelButton"), Qt::LeftButton);
        QCOMPARE(d.SelectedFont(), QStringLiteral("Liberation Serif"));
        QCOMPARE(d.result(), int(QDialog::Rejected));
    }

    void vectorFontsListNothingAndOkKeepsTheShownFont()
    {
        frmFont d(QStringLiteral("Liberation Sans"));
        auto *list = child<QListWidget>(d, "SystemFontList");
        QVERIFY(list->count() > 0);
        QTest::mouseClick(child<QRadioButton>(d, "Option1_0"), Qt::LeftButton);
        QCOMPARE(d.FontTypeWanted(), 0);
        QCOMPARE(child<QPushButton>(d, "Command1")->text(), QStringLiteral("Enum Vector fonts"));
        // The list is refilled only by the button.
        QVERIFY(list->count() > 0);
        QTest::mouseClick(child<QPushButton>(d, "Command1"), Qt::LeftButton);
        QCOMPARE(list->count(), 0);
        QTest::mouseClick(child<QPushButton>(d, "OKButton"), Qt::LeftButton);
        QCOMPARE(d.SelectedFont(), QStringLiteral("Liberation Sans"));
    }

    void pickFontGivesTheChoiceOrNothingOnCancel()
    {
        whenFontDialog([](frmFont *d) {
            auto *list = child<QListWidget>(*d, "SystemFontList");
            list->setCurrentItem(
                list->findItems(QStringLiteral("Liberation Mono"), Qt::MatchExactly).value(0));
            QTest::mouseClick(child<QPushButton>(*d, "OKButton"), Qt::LeftButton);
        });
        QCOMPARE(PickFont(QString()), std::optional<QString>("Liberation Mono"));

        whenFontDialog([](frmFont *d) {
            QCOMPARE(child<QLabel>(*d, "CurrentFont")->text(), QStringLiteral("Arial"));
            QTest::mouseClick(child<QPushButton>(*d, "CancelButton"), Qt::LeftButton);
        });
        QCOMPARE(PickFont(QString()), std::nullopt);
    }
};

TARNWICK_TEST_MAIN(TestFrmFont)
#include "test_frmfont.moc"
