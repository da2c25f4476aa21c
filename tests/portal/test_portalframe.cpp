#include "BuildStartup.h"
#include "PortalFixture.h"
#include "PortalFrame.h"
#include "PortalInstall.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "WebSpace.h"
#include "WebSpaceFixture.h"

#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

using namespace BuildStartup;
using namespace PortalFixture;

namespace {

QStringList items(const QListWidget *list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i)
        names << list->item(i)->text();
    return names;
}

} // namespace

// The Build a Portal tab on the real main window: Categories and Page Links made, changed and
// removed through its controls, the bullets, the logo, the colours and font, and the faults of
// the store as the tab meets them.
class TestPortalFrame : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<WebSpaceFixture> fixture;
    PortalParts parts;
    PortalFrame *frame = nullptr;

    ScriptedUi &ui() { return fixture->ui; }
    QPushButton *button(const char *name)
    {
        return frame->findChild<QPushButton *>(QString::fromLatin1(name));
    }
    void selectCategory(const QString &file)
    {
        const auto found = frame->File11()->findItems(file, Qt::MatchExactly);
        QVERIFY2(!found.isEmpty(), qPrintable(file));
        frame->File11_Click(frame->File11()->row(found.first()));
    }
    void selectLink(const QString &file)
    {
        const auto found = frame->File21()->findItems(file, Qt::MatchExactly);
        QVERIFY2(!found.isEmpty(), qPrintable(file));
        frame->File21_Click(frame->File21()->row(found.first()));
    }
    void addCategory(const QString &name)
    {
        ui().answerPrompt(name);
        button("AddNewCatButton")->click();
    }
    void addLink(const QString &name, const QString &url)
    {
        ui().answerPrompt(name);
        ui().answerPrompt(url);
        button("AndNewLinkButton")->click();
    }
    // Types into a box and leaves it, as the user does.
    void typeAndLeave(QLineEdit *box, const QString &text)
    {
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, text);
        QTest::keyClick(box, Qt::Key_Return);
        QCoreApplication::processEvents();
    }

