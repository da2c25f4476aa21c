// The paint window's eighteen tools, driven by mouse and key events on the real picPaint.

#include "Folders.h"
#include "PaintColorBar.h"
#include "PaintToolDriver.h"
#include "PaintTools.h"
#include "TestMain.h"
#include "ToolDrawing.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QRandomGenerator>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>

using namespace paintdriver;

namespace {

constexpr QRgb White = 0xFFFFFF;
constexpr QRgb Black = 0x000000;

QRgb rgbOf(int colourNumber)
{
    return qRgb(colourNumber & 255, (colourNumber >> 8) & 255, (colourNumber >> 16) & 255) &
           0xFFFFFF;
}

bool allOneColour(const QImage &image, const QRect &area, QRgb colour)
{
    return countColour(image, area, colour) == area.width() * area.height();
}

// Every pixel that changed between before and after now has this colour.
bool changedTo(const QImage &before, const QImage &after, QRgb colour)
{
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if ((before.pixel(x, y) & 0xFFFFFF) != (after.pixel(x, y) & 0xFFFFFF) &&
                (after.pixel(x, y) & 0xFFFFFF) != colour)
                return false;
    return true;
}

QString noisyPicture(const QTemporaryDir &dir, int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y,
                           qRgb(random.bounded(256), random.bounded(256), random.bounded(256)));
    const QString path = dir.filePath(QStringLiteral("noise.png"));
    image.save(path);
    return path;
}

} // namespace

class TestPaintTools : public QObject
{
    Q_OBJECT
private slots:
    void eachToolShowsItsFramesHintAndCursor()
    {
        PaintDriver p;
        auto *dot = p.window->findChild<QWidget *>(QStringLiteral("fraOptDot"));
        auto *fill = p.window->findChild<QWidget *>(QStringLiteral("fraOptFill"));
        auto *brush = p.window->findChild<QWidget *>(QStringLiteral("fraBrush"));
        auto *hint = p.window->findChild<QLabel *>(QStringLiteral("sta_0"));
        QVERIFY(dot && fill && brush && hint);
        for (const ToolEntry &entry : ToolTable::tools()) {
            p.tool(entry.number);
            auto *filters = p.window->findChild<QMenu *>(QStringLiteral("mnuFilterTools"));
            // The Filter Brush pops up its filter menu.
            QCOMPARE(filters->isVisible(), entry.number == 14);
            filters->close();
            QCOMPARE(p.doc().CurrentTool(), entry.number);
            QVERIFY(p.button(QStringLiteral("optTools_%1").arg(entry.number))->isChecked());
            QCOMPARE(dot->isVisible(), bool(entry.frames & FrameDot));
            QCOMPARE(fill->isVisible(), bool(entry.frames & FrameFill));
            QCOMPARE(brush->isVisible(), bool(entry.frames & FrameBrush));
            QVERIFY2(hint->text().startsWith(entry.hint.first()), qPrintable(hint->text()));
            const bool ownCursor = QByteArray(entry.cursorFile).size() > 0;
            QCOMPARE(p.pic->cursor().shape() == Qt::BitmapCursor, ownCursor);
        }
        // Two lines for the tools that name keys.
        p.tool(5);
        QCOMPARE(hint->text(),
                 QStringLiteral("Draws a straight line with the selected line width\nPress and "
                                "hold down CTRL to draw a horizontal or vertical line; SHIFT to "
                                "draw a 45-degree line"));
    }

