#include "../photos/TodaysPictures.h"
#include "PictureFiles.h"
#include "TestMain.h"
#include "frmPaint.h"
#include "mdlFilter.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

QAction *action(QWidget *window, const char *name)
{
    auto *found = window->findChild<QAction *>(QLatin1String(name));
    if (!found)
        qWarning("no action %s", name);
    return found;
}

// Answers every message box that comes up with the given button and keeps its text.
class MessageAnswerer
{
public:
    explicit MessageAnswerer(QMessageBox::StandardButton button) : m_button(button)
    {
        m_timer.setInterval(5);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                auto *box = qobject_cast<QMessageBox *>(widget);
                if (!box || !box->isVisible())
                    continue;
                texts.append(box->text());
                titles.append(box->windowTitle());
                if (QAbstractButton *b = box->button(m_button))
                    b->click();
                else
                    box->reject();
            }
        });
        m_timer.start();
    }
    QStringList texts;
    QStringList titles;

private:
    QMessageBox::StandardButton m_button;
    QTimer m_timer;
};

QImage photo(int w, int h, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < w; ++x)
            line[x] = qRgb((x + y) & 255, (x * 3) & 255, random.bounded(256));
    }
    return image;
}

} // namespace

class TestFrmPaint : public QObject
{
    Q_OBJECT
private slots:
    void theWindowHasItsMenusAndStartsEmpty()
    {
        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        QCOMPARE(paint->windowTitle(), QStringLiteral("untitled - Paint"));
        QCOMPARE(paint->document().picture().size(), QSize(426, 400));
        QVERIFY(paint->findChild<QWidget *>(QStringLiteral("picPaint"))->isVisible());
        const std::pair<const char *, const char *> captions[] = {
            {"mnuNew", "&New"},
            {"mnuOpen", "&Open"},
            {"mnuSave", "&Save"},
            {"mnuSaveAs", "Save &As..."},
            {"mnuPrint", "&Print"},
            {"mnuExit", "&Exit"},
            {"mnuUndo", "&Undo"},
            {"mnuRedo", "&Redo"},
            {"mnuCut", "Cu&t"},
            {"mnuCopy", "&Copy"},
            {"mnuPaste", "&Paste"},
            {"mnuDelete", "&Delete"},
            {"mnuCrop", "C&rop"},
            {"mnuBS_3", "D&ashDot"},
            {"mnuFS_7", "Diagona&l Cross"},
            {"mnuForegroundColor", "F&oreground Color..."},
            {"mnuFillColor", "Fi&ll Color..."},
            {"mnuFont", "&Font..."},
            {"mnuResizeBoth", "&Both"},
            {"mnuFlipHorizontal", "&Horizontal"},
        };
        for (const auto &[name, caption] : captions)
            QCOMPARE(action(paint, name)->text(), QLatin1String(caption));
        for (const FilterMenuEntry &entry : FilterMenu())
            QVERIFY(action(paint, entry.menuName));
        QVERIFY(!action(paint, "mnuUndo")->isEnabled());
        QVERIFY(!action(paint, "mnuRedo")->isEnabled());
        QVERIFY(!action(paint, "mnuCut")->isEnabled());
        QVERIFY(!action(paint, "mnuPaste")->isEnabled());
        // Border styles: one checked at a time.
        action(paint, "mnuBS_2")->trigger();
        QVERIFY(action(paint, "mnuBS_2")->isChecked());
        QVERIFY(!action(paint, "mnuBS_0")->isChecked());
        QCOMPARE(paint->document().borderStyle(), 2);
        action(paint, "mnuRotateAntiClockwise")->trigger();
        QVERIFY(!action(paint, "mnuRotateClockwise")->isChecked());
        QVERIFY(!paint->document().rotateClockwise());
        paint->close();
        QTRY_VERIFY(!paint);
    }

