#include "PaintDocument.h"
#include "PictureFiles.h"
#include "TestMain.h"
#include "cDIBSection.h"
#include "mdlFilter.h"

#include <QImageReader>
#include <QPainter>
#include <QQueue>
#include <QTemporaryDir>

#include <cmath>

namespace {

// The window side, scripted: answers in a queue, messages recorded, long work run at once.
class ScriptedHost final : public PaintHost
{
public:
    QQueue<Answer> answers;
    int questions = 0;
    QStringList errors;
    QString openName;
    QString saveName;
    int saveDialogs = 0;
    int cancelAfter = -1; // progress reports before a Cancel; -1 never
    int changes = 0;

    Answer askSaveChanges() override
    {
        ++questions;
        return answers.isEmpty() ? Answer::Cancel : answers.dequeue();
    }
    void showPaintError(const QString &text) override { errors.append(text); }
    QString chooseOpenFile() override { return openName; }
    QString chooseSaveFile(const QString &) override
    {
        ++saveDialogs;
        return saveName;
    }
    bool runLong(const std::function<bool(const FilterProgress &)> &work) override
    {
        int reports = 0;
        bool cancelled = false;
        const bool done = work([&](int, int) {
            if (cancelAfter >= 0 && ++reports > cancelAfter)
                cancelled = true;
            return !cancelled;
        });
        return done && !cancelled;
    }
    void documentChanged() override { ++changes; }
    void statusHint(int, const QString &) override {}
};

// A stroke of the tests' own: a line of the foreground colour, one pixel wide.
class TestPencil final : public StrokeTool
{
protected:
    void begin(PaintToolContext &context, QPoint at) override { segment(context, at, at); }
    void segment(PaintToolContext &context, QPoint from, QPoint to) override
    {
        QPainter p(&context.surface());
        p.setPen(QColor(context.foreColor() & 255, (context.foreColor() >> 8) & 255,
                        context.foreColor() >> 16));
        p.drawLine(from, to);
        context.surfaceChanged(QRect(from, to).normalized());
    }
};

void stroke(PaintDocument &doc, QPoint from, QPoint to)
{
    doc.mousePress({from, Qt::LeftButton, {}, Qt::LeftButton, {}});
    doc.mouseMove({to, Qt::LeftButton, {}, Qt::LeftButton, {}});
    doc.mouseRelease({to, Qt::LeftButton, {}, Qt::LeftButton, {}});
}

QImage filled(int w, int h, QRgb colour)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

} // namespace