    void aMissingCursorFileKeepsTheToolAndSaysSo()
    {
        QTemporaryDir empty;
        const QString program = Folders::ProgramFolder();
        Folders::SetProgramFolder(empty.path());
        PaintDriver p;
        QStringList texts;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&texts] {
            for (QWidget *w : QApplication::topLevelWidgets())
                if (auto *box = qobject_cast<QMessageBox *>(w); box && box->isVisible()) {
                    texts << box->text();
                    box->accept();
                }
        });
        timer.start(5);
        p.tool(2);
        Folders::SetProgramFolder(program);
        QCOMPARE(texts.size(), 1);
        QCOMPARE(texts.first(),
                 PaintErrorText(4).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        QCOMPARE(p.doc().CurrentTool(), 4); // Pencil, the tool at start
        QVERIFY(p.button(QStringLiteral("optTools_4"))->isChecked());
        QVERIFY(!p.button(QStringLiteral("optTools_2"))->isChecked());
    }

    void pencilDrawsAStrokeAndEachStrokeIsOneState()
    {
        PaintDriver p;
        p.tool(4);
        const QImage blank = p.picture();
        const int before = p.undoPosition();
        p.press({10, 10});
        p.move({60, 10});
        p.move({60, 40});
        p.release({60, 40});
        const Change c = changed(blank, p.picture());
        QCOMPARE(c.box, QRect(QPoint(10, 10), QPoint(60, 40)));
        QCOMPARE(c.count, 51 + 30); // the two legs, one pixel wide, sharing a corner
        QVERIFY(changedTo(blank, p.picture(), Black));
        QVERIFY(p.undoPosition() != before);
        QVERIFY(p.doc().menuState().undo);
        // A second stroke, one more state; undo takes off one stroke at a time.
        const QImage one = p.picture();
        p.dotSize(3);
        p.drag({100, 100}, {140, 100});
        QCOMPARE(changed(one, p.picture()).box, QRect(98, 98, 44, 4)); // a pen 4 pixels wide
        p.doc().mnuUndo_Click();
        QCOMPARE(changed(one, p.picture()).count, 0);
        p.doc().mnuUndo_Click();
        QCOMPARE(changed(blank, p.picture()).count, 0);
        // The right button draws nothing.
        const int position = p.undoPosition();
        p.press({30, 30}, {}, Qt::RightButton);
        p.move({80, 80}, {}, Qt::RightButton);
        p.release({80, 80}, {}, Qt::RightButton);
        QCOMPARE(changed(blank, p.picture()).count, 0);
        QCOMPARE(p.undoPosition(), position);
    }

    void eraserClearsAPatchUpAndRightOfThePoint()
    {
        PaintDriver p;
        p.tool(3); // a black picture first
        p.click({5, 5});
        QVERIFY(allOneColour(p.picture(), p.picture().rect(), Black));
        p.tool(2);
        p.dotSize(3); // w = 4
        const QImage black = p.picture();
        p.click({100, 100});
        const Change c = changed(black, p.picture());
        QVERIFY(changedTo(black, p.picture(), White));
        QCOMPARE(c.box.left(), 100);
        QCOMPARE(c.box.bottom(), 100);
        QCOMPARE(c.box.top(), 96);
        QCOMPARE(c.box.right(), 104);
        QCOMPARE(p.picture().pixel(99, 100) & 0xFFFFFF, Black);
        QCOMPARE(p.picture().pixel(100, 101) & 0xFFFFFF, Black);
    }

    void fillPaintsTheAreaAndAFillOfTheSameColourStillRecordsAState()
    {
        PaintDriver p;
        p.tool(6);
        p.drag({20, 20}, {80, 60});
        const QImage outlined = p.picture();
        p.tool(3);
        p.window->document().setForeColor(0x0000FF); // red
        p.click({50, 40});
        const Change c = changed(outlined, p.picture());
        QCOMPARE(c.box, QRect(QPoint(21, 21), QPoint(79, 59)));
        QCOMPARE(c.count, 59 * 39);
        QVERIFY(changedTo(outlined, p.picture(), qRgb(255, 0, 0) & 0xFFFFFF));
        // Outside the outline: untouched.
        QCOMPARE(p.picture().pixel(10, 10) & 0xFFFFFF, White);
        // Again in the same colour: nothing changes, a state is recorded all the same.
        const QImage red = p.picture();
        const int before = p.undoPosition();
        p.click({50, 40});
        QCOMPARE(changed(red, p.picture()).count, 0);
        QVERIFY(p.undoPosition() != before);
    }

    void pickColorTakesForegroundWithLeftAndFillWithRight()
    {
        PaintDriver p;
        p.tool(3);
        p.doc().setForeColor(0x00FF00); // green
        p.click({10, 10});
        p.doc().setForeColor(0);
        p.tool(1);
        const QImage green = p.picture();
        p.click({30, 30});
        QCOMPARE(p.doc().foreColor(), 0x00FF00);
        p.doc().setForeColor(0x123456);
        p.click({30, 30}, {}, Qt::RightButton);
        QCOMPARE(p.doc().fillColor(), 0x00FF00);
        QCOMPARE(p.doc().foreColor(), 0x123456);
        QCOMPARE(changed(green, p.picture()).count, 0);
        // lblForeColor and lblFillColor show them.
        auto *fore = p.window->findChild<QLabel *>(QStringLiteral("lblForeColor"));
        auto *fillLabel = p.window->findChild<QLabel *>(QStringLiteral("lblFillColor"));
        QCOMPARE(fillLabel->palette().color(fillLabel->backgroundRole()).rgb() & 0xFFFFFF,
                 rgbOf(0x00FF00));
        QCOMPARE(fore->palette().color(fore->backgroundRole()).rgb() & 0xFFFFFF, rgbOf(0x123456));
    }

    void lineDrawsWithRubberBandAndKeys()
    {
        PaintDriver p;
        p.tool(5);
        const QImage blank = p.picture();
        // While dragging the band shows; after the release only the line is left.
        p.press({10, 50});
        p.move({50, 50});
        QVERIFY(changed(blank, p.picture()).count > 0);
        p.move({100, 50});
        p.move({100, 50});
        p.release({100, 50});
        Change c = changed(blank, p.picture());
        QCOMPARE(c.box, QRect(QPoint(10, 50), QPoint(100, 50)));
        QCOMPARE(c.count, 91);
        QVERIFY(changedTo(blank, p.picture(), Black));

        // CTRL: horizontal or vertical.
        QImage before = p.picture();
        p.drag({200, 100}, {210, 180}, Qt::ControlModifier);
        c = changed(before, p.picture());
        QCOMPARE(c.box, QRect(QPoint(200, 100), QPoint(200, 180)));
        // SHIFT: 45 degrees.
        before = p.picture();
        p.drag({200, 200}, {260, 230}, Qt::ShiftModifier);
        c = changed(before, p.picture());
        QCOMPARE(c.box, QRect(QPoint(200, 200), QPoint(230, 230)));
        QCOMPARE(c.count, 31);

        // A click draws a dot, and records a state.
        before = p.picture();
        const int position = p.undoPosition();
        p.click({300, 300});
        c = changed(before, p.picture());
        QCOMPARE(c.count, 1);
        QCOMPARE(c.box, QRect(300, 300, 1, 1));
        QVERIFY(p.undoPosition() != position);
    }

    void rectangleOutlineFillAndAClickThatDrawsNothing()
    {
        PaintDriver p;
        p.tool(6);
        const QImage blank = p.picture();
        p.drag({10, 10}, {50, 30});
        Change c = changed(blank, p.picture());
        QCOMPARE(c.box, QRect(QPoint(10, 10), QPoint(50, 30)));
        QCOMPARE(c.count, 2 * 41 + 2 * 19);
        QCOMPARE(p.picture().pixel(30, 20) & 0xFFFFFF, White);

        // Outline and fill: inside in the fill colour.
        p.doc().setFillColor(0xFF0000); // blue
        p.fillMode(1);
        QCOMPARE(p.doc().fillMode(), 1);
        QImage before = p.picture();
        p.drag({100, 100}, {140, 130});
        QVERIFY(allOneColour(p.picture(), QRect(QPoint(101, 101), QPoint(139, 129)),
                             qRgb(0, 0, 255) & 0xFFFFFF));
        QCOMPARE(p.picture().pixel(100, 100) & 0xFFFFFF, Black);
        // SHIFT: a square.
        p.fillMode(0);
        before = p.picture();
        p.drag({200, 200}, {260, 220}, Qt::ShiftModifier);
        c = changed(before, p.picture());
        QCOMPARE(c.box.width(), c.box.height());

        // Dragged up and left: the same box.
        p.doc().mnuUndo_Click();
        p.drag({260, 220}, {200, 200}, Qt::ShiftModifier);
        QCOMPARE(changed(before, p.picture()).box, QRect(QPoint(240, 200), QPoint(260, 220)));

        // A press and release at one point: nothing drawn, but a state recorded.
        before = p.picture();
        const int position = p.undoPosition();
        p.click({300, 300});
        QCOMPARE(changed(before, p.picture()).count, 0);
        QVERIFY(p.undoPosition() != position);
    }

    void ellipseWithShiftIsACircleAndCtrlDoesNothing()
    {
        PaintDriver p;
        p.tool(7);
        const QImage blank = p.picture();
        p.drag({20, 20}, {120, 60});
        Change plain = changed(blank, p.picture());
        QCOMPARE(plain.box, QRect(QPoint(20, 20), QPoint(120, 60)));
        QCOMPARE(p.picture().pixel(70, 40) & 0xFFFFFF, White); // hollow

        p.doc().mnuUndo_Click();
        p.drag({20, 20}, {120, 60}, Qt::ControlModifier);
        QCOMPARE(changed(blank, p.picture()).box, plain.box);
        QCOMPARE(changed(blank, p.picture()).count, plain.count);

        p.doc().mnuUndo_Click();
        p.drag({20, 20}, {120, 60}, Qt::ShiftModifier);
        const Change circle = changed(blank, p.picture());
        QCOMPARE(circle.box.width(), circle.box.height());

        // No width, nothing drawn.
        p.doc().mnuUndo_Click();
        p.drag({200, 20}, {200, 90});
        QCOMPARE(changed(blank, p.picture()).count, 0);
    }

    void arrowHasAShaftAndAHeadOfTen()
    {
        PaintDriver p;
        p.tool(9);
        p.dotSize(4);
        const QImage blank = p.picture();
        p.drag({50, 100}, {150, 100});
        const Change c = changed(blank, p.picture());
        // The barbs reach 10 * cos 45 = 7 pixels behind the tip and 7 each side.
        QVERIFY(c.box.contains(QPoint(143, 93)));
        QVERIFY(c.box.contains(QPoint(143, 107)));
        QVERIFY(c.box.top() <= 93 && c.box.top() >= 90);
        QVERIFY(c.box.bottom() >= 107 && c.box.bottom() <= 110);
        QCOMPARE(p.picture().pixel(143, 93) & 0xFFFFFF, Black);
        QCOMPARE(p.picture().pixel(143, 107) & 0xFFFFFF, Black);
        int sign = 0;
        const ArrowHead head = ArrowHeadFor(50, 100, 150, 100, sign);
        QCOMPARE(head.barb1, QPoint(143, 93));
        QCOMPARE(head.barb2, QPoint(143, 107));
        // Backwards, the head points left.
        const ArrowHead back = ArrowHeadFor(150, 100, 50, 100, sign);
        QCOMPARE(back.barb1, QPoint(57, 107));
        QCOMPARE(back.barb2, QPoint(57, 93));
    }

    void airBrushBurstsAreSquaresOfTheirSize()
    {
        QCOMPARE(AirBrushSpray(100, 100, 4, 1).size(), 4);
        QCOMPARE(AirBrushSpray(100, 100, 32, 1).size(), 256);
        for (const QPoint &dot : AirBrushSpray(100, 100, 32, 99))
            QVERIFY(QRect(84, 84, 32, 32).contains(dot));

        PaintDriver p;
        p.tool(10);
        p.dotSize(0);
        QImage before = p.picture();
        p.click({100, 100});
        Change c = changed(before, p.picture());
        QVERIFY(c.count >= 1 && c.count <= 4);
        QVERIFY(QRect(98, 98, 4, 4).contains(c.box));
        QVERIFY(changedTo(before, p.picture(), Black));

        p.dotSize(7);
        before = p.picture();
        p.click({200, 200});
        c = changed(before, p.picture());
        QVERIFY(c.count <= 256);
        QVERIFY(c.count > 128); // 256 dots in 1,024 pixels overlap only a little
        QVERIFY(QRect(184, 184, 32, 32).contains(c.box));
    }

    void roundedRectangleLeavesItsCornersOut()
    {
        PaintDriver p;
        p.tool(11);
        const QImage blank = p.picture();
        p.drag({20, 20}, {100, 80});
        const Change c = changed(blank, p.picture());
        QCOMPARE(c.box, QRect(QPoint(20, 20), QPoint(100, 80)));
        QCOMPARE(p.picture().pixel(20, 20) & 0xFFFFFF, White);
        QCOMPARE(p.picture().pixel(100, 80) & 0xFFFFFF, White);
        QCOMPARE(p.picture().pixel(60, 20) & 0xFFFFFF, Black);
        QCOMPARE(p.picture().pixel(20, 50) & 0xFFFFFF, Black);
        // Fewer pixels than the plain rectangle of the same box.
        QVERIFY(c.count < 2 * 81 + 2 * 59);
    }

    void polygonStaysOpenUntilFinishedAndIsOneState()
    {
        PaintDriver p;
        p.tool(12);
        const QImage blank = p.picture();
        const int position = p.undoPosition();
        p.click({50, 50});
        p.move({150, 50}, {}, Qt::NoButton);
        p.click({150, 50});
        p.move({100, 120}, {}, Qt::NoButton);
        p.click({100, 120});
        QCOMPARE(p.undoPosition(), position); // still open: no state yet
        p.doubleClick({100, 120});
        const Change c = changed(blank, p.picture());
        QCOMPARE(c.box, QRect(QPoint(50, 50), QPoint(150, 120)));
        QVERIFY(changedTo(blank, p.picture(), Black));
        QCOMPARE(p.picture().pixel(100, 80) & 0xFFFFFF, White); // not filled
        QCOMPARE(p.picture().pixel(100, 50) & 0xFFFFFF, Black); // the first leg
        QVERIFY(p.undoPosition() != position);
        p.doc().mnuUndo_Click();
        QCOMPARE(changed(blank, p.picture()).count, 0);

        // ENTER finishes too, and with fill mode 2 the inside takes the fill colour.
        p.fillMode(2);
        p.doc().setFillColor(0x00FF00);
        p.click({50, 50});
        p.click({150, 50});
        p.click({100, 120});
        QTest::keyClick(p.pic, Qt::Key_Return);
        QCOMPARE(p.picture().pixel(100, 80) & 0xFFFFFF, qRgb(0, 255, 0) & 0xFFFFFF);

        // One point only: nothing drawn.
        const QImage filled = p.picture();
        p.click({300, 300});
        QTest::keyClick(p.pic, Qt::Key_Return);
        QCOMPARE(changed(filled, p.picture()).count, 0);
    }

    void aNewForegroundColourRedrawsTheOpenPolygonInIt()
    {
        PaintDriver p;
        p.tool(12);
        p.doc().setForeColor(0x0000FF);
        p.click({50, 50});
        p.click({150, 50});
        p.move({150, 50}, {}, Qt::NoButton);
        const QImage redLeg = p.picture();
        QCOMPARE(redLeg.pixel(100, 50) & 0xFFFFFF, qRgb(255, 0, 0) & 0xFFFFFF);
        auto *palette = p.window->findChild<QLabel *>(QStringLiteral("lblColor_20"));
        QVERIFY(palette);
        QTest::mouseClick(palette, Qt::LeftButton);
        const int chosen = PaintColorBar::Palette().at(20);
        QCOMPARE(p.doc().foreColor(), chosen);
        // The open leg shows in the colour the band of the new foreground gives: XOR the
        // background, which over white is the colour itself.
        QCOMPARE(p.picture().pixel(100, 50) & 0xFFFFFF, rgbOf(chosen));
        QTest::keyClick(p.pic, Qt::Key_Return);
        QCOMPARE(p.picture().pixel(100, 50) & 0xFFFFFF, rgbOf(chosen));
    }

    void curvePlacesFourHandlesAndFinishesOnEnter()
    {
        PaintDriver p;
        p.tool(13);
        const QImage blank = p.picture();
        const int position = p.undoPosition();
        p.click({150, 150});
        const QPoint expected[4] = {{100, 100}, {200, 100}, {100, 200}, {200, 200}};
        for (int i = 0; i < 4; ++i) {
            auto *handle = p.window->findChild<QWidget *>(QStringLiteral("imgBezier_%1").arg(i));
            QVERIFY(handle && handle->isVisible());
            QCOMPARE(handle->geometry().center(), expected[i]);
        }
        QCOMPARE(p.undoPosition(), position);
        // A drag on the picture moves all four.
        p.drag({150, 150}, {170, 160});
        auto *first = p.window->findChild<QWidget *>(QStringLiteral("imgBezier_0"));
        QCOMPARE(first->geometry().center(), QPoint(120, 110));
        // A drag on one handle moves that one alone.
        auto *last = p.window->findChild<QWidget *>(QStringLiteral("imgBezier_3"));
        const QPoint inHandle(4, 4);
        p.send(QEvent::MouseButtonPress, inHandle, Qt::LeftButton, Qt::LeftButton, {}, last);
        p.send(QEvent::MouseMove, inHandle + QPoint(30, 0), Qt::NoButton, Qt::LeftButton, {}, last);
        p.send(QEvent::MouseButtonRelease, inHandle + QPoint(30, 0), Qt::LeftButton, Qt::NoButton,
               {}, last);
        QCOMPARE(last->geometry().center(), QPoint(250, 210));
        QCOMPARE(first->geometry().center(), QPoint(120, 110));

        QTest::keyClick(p.pic, Qt::Key_Return);
        for (int i = 0; i < 4; ++i)
            QVERIFY(!p.window->findChild<QWidget *>(QStringLiteral("imgBezier_%1").arg(i))
                         ->isVisible());
        const Change c = changed(blank, p.picture());
        QVERIFY(c.count > 50);
        QVERIFY(changedTo(blank, p.picture(), Black));
        // The curve starts and ends at the outer handles.
        QCOMPARE(p.picture().pixel(120, 110) & 0xFFFFFF, Black);
        QCOMPARE(p.picture().pixel(250, 210) & 0xFFFFFF, Black);
        QVERIFY(p.undoPosition() != position);
    }

    void textPrintsOnEnterAndEscThrowsItAway()
    {
        PaintDriver p;
        p.tool(8);
        const QImage blank = p.picture();
        const int position = p.undoPosition();
        p.click({40, 40});
        auto *box = p.window->findChild<QLineEdit *>(QStringLiteral("txtText"));
        QVERIFY(box && box->isVisible());
        QCOMPARE(box->pos(), QPoint(40, 40));
        QTest::keyClicks(box, QStringLiteral("Hello"));
        QCOMPARE(box->text(), QStringLiteral("Hello"));
        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(!box->isVisible());
        QCOMPARE(changed(blank, p.picture()).count, 0);
        QCOMPARE(p.undoPosition(), position);

        p.click({40, 40});
        QVERIFY(box->isVisible());
        QCOMPARE(box->text(), QString());
        QTest::keyClicks(box, QStringLiteral("Hello"));
        QTest::keyClick(box, Qt::Key_Return);
        QVERIFY(!box->isVisible());
        const Change c = changed(blank, p.picture());
        QVERIFY(c.count > 10);
        QVERIFY(c.box.left() >= 40 && c.box.top() >= 40);
        QVERIFY(c.box.right() < 40 + box->fontMetrics().horizontalAdvance("Hello") + 4);
        QVERIFY(changedTo(blank, p.picture(), Black));
        QVERIFY(p.undoPosition() != position);
    }

    void textBoxMovesAfterAPressOnItAndPrintsWhenLeft()
    {
        PaintDriver p;
        p.tool(8);
        const QImage blank = p.picture();
        p.click({40, 40});
        auto *box = p.window->findChild<QLineEdit *>(QStringLiteral("txtText"));
        QTest::keyClicks(box, QStringLiteral("Moved"));
        // A press on the box, then on the picture: the box goes there with its text.
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(3, 3));
        p.click({150, 120});
        QVERIFY(box->isVisible());
        QCOMPARE(box->pos(), QPoint(150, 120));
        QCOMPARE(box->text(), QStringLiteral("Moved"));
        QCOMPARE(changed(blank, p.picture()).count, 0);
        // Typing again, then leaving the box: the text is printed where the box stands.
        QTest::keyClicks(box, QStringLiteral("!"));
        const int position = p.undoPosition();
        p.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(p.window));
        box->setFocus();
        QVERIFY(box->hasFocus());
        p.pic->setFocus();
        QVERIFY(!box->isVisible());
        const Change c = changed(blank, p.picture());
        QVERIFY(c.count > 10);
        QVERIFY(c.box.left() >= 150 && c.box.top() >= 120);
        QVERIFY(p.undoPosition() != position);
    }

    void choosingAnotherToolFinishesTheOpenPolygon()
    {
        PaintDriver p;
        p.tool(12);
        const QImage blank = p.picture();
        const int position = p.undoPosition();
        p.click({50, 50});
        p.click({150, 50});
        p.click({100, 120});
        p.tool(5);
        QCOMPARE(p.doc().CurrentTool(), 5);
        const Change c = changed(blank, p.picture());
        QCOMPARE(c.box, QRect(QPoint(50, 50), QPoint(150, 120)));
        QVERIFY(changedTo(blank, p.picture(), Black));
        QVERIFY(p.undoPosition() != position);
    }

    void newEndsTheOpenCurveOnTheOldPicture()
    {
        PaintDriver p;
        p.tool(13);
        p.click({150, 150});
        QStringList asked;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&asked] {
            for (QWidget *w : QApplication::topLevelWidgets())
                if (auto *box = qobject_cast<QMessageBox *>(w); box && box->isVisible()) {
                    asked << box->text();
                    box->button(QMessageBox::No)->click();
                }
        });
        timer.start(5);
        // The curve is drawn for good first, so the picture has changes to ask about.
        QVERIFY(p.doc().mnuNew_Click());
        timer.stop();
        QCOMPARE(asked.size(), 1);
        QImage blank(p.picture().size(), QImage::Format_RGB32);
        blank.fill(Qt::white);
        QCOMPARE(changed(blank, p.picture()).count, 0);
        QVERIFY(!p.window->findChild<QWidget *>(QStringLiteral("imgBezier_0"))->isVisible());
        // Nothing of the old curve comes back on ENTER.
        QTest::keyClick(p.pic, Qt::Key_Return);
        QCOMPARE(changed(blank, p.picture()).count, 0);
    }

    void selectAreaWithShiftSelectsASquare()
    {
        PaintDriver p;
        p.tool(0);
        p.drag({50, 50}, {150, 90}, Qt::ShiftModifier);
        QVERIFY(p.doc().selection().visible);
        const QSize size = p.doc().selection().image.size();
        QCOMPARE(size.width(), size.height());
    }

    void filterBrushWorksInsideThePictureOnly()
    {
        QTemporaryDir dir;
        PaintDriver p;
        QVERIFY(p.doc().mnuOpen_My_Click(noisyPicture(dir, 120, 100)));
        p.doc().setFilterNumber(1); // blur
        p.tool(14);
        p.window->findChild<QMenu *>(QStringLiteral("mnuFilterTools"))->close();
        p.dotSize(5);
        const QImage noise = p.picture();
        // The square would start left of the picture: nothing.
        p.press({3, 50});
        p.move({4, 50});
        p.release({4, 50});
        QCOMPARE(changed(noise, p.picture()).count, 0);
        // Inside: only the square around the point.
        p.click({60, 50});
        const Change c = changed(noise, p.picture());
        QVERIFY(c.count > 60);
        QVERIFY(QRect(QPoint(55, 45), QPoint(65, 55)).contains(c.box));
    }

    void zoomToolZoomsInAndWithCtrlOut()
    {
        PaintDriver p;
        p.tool(15);
        p.click({100, 100});
        QCOMPARE(p.doc().ZoomFactor(), 1.25);
        p.click({125, 125});
        QCOMPARE(p.doc().ZoomFactor(), 1.25 * 1.25);
        p.click({50, 50}, Qt::ControlModifier);
        QCOMPARE(p.doc().ZoomFactor(), 1.25);
        QCOMPARE(p.pic->width(), int(std::lround(p.picture().width() * 1.25)));
        // Another tool goes back to 1.
        p.tool(4);
        QCOMPARE(p.doc().ZoomFactor(), 1.0);
    }

    void brushDabsItsShape()
    {
        PaintDriver p;
        p.tool(16);
        auto *brush = p.window->findChild<QWidget *>(QStringLiteral("fraBrush"));
        QVERIFY(brush->isVisible());
        p.dotSize(1); // w = 2, r = 6
        p.brushShape(4);
        QCOMPARE(p.doc().brushShape(), 4);
        const QImage blank = p.picture();
        p.click({100, 100});
        Change c = changed(blank, p.picture());
        QCOMPARE(c.box, QRect(QPoint(94, 94), QPoint(106, 106)));
        QCOMPARE(c.count, 25); // a plus of two 13-pixel lines
        p.brushShape(0);
        const QImage plus = p.picture();
        p.click({200, 100});
        c = changed(plus, p.picture());
        QCOMPARE(c.box, QRect(QPoint(194, 94), QPoint(206, 106)));
        QCOMPARE(c.count, 13 * 13);
        // A drag dabs along the way, one state.
        const int position = p.undoPosition();
        p.brushShape(9);
        const QImage before = p.picture();
        p.drag({50, 300}, {150, 300});
        c = changed(before, p.picture());
        QVERIFY(c.box.left() <= 44 && c.box.right() >= 156);
        QCOMPARE(c.box.height(), 1);
        QVERIFY(p.undoPosition() != position);
        p.doc().mnuUndo_Click();
        QCOMPARE(changed(before, p.picture()).count, 0);
        QCOMPARE(p.undoPosition(), position);
    }

    void handPansTheViewAndGrabsMeanwhile()
    {
        PaintDriver p;
        p.doc().ResizePicture(2000, 1500);
        p.tool(17);
        auto *area = p.window->findChild<QScrollArea *>(QStringLiteral("picPaintArea"));
        QScrollBar *h = area->horizontalScrollBar();
        QScrollBar *v = area->verticalScrollBar();
        QVERIFY(h->maximum() > 100 && v->maximum() > 100);
        h->setValue(300);
        v->setValue(200);
        const QImage before = p.picture();
        const QCursor flat = p.pic->cursor();
        QCOMPARE(flat.shape(), Qt::BitmapCursor);
        p.press({500, 400});
        const qint64 grabKey = p.pic->cursor().pixmap().cacheKey();
        QVERIFY(grabKey != flat.pixmap().cacheKey());
        // The picture moves with the view, so the mouse's point on the screen is what counts.
        p.move({460, 370}); // 40 left and 30 up on the screen
        QCOMPARE(h->value(), 340);
        QCOMPARE(v->value(), 230);
        p.release({460, 370});
        QCOMPARE(p.pic->cursor().pixmap().cacheKey(), flat.pixmap().cacheKey());
        QCOMPARE(changed(before, p.picture()).count, 0);
        // Beyond the range: the scroll bars stop at their ends.
        p.press({100, 100});
        p.move({5000, 5000});
        p.release({5000, 5000});
        QCOMPARE(h->value(), 0);
        QCOMPARE(v->value(), 0);
    }

    void selectAreaSelectsDropsMovesAndCopies()
    {
        PaintDriver p;
        p.tool(3);
        p.doc().setForeColor(0x0000FF);
        p.click({5, 5}); // a red picture
        p.doc().setForeColor(0);
        p.tool(6);
        p.fillMode(2);
        p.doc().setFillColor(0x000000);
        p.drag({20, 20}, {40, 40}); // a black square
        const QImage drawn = p.picture();
        p.tool(0);
        auto *select = p.window->findChild<QWidget *>(QStringLiteral("picSelect"));
        // A box of one pixel's width is dropped.
        p.drag({100, 100}, {101, 150});
        QVERIFY(!select->isVisible());
        QVERIFY(!p.doc().menuState().selectionCommands);
        QCOMPARE(changed(drawn, p.picture()).count, 0); // the band went away
        // A box: the selection inside its frame.
        p.drag({19, 19}, {42, 42});
        QVERIFY(select->isVisible());
        QCOMPARE(p.doc().selection().pos, QPoint(20, 20));
        QCOMPARE(p.doc().selection().image.size(), QSize(22, 22));
        QVERIFY(p.doc().menuState().selectionCommands);
        QCOMPARE(changed(drawn, p.picture()).count, 0);
        // Dragged away: the place it left takes the background colour.
        p.drag({30, 30}, {130, 30});
        QCOMPARE(p.doc().selection().pos, QPoint(120, 20));
        p.doc().CommitSelection();
        QCOMPARE(p.picture().pixel(30, 30) & 0xFFFFFF, White);
        QCOMPARE(p.picture().pixel(130, 30) & 0xFFFFFF, Black);
        // With CTRL a copy: the picture keeps the original.
        const QImage moved = p.picture();
        p.drag({119, 19}, {142, 42});
        p.drag({130, 30}, {230, 30}, Qt::ControlModifier);
        p.doc().CommitSelection();
        QCOMPARE(p.picture().pixel(130, 30) & 0xFFFFFF, Black);
        QCOMPARE(p.picture().pixel(230, 30) & 0xFFFFFF, Black);
    }

    void colourBarSetsColoursByButton()
    {
        PaintDriver p;
        auto *second = p.window->findChild<QLabel *>(QStringLiteral("lblColor_5"));
        QVERIFY(second);
        QTest::mouseClick(second, Qt::LeftButton);
        QCOMPARE(p.doc().foreColor(), PaintColorBar::Palette().at(5));
        QTest::mouseClick(second, Qt::RightButton);
        QCOMPARE(p.doc().fillColor(), PaintColorBar::Palette().at(5));
        auto *other = p.window->findChild<QLabel *>(QStringLiteral("lblColor_9"));
        QTest::mouseClick(other, Qt::RightButton);
        QCOMPARE(p.doc().fillColor(), PaintColorBar::Palette().at(9));
        QCOMPARE(p.doc().foreColor(), PaintColorBar::Palette().at(5));
        // The pencil draws in the chosen colour.
        p.tool(4);
        const QImage blank = p.picture();
        p.drag({10, 10}, {40, 10});
        QVERIFY(changedTo(blank, p.picture(), rgbOf(PaintColorBar::Palette().at(5))));
    }
};

TARNWICK_TEST_MAIN(TestPaintTools)
#include "test_painttools.moc"