    void menusApplyFiltersAndUndoThem()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("photo.png"));
        const QImage original = photo(120, 90, 1);
        QVERIFY(original.save(path));
        QPointer<frmPaint> paint = frmPaint::OpenPaint(path);
        QCOMPARE(paint->windowTitle(), path + QStringLiteral(" - Paint"));
        QCOMPARE(paint->findChild<QLabel *>(QStringLiteral("sta_1"))->text(),
                 QStringLiteral("120x90"));
        action(paint, "mnuGrayscale")->trigger();
        QImage want = original.copy();
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterGrayscale, want, x1, y1, x2, y2);
        QCOMPARE(paint->document().picture(), want);
        QVERIFY(action(paint, "mnuUndo")->isEnabled());
        action(paint, "mnuFlipVertical")->trigger();
        QCOMPARE(paint->document().picture().pixel(3, 0), want.pixel(3, 89));
        action(paint, "mnuUndo")->trigger();
        QCOMPARE(paint->document().picture(), want);
        QVERIFY(action(paint, "mnuRedo")->isEnabled());
        action(paint, "mnuRotateAngle_1")->trigger(); // 90
        QCOMPARE(paint->document().picture().size(), QSize(90, 120));
        action(paint, "mnuResizeStep_1")->trigger(); // 50%
        QCOMPARE(paint->document().picture().size(), QSize(45, 60));
        QVERIFY(paint->windowTitle().startsWith(path));
        // Closing with changes asks; No lets it close.
        MessageAnswerer no(QMessageBox::No);
        paint->close();
        QTRY_VERIFY(!paint);
        QCOMPARE(no.texts, QStringList{QStringLiteral("Do you want to save the changes?")});
    }

    void closingWithChangesAsksAndCancelKeepsTheWindow()
    {
        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        action(paint, "mnuInvertColors")->trigger();
        QVERIFY(paint->document().Dirty());
        {
            MessageAnswerer cancel(QMessageBox::Cancel);
            QVERIFY(!paint->close());
            QCOMPARE(cancel.texts.size(), 1);
        }
        QVERIFY(paint && paint->isVisible());
        QTemporaryDir dir;
        paint->chooseSaveFileHook = [&dir](const QString &) {
            return dir.filePath(QStringLiteral("kept.bmp"));
        };
        MessageAnswerer yes(QMessageBox::Yes);
        paint->close();
        QTRY_VERIFY(!paint);
        QVERIFY(QFileInfo::exists(dir.filePath(QStringLiteral("kept.bmp"))));
        QCOMPARE(QImage(dir.filePath(QStringLiteral("kept.bmp"))).pixel(5, 5) & 0xFFFFFF, 0u);
    }

    void aBadPictureGivesAMessageAndTheWindowStaysUsable_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("zero bytes") << "empty";
        QTest::newRow("corrupt") << "corrupt";
        QTest::newRow("truncated") << "truncated";
        QTest::newRow("30000 x 30000") << "huge";
    }
    void aBadPictureGivesAMessageAndTheWindowStaysUsable()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("bad.jpg"));
        QFile f(path);
        if (kind == QLatin1String("huge")) {
            QVERIFY(WriteJpegClaimingSize(path, 30000, 30000));
        } else {
            QVERIFY(f.open(QIODevice::WriteOnly));
            if (kind == QLatin1String("corrupt"))
                f.write(QByteArray(3000, '\xA5'));
            if (kind == QLatin1String("truncated")) {
                QByteArray bytes;
                QBuffer buffer(&bytes);
                buffer.open(QIODevice::WriteOnly);
                photo(400, 300, 2).save(&buffer, "JPEG");
                f.write(bytes.left(bytes.size() / 4));
            }
            f.close();
        }
        MessageAnswerer ok(QMessageBox::Ok);
        QPointer<frmPaint> paint = frmPaint::OpenPaint(path);
        QTRY_COMPARE(ok.texts.size(), 1);
        QVERIFY(
            ok.texts.first().startsWith(QStringLiteral("Cannot open the file.\nThe file may be "
                                                       "corrupt or not a valid picture file.")));
        QCOMPARE(ok.titles.first(), QStringLiteral("Tarnwick Paint"));
        if (kind == QLatin1String("huge"))
            QVERIFY(ok.texts.first().contains(QStringLiteral("30000 x 30000")));
        QVERIFY(paint && paint->isVisible());
        QCOMPARE(paint->windowTitle(), QStringLiteral("untitled - Paint"));
        action(paint, "mnuInvertColors")->trigger();
        QCOMPARE(paint->document().picture().pixel(1, 1), qRgb(0, 0, 0));
        action(paint, "mnuUndo")->trigger();
        QCOMPARE(paint->document().picture().pixel(1, 1), qRgb(255, 255, 255));
        delete paint;
    }

    // File > Open reads the pictures of today's phones and cameras through the photo decoder:
    // a HEIC stored on its side (EXIF orientation 6) in Display P3 opens upright in sRGB; a
    // WebP, a 16-bit TIFF and a transparent PNG (laid on white) open too.
    void fileOpenReadsTodaysPhotosUpright_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("HEIC") << "IMG_0042.HEIC";
        QTest::newRow("WebP") << "Lake.webp";
        QTest::newRow("16-bit TIFF") << "Scan.tif";
        QTest::newRow("PNG with transparency") << "Logo.png";
    }
    void fileOpenReadsTodaysPhotosUpright()
    {
        QFETCH(QString, name);
        QTemporaryDir dir;
        const QString path = dir.filePath(name);
        QImage expected;
        if (name.endsWith(QLatin1String(".HEIC"))) {
            QVERIFY2(!TodaysPictures::heifEncoder().isEmpty(),
                     "heif-enc (libheif-examples) is needed");
            QString why;
            QVERIFY2(TodaysPictures::writeHeic(path, 400, 300, &why), qPrintable(why));
            expected = TodaysPictures::referenceToSRgb(TodaysPictures::displayP3Scene(400, 300));
        } else if (name.endsWith(QLatin1String(".webp"))) {
            QVERIFY(TodaysPictures::scene(320, 240).save(path, "WEBP", 95));
            expected = TodaysPictures::scene(320, 240);
        } else if (name.endsWith(QLatin1String(".tif"))) {
            QVERIFY(TodaysPictures::deepScene(320, 240).save(path, "TIFF"));
            expected = TodaysPictures::scene(320, 240);
        } else {
            QVERIFY(TodaysPictures::transparentPicture(200, 100).save(path, "PNG"));
            expected = QImage(200, 100, QImage::Format_RGB32);
            expected.fill(Qt::white);
            for (int y = 0; y < 100; ++y)
                for (int x = 0; x < 100; ++x)
                    expected.setPixel(x, y, qRgb(0, 0, 255));
        }

        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        paint->chooseOpenFileHook = [path] { return path; };
        action(paint, "mnuOpen")->trigger();
        QCOMPARE(paint->document().PictureFile(), path);
        const QImage &opened = paint->document().picture();
        QCOMPARE(opened.size(), expected.size());
        // Colour-managed reference (LittleCMS) for the HEIC; the scene itself for the others.
        const double difference = TodaysPictures::meanDeltaE(opened, expected);
        QVERIFY2(difference < 2.5, qPrintable(QString::number(difference)));
        // Upright: the white square of the scene stands in the top left corner.
        if (!name.endsWith(QLatin1String(".png"))) {
            QVERIFY(qRed(opened.pixel(5, 5)) > 235 && qBlue(opened.pixel(5, 5)) > 235);
            QVERIFY(qBlue(opened.pixel(5, opened.height() - 5)) > 150);
        }
        QVERIFY(paint->windowTitle().contains(name));
        delete paint;
    }

    void savingIntoAReadOnlyFolderSaysSoAndKeepsTheChanges()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(QStringLiteral("locked"));
        QVERIFY(QDir().mkpath(folder));
        if (!MakeFolderReadOnly(folder))
            QSKIP("no way to make a folder read-only here");
        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        action(paint, "mnuInvertColors")->trigger();
        paint->chooseSaveFileHook = [&folder](const QString &) {
            return folder + QStringLiteral("/picture.jpg");
        };
        MessageAnswerer ok(QMessageBox::Ok);
        action(paint, "mnuSave")->trigger();
        MakeFolderWritable(folder);
        QTRY_COMPARE(ok.texts.size(), 1);
        QCOMPARE(ok.texts.first(), QStringLiteral("Cannot write to the disk.\nMake sure the disk "
                                                  "is not full or write-protected."));
        QVERIFY(paint->document().Dirty());
        QCOMPARE(paint->document().picture().pixel(1, 1), qRgb(0, 0, 0));
        QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/picture.jpg")));
        delete paint;
    }

    void longWorkKeepsTheWindowLiveAndCancelUndoesNothing()
    {
        // 18 megapixels: long enough that the window turns many times during the work.
        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        paint->document().ResizePicture(5184, 3456);
        const QImage before = paint->document().picture().copy();
        const int current = paint->document().undoRing().UndoCurrent();

        int turns = 0;
        int paints = 0;
        bool clickedWhileRunning = false;
        QTimer watch;
        watch.setInterval(0);
        QObject::connect(&watch, &QTimer::timeout, [&] {
            if (!paint->longWorkRunning())
                return;
            ++turns;
            auto *cancel = paint->findChild<QPushButton *>(QStringLiteral("CancelButton"));
            if (turns == 3 && cancel && cancel->isVisible()) {
                QTest::mouseClick(cancel, Qt::LeftButton);
                clickedWhileRunning = paint->longWorkRunning();
            }
        });
        struct PaintCounter : QObject
        {
            int *count;
            bool eventFilter(QObject *, QEvent *e) override
            {
                if (e->type() == QEvent::Paint)
                    ++*count;
                return false;
            }
        } counter;
        counter.count = &paints;
        paint->findChild<QWidget *>(QStringLiteral("picPaint"))->installEventFilter(&counter);
        watch.start();
        QTimer::singleShot(1, paint, [paint] {
            paint->findChild<QWidget *>(QStringLiteral("picPaint"))->update();
        });
        action(paint, "mnuDiffuse")->trigger();
        watch.stop();
        QVERIFY(turns >= 3);
        QVERIFY(paints >= 1);
        if (!clickedWhileRunning)
            QSKIP("the work ended before Cancel was pressed");
        QCOMPARE(paint->document().undoRing().UndoCurrent(), current);
        QCOMPARE(paint->document().picture(), before);
        QVERIFY(!paint->findChild<QPushButton *>(QStringLiteral("CancelButton"))->isVisible());
        QVERIFY(paint->menuBar()->isEnabled());
        delete paint;
    }

    void printGoesToAPdfWhenThereIsNoPrinter()
    {
        QTemporaryDir dir;
        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        paint->usePrinter = false;
        paint->choosePdfFileHook = [&dir] { return dir.filePath(QStringLiteral("p.pdf")); };
        QVERIFY(paint->mnuPrint_Click());
        QFile pdf(dir.filePath(QStringLiteral("p.pdf")));
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QVERIFY(pdf.read(5) == "%PDF-");
        paint->choosePdfFileHook = [] { return QString(); };
        QVERIFY(!paint->mnuPrint_Click());
        delete paint;
    }

    void colourMenusSetTheColoursUsedByReplace()
    {
        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        QStringList titles;
        paint->chooseColorHook = [&titles](const QColor &start, const QString &title) {
            titles << title;
            return start == QColor(Qt::black) ? QColor(255, 255, 255) : QColor(0, 0, 255);
        };
        action(paint, "mnuForegroundColor")->trigger(); // black -> white
        action(paint, "mnuFillColor")->trigger();       // white -> blue
        QCOMPARE(paint->document().foreColor(), 0xFFFFFF);
        QCOMPARE(paint->document().fillColor(), 0xFF0000);
        action(paint, "mnuReplaceColors")->trigger();
        QCOMPARE(paint->document().picture().pixel(9, 9), qRgb(0, 0, 255));
        QCOMPARE(titles.size(), 2);
        delete paint;
    }

    void pasteCopyCropThroughTheMenus()
    {
        QPointer<frmPaint> paint = frmPaint::OpenPaint(QString());
        paint->document().setClipboard(photo(30, 20, 4));
        QVERIFY(action(paint, "mnuPaste")->isEnabled());
        action(paint, "mnuPaste")->trigger();
        auto *select = paint->findChild<QWidget *>(QStringLiteral("picSelect"));
        QVERIFY(select->isVisible());
        QCOMPARE(select->size(), QSize(30, 20));
        QVERIFY(action(paint, "mnuCrop")->isEnabled());
        action(paint, "mnuCrop")->trigger();
        QVERIFY(!select->isVisible());
        QCOMPARE(paint->document().picture(), photo(30, 20, 4));
        QCOMPARE(paint->findChild<QLabel *>(QStringLiteral("sta_1"))->text(),
                 QStringLiteral("30x20"));
        delete paint;
    }
};

TARNWICK_TEST_MAIN(TestFrmPaint)
#include "test_frmpaint.moc"