class TestPaintDocument : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        ToolTable::setMaker(4, [] { return std::make_unique<TestPencil>(); });
    }

    void startsAsAnUntitledWhitePicture()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        QCOMPARE(doc.picture().size(), QSize(426, 400));
        QCOMPARE(doc.picture().pixel(10, 10), qRgb(255, 255, 255));
        QCOMPARE(doc.Caption(), QStringLiteral("untitled - Paint"));
        QVERIFY(!doc.Dirty());
        QVERIFY(!doc.menuState().undo);
        QVERIFY(!doc.menuState().redo);
        QCOMPARE(doc.CurrentTool(), 4);
    }

    void elevenStrokesThenTenUndosGiveTheFirstStroke()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        QList<QImage> after;
        for (int i = 0; i < 11; ++i) {
            stroke(doc, QPoint(10, 10 + 3 * i), QPoint(100, 10 + 3 * i));
            after.append(doc.picture().copy());
        }
        QVERIFY(doc.Dirty());
        for (int i = 0; i < 10; ++i) {
            QVERIFY(doc.menuState().undo);
            doc.mnuUndo_Click();
        }
        QCOMPARE(doc.picture(), after.first());
        QVERIFY(!doc.menuState().undo);
        const QImage before = doc.picture().copy();
        doc.mnuUndo_Click(); // not offered: nothing happens
        QCOMPARE(doc.picture(), before);
        QVERIFY(doc.menuState().redo);
        for (int i = 0; i < 10; ++i)
            doc.mnuRedo_Click();
        QCOMPARE(doc.picture(), after.last());
        QVERIFY(!doc.menuState().redo);
    }

    void aNewStrokeAfterUndoCutsOffRedo()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        stroke(doc, {5, 5}, {50, 5});
        stroke(doc, {5, 9}, {50, 9});
        const QImage second = doc.picture().copy();
        doc.mnuUndo_Click();
        QVERIFY(doc.menuState().redo);
        doc.setForeColor(0x0000FF);
        stroke(doc, {5, 20}, {50, 20});
        QVERIFY(!doc.menuState().redo);
        doc.mnuRedo_Click();
        QVERIFY(doc.picture() != second);
        doc.mnuUndo_Click();
        doc.mnuUndo_Click();
        QVERIFY(!doc.menuState().undo);
        QCOMPARE(doc.picture().pixel(20, 9), qRgb(255, 255, 255));
    }

    void aStateOfAnotherSizeComesBackWithItsSize()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        stroke(doc, {0, 0}, {30, 30});
        const QImage full = doc.picture().copy();
        doc.selectArea(QRect(5, 5, 40, 20));
        doc.mnuCrop_Click();
        QCOMPARE(doc.picture().size(), QSize(40, 20));
        doc.mnuUndo_Click();
        QCOMPARE(doc.picture().size(), full.size());
        QCOMPARE(doc.picture(), full);
        doc.mnuRedo_Click();
        QCOMPARE(doc.picture().size(), QSize(40, 20));
    }

    void redoDropsAFloatingSelectionAndUndoPlacesItFirst()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        stroke(doc, {0, 0}, {30, 0});
        doc.mnuUndo_Click();
        doc.setClipboard(filled(10, 10, qRgb(255, 0, 0)));
        doc.mnuPaste_Click();
        QVERIFY(doc.selection().visible);
        QVERIFY(doc.SelectionLifted());
        QVERIFY(doc.menuState().selectionCommands);
        doc.mnuRedo_Click();
        QVERIFY(!doc.selection().visible);
        QVERIFY(!doc.menuState().selectionCommands);
        QCOMPARE(doc.picture().pixel(5, 5), qRgb(255, 255, 255)); // dropped, not placed

        doc.mnuPaste_Click();
        QVERIFY(doc.selection().visible);
        const int placedCalls = host.changes;
        doc.mnuUndo_Click();
        QVERIFY(!doc.selection().visible);
        QVERIFY(host.changes > placedCalls);
    }

    void deleteCutCopyAndPaste()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.setForeColor(0x00FF00);
        for (int y = 0; y < 20; ++y)
            stroke(doc, {0, y}, {19, y});
        doc.selectArea(QRect(5, 5, 4, 3));
        QVERIFY(!doc.SelectionLifted());
        doc.mnuCut_Click();
        QCOMPARE(doc.picture().pixel(6, 6), qRgb(255, 255, 255)); // left the background
        QCOMPARE(doc.picture().pixel(4, 4), qRgb(0, 255, 0));
        QVERIFY(doc.menuState().paste);
        QCOMPARE(doc.clipboard().size(), QSize(4, 3));
        doc.mnuPaste_Click();
        QCOMPARE(doc.selection().pos, QPoint(0, 0));
        QCOMPARE(doc.CurrentTool(), 0);
        doc.moveSelection(QPoint(30, 30));
        doc.CommitSelection();
        QCOMPARE(doc.picture().pixel(31, 31), qRgb(0, 255, 0));
        doc.selectArea(QRect(0, 0, 3, 3));
        doc.mnuDelete_Click();
        QCOMPARE(doc.picture().pixel(1, 1), qRgb(255, 255, 255));
        QVERIFY(!doc.menuState().selectionCommands);
    }

    void filtersAndEffectsRecordAState()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.setForeColor(0x102030);
        stroke(doc, {1, 1}, {100, 100});
        QImage want = doc.picture().copy();
        int x1 = -1, y1 = -1, x2 = -1, y2 = -1;
        ImageFilter(FilterEmboss, want, x1, y1, x2, y2);
        const int current = doc.undoRing().UndoCurrent();
        doc.ApplyFilter(FilterEmboss);
        QCOMPARE(doc.picture(), want);
        QCOMPARE(doc.undoRing().UndoCurrent(), current + 1);
        doc.ImageEffect(4);
        QCOMPARE(doc.picture().pixel(200, 10), qRgb(255 - 128, 255 - 128, 255 - 128));
        doc.mnuUndo_Click();
        QCOMPARE(doc.picture(), want);

        // Replace Colors swaps the foreground colour for the fill colour.
        doc.setForeColor(0x808080);
        doc.setFillColor(0x0000FF);
        doc.ApplyFilter(FilterReplaceColors);
        QCOMPARE(doc.picture().pixel(200, 10), qRgb(255, 0, 0));

        // A cancelled filter changes nothing and records nothing.
        const QImage before = doc.picture().copy();
        const int at = doc.undoRing().UndoCurrent();
        host.cancelAfter = 2;
        doc.ApplyFilter(FilterBlur);
        QCOMPARE(doc.picture(), before);
        QCOMPARE(doc.undoRing().UndoCurrent(), at);
    }

    void aFilterOnASelectionLeavesThePictureAlone()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.selectArea(QRect(10, 10, 20, 20));
        doc.ApplyFilter(FilterDarkness);
        QCOMPARE(doc.picture().pixel(15, 15), qRgb(255, 255, 255));
        QCOMPARE(doc.selection().image.pixel(5, 5), qRgb(223, 223, 223));
        doc.CommitSelection();
        QCOMPARE(doc.picture().pixel(15, 15), qRgb(223, 223, 223));
    }

    void stretchHasASizeLimit()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp(); // 426 x 400
        doc.ImageEffect(2, 2.0f, 2.0f);
        QCOMPARE(doc.picture().size(), QSize(852, 800));
        doc.setResizeAxes(true, false);
        doc.ImageEffect(2, 0.5f, 0.5f);
        QCOMPARE(doc.picture().size(), QSize(426, 800));
        doc.setResizeAxes(false, false);
        // 3400 pixels x 15 twips is above 50000: not made.
        doc.ResizePicture(3400, 100);
        doc.ImageEffect(2, 1.0f, 1.0f);
        QCOMPARE(doc.picture().size(), QSize(3400, 100));
        doc.ResizePicture(3300, 100);
        doc.ImageEffect(2, 1.0f, 1.0f);
        QCOMPARE(doc.picture().size(), QSize(3300, 100));
    }

    void rotatingBy45GivesASquareOfTheDiagonal()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.ResizePicture(300, 400);
        doc.mnuRotate_My_angle(45.0f);
        QCOMPARE(doc.picture().size(), QSize(500, 500));
        doc.mnuUndo_Click();
        doc.mnuRotate_My_angle(90.0f);
        QCOMPARE(doc.picture().size(), QSize(400, 300));
        doc.mnuRotate_My_angle(180.0f);
        QCOMPARE(doc.picture().size(), QSize(400, 300));
    }

    void rotatingClockwiseTurnsTheTopToTheRight()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.ResizePicture(40, 20);
        doc.setForeColor(0x0000FF);
        stroke(doc, {0, 0}, {39, 0}); // a red top row
        doc.mnuRotate_My_angle(90.0f);
        QCOMPARE(doc.picture().size(), QSize(20, 40));
        QCOMPARE(doc.picture().pixel(19, 0), qRgb(255, 0, 0));
        QCOMPARE(doc.picture().pixel(19, 39), qRgb(255, 0, 0));
        QCOMPARE(doc.picture().pixel(0, 0), qRgb(255, 255, 255));
        doc.setRotateClockwise(false);
        doc.mnuRotate_My_angle(180.0f);
        QCOMPARE(doc.picture().pixel(0, 5), qRgb(255, 0, 0));
    }

    void zoomingInStopsAtTheLimitWithoutAMessage()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.ResizePicture(4000, 100);
        QVERIFY(doc.selectTool(15));
        int steps = 0;
        double last = 0;
        while (doc.ZoomFactor() != last && steps < 100) {
            last = doc.ZoomFactor();
            doc.mouseRelease({QPoint(10, 10), Qt::LeftButton, {}, {}, {}});
            ++steps;
        }
        // 2 x 4000 x factor must stay below 100000: the factor stops below 12.5.
        QVERIFY(doc.ZoomFactor() < 12.5);
        QVERIFY(doc.ZoomFactor() * 1.25 >= 12.5);
        QVERIFY(host.errors.isEmpty());
        doc.mouseRelease({QPoint(10, 10), Qt::LeftButton, Qt::ControlModifier, {}, {}});
        QCOMPARE(doc.ZoomFactor(), last / 1.25);
        doc.ApplyFilter(FilterBlur); // a command resets the zoom
        QCOMPARE(doc.ZoomFactor(), 1.0);
    }

    void savingWithoutAnExtensionWritesABitmap()
    {
        QTemporaryDir dir;
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        stroke(doc, {1, 1}, {20, 1});
        const QString path = dir.filePath(QStringLiteral("drawing.pic"));
        QVERIFY(doc.mnuSaveAs_My_Click(path));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.read(2), QByteArray("BM"));
        QVERIFY(!doc.Dirty());
        QCOMPARE(doc.Caption(), path + QStringLiteral(" - Paint"));
        QCOMPARE(QImage(path).convertToFormat(QImage::Format_RGB32), doc.picture());
    }

    void savingJpegAndGifConvertsUnderTheName()
    {
        QTemporaryDir dir;
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.setForeColor(0x0000FF);
        for (int y = 0; y < 50; ++y)
            stroke(doc, {0, y}, {100, y});
        const QString jpg = dir.filePath(QStringLiteral("photo.JPG"));
        QVERIFY(doc.mnuSaveAs_My_Click(jpg));
        QCOMPARE(QImageReader(jpg).format(), QByteArray("jpeg"));
        QVERIFY(!QFileInfo::exists(dir.filePath(QStringLiteral("photo_tmp.jpg"))));
        const QImage back(jpg);
        QVERIFY(qAbs(qRed(back.pixel(50, 25)) - 255) <= 2);
        QVERIFY(qAbs(qBlue(back.pixel(50, 25)) - 0) <= 2);
        const QString gif = dir.filePath(QStringLiteral("photo.gif"));
        QVERIFY(doc.mnuSaveAs_My_Click(gif));
        QCOMPARE(QImageReader(gif).format(), QByteArray("gif"));
        QCOMPARE(QImage(gif).pixel(50, 25) & 0xFFFFFF, 0xFF0000u);
        QCOMPARE(QImage(gif).pixel(50, 80) & 0xFFFFFF, 0xFFFFFFu);
    }

    void saveWithoutANameOpensTheDialog()
    {
        QTemporaryDir dir;
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        stroke(doc, {1, 1}, {20, 1});
        host.saveName.clear();
        QVERIFY(!doc.mnuSave_Click());
        QCOMPARE(host.saveDialogs, 1);
        QVERIFY(doc.Dirty());
        host.saveName = dir.filePath(QStringLiteral("a.bmp"));
        QVERIFY(doc.mnuSave_Click());
        QCOMPARE(host.saveDialogs, 2);
        QVERIFY(QFileInfo::exists(host.saveName));
        stroke(doc, {1, 3}, {20, 3});
        QVERIFY(doc.mnuSave_Click());
        QCOMPARE(host.saveDialogs, 2); // named now
    }

    void savingIntoAReadOnlyFolderKeepsTheDocumentDirty()
    {
        QTemporaryDir dir;
        if (!MakeFolderReadOnly(dir.path()))
            QSKIP("no way to make a folder read-only here");
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        stroke(doc, {1, 1}, {20, 1});
        const QImage drawn = doc.picture().copy();
        for (const char *name : {"a.jpg", "a.gif", "a.bmp"}) {
            host.errors.clear();
            QVERIFY(!doc.mnuSaveAs_My_Click(dir.filePath(QLatin1String(name))));
            QCOMPARE(host.errors, QStringList{PaintErrorText(1)});
            QVERIFY(doc.Dirty());
            QCOMPARE(doc.picture(), drawn);
        }
        MakeFolderWritable(dir.path());
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList());
    }

    void newAsksAboutChanges()
    {
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        QVERIFY(doc.mnuNew_Click());
        QCOMPARE(host.questions, 0); // no changes: no question
        stroke(doc, {1, 1}, {20, 1});
        host.answers.enqueue(PaintHost::Answer::Cancel);
        QVERIFY(!doc.mnuNew_Click());
        QVERIFY(doc.Dirty());
        QCOMPARE(doc.picture().pixel(5, 1), qRgb(0, 0, 0));
        host.answers.enqueue(PaintHost::Answer::No);
        QVERIFY(doc.mnuNew_Click());
        QVERIFY(!doc.Dirty());
        QCOMPARE(doc.picture().pixel(5, 1), qRgb(255, 255, 255));
        QVERIFY(!doc.menuState().undo);
        // Closing: Cancel keeps the window, No lets it go.
        stroke(doc, {1, 1}, {20, 1});
        host.answers.enqueue(PaintHost::Answer::Cancel);
        QVERIFY(!doc.QueryClose());
        host.answers.enqueue(PaintHost::Answer::No);
        QVERIFY(doc.QueryClose());
        QCOMPARE(host.questions, 4);
    }

    void openReadsAPictureAndSelectsZoom()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("p.png"));
        QVERIFY(filled(64, 48, qRgb(1, 2, 3)).save(path));
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        QVERIFY(doc.mnuOpen_My_Click(path));
        QCOMPARE(doc.picture().size(), QSize(64, 48));
        QCOMPARE(doc.PictureFile(), path);
        QCOMPARE(doc.CurrentTool(), 15);
        QVERIFY(!doc.Dirty());
        QVERIFY(!doc.menuState().undo);
        host.openName = path;
        QVERIFY(doc.mnuOpen_Click());
    }

    void badPicturesGiveAMessageAndLeaveAUsableDocument_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("zero bytes") << "empty";
        QTest::newRow("corrupt") << "corrupt";
        QTest::newRow("truncated") << "truncated";
        QTest::newRow("truncated jpeg") << "truncated jpeg";
        QTest::newRow("too large") << "huge";
        QTest::newRow("missing") << "missing";
    }
    void badPicturesGiveAMessageAndLeaveAUsableDocument()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("bad.jpg"));
        QFile f(path);
        if (kind == QLatin1String("empty")) {
            QVERIFY(f.open(QIODevice::WriteOnly));
        } else if (kind == QLatin1String("corrupt")) {
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(QByteArray(5000, '\x5A'));
        } else if (kind == QLatin1String("truncated")) {
            QVERIFY(filled(800, 600, qRgb(9, 9, 9)).save(path, "PNG"));
            QVERIFY(f.open(QIODevice::ReadWrite));
            f.resize(f.size() / 3);
        } else if (kind == QLatin1String("truncated jpeg")) {
            QVERIFY(filled(800, 600, qRgb(9, 99, 9)).save(path, "JPEG"));
            QVERIFY(f.open(QIODevice::ReadWrite));
            f.resize(f.size() / 2);
        } else if (kind == QLatin1String("huge")) {
            QVERIFY(WriteJpegClaimingSize(path, 30000, 30000));
        }
        f.close();
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        QVERIFY(!doc.mnuOpen_My_Click(path));
        QCOMPARE(host.errors.size(), 1);
        QVERIFY(host.errors.first().startsWith(PaintErrorText(3)));
        if (kind == QLatin1String("huge"))
            QVERIFY(host.errors.first().contains(QStringLiteral("30000 x 30000")));
        // Still usable: a stroke, an undo.
        QVERIFY(!doc.picture().isNull());
        stroke(doc, {1, 1}, {20, 1});
        QVERIFY(doc.menuState().undo);
        doc.mnuUndo_Click();
        QCOMPARE(doc.picture().pixel(5, 1), qRgb(255, 255, 255));
    }

    void theUndoRingOfAnEighteenMegapixelPictureHoldsWhatChanged()
    {
        // 5184 x 3456, a camera's 18 megapixels: 71.7 MB of pixels.
        ScriptedHost host;
        PaintDocument doc(host);
        doc.StartUp();
        doc.ResizePicture(5184, 3456);
        doc.ResetImageBuffer();
        const qint64 picture = qint64(5184) * 3456 * 4;
        QVERIFY(doc.undoRing().bytesHeld() >= picture);
        for (int i = 0; i < 10; ++i)
            stroke(doc, QPoint(100 + 400 * i, 100), QPoint(300 + 400 * i, 900));
        QCOMPARE(doc.undoRing().slotsInUse(), 11);
        // Ten strokes: one picture and the tiles they touched. A 200 x 800 stroke touches at
        // most 3 x 8 tiles of 128 x 128 pixels (64 KB each): 72 MB + 15.7 MB, where a copy per
        // state would hold 11 x 72 MB.
        const qint64 tile = qint64(UndoRing::Tile) * UndoRing::Tile * 4;
        QVERIFY2(doc.undoRing().bytesHeld() <= picture + 10 * 24 * tile,
                 qPrintable(QString::number(doc.undoRing().bytesHeld())));
        // Undo still gives every state back.
        for (int i = 0; i < 10; ++i)
            doc.mnuUndo_Click();
        QCOMPARE(doc.picture().pixel(200, 500), qRgb(255, 255, 255));
        // A whole-picture filter is a new full state: the ring never holds more than one
        // picture per slot.
        for (int i = 0; i < 3; ++i)
            doc.ApplyFilter(FilterDarkness);
        QVERIFY(doc.undoRing().bytesHeld() <= picture * UndoRing::Slots);
        QVERIFY(doc.undoRing().bytesHeld() <= picture * 4 + picture / 10);
    }
};

TARNWICK_TEST_MAIN(TestPaintDocument)
#include "test_paintdocument.moc"
