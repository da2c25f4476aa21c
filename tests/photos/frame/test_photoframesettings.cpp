#include "FrameFixture.h"
#include "PictureSizing.h"

#include "PhotoFrameSettings.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "TestMain.h"
#include "frmFont.h"
#include "frmSelectColor.h"

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

namespace {

// Acts on the program's own picker of type T once the frame has opened it.
template <typename T> void whenPicker(std::function<void(T *)> action)
{
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, action] {
        if (auto *picker = qobject_cast<T *>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            action(picker);
        }
    });
    timer->start();
}

} // namespace

class TestPhotoFrameSettings : public QObject
{
    Q_OBJECT
private slots:
    void startUpWritesTheLooksAndAlternatesThePlacement()
    {
        FrameFixture f;
        QCOMPARE(GetSetting(QStringLiteral("PhotoBGColor")), QStringLiteral("#7F7Fff"));
        QCOMPARE(GetSetting(QStringLiteral("PhotoTitleColor")), QStringLiteral("#008000"));
        QCOMPARE(GetSetting(QStringLiteral("PhotoTextColor")), QStringLiteral("#000000"));
        QCOMPARE(GetSetting(QStringLiteral("PhotoFont")), QStringLiteral("Arial"));
        QVERIFY(f.find<QCheckBox>(QStringLiteral("AlernateCheck"))->isChecked());
        QCOMPARE(f.page().PhotoLeft[0], QStringLiteral("False"));
        QCOMPARE(f.page().PhotoLeft[1], QStringLiteral("True"));
        QCOMPARE(f.page().PhotoLeft[2], QStringLiteral("False"));
        QCOMPARE(f.page().PhotoLeft[400], QStringLiteral("False"));
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("My_resize_0"))->text(), QStringLiteral("15"));
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("My_resize_1"))->text(), QStringLiteral("30"));
        QVERIFY(
            f.find<QLabel>(QStringLiteral("instructions"))
                ->text()
                .startsWith(QStringLiteral("Reducing the size of the image notably speeds up")));
    }

    void alternatingOffAtStartLeavesTheRowsEmpty()
    {
        ClearTemporaryHome();
        SaveSetting(QStringLiteral("AlernateLR"), QStringLiteral("False"));
        PhotoPage page;
        ScriptedUi ui;
        JobState state;
        PhotoFrame frame(page, ui, state);
        QVERIFY(!frame.findChild<QCheckBox *>(QStringLiteral("AlernateCheck"))->isChecked());
        QVERIFY(page.PhotoLeft[0].isEmpty());
        QVERIFY(page.PhotoLeft[1].isEmpty());
    }

    void alernateCheck_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::newRow("Yes") << true;
        QTest::newRow("No") << false;
    }
    void alernateCheck()
    {
        QFETCH(bool, yes);
        FrameFixture f;
        f.frame().TabStrip2()->setCurrentIndex(f.frame().TabStrip2()->count() - 1);
        auto *check = f.find<QCheckBox>(QStringLiteral("AlernateCheck"));

        // Unticking saves "False" and leaves the rows as they are.
        f.page().PhotoLeft[0] = QStringLiteral("True");
        QTest::mouseClick(check, Qt::LeftButton);
        QVERIFY(!check->isChecked());
        QCOMPARE(GetSetting(QStringLiteral("AlernateLR")), QStringLiteral("False"));
        QCOMPARE(f.page().PhotoLeft[0], QStringLiteral("True"));
        QVERIFY(f.ui().messages.isEmpty());

        f.ui().answerMessage(yes ? JobUi::Answer::Yes : JobUi::Answer::No);
        QTest::mouseClick(check, Qt::LeftButton);
        QCOMPARE(f.ui().messages.size(), 1);
        QCOMPARE(f.ui().messages[0].text,
                 QStringLiteral("This will overwrite pervious settings. Do you want to continue?"));
        QCOMPARE(f.ui().messages[0].title, QStringLiteral("Tarnwick"));
        QCOMPARE(check->isChecked(), yes);
        QCOMPARE(GetSetting(QStringLiteral("AlernateLR")),
                 yes ? QStringLiteral("True") : QStringLiteral("False"));
        QCOMPARE(f.page().PhotoLeft[0], yes ? QStringLiteral("False") : QStringLiteral("True"));
    }

    void sizeBoxesKeepTheirLimits_data()
    {
        QTest::addColumn<int>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept");
        QTest::newRow("1 becomes 2") << 0 << "1"
                                     << "2";
        QTest::newRow("121 becomes 120") << 1 << "121"
                                         << "120";
        QTest::newRow("120 stays") << 1 << "120"
                                   << "120";
        QTest::newRow("2 stays") << 0 << "2"
                                 << "2";
        QTest::newRow("letters become 2") << 0 << "x"
                                          << "2";
    }
    void sizeBoxesKeepTheirLimits()
    {
        QFETCH(int, box);
        QFETCH(QString, typed);
        QFETCH(QString, kept);
        FrameFixture f;
        f.frame().TabStrip2()->setCurrentIndex(f.frame().TabStrip2()->count() - 1);
        auto *edit = f.find<QLineEdit>(QStringLiteral("My_resize_%1").arg(box));
        edit->setText(typed);
        f.leave(edit);
        QCOMPARE(edit->text(), kept);
        QCOMPARE(GetSetting(box == 0 ? QStringLiteral("sml_resize") : QStringLiteral("lrg_resize")),
                 kept);
    }

    void cameraTable_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("small");
        QTest::addColumn<QString>("large");
        QTest::newRow("8 mega-pixel") << 9 << "  2%                7%"
                                      << "2"
                                      << "7";
        QTest::newRow("5 mega-pixel") << 8 << "15%              25%"
                                      << "15"
                                      << "25";
        QTest::newRow("3 mega-pixel") << 7 << "20%              40%"
                                      << "20"
                                      << "40";
        QTest::newRow("1 mega-pixel") << 6 << "30%              75%"
                                      << "30"
                                      << "75";
        QTest::newRow(".5 mega-pixel") << 5 << "40%            100%"
                                       << "40"
                                       << "100";
        QTest::newRow("12 mega-pixel") << 10 << "  9%              20%"
                                       << "9"
                                       << "20";
        QTest::newRow("24 mega-pixel") << 11 << "  6%              14%"
                                       << "6"
                                       << "14";
        QTest::newRow("48 mega-pixel") << 12 << "  5%              10%"
                                       << "5"
                                       << "10";
    }
    void cameraTable()
    {
        QFETCH(int, index);
        QFETCH(QString, caption);
        QFETCH(QString, small);
        QFETCH(QString, large);
        FrameFixture f;
        f.frame().TabStrip2()->setCurrentIndex(f.frame().TabStrip2()->count() - 1);
        auto *button = f.find<QPushButton>(QStringLiteral("Command1_%1").arg(index));
        QVERIFY(button);
        QCOMPARE(button->text(), caption);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("My_resize_0"))->text(), small);
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("My_resize_1"))->text(), large);
        QCOMPARE(GetSetting(QStringLiteral("sml_resize")), small);
        QCOMPARE(GetSetting(QStringLiteral("lrg_resize")), large);
    }

    // Today's cameras get about the widths the table gives its own: a thumbnail of 326 to 410
    // pixels and an enlarged copy of 648 to 864 across (the 8 mega-pixel row aside).
    void todaysCameraRowsGiveTheTablesWidths_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("label");
        QTest::newRow("12") << 10 << 4032 << "12 mega-pixel";
        QTest::newRow("24") << 11 << 6000 << "24 mega-pixel";
        QTest::newRow("48") << 12 << 8064 << "48 mega-pixel";
    }
    void todaysCameraRowsGiveTheTablesWidths()
    {
        QFETCH(int, index);
        QFETCH(int, width);
        QFETCH(QString, label);
        std::array<QString, 3> boxes;
        QVERIFY(ApplyCameraPreset(index, boxes));
        const int small = ScaledSize(QSize(width, width * 3 / 4), boxes[0].toDouble()).width();
        const int large = ScaledSize(QSize(width, width * 3 / 4), boxes[1].toDouble()).width();
        QVERIFY2(small >= 326 && small <= 410, qPrintable(QString::number(small)));
        QVERIFY2(large >= 648 && large <= 864, qPrintable(QString::number(large)));
        FrameFixture f;
        auto *button = f.find<QPushButton>(QStringLiteral("Command1_%1").arg(index));
        QVERIFY(button);
        bool labelled = false;
        for (const QLabel *text : f.frame().findChildren<QLabel *>())
            labelled = labelled || text->text() == label;
        QVERIFY(labelled);
    }

    void jpegQualityBoxWritesItsSetting_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("kept");
        QTest::newRow("85 stays") << "85"
                                  << "85";
        QTest::newRow("100 stays") << "100"
                                   << "100";
        QTest::newRow("30 becomes 50") << "30"
                                       << "50";
        QTest::newRow("120 becomes 100") << "120"
                                         << "100";
        QTest::newRow("letters give 85") << "best"
                                         << "85";
    }
    void jpegQualityBoxWritesItsSetting()
    {
        QFETCH(QString, typed);
        QFETCH(QString, kept);
        FrameFixture f;
        auto *edit = f.find<QLineEdit>(QStringLiteral("JpegQuality"));
        QVERIFY(edit);
        QCOMPARE(edit->text(), GetSetting(QStringLiteral("JpegQuality"), QStringLiteral("85")));
        edit->setText(typed);
        f.leave(edit);
        QCOMPARE(edit->text(), kept);
        QCOMPARE(GetSetting(QStringLiteral("JpegQuality")), kept);
        QCOMPARE(JpegOptionsFor(kept).quality, kept.toInt());
    }

    void colourAndFontBoxesWriteTheirKeys_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("opensWith");
        QTest::newRow("background") << "PhotoBackgroundColor"
                                    << "PhotoBGColor"
                                    << "#7F7Fff";
        QTest::newRow("title") << "PhotoTitleColor"
                               << "PhotoTitleColor"
                               << "#008000";
        QTest::newRow("text") << "PhotoTextColor"
                              << "PhotoTextColor"
                              << "#000000";
    }
    void colourAndFontBoxesWriteTheirKeys()
    {
        QFETCH(QString, box);
        QFETCH(QString, key);
        QFETCH(QString, opensWith);
        FrameFixture f;
        f.frame().TabStrip2()->setCurrentIndex(f.frame().TabStrip2()->count() - 1);
        QString offered;
        f.frame().services().chooseColour = [&offered](const QString &colour, const QString &) {
            offered = colour;
            return QStringLiteral("#112233");
        };
        auto *button = f.find<QPushButton>(box);
        QCOMPARE(button->text(), QStringLiteral("Click Here to Change"));
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(offered, opensWith);
        QCOMPARE(GetSetting(key), QStringLiteral("#112233"));
        QVERIFY(button->styleSheet().contains(QStringLiteral("#112233")));

        // Cancel keeps the colour.
        f.frame().services().chooseColour = [](const QString &, const QString &) {
            return QString();
        };
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(GetSetting(key), QStringLiteral("#112233"));
    }

    void colourBoxOpensTheProgramsColourPicker()
    {
        FrameFixture f;
        f.frame().useStandardServices();
        f.frame().TabStrip2()->setCurrentIndex(f.frame().TabStrip2()->count() - 1);
        auto *button = f.find<QPushButton>(QStringLiteral("PhotoBackgroundColor"));
        QString opened;
        whenPicker<frmSelectColor>([&opened](frmSelectColor *d) {
            opened = d->findChild<QLineEdit *>(QStringLiteral("RGB_0"))->text() + u',' +
                     d->findChild<QLineEdit *>(QStringLiteral("RGB_1"))->text() + u',' +
                     d->findChild<QLineEdit *>(QStringLiteral("RGB_2"))->text();
            d->findChild<QLineEdit *>(QStringLiteral("RGB_1"))->setText(QStringLiteral("10"));
            QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("ColorOKButton")),
                              Qt::LeftButton);
        });
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(opened, QStringLiteral("127,127,255"));
        QCOMPARE(GetSetting(QStringLiteral("PhotoBGColor")), QStringLiteral("#7F0AFF"));
        QVERIFY(button->styleSheet().contains(QStringLiteral("#7f0aff")));

        whenPicker<frmSelectColor>([](frmSelectColor *d) {
            d->findChild<QLineEdit *>(QStringLiteral("RGB_1"))->setText(QStringLiteral("99"));
            QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("CancelColorButton")),
                              Qt::LeftButton);
        });
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(GetSetting(QStringLiteral("PhotoBGColor")), QStringLiteral("#7F0AFF"));
    }

    void fontBoxOpensTheProgramsFontPicker()
    {
        FrameFixture f;
        f.frame().useStandardServices();
        f.frame().TabStrip2()->setCurrentIndex(f.frame().TabStrip2()->count() - 1);
        QString opened;
        whenPicker<frmFont>([&opened](frmFont *d) {
            opened = d->findChild<QLabel *>(QStringLiteral("CurrentFont"))->text();
            auto *list = d->findChild<QListWidget *>(QStringLiteral("SystemFontList"));
            list->setCurrentItem(
                list->findItems(QStringLiteral("Liberation Serif"), Qt::MatchExactly).value(0));
            QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("OKButton")),
                              Qt::LeftButton);
        });
        QTest::mouseClick(f.find<QPushButton>(QStringLiteral("PhotoFont")), Qt::LeftButton);
        QCOMPARE(opened, QStringLiteral("Arial"));
        QCOMPARE(GetSetting(QStringLiteral("PhotoFont")), QStringLiteral("Liberation Serif"));
        QCOMPARE(f.find<QLabel>(QStringLiteral("PhotoFontExample"))->font().family(),
                 QStringLiteral("Liberation Serif"));

        whenPicker<frmFont>([](frmFont *d) {
            QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("CancelButton")),
                              Qt::LeftButton);
        });
        QTest::mouseClick(f.find<QPushButton>(QStringLiteral("PhotoFont")), Qt::LeftButton);
        QCOMPARE(GetSetting(QStringLiteral("PhotoFont")), QStringLiteral("Liberation Serif"));
    }

    void fontBoxWritesTheFamily()
    {
        FrameFixture f;
        f.frame().TabStrip2()->setCurrentIndex(f.frame().TabStrip2()->count() - 1);
        f.frame().services().chooseFont = [](const QString &) {
            return QStringLiteral("Liberation Serif");
        };
        QTest::mouseClick(f.find<QPushButton>(QStringLiteral("PhotoFont")), Qt::LeftButton);
        QCOMPARE(GetSetting(QStringLiteral("PhotoFont")), QStringLiteral("Liberation Serif"));
        QCOMPARE(f.find<QLabel>(QStringLiteral("PhotoFontExample"))->font().family(),
                 QStringLiteral("Liberation Serif"));
    }

    void promptOptionsWriteTheirKeys()
    {
        FrameFixture f;
        auto *title = f.find<QCheckBox>(QStringLiteral("title_prompt"));
        auto *file = f.find<QCheckBox>(QStringLiteral("file_prompt"));
        QVERIFY(!title->isChecked());
        QVERIFY(!file->isChecked());
        QTest::mouseClick(title, Qt::LeftButton);
        QCOMPARE(GetSetting(QStringLiteral("PromptForTitle")), QStringLiteral("True"));
        QTest::mouseClick(file, Qt::LeftButton);
        QCOMPARE(GetSetting(QStringLiteral("PromptForDescription")), QStringLiteral("True"));
        QTest::mouseClick(title, Qt::LeftButton);
        QCOMPARE(GetSetting(QStringLiteral("PromptForTitle")), QStringLiteral("False"));
    }

    void cleanupEmptiesTheRecordAndRereadsTheLists()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("Tree.jpg")});
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        f.page().FileName = QStringLiteral("Trip");
        QFile::remove(f.readyFile(QStringLiteral("00050_Tree.jpg")));
        f.frame().DoCleanup();
        QCOMPARE(f.page().PhotoNumber, qint16(0));
        QVERIFY(f.page().FileName.isEmpty());
        QVERIFY(f.names(f.file3()).isEmpty());
        QVERIFY(f.find<QLabel>(QStringLiteral("CurrentImage"))->pixmap().isNull());
    }

    void buildAllButtonTakesItsPlace()
    {
        FrameFixture f;
        auto *button = new QPushButton;
        f.frame().installBuildAllButton(button);
        QCOMPARE(button->objectName(), QStringLiteral("cmdBuildAll"));
        QCOMPARE(button->text(), QStringLiteral("Tarnwick Build All and send to your site"));
        QVERIFY(f.frame().readyToSend()->isAncestorOf(button));
        QVERIFY(button->isVisible());
    }
};

TARNWICK_TEST_MAIN(TestPhotoFrameSettings)
#include "test_photoframesettings.moc"
