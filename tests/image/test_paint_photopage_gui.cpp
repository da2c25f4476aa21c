#include "BuildFixture.h"
#include "JobState.h"
#include "PaintInstall.h"
#include "PhotoBuildInstall.h"
#include "PhotoFrame.h"
#include "PhotoFrameInstall.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TestMain.h"
#include "WebSpace.h"
#include "cDIBSection.h"
#include "frmAction.h"
#include "frmInputBox.h"
#include "frmMain.h"
#include "frmPaint.h"
#include "frmZoom.h"
#include "mdlFilter.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QQueue>
#include <QTemporaryDir>
#include <QTimer>

using namespace BuildFixture;

namespace {

// Answers what comes up while the photo page goes out: the page name, message boxes, Take an
// Action.
struct Driver
{
    QQueue<QString> answers;
    QStringList messages;
    void tick()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible())
                continue;
            if (auto *box = qobject_cast<frmInputBox *>(widget)) {
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
                else
                    box->accept();
                return;
            }
            if (qobject_cast<frmAction *>(widget)) {
                widget->hide();
                return;
            }
        }
    }
};

frmPaint *openPaintWindow()
{
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (auto *paint = qobject_cast<frmPaint *>(widget); paint && paint->isVisible())
            return paint;
    return nullptr;
}

void trigger(QWidget *window, const char *name)
{
    auto *action = window->findChild<QAction *>(QLatin1String(name));
    QVERIFY2(action && action->isEnabled(), name);
    action->trigger();
}

bool isGrey(QRgb p, int tolerance)
{
    return qAbs(qRed(p) - qGreen(p)) <= tolerance && qAbs(qGreen(p) - qBlue(p)) <= tolerance;
}

} // namespace

