// A new user's picture: ten tools on a new picture, saved as GIF and opened again, then undone
// back to the empty picture and done again.

#include "PaintToolDriver.h"
#include "TestMain.h"

#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>

#include <vector>

using namespace paintdriver;

class TestPaintToolsGui : public QObject
{
    Q_OBJECT
private slots:
    void tenToolsSavedAsGifOpenAgainAndUndoRedoWalksEveryStroke()
    {
        QTemporaryDir dir;
        auto driver = std::make_unique<PaintDriver>();
        PaintDriver &p = *driver;
        auto colour = [&p](int index, Qt::MouseButton button = Qt::LeftButton) {
            QTest::mouseClick(
                p.window->findChild<QLabel *>(QStringLiteral("lblColor_%1").arg(index)), button);
        };

        std::vector<QImage> states{p.picture()};
        std::vector<QRect> places; // where each stroke must land
        auto stroke = [&](const QRect &place) {
            states.push_back(p.picture());
            places.push_back(place);
        };

        p.tool(4); // Pencil, red
        colour(16);
        p.press({20, 20});
        p.move({60, 30});
        p.move({90, 20});
        p.release({90, 20});
        stroke(QRect(QPoint(18, 18), QPoint(92, 32)));

        p.tool(5); // Line, 3 wide, blue
        colour(20);
        p.dotSize(2);
        p.drag({120, 20}, {220, 60});
        stroke(QRect(QPoint(117, 17), QPoint(223, 63)));

        p.tool(6); // Rectangle outline, black
        colour(0);
        p.dotSize(0);
        p.drag({20, 80}, {120, 160});
        stroke(QRect(QPoint(20, 80), QPoint(120, 160)));

        p.tool(3); // Fill inside it, yellow
        colour(17);
        p.click({70, 120});
        stroke(QRect(QPoint(21, 81), QPoint(119, 159)));

        p.tool(7); // Ellipse, outline and fill, green on cyan
        colour(4);
        colour(19, Qt::RightButton);
        p.fillMode(1);
        p.drag({150, 80}, {250, 150});
        stroke(QRect(QPoint(150, 80), QPoint(250, 150)));

        p.tool(9); // Arrow, dark red
        colour(2);
        p.drag({280, 40}, {380, 40});
        stroke(QRect(QPoint(270, 28), QPoint(382, 52)));

        p.tool(11); // Rounded rectangle, fill only, magenta
        colour(21, Qt::RightButton);
        p.fillMode(2);
        p.drag({280, 80}, {400, 150});
        stroke(QRect(QPoint(280, 80), QPoint(400, 150)));

        p.tool(12); // Polygon, outline, navy
        colour(6);
        p.fillMode(0);
        p.click({20, 200});
        p.click({120, 200});
        p.click({70, 280});
        p.doubleClick({70, 280});
        stroke(QRect(QPoint(20, 200), QPoint(120, 280)));

        p.tool(16); // Brush, hollow circles, teal
        colour(5);
        p.brushShape(3);
        p.dotSize(1);
        p.drag({160, 240}, {260, 240});
        stroke(QRect(QPoint(150, 230), QPoint(270, 250)));

        p.tool(8); // Text, black
        colour(0);
        p.click({300, 220});
        auto *box = p.window->findChild<QLineEdit *>(QStringLiteral("txtText"));
        QTest::keyClicks(box, QStringLiteral("Tarnwick"));
        QTest::keyClick(box, Qt::Key_Return);
        stroke(QRect(QPoint(300, 220), QPoint(420, 270)));

        // Each stroke changed its own place, and only there.
        QCOMPARE(places.size(), size_t(10));
        for (size_t i = 0; i < places.size(); ++i) {
            const Change c = changed(states[i], states[i + 1]);
            QVERIFY2(c.count > 0, qPrintable(QStringLiteral("stroke %1 drew nothing").arg(i)));
            QVERIFY2(places[i].contains(c.box),
                     qPrintable(QStringLiteral("stroke %1 at %2,%3 %4x%5")
                                    .arg(i)
                                    .arg(c.box.x())
                                    .arg(c.box.y())
                                    .arg(c.box.width())
                                    .arg(c.box.height())));
        }

        // Undo back to the empty picture, one stroke at a time, and redo forward again.
        for (int i = 9; i >= 0; --i) {
            QVERIFY(p.doc().menuState().undo);
            p.doc().mnuUndo_Click();
            QCOMPARE(changed(states[size_t(i)], p.picture()).count, 0);
        }
        QVERIFY(!p.doc().menuState().undo);
        for (size_t i = 1; i <= 10; ++i) {
            QVERIFY(p.doc().menuState().redo);
            p.doc().mnuRedo_Click();
            QCOMPARE(changed(states[i], p.picture()).count, 0);
        }
        QVERIFY(!p.doc().menuState().redo);

        // Saved as GIF and opened in a new window: every stroke where it was drawn.
        const QString file = dir.filePath(QStringLiteral("drawing.gif"));
        QVERIFY(p.doc().mnuSaveAs_My_Click(file));
        QVERIFY(!p.doc().Dirty());
        driver.reset();
        QPointer<frmPaint> again = frmPaint::OpenPaint(file);
        QVERIFY(again);
        QCOMPARE(again->document().picture().size(), states.back().size());
        QCOMPARE(changed(states.back(), again->document().picture()).count, 0);
        delete again.data();
    }
};

TARNWICK_TEST_MAIN(TestPaintToolsGui)
#include "test_painttools_gui.moc"
