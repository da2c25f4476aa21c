#include "BuildFixture.h"
#include "HTMLMake.h"
#include "History.h"
#include "JobState.h"
#include "PhotoBuildInstall.h"
#include "PhotoFrame.h"
#include "PhotoFrameHistory.h"
#include "PhotoFrameInstall.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "StepRing.h"
#include "TestMain.h"
#include "TestWidgets.h"
#include "../TodaysPictures.h"
#include "WebSpace.h"
#include "frmAction.h"
#include "frmInputBox.h"
#include "frmMain.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QQueue>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCursor>
#include <QTimer>

using namespace BuildFixture;

// A new user's first photo page, on the real window: pictures chosen from a folder with the copy
// buttons, Build All pressed, the prompt answered, Take an Action closed; then the page taken up
// again from the Update Photo Page tab and sent once more without one picture.
class TestPhotoBuildGui : public QObject
{
    Q_OBJECT

private:
    // Answers what comes up while a click runs: the prompt from a queue, message boxes with OK,
    // Take an Action by closing it. Takes a picture of the window while the pictures go up when
    // TARNWICK_SCREENSHOT_DIR is set.
    struct Driver
    {
        QQueue<QString> answers;
        QStringList prompts;
        QStringList messages;
        QStringList actions;
        bool shot = false;
        frmMain *window = nullptr;
        // Cancel in the progress frame while this section goes up (0: never).
        int cancelAtSection = 0;
        bool cancelled = false;

        void tick()
        {
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                if (!widget->isVisible())
                    continue;
                if (auto *box = qobject_cast<frmInputBox *>(widget)) {
                    auto *label = box->findChild<QLabel *>(QStringLiteral("Label1"));
                    prompts << (label ? label->text() : QString());
                    auto *text = box->findChild<QLineEdit *>(QStringLiteral("Text1"));
                    if (!answers.isEmpty() && text)
                        text->setText(answers.dequeue());
                    box->findChild<QPushButton *>(QStringLiteral("InputBoxOK"))->click();
                    return;
                }
                if (auto *box = qobject_cast<QMessageBox *>(widget)) {
                    messages << box->text();
                    if (QAbstractButton *ok = box->button(QMessageBox::Ok))
                        ok->click();
                    else if (QAbstractButton *yes = box->button(QMessageBox::Yes))
                        yes->click();
                    else
                        box->accept();
                    return;
                }
                if (auto *action = qobject_cast<frmAction *>(widget)) {
                    actions << window->state().CurrentPointer;
                    action->hide();
                    return;
                }
            }
            const QString status = window->Status_text()->text();
            const QString stepOf = window->Stepof()->text();
            const int section = stepOf.section(QLatin1Char(' '), 3, 3)
                                    .toInt(); // "Currently loading section n of m"
            if (cancelAtSection > 0 && !cancelled && section >= cancelAtSection) {
                cancelled = true;
                if (auto *cancel = window->findChild<QPushButton *>(QStringLiteral("CancelButton")))
                    cancel->click();
            }
            if (!shot && status.startsWith(QStringLiteral("Uploading the ")) &&
                !window->Stepof()->text().contains(QStringLiteral("section 2 "))) {
                shot = true;
                const QString folder = qEnvironmentVariable("TARNWICK_SCREENSHOT_DIR");
                if (!folder.isEmpty())
                    window->grab().save(folder + QStringLiteral("/photobuild_progress.png"));
            }
        }
    };

    static QPushButton *button(QWidget *root, const QString &name)
    {
        return TestWidgets::child<QPushButton>(root, name);
    }

    // Copies one picture of File2 with the copy button of index, in group.
    static void copyPicture(PhotoFrame *frame, const QString &name, int copyButton,
                            const QString &group)
    {
        auto *file2 = frame->findChild<QListWidget *>(QStringLiteral("File2"));
        auto *preFix = frame->findChild<QLineEdit *>(QStringLiteral("PreFix"));
        QVERIFY(file2 && preFix);
        preFix->setText(group);
        file2->clearSelection();
        const auto items = file2->findItems(name, Qt::MatchExactly);
        QVERIFY2(!items.isEmpty(), qPrintable(name));
        items.first()->setSelected(true);
        button(frame, QStringLiteral("CopyButton_%1").arg(copyButton))->click();
    }