// A new user paints a photo of the Ready to Send list: the Paint button under the preview opens
// it, two filters go on, one comes off, it is saved as JPEG and as GIF, and the page sent
// afterwards carries the painted photo.
class TestPaintPhotoPageGui : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY(installTemplates()); }

    void aPhotoIsPaintedAndThePageCarriesIt()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QTemporaryDir source, working, elsewhere;
        QVERIFY(makePhoto(source.filePath(QStringLiteral("Harbour.jpg")), QColor(200, 60, 30), 640,
                          480));
        SaveSetting(SettingKey::TempPath, working.path());
        SaveSetting(QStringLiteral("CopyPath"), source.path());
        SaveSetting(SettingKey::PromptForTitle, QStringLiteral("False"));
        SaveSetting(SettingKey::PromptForDescription, QStringLiteral("False"));

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        InstallPaint(window);
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
        QTimer pump;
        QObject::connect(&pump, &QTimer::timeout, [&driver] { driver.tick(); });
        pump.start(2);

        // The photo onto the Ready to Send list, and shown in the preview.
        auto *file2 = frame->findChild<QListWidget *>(QStringLiteral("File2"));
        file2->clearSelection();
        file2->findItems(QStringLiteral("Harbour.jpg"), Qt::MatchExactly)
            .first()
            ->setSelected(true);
        frame->findChild<QPushButton *>(QStringLiteral("CopyButton_0"))->click();
        const QString onList = working.filePath(QStringLiteral("00050_Harbour.jpg"));
        QVERIFY(QFileInfo::exists(onList));
        auto *file3 = frame->findChild<QListWidget *>(QStringLiteral("File3"));
        QListWidgetItem *row =
            file3->findItems(QStringLiteral("00050_Harbour.jpg"), Qt::MatchExactly).first();
        QTest::mouseClick(file3->viewport(), Qt::LeftButton, {},
                          file3->visualItemRect(row).center());
        QVERIFY(!frame->findChild<QLabel *>(QStringLiteral("CurrentImage"))->pixmap().isNull());

        // Paint.
        auto *paintButton = frame->findChild<QPushButton *>(QStringLiteral("Command4"));
        QVERIFY(paintButton && paintButton->isVisible());
        QCOMPARE(paintButton->text(), QStringLiteral("Paint"));
        QTest::mouseClick(paintButton, Qt::LeftButton);
        QPointer<frmPaint> paint = openPaintWindow();
        QVERIFY(paint);
        QCOMPARE(paint->windowTitle(), onList + QStringLiteral(" - Paint"));

        cDIBSection original;
        QVERIFY(original.CreateFromFile(onList));
        QImage expected = original.hDIB().copy();
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterGrayscale, expected, x1, y1, x2, y2);

        trigger(paint, "mnuGrayscale");
        trigger(paint, "mnuEmboss");
        QVERIFY(paint->document().picture() != expected);
        trigger(paint, "mnuUndo");
        QCOMPARE(paint->document().picture(), expected);

        // Saved over the photo as JPEG, and as a GIF elsewhere.
        trigger(paint, "mnuSave");
        QVERIFY(!paint->document().Dirty());
        const QString gif = elsewhere.filePath(QStringLiteral("Harbour.gif"));
        paint->chooseSaveFileHook = [&gif](const QString &) { return gif; };
        trigger(paint, "mnuSaveAs");
        QCOMPARE(paint->windowTitle(), gif + QStringLiteral(" - Paint"));
        paint->close();
        QTRY_VERIFY(!paint);

        // Reopened: the JPEG holds the grey picture (to the JPEG's few levels), the GIF exactly.
        QPointer<frmPaint> again = frmPaint::OpenPaint(onList);
        const QImage jpeg = again->document().picture();
        QCOMPARE(jpeg.size(), expected.size());
        int worst = 0;
        for (int y = 0; y < jpeg.height(); y += 7)
            for (int x = 0; x < jpeg.width(); x += 7) {
                worst = std::max(worst, qAbs(qGray(jpeg.pixel(x, y)) - qRed(expected.pixel(x, y))));
                QVERIFY(isGrey(jpeg.pixel(x, y), 3));
            }
        QVERIFY2(worst <= 4, qPrintable(QString::number(worst)));
        again->close();
        QTRY_VERIFY(!again);
        QPointer<frmPaint> gifWindow = frmPaint::OpenPaint(gif);
        QCOMPARE(gifWindow->document().picture(), expected);
        gifWindow->close();
        QTRY_VERIFY(!gifWindow);

        // The page sent now carries the painted photo.
        driver.answers.enqueue(QStringLiteral("Painted Harbour"));
        window.findChild<QPushButton *>(QStringLiteral("cmdBuildAll"))->click();
        QCOMPARE(build->lastOutcome(), PhotoBuildOutcome::Sent);
        const QString folder = server.localPath(QStringLiteral("/Photos/Painted_Harbour"));
        const QImage large(folder + QStringLiteral("/Lrg_00050_Harbour.jpg"));
        const QImage thumbnail(folder + QStringLiteral("/Sml_00050_Harbour.jpg"));
        QVERIFY(!large.isNull() && !thumbnail.isNull());
        for (const QImage &sent : {large, thumbnail}) {
            const QRgb middle = sent.pixel(sent.width() / 2, sent.height() / 2);
            QVERIFY2(isGrey(middle, 4), qPrintable(QString::number(middle, 16)));
        }
        // The grey of the photo's body, not the red of the original.
        const int grey = qRed(expected.pixel(320, 300));
        QVERIFY(qAbs(qGray(large.pixel(large.width() / 2, large.height() / 2)) - grey) <= 6);
    }

    void toolsPaintOpensAnEmptyPictureAndNoEditorHidesTheButton()
    {
        JobState state;
        frmMain window(state);
        InstallPaint(window);
        InstallPhotoFrame(window);
        auto *entry = window.findChild<QAction *>(QStringLiteral("mnuPaint"));
        QVERIFY(entry);
        entry->trigger();
        QPointer<frmPaint> paint = window.findChild<frmPaint *>();
        QVERIFY(paint && paint->isVisible());
        paint->close();

        // A window without the picture editor offers no Paint button.
        JobState other;
        frmMain bare(other);
        PhotoFrame *frame = InstallPhotoFrame(bare);
        bare.show();
        bare.FunctionSelectButton_Click(0);
        QVERIFY(frame->isVisible());
        QVERIFY(!frame->findChild<QPushButton *>(QStringLiteral("Command4"))->isVisible());
        QVERIFY(!bare.findChild<QAction *>(QStringLiteral("mnuPaint")));
    }

    void theZoomWindowsDoubleClickWaitsForThePaintWindow()
    {
        QTemporaryDir dir;
        const QString photo = dir.filePath(QStringLiteral("Tree.jpg"));
        QVERIFY(makePhoto(photo, QColor(30, 140, 40)));
        JobState state;
        frmMain window(state);
        InstallPaint(window);
        InstallPhotoFrame(window); // the photo function's paint opener
        window.show();

        QPointer<frmZoom> zoom = frmZoom::ShowPicture(photo, 0);
        auto *image = zoom->findChild<QLabel *>(QStringLiteral("Image1"));
        QVERIFY(image);
        QStringList order;
        QTimer closer;
        closer.setInterval(5);
        QObject::connect(&closer, &QTimer::timeout, [&] {
            // A close asked for while the picture is still being read is refused; ask again.
            if (frmPaint *paint = openPaintWindow(); paint && paint->close()) {
                order << paint->document().PictureFile() << QStringLiteral("closed");
                closer.stop();
            }
        });
        closer.start();
        QTest::mouseDClick(image, Qt::LeftButton);
        order << QStringLiteral("returned");
        QCOMPARE(order, QStringList({photo, QStringLiteral("closed"), QStringLiteral("returned")}));
        zoom->close();

        // The Tools menu's Paint: the paint window alone, with an empty picture.
        auto *menuPaint = window.findChild<QAction *>(QStringLiteral("mnuPaint"));
        QVERIFY(menuPaint);
        QCOMPARE(menuPaint->text(), QStringLiteral("&Paint"));
        menuPaint->trigger();
        QPointer<frmPaint> alone = openPaintWindow();
        QVERIFY(alone);
        QCOMPARE(alone->windowTitle(), QStringLiteral("untitled - Paint"));
        QCOMPARE(alone->document().picture().pixel(3, 3), qRgb(255, 255, 255));
        alone->close();
        QTRY_VERIFY(!alone);
    }
};

TARNWICK_TEST_MAIN(TestPaintPhotoPageGui)
#include "test_paint_photopage_gui.moc"