private slots:
    void init()
    {
        ClearTemporaryHome();
        QVERIFY(installEmptyPortal());
        SaveSetting("PortalIntructionView", "Hide");
        fixture = std::make_unique<WebSpaceFixture>();
        fixture->install();
        WebSpace *webSpace = fixture->window->findChild<WebSpace *>();
        QVERIFY(webSpace);
        parts = InstallPortalParts(*fixture->window, *webSpace);
        frame = parts.frame;
        fixture->showFunction(4);
        QVERIFY(frame->isVisible());
    }
    void cleanup()
    {
        fixture.reset();
        frame = nullptr;
    }

    void theTabHasEveryControlItNames()
    {
        for (const char *name :
             {"File11", "File21", "AddNewCatButton", "DeleteCatButton", "AndNewLinkButton",
              "DeleteLinkButton", "DisplayLinkTxt", "URLTxt", "LogoTxt", "SearchLogoButton",
              "SULogoH", "SUPageFont", "SUTextColor", "SUTitleColor", "SUBackgroundColor",
              "BuildStartupButton", "PreviewStartupButton", "Image21"})
            QVERIFY2(frame->findChild<QWidget *>(name), name);
        for (int i = 0; i < ShownBullets; ++i) {
            QToolButton *bullet = frame->Image111(i);
            QCOMPARE(bullet->objectName(), "Image111_" + QString::number(i));
            QVERIFY(!bullet->icon().isNull());
        }
        QVERIFY(!frame->findChild<QWidget *>("Image111_14"));
        QCOMPARE(button("BuildStartupButton")->text(), QString("Build Home Portal Page"));
        QCOMPARE(button("SUTextColor")->text(), QString("Click Here to Change"));
    }

    void theDefaultCategoriesAreListed()
    {
        ClearTemporaryHome();
        QVERIFY(installDefaultPortal());
        frame->opened(false);
        QCOMPARE(items(frame->File11()),
                 (QStringList{"Government Services.Cat", "News.Cat", "Office Tools.Cat",
                              "Reference.Cat", "Travel.Cat", "Weather.Cat"}));
        selectCategory("News.Cat");
        QVERIFY(frame->File21()->isEnabled());
        QVERIFY(items(frame->File21()).contains("NPR.ptr"));
        selectLink("NPR.ptr");
        QCOMPARE(frame->DisplayLinkTxt()->text(), QString("NPR"));
        QCOMPARE(frame->URLTxt()->text(), QString("https://www.npr.org/"));
        QCOMPARE(frame->borderedBullet(), 12);
    }

    void aNewCategoryIsMadeAndSelected()
    {
        addCategory("Music");
        QCOMPARE(ui().prompts.last().text, QString("Enter the category name"));
        QCOMPARE(ui().prompts.last().maxLength, 30);
        QCOMPARE(ui().prompts.last().mode, QString("Hide"));
        QCOMPARE(items(frame->File11()), QStringList{"Music.Cat"});
        QCOMPARE(frame->File11()->currentItem()->text(), QString("Music.Cat"));
        QCOMPARE(frame->File21Path(), startup("Music"));
        QVERIFY(frame->File21()->isEnabled());
        QVERIFY(QFileInfo(startup("Music")).isDir());
    }

    void aBlankOrCancelledCategoryNameMakesNothing_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::newRow("empty") << "";
        QTest::newRow("blank word") << "||Blank||";
        QTest::newRow("cancel") << "!!Skip!!";
    }
    void aBlankOrCancelledCategoryNameMakesNothing()
    {
        QFETCH(QString, answer);
        addCategory(answer);
        QCOMPARE(frame->File11()->count(), 0);
        QVERIFY(ui().messages.isEmpty());
    }

    void anIllegalNameIsToldAndMakesNothing()
    {
        addCategory("News/Sport");
        QCOMPARE(frame->File11()->count(), 0);
        QCOMPARE(ui().messages.size(), 1);
        QVERIFY(ui().messages.first().text.contains("can't be the name of a file"));
        addCategory("News");
        addLink("a:b", "http://ab.example/");
        QCOMPARE(frame->File21()->count(), 0);
        QCOMPARE(ui().messages.size(), 2);
        // The address was not asked for a name that can't be used.
        QCOMPARE(ui().prompts.size(), 3);
    }

    void aLinkNeedsACategory()
    {
        button("AndNewLinkButton")->click();
        QCOMPARE(ui().messageTexts(), QStringList{"You need to select a category."});
        QVERIFY(ui().prompts.isEmpty());
    }

    void aNewLinkStartsWithBulletNine()
    {
        addCategory("News");
        addLink("Paper", "http://paper.example/");
        QCOMPARE(ui().prompts.at(1).text, QString("Enter the Display Link Name for the Page Link"));
        QCOMPARE(ui().prompts.at(2).text,
                 QString("Enter the URL to be associated with this Page link (You can copy from "
                         "the Address field of your Internet browser)"));
        QCOMPARE(ui().prompts.at(2).maxLength, 0);
        QCOMPARE(items(frame->File21()), QStringList{"Paper.ptr"});
        QCOMPARE(readBytes(startup("News/Paper.ptr")),
                 QByteArray("LinkName = Paper\r\nURLName = http://paper.example/\r\nBullet = "
                            "9\r\n\r\n"));
        QCOMPARE(frame->borderedBullet(), 9);
        QCOMPARE(frame->DisplayLinkTxt()->text(), QString("Paper"));
    }

    void aBlankLinkNameEndsBeforeTheAddressIsAsked()
    {
        addCategory("News");
        ui().answerPrompt("||Blank||");
        button("AndNewLinkButton")->click();
        QCOMPARE(ui().prompts.size(), 2);
        QCOMPARE(frame->File21()->count(), 0);
    }

    void aBlankAddressMakesNoLink()
    {
        addCategory("News");
        addLink("Paper", "");
        QCOMPARE(ui().prompts.size(), 3);
        QCOMPARE(frame->File21()->count(), 0);
    }

    void aDottedNameIsItsFileAndShowsWithoutDots()
    {
        addCategory("News");
        addLink("www.bbc.co.uk", "https://www.bbc.co.uk/");
        QCOMPARE(items(frame->File21()), QStringList{"www.bbc.co.uk.ptr"});
        selectLink("www.bbc.co.uk.ptr");
        QCOMPARE(frame->DisplayLinkTxt()->text(), QString("wwwbbccouk"));
        // A change of the address goes to the file the fields came from.
        typeAndLeave(frame->URLTxt(), "https://www.bbc.com/");
        QCOMPARE(items(frame->File21()), QStringList{"www.bbc.co.uk.ptr"});
        PageLink back;
        QVERIFY(LoadPageLink(startup("News/www.bbc.co.uk.ptr"), back).ok);
        QCOMPARE(back.URLName, QString("https://www.bbc.com/"));
    }

    void aCommaInANameComesBackEscapedInTheBox()
    {
        addCategory("News");
        addLink("Tom, Dick", "http://td.example/");
        selectLink("Tom, Dick.ptr");
        QCOMPARE(frame->DisplayLinkTxt()->text(), QString("Tom|4 Dick"));
        // A bullet chosen keeps the comma of the record.
        frame->Image111(2)->click();
        QVERIFY(readBytes(startup("News/Tom, Dick.ptr")).startsWith("LinkName = Tom|4 Dick\r\n"));
    }

    void renamingWritesASecondFileAndKeepsTheFirst()
    {
        addCategory("News");
        addLink("Paper", "http://paper.example/");
        selectLink("Paper.ptr");
        typeAndLeave(frame->DisplayLinkTxt(), "Daily");
        QCOMPARE(items(frame->File21()), (QStringList{"Daily.ptr", "Paper.ptr"}));
        QCOMPARE(frame->File21()->currentItem()->text(), QString("Daily.ptr"));
        PageLink back;
        QVERIFY(LoadPageLink(startup("News/Daily.ptr"), back).ok);
        QCOMPARE(back.URLName, QString("http://paper.example/"));
    }

    void anEmptiedNameWritesNothing()
    {
        addCategory("News");
        addLink("Paper", "http://paper.example/");
        selectLink("Paper.ptr");
        const QByteArray before = readBytes(startup("News/Paper.ptr"));
        frame->DisplayLinkTxt()->setFocus();
        frame->DisplayLinkTxt()->selectAll();
        QTest::keyClick(frame->DisplayLinkTxt(), Qt::Key_Delete);
        QTest::keyClick(frame->DisplayLinkTxt(), Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(QDir(startup("News")).entryList(QDir::Files), QStringList{"Paper.ptr"});
        QCOMPARE(readBytes(startup("News/Paper.ptr")), before);
        QVERIFY(!QFileInfo::exists(startup("News/.ptr")));
    }

    void aBulletClickMovesTheBorderAndIsSaved()
    {
        addCategory("News");
        addLink("Paper", "http://paper.example/");
        selectLink("Paper.ptr");
        frame->Image111(3)->click();
        QCOMPARE(frame->borderedBullet(), 3);
        PageLink back;
        QVERIFY(LoadPageLink(startup("News/Paper.ptr"), back).ok);
        QCOMPARE(back.Bullet, qint16(3));
        // Another Category clears the borders and the boxes.
        addCategory("Sport");
        QCOMPARE(frame->borderedBullet(), -1);
        QVERIFY(frame->DisplayLinkTxt()->text().isEmpty());
        QVERIFY(!frame->Image111(0)->isEnabled());
    }

    void aBulletOutOfRangeShowsTheNewLinkBulletAndTheFileStays()
    {
        QVERIFY(MakeCategory("News"));
        const QByteArray record = "LinkName = Far\r\nURLName = http://far/\r\nBullet = 77\r\n\r\n";
        QVERIFY(writeBytes(startup("News/Far.ptr"), record));
        frame->opened(false);
        selectCategory("News.Cat");
        selectLink("Far.ptr");
        QCOMPARE(frame->borderedBullet(), 9);
        QCOMPARE(readBytes(startup("News/Far.ptr")), record);
    }

    void aRecordCutShortOrOfJunkIsShownAsFarAsItGoesAndKept()
    {
        QVERIFY(MakeCategory("News"));
        QVERIFY(writeBytes(startup("News/Cut.ptr"), "LinkName = Cut\r\nURLNa"));
        const QByteArray junk(200, '\x07');
        QVERIFY(writeBytes(startup("News/Junk.ptr"), junk));
        frame->opened(false);
        selectCategory("News.Cat");
        selectLink("Cut.ptr");
        QCOMPARE(frame->DisplayLinkTxt()->text(), QString("Cut"));
        QCOMPARE(frame->URLTxt()->text(), QString());
        selectLink("Junk.ptr");
        QCOMPARE(frame->DisplayLinkTxt()->text(), QString());
        // Leaving the empty name box writes nothing; the junk stays as it was.
        frame->DisplayLinkTxt()->setFocus();
        QTest::keyClick(frame->DisplayLinkTxt(), Qt::Key_Return);
        QCOMPARE(readBytes(startup("News/Junk.ptr")), junk);
        QCOMPARE(readBytes(startup("News/Cut.ptr")), QByteArray("LinkName = Cut\r\nURLNa"));
    }

    void aCategoryWithoutItsFolderTakesANewLink()
    {
        QVERIFY(writeBytes(startup("Lost.Cat"), "directory file Lost\r\n"));
        frame->opened(false);
        selectCategory("Lost.Cat");
        QCOMPARE(frame->File21()->count(), 0);
        addLink("Found", "http://found.example/");
        QCOMPARE(items(frame->File21()), QStringList{"Found.ptr"});
    }

    void deletingACategoryKeepsItsLinksForACategoryOfTheSameName()
    {
        addCategory("News");
        addLink("Paper", "http://paper.example/");
        ui().answerMessage(JobUi::Answer::Yes);
        button("DeleteCatButton")->click();
        QCOMPARE(ui().messages.last().text, QString("Are you sure you want to delete 'News.Cat'?"));
        QCOMPARE(ui().messages.last().title, QString("Tarnwick"));
        QCOMPARE(frame->File11()->count(), 0);
        QVERIFY(!frame->File21()->isEnabled());
        QCOMPARE(frame->File21()->count(), 0);
        QVERIFY(QFileInfo(startup("News/Paper.ptr")).isFile());
        addCategory("News");
        QCOMPARE(items(frame->File21()), QStringList{"Paper.ptr"});
    }

    void answeringNoDeletesNothing()
    {
        addCategory("News");
        addLink("Paper", "http://paper.example/");
        ui().answerMessage(JobUi::Answer::No);
        button("DeleteLinkButton")->click();
        ui().answerMessage(JobUi::Answer::No);
        button("DeleteCatButton")->click();
        QVERIFY(QFileInfo(startup("News/Paper.ptr")).isFile());
        QVERIFY(QFileInfo(startup("News.Cat")).isFile());
    }

    void deletingALinkRemovesItsFile()
    {
        addCategory("News");
        addLink("Paper", "http://paper.example/");
        addLink("Radio", "http://radio.example/");
        selectLink("Paper.ptr");
        ui().answerMessage(JobUi::Answer::Yes);
        button("DeleteLinkButton")->click();
        QCOMPARE(ui().messages.last().text,
                 QString("Are you sure you want to delete 'Paper.ptr'?"));
        QCOMPARE(items(frame->File21()), QStringList{"Radio.ptr"});
        QVERIFY(frame->DisplayLinkTxt()->text().isEmpty());
        QVERIFY(frame->URLTxt()->text().isEmpty());
    }

    void theLogoIsSavedShownAndKeepsItsProportions()
    {
        QTemporaryDir pictures;
        QImage logo(300, 100, QImage::Format_RGB32);
        logo.fill(Qt::darkGreen);
        QVERIFY(logo.save(pictures.filePath("logo.png")));
        frame->services().chooseLogo = [&](const QString &) {
            return pictures.filePath("logo.png");
        };
        button("SearchLogoButton")->click();
        QCOMPARE(frame->LogoTxt()->text(), pictures.filePath("logo.png"));
        QCOMPARE(GetSetting(SettingKey::LogoPointer), pictures.filePath("logo.png"));
        QVERIFY(!frame->Image21()->pixmap().isNull());
        typeAndLeave(frame->SULogoH(), "60");
        QCOMPARE(GetSetting(SettingKey::LogoPointerHeight), QString("60"));
        QCOMPARE(GetSetting(SettingKey::LogoPointerWidth), QString("180"));
        // A path that leads nowhere is kept as typed and shows no picture.
        typeAndLeave(frame->LogoTxt(), "/no/such/logo.gif");
        QCOMPARE(GetSetting(SettingKey::LogoPointer), QString("/no/such/logo.gif"));
        QVERIFY(frame->Image21()->pixmap().isNull());
    }

    void coloursAndFontGoThroughThePickers()
    {
        QStringList starts;
        frame->services().chooseColour = [&](const QString &start, QWidget *) {
            starts << start;
            return std::optional<QString>("#123456");
        };
        frame->services().chooseFont = [&](const QString &start, QWidget *) {
            starts << start;
            return std::optional<QString>("DejaVu Sans");
        };
        button("SUTextColor")->click();
        button("SUTitleColor")->click();
        button("SUBackgroundColor")->click();
        button("SUPageFont")->click();
        QCOMPARE(starts, (QStringList{"#000000", "#7F7FFF", "#7FFF7F", "Arial"}));
        for (const QString &key :
             {SettingKey::SUTextColor, SettingKey::SUTitleColor, SettingKey::SUBackgroundColor})
            QCOMPARE(GetSetting(key), QString("#123456"));
        QCOMPARE(GetSetting(SettingKey::SUPageFont), QString("DejaVu Sans"));
        QVERIFY(button("SUTextColor")->styleSheet().contains("#123456"));
        // Cancelled pickers change nothing.
        frame->services().chooseColour = [](const QString &, QWidget *) {
            return std::optional<QString>();
        };
        button("SUTextColor")->click();
        QCOMPARE(GetSetting(SettingKey::SUTextColor), QString("#123456"));
    }

    void theRealColourPickerOpens()
    {
        bool seen = false;
        QTimer::singleShot(50, [&] {
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && widget->objectName() == "frmSelectColor") {
                    seen = true;
                    widget->close();
                }
            }
        });
        button("SUBackgroundColor")->click();
        QVERIFY(seen);
        QCOMPARE(GetSetting(SettingKey::SUBackgroundColor, "unset"), QString("unset"));
    }
};

TARNWICK_TEST_MAIN(TestPortalFrame)
#include "test_portalframe.moc"