private slots:
    void initTestCase() { QVERIFY(installTemplates()); }

    void aNewUserSendsAPageAndSendsItAgain()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QTemporaryDir source, working;
        const QStringList names = {QStringLiteral("Harbour.jpg"), QStringLiteral("Bridge.jpg"),
                                   QStringLiteral("Museum.jpg"),  QStringLiteral("Park.jpg"),
                                   QStringLiteral("Zoo.jpg"),     QStringLiteral("Aquarium.jpg"),
                                   QStringLiteral("Skyline.jpg"), QStringLiteral("Tree.jpg"),
                                   QStringLiteral("Ferry.jpg"),   QStringLiteral("Market.jpg"),
                                   QStringLiteral("Spare.jpg"),   QStringLiteral("Station.jpg")};
        for (int i = 0; i < names.size(); ++i)
            QVERIFY(makePhoto(source.filePath(names.at(i)), QColor::fromHsv(i * 30, 180, 220), 640,
                              480));
        SaveSetting(SettingKey::TempPath, working.path());
        SaveSetting(QStringLiteral("CopyPath"), source.path());
        SaveSetting(SettingKey::PromptForTitle, QStringLiteral("False"));
        SaveSetting(SettingKey::PromptForDescription, QStringLiteral("False"));

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        PhotoBuildController *build = InstallPhotoBuild(window, *frame, *new WebSpace(window, ftp));
        frmAction::Install(state, &window, [&window] { window.HelpButton_Click(); });
        frame->readFolders();
        window.txtServer()->setText(server.server());
        window.txtUser()->setText(server.user());
        window.txtPassword()->setText(server.password());
        window.txtWebSite()->setText(QStringLiteral("www.example.com"));
        window.resize(1200, 800);
        window.show();
        window.FunctionSelectButton_Click(0);

        Driver driver;
        driver.window = &window;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(2);

        // Twelve pictures onto the list: two share group 50, one has group 0, one turned left.
        const QStringList groups = {
            QStringLiteral("10"), QStringLiteral("20"), QStringLiteral("30"),
            QStringLiteral("40"), QStringLiteral("50"), QStringLiteral("50"),
            QStringLiteral("60"), QStringLiteral("70"), QStringLiteral("80"),
            QStringLiteral("90"), QStringLiteral("0"),  QStringLiteral("100")};
        for (int i = 0; i < names.size(); ++i)
            copyPicture(frame, names.at(i), names.at(i) == QStringLiteral("Tree.jpg") ? 1 : 0,
                        groups.at(i));
        QCOMPARE(ListPictureFiles(working.path()).size(), 12);
        QVERIFY(QFileInfo(working.filePath(QStringLiteral("00070_Tree_Left.jpg"))).isFile());
        QCOMPARE(QImage(working.filePath(QStringLiteral("00070_Tree_Left.jpg"))).size(),
                 QSize(480, 640));

        driver.answers.enqueue(QStringLiteral("Trip to NY May 2007"));
        QPushButton *buildAll = button(&window, QStringLiteral("cmdBuildAll"));
        QVERIFY(buildAll && buildAll->isVisible());
        buildAll->click();
        QCOMPARE(build->lastOutcome(), PhotoBuildOutcome::Sent);

        const QString folder = server.localPath(QStringLiteral("/Photos/Trip_to_NY_May_2007"));
        const QStringList expected = {
            QStringLiteral("Sml_00010_Harbour.jpg"),  QStringLiteral("Sml_00020_Bridge.jpg"),
            QStringLiteral("Sml_00030_Museum.jpg"),   QStringLiteral("Sml_00040_Park.jpg"),
            QStringLiteral("Sml_00050_Aquarium.jpg"), QStringLiteral("Sml_00050_Zoo.jpg"),
            QStringLiteral("Sml_00060_Skyline.jpg"),  QStringLiteral("Sml_00070_Tree_Left.jpg"),
            QStringLiteral("Sml_00080_Ferry.jpg"),    QStringLiteral("Sml_00090_Market.jpg"),
            QStringLiteral("Sml_00100_Station.jpg")};
        QCOMPARE(thumbnailsOf(folder + QStringLiteral("/Photos.htm")), expected);
        const QStringList onServer = QDir(folder).entryList(QDir::Files);
        for (const QString &link : linksOf(folder + QStringLiteral("/Photos.htm")))
            QVERIFY2(onServer.contains(link), qPrintable(link));
        QCOMPARE(onServer.size(), 25);
        const QString pointer =
            QStringLiteral("http://www.example.com/Photos/Trip_to_NY_May_2007/Photos.htm");
        QCOMPARE(QGuiApplication::clipboard()->text(), pointer);
        QCOMPARE(driver.actions, QStringList({pointer}));
        QVERIFY(ListPictureFiles(working.path()).isEmpty());
        QVERIFY(QFileInfo(Folders::HistoryFolder() + QStringLiteral("/Trip_to_NY_May_2007.hst"))
                    .isFile());
        QVERIFY(!window.ProgressFrame()->isVisible());
        // FTP_pointer on the History tab: one line per thumbnail sent, group 0 too.
        auto *ftpPointer = window.findChild<QPlainTextEdit *>(QStringLiteral("FTP_pointer"));
        QVERIFY(ftpPointer && ftpPointer->isReadOnly());
        QVERIFY(frame->historyPage()->isAncestorOf(ftpPointer));
        const QStringList pointers = ftpPointer->toPlainText().split(QLatin1Char('\n'));
        QCOMPARE(pointers.size(), 12);
        QVERIFY(pointers.contains(
            QStringLiteral("www.example.com/Photos/Trip_to_NY_May_2007/Sml_00070_Tree_Left.jpg")));
        QVERIFY(pointers.contains(
            QStringLiteral("www.example.com/Photos/Trip_to_NY_May_2007/Sml_00000_Spare.jpg")));
        QCOMPARE(build->FTP_pointer().count(QStringLiteral("\r\n")), 12);
        QCOMPARE(driver.messages.size(), 1); // the time of the turn to the left
        QVERIFY(driver.messages.at(0).startsWith(QStringLiteral("Time = ")));

        // The page's pointer as a link for an e-mail.
        auto *copyLink = button(&window, QStringLiteral("CopyPagePointerButton"));
        QVERIFY(copyLink && copyLink->isEnabled());
        copyLink->click();
        QVERIFY(GetHTMLClipboard().contains(QStringLiteral("Click Here to view photos of")));

        // Update Photo Page: the History file loaded, one picture off, sent again.
        frame->TabStrip2()->setCurrentIndex(1);
        auto *file4 = window.findChild<QListWidget *>(QStringLiteral("File4_0"));
        QVERIFY(file4);
        const auto found =
            file4->findItems(QStringLiteral("Trip_to_NY_May_2007.hst"), Qt::MatchExactly);
        QVERIFY(!found.isEmpty());
        found.first()->setSelected(true);
        auto *loadHst = button(&window, QStringLiteral("LoadHst"));
        QVERIFY(loadHst->isEnabled());
        if (const QString shots = qEnvironmentVariable("TARNWICK_SCREENSHOT_DIR"); !shots.isEmpty())
            window.grab().save(shots + QStringLiteral("/photobuild_history_tab.png"));
        window.shapeEvent(1);
        loadHst->click();
        QCOMPARE(ListPictureFiles(working.path()).size(), 12);
        QCOMPARE(frame->TabStrip2()->currentIndex(), 0);
        // The pictures are on the list again: the rings point at Build All next.
        QVERIFY(window.ring(1)->isShown());
        QCOMPARE(window.ring(1)->target(), buildAll);
        QCOMPARE(window.ring(1)->colour(), frmMain::RingYellow);
        QVERIFY(window.ring(2)->isShown() && window.ring(3)->isShown());
        QVERIFY(!window.ring(0)->isShown());
        QCOMPARE(button(&window, QStringLiteral("ShowHistoryButton"))->text(),
                 QStringLiteral("Display History List"));

        auto *file3 = window.findChild<QListWidget *>(QStringLiteral("File3"));
        const auto zoo = file3->findItems(QStringLiteral("00050_Zoo.jpg"), Qt::MatchExactly);
        QVERIFY(!zoo.isEmpty());
        file3->clearSelection();
        zoo.first()->setSelected(true);
        frame->readyToSend()->DeleteFromReady();
        QCOMPARE(ListPictureFiles(working.path()).size(), 11);

        driver.answers.enqueue(QString()); // the saved name, as offered
        const int messagesBefore = int(driver.messages.size());
        buildAll->click();
        QCOMPARE(build->lastOutcome(), PhotoBuildOutcome::Sent);
        QCOMPARE(driver.prompts.last().isEmpty(), false);
        QCOMPARE(int(driver.messages.size()), messagesBefore);
        QStringList without = expected;
        without.removeAll(QStringLiteral("Sml_00050_Zoo.jpg"));
        QCOMPARE(thumbnailsOf(folder + QStringLiteral("/Photos.htm")), without);
        QVERIFY(QFileInfo(folder + QStringLiteral("/Sml_00050_Zoo.jpg")).isFile());
        pump.stop();
    }
    // A folder as a phone and a camera of today fill it: a HEIC turned by its EXIF block and in
    // Display P3, a WebP, a PNG with transparency, a 16-bit TIFF, and a ".heic" of junk. Each
    // picture shows in the list and in the preview, goes onto the list as a JPEG, and reaches
    // the server upright and in sRGB as a colour-managed converter makes it; the junk is named
    // in a message and the rest goes on.
    void todaysPicturesGoUpAsUprightJpegs()
    {
        using namespace TodaysPictures;
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QTemporaryDir source, working;
        QString why;
        QVERIFY2(writeHeic(source.filePath(QStringLiteral("IMG_0042.HEIC")), 800, 600, &why),
                 qPrintable(why));
        QVERIFY(scene(640, 480).save(source.filePath(QStringLiteral("Lake.webp")), "WEBP", 90));
        QVERIFY(transparentPicture(400, 200).save(source.filePath(QStringLiteral("Logo.png"))));
        QVERIFY(deepScene(640, 480).save(source.filePath(QStringLiteral("Scan.tif")), "TIFF"));
        QFile junk(source.filePath(QStringLiteral("Broken.heic")));
        QVERIFY(junk.open(QIODevice::WriteOnly) && junk.write(QByteArray(300, 'j')) == 300);
        junk.close();
        SaveSetting(SettingKey::TempPath, working.path());
        SaveSetting(QStringLiteral("CopyPath"), source.path());
        SaveSetting(SettingKey::PromptForTitle, QStringLiteral("False"));
        SaveSetting(SettingKey::PromptForDescription, QStringLiteral("False"));

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        PhotoBuildController *build = InstallPhotoBuild(window, *frame, *new WebSpace(window, ftp));
        frmAction::Install(state, &window, [&window] { window.HelpButton_Click(); });
        frame->readFolders();
        window.txtServer()->setText(server.server());
        window.txtUser()->setText(server.user());
        window.txtPassword()->setText(server.password());
        window.txtWebSite()->setText(QStringLiteral("www.example.com"));
        window.resize(1200, 800);
        window.show();
        window.FunctionSelectButton_Click(0);
        Driver driver;
        driver.window = &window;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(2);

        auto *file2 = frame->findChild<QListWidget *>(QStringLiteral("File2"));
        const QStringList names = {QStringLiteral("Broken.heic"), QStringLiteral("IMG_0042.HEIC"),
                                   QStringLiteral("Lake.webp"), QStringLiteral("Logo.png"),
                                   QStringLiteral("Scan.tif")};
        QStringList listed;
        for (int i = 0; i < file2->count(); ++i)
            listed << file2->item(i)->text();
        QCOMPARE(listed, names);
        // Each picture shows in the preview when its row is clicked; the junk leaves it empty.
        auto *preview = frame->findChild<QLabel *>(QStringLiteral("CurrentImage"));
        for (int i = 0; i < file2->count(); ++i) {
            QTest::mouseClick(file2->viewport(), Qt::LeftButton, Qt::NoModifier,
                              file2->visualItemRect(file2->item(i)).center());
            QCOMPARE(preview->pixmap().isNull(), names.at(i) == QStringLiteral("Broken.heic"));
        }
        // The upright HEIC shows wider than tall.
        QTest::mouseClick(file2->viewport(), Qt::LeftButton, Qt::NoModifier,
                          file2->visualItemRect(file2->item(1)).center());
        QVERIFY(preview->pixmap().width() > preview->pixmap().height());

        file2->selectAll();
        button(frame, QStringLiteral("CopyButton_0"))->click();
        QCOMPARE(ListPictureFiles(working.path()),
                 QStringList({QStringLiteral("00050_IMG_0042.jpg"), QStringLiteral("00050_Lake.jpg"),
                              QStringLiteral("00050_Logo.jpg"), QStringLiteral("00050_Scan.jpg")}));
        QCOMPARE(driver.messages.size(), 1);
        QVERIFY2(driver.messages.at(0).contains(QStringLiteral("Broken.heic")),
                 qPrintable(driver.messages.at(0)));
        QCOMPARE(state.current<PhotoPage>().PhotoNumber, qint16(4));

        driver.answers.enqueue(QStringLiteral("Phone photos"));
        button(&window, QStringLiteral("cmdBuildAll"))->click();
        QCOMPARE(build->lastOutcome(), PhotoBuildOutcome::Sent);
        pump.stop();
        QCOMPARE(driver.messages.size(), 1);

        const QString folder = server.localPath(QStringLiteral("/Photos/Phone_photos"));
        const QStringList onServer = QDir(folder).entryList(QDir::Files, QDir::Name);
        QCOMPARE(onServer.size(), 2 * 4 + 1);
        for (const QString &name : onServer) {
            if (name == QStringLiteral("Photos.htm"))
                continue;
            QFile copy(folder + QLatin1Char('/') + name);
            QVERIFY(copy.open(QIODevice::ReadOnly));
            QVERIFY2(copy.read(3) == QByteArray("\xFF\xD8\xFF", 3), qPrintable(name));
        }
        // Upright, and in the colours the reference converter gives the Display P3 scene.
        const QImage large(folder + QStringLiteral("/Lrg_00050_IMG_0042.jpg"));
        QCOMPARE(large.size(), QSize(240, 180));
        const QImage reference = referenceToSRgb(displayP3Scene(800, 600))
                                     .scaled(240, 180, Qt::IgnoreAspectRatio,
                                             Qt::SmoothTransformation);
        const double difference = meanDeltaE(large, reference);
        qInfo("Lrg_ copy of the HEIC: mean CIELAB difference %.2f", difference);
        QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
        const QImage logo(folder + QStringLiteral("/Lrg_00050_Logo.jpg"));
        QVERIFY(qGray(logo.pixel(logo.width() - 5, logo.height() / 2)) > 240);
        QCOMPARE(QImage(folder + QStringLiteral("/Sml_00050_Scan.jpg")).size(), QSize(96, 72));
        for (const QString &link : linksOf(folder + QStringLiteral("/Photos.htm")))
            QVERIFY2(onServer.contains(link), qPrintable(link));
    }

    // Save All of a page without a name asks as Build All does: the name is cleaned of what a
    // file name can't hold, and with title_prompt ticked the title and introduction are asked.
    // A new page of one picture saved by Save All on the real window, the name prompt answered
    // with name and the later prompts as offered; what the prompts asked and the boxes said.
    static std::pair<QStringList, QStringList> saveAllOfANewPage(JobState &state, bool titlePrompt,
                                                                 const QString &name)
    {
        QTemporaryDir source, working;
        makePhoto(source.filePath(QStringLiteral("Pier.jpg")), Qt::darkCyan);
        SaveSetting(SettingKey::TempPath, working.path());
        SaveSetting(QStringLiteral("CopyPath"), source.path());

        cFTP ftp(state);
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        InstallPhotoBuild(window, *frame, *new WebSpace(window, ftp));
        frame->readFolders();
        window.show();
        window.FunctionSelectButton_Click(0);
        frame->readyToSend()->titlePrompt()->setChecked(titlePrompt);

        Driver driver;
        driver.window = &window;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(2);
        copyPicture(frame, QStringLiteral("Pier.jpg"), 0, QStringLiteral("50"));
        driver.answers.enqueue(name);
        button(frame, QStringLiteral("EditButtons_3"))->click();
        pump.stop();
        return {driver.prompts, driver.messages};
    }

    void saveAllNamesTheNewPageWithTheBuildPrompts()
    {
        // The name with characters a file name can't hold; the title and the introduction as
        // offered.
        JobState state;
        const auto [prompts, messages] =
            saveAllOfANewPage(state, true, QStringLiteral("Trip/NY: May*"));

        QCOMPARE(prompts.size(), 3);
        QVERIFY(prompts.at(0).startsWith(QStringLiteral("Enter the name of the webpage")));
        QCOMPARE(prompts.at(1), QStringLiteral("Enter a title..."));
        QCOMPARE(prompts.at(2), QStringLiteral("Enter an introduction to the photo group..."));
        QVERIFY(messages.isEmpty());
        const PhotoPage &page = state.current<PhotoPage>();
        QCOMPARE(page.FileName, QStringLiteral("TripNY_May"));
        QCOMPARE(page.Title, QStringLiteral("Photos"));
        QCOMPARE(page.GroupInfo, QStringLiteral("Below are some photos from us......."));

        PhotoPage saved;
        const QString path = Folders::HistoryFolder() + QStringLiteral("/TripNY_May.hst");
        QVERIFY(QFileInfo(path).isFile());
        QVERIFY(ReadHistoryFile(saved, path).ok);
        QCOMPARE(saved.Title, QStringLiteral("Photos"));
        QCOMPARE(saved.GroupInfo, QStringLiteral("Below are some photos from us......."));
        QCOMPARE(saved.PhotoNumber, 1);
    }

    void saveAllWithANameOfOnlyBadCharactersSaysSoAndSavesNothing()
    {
        const QStringList before = QDir(Folders::HistoryFolder()).entryList(QDir::Files);
        JobState state;
        const auto [prompts, messages] = saveAllOfANewPage(state, false, QStringLiteral("//**??"));

        QCOMPARE(prompts.size(), 1);
        QCOMPARE(messages.size(), 1);
        QVERIFY2(messages.at(0).startsWith(QStringLiteral("The list was not saved")),
                 qPrintable(messages.at(0)));
        QCOMPARE(QDir(Folders::HistoryFolder()).entryList(QDir::Files), before);
    }

    // On the History tab a file chosen once leaves LoadHst and DeleteHstButton enabled and
    // ShowHst is always there: with nothing selected each of them says so.
    void theHistoryButtonsWithNothingSelectedSaySo()
    {
        QTemporaryDir working;
        SaveSetting(SettingKey::TempPath, working.path());
        PhotoPage kept;
        kept.FileName = QStringLiteral("Kept");
        QVERIFY(SaveHistory(kept).ok);

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        InstallPhotoBuild(window, *frame, *new WebSpace(window, ftp));
        frame->readFolders();
        window.show();
        window.FunctionSelectButton_Click(0);
        frame->TabStrip2()->setCurrentIndex(1);

        Driver driver;
        driver.window = &window;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(2);

        auto *file4 = window.findChild<QListWidget *>(QStringLiteral("File4_0"));
        auto *loadHst = button(&window, QStringLiteral("LoadHst"));
        auto *showHst = button(&window, QStringLiteral("ShowHst"));
        auto *deleteHst = button(&window, QStringLiteral("DeleteHstButton"));
        QVERIFY(file4 && loadHst && showHst && deleteHst);
        frame->historyPage()->refreshFiles();
        QVERIFY(!loadHst->isEnabled());
        QVERIFY(!deleteHst->isEnabled());
        QVERIFY(showHst->isEnabled());

        QTest::mouseClick(showHst, Qt::LeftButton);
        QCOMPARE(driver.messages, QStringList{QStringLiteral("No file has been selected.")});

        // A click on the file, and a second one with Ctrl that unselects it again.
        const auto items = file4->findItems(QStringLiteral("Kept.hst"), Qt::MatchExactly);
        QVERIFY(!items.isEmpty());
        const QPoint at = file4->visualItemRect(items.first()).center();
        QTest::mouseClick(file4->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        QVERIFY(loadHst->isEnabled() && deleteHst->isEnabled());
        QTest::mouseClick(file4->viewport(), Qt::LeftButton, Qt::ControlModifier, at);
        QVERIFY(file4->selectedItems().isEmpty());
        QVERIFY(loadHst->isEnabled() && deleteHst->isEnabled() && showHst->isEnabled());

        driver.messages.clear();
        QTest::mouseClick(loadHst, Qt::LeftButton);
        QCOMPARE(driver.messages, QStringList{QStringLiteral("Select a History file and retry.")});

        driver.messages.clear();
        QTest::mouseClick(deleteHst, Qt::LeftButton);
        QCOMPARE(driver.messages,
                 (QStringList{QStringLiteral("Are you sure you want to delete the selected items?"),
                              QStringLiteral("No file has been selected.")}));
        QVERIFY(QFileInfo(Folders::HistoryFolder() + QStringLiteral("/Kept.hst")).isFile());

        driver.messages.clear();
        QTest::mouseClick(showHst, Qt::LeftButton);
        QCOMPARE(driver.messages, QStringList{QStringLiteral("No file has been selected.")});
        pump.stop();
    }

    // Text typed after pressing "Title" goes beside the picture last clicked; the page built
    // afterwards keeps its title.
    void typingAfterTitleChangesTheLastClickedCaptionNotTheTitle()
    {
        QTemporaryDir source, working;
        QVERIFY(makePhoto(source.filePath(QStringLiteral("Tree.jpg")), Qt::darkGreen));
        QVERIFY(makePhoto(source.filePath(QStringLiteral("Lake.jpg")), Qt::darkBlue));
        SaveSetting(SettingKey::TempPath, working.path());
        SaveSetting(QStringLiteral("CopyPath"), source.path());
        SaveSetting(SettingKey::PromptForTitle, QStringLiteral("False"));
        SaveSetting(SettingKey::PromptForDescription, QStringLiteral("False"));

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        PhotoBuildController *build = InstallPhotoBuild(window, *frame, *new WebSpace(window, ftp));
        frame->readFolders();
        window.show();
        window.FunctionSelectButton_Click(0);
        QVERIFY(window.RunWithoutMenu());
        window.RunWithoutMenu()->setChecked(true);

        Driver driver;
        driver.window = &window;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(2);

        copyPicture(frame, QStringLiteral("Tree.jpg"), 0, QStringLiteral("50"));
        copyPicture(frame, QStringLiteral("Lake.jpg"), 0, QStringLiteral("50"));
        PhotoPage &page = state.current<PhotoPage>();
        page.FileName = QStringLiteral("Evening");
        page.Title = QStringLiteral("Our trip");

        auto *file3 = frame->findChild<QListWidget *>(QStringLiteral("File3"));
        const auto tree = file3->findItems(QStringLiteral("00050_Tree.jpg"), Qt::MatchExactly);
        QVERIFY(!tree.isEmpty());
        QTest::mouseClick(file3->viewport(), Qt::LeftButton, Qt::NoModifier,
                          file3->visualItemRect(tree.first()).center());
        button(frame, QStringLiteral("EditButtons_0"))->click();
        auto *text1 = frame->findChild<QPlainTextEdit *>(QStringLiteral("Text1"));
        QVERIFY(text1);
        QCOMPARE(text1->toPlainText(), QStringLiteral("Our trip"));
        text1->setFocus();
        text1->moveCursor(QTextCursor::End);
        QTest::keyClicks(text1, QStringLiteral(" at dusk"));
        QCOMPARE(page.Title, QStringLiteral("Our trip"));

        driver.answers.enqueue(QString()); // the name as offered
        button(&window, QStringLiteral("cmdBuildAll"))->click();
        pump.stop();
        QCOMPARE(build->lastOutcome(), PhotoBuildOutcome::BuiltLocally);

        QFile built(working.filePath(QStringLiteral("images/Evening/Photos.htm")));
        QVERIFY(built.open(QIODevice::ReadOnly));
        const QString html = QString::fromUtf8(built.readAll());
        QVERIFY(html.contains(QStringLiteral("<h1>Our trip</h1>")));
        QVERIFY(!html.contains(QStringLiteral("<h1>Our trip at dusk</h1>")));
        // As the caption (and as the picture's alternative text) of one photo only.
        const QString shown = shownPage(built.fileName());
        QCOMPARE(shown.count(QStringLiteral("<figcaption>Our trip at dusk</figcaption>")), 1);
        QCOMPARE(shown.count(QStringLiteral("alt=\"Our trip at dusk\"")), 1);
        const qsizetype treeAt = html.indexOf(QStringLiteral("Sml_00050_Tree.jpg"));
        const qsizetype captionAt = html.indexOf(QStringLiteral("Our trip at dusk"));
        QVERIFY(treeAt > 0 && captionAt > treeAt);
        QCOMPARE(html.indexOf(QStringLiteral("</figure>"), treeAt),
                 html.indexOf(QStringLiteral("</figure>"), captionAt));
    }

    void theProgressFramesCancelStopsAndASecondPressFinishes()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QTemporaryDir source, working;
        for (int i = 0; i < 6; ++i)
            QVERIFY(makePhoto(source.filePath(QStringLiteral("P%1.jpg").arg(i)),
                              QColor::fromHsv(i * 50, 180, 220)));
        SaveSetting(SettingKey::TempPath, working.path());
        SaveSetting(QStringLiteral("CopyPath"), source.path());

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        PhotoBuildController *build = InstallPhotoBuild(window, *frame, *new WebSpace(window, ftp));
        frmAction::Install(state, &window, [&window] { window.HelpButton_Click(); });
        frame->readFolders();
        window.txtServer()->setText(server.server());
        window.txtUser()->setText(server.user());
        window.txtPassword()->setText(server.password());
        window.txtWebSite()->setText(QStringLiteral("www.example.com"));
        window.show();
        window.FunctionSelectButton_Click(0);

        Driver driver;
        driver.window = &window;
        driver.shot = true;
        driver.cancelAtSection = 6;
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(1);

        for (int i = 0; i < 6; ++i)
            copyPicture(frame, QStringLiteral("P%1.jpg").arg(i), 0, QStringLiteral("50"));
        QGuiApplication::clipboard()->setText(QStringLiteral("before"));
        driver.answers.enqueue(QStringLiteral("Stopped"));
        auto *buildAll = button(&window, QStringLiteral("cmdBuildAll"));
        buildAll->click();
        QVERIFY(driver.cancelled);
        QCOMPARE(build->lastOutcome(), PhotoBuildOutcome::Cancelled);
        QVERIFY(driver.messages.isEmpty());
        QVERIFY(driver.actions.isEmpty());
        QVERIFY(QGuiApplication::clipboard()->text() !=
                QStringLiteral("http://www.example.com/Photos/Stopped/Photos.htm"));
        QCOMPARE(ListPictureFiles(working.path()).size(), 6);
        QVERIFY(!window.ProgressFrame()->isVisible());
        const QString folder = server.localPath(QStringLiteral("/Photos/Stopped"));
        QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/Photos.htm")));

        driver.cancelAtSection = 0;
        driver.answers.enqueue(QString());
        buildAll->click();
        QCOMPARE(build->lastOutcome(), PhotoBuildOutcome::Sent);
        QCOMPARE(QDir(folder).entryList(QDir::Files).size(), 13);
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QStringLiteral("http://www.example.com/Photos/Stopped/Photos.htm"));
        pump.stop();
    }
};

TARNWICK_TEST_MAIN(TestPhotoBuildGui)
#include "test_photobuild_gui.moc"
