// Draws the paint window in the middle of drawing (a rectangle being dragged, a curve with its
// handles, the text box open) and a sheet of the tools' cursors, and writes each to a PNG file
// in the folder given as the first argument.
#include "CursorFile.h"
#include "Folders.h"
#include "PaintToolDriver.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>

#include <cmath>

using namespace paintdriver;

namespace {

bool saveShot(QWidget *window, const QString &path)
{
    QTest::qWait(150);
    return window->grab().save(path);
}

void colour(PaintDriver &p, int index, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(p.window->findChild<QLabel *>(QStringLiteral("lblColor_%1").arg(index)),
                      button);
}

// A picture drawn with several tools, the same in each shot.
void drawScene(PaintDriver &p)
{
    p.tool(6);
    colour(p, 6);
    colour(p, 24, Qt::RightButton);
    p.fillMode(1);
    p.dotSize(1);
    p.drag({30, 30}, {200, 140});
    p.tool(7);
    colour(p, 2);
    colour(p, 17, Qt::RightButton);
    p.drag({230, 40}, {380, 150});
    p.tool(4);
    colour(p, 4);
    p.dotSize(2);
    p.press({40, 200});
    for (int i = 0; i <= 40; ++i)
        p.move({40 + i * 4, 230 + int(25 * std::sin(i / 4.0))});
    p.release({200, 230});
    p.tool(10);
    colour(p, 20);
    p.dotSize(5);
    for (int i = 0; i < 12; ++i)
        p.click({260 + i * 8, 230 + (i % 3) * 6});
    p.tool(9);
    colour(p, 0);
    p.dotSize(1);
    p.drag({40, 330}, {180, 300});
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath();
    QDir().mkpath(folder);
    bool ok = true;

    {
        // A rectangle being dragged: its rubber band over the picture.
        PaintDriver p;
        p.window->resize(760, 560);
        drawScene(p);
        p.tool(6);
        colour(p, 16);
        p.fillMode(0);
        p.press({230, 290});
        p.move({300, 330});
        p.move({380, 370});
        p.move({400, 380}); // held: the band shows
        QTest::mouseMove(p.pic, QPoint(400, 380));
        ok &= saveShot(p.window, folder + QStringLiteral("/paint-tools-rectangle.png"));
        p.release({400, 380});
    }
    {
        // A curve with its four handles, before ENTER draws it for good.
        PaintDriver p;
        p.window->resize(760, 560);
        drawScene(p);
        p.tool(13);
        colour(p, 16);
        p.dotSize(2);
        p.click({300, 320});
        p.drag({300, 320}, {320, 310});
        ok &= saveShot(p.window, folder + QStringLiteral("/paint-tools-curve.png"));
    }
    {
        // The text box open over the picture.
        PaintDriver p;
        p.window->resize(760, 560);
        drawScene(p);
        p.tool(8);
        p.click({230, 300});
        QTest::keyClicks(p.window->findChild<QLineEdit *>(QStringLiteral("txtText")),
                         QStringLiteral("Our garden in May"));
        ok &= saveShot(p.window, folder + QStringLiteral("/paint-tools-text.png"));
    }
    {
        // The cursors, at twice their size, as the program reads them from its Cursors folder.
        const QStringList files = {QStringLiteral("pick.cur"),     QStringLiteral("eraser.cur"),
                                   QStringLiteral("fill.cur"),     QStringLiteral("pencil.cur"),
                                   QStringLiteral("cross.cur"),    QStringLiteral("text.cur"),
                                   QStringLiteral("airbrush.cur"), QStringLiteral("filter.cur"),
                                   QStringLiteral("zoom.cur"),     QStringLiteral("brush.cur"),
                                   QStringLiteral("handflat.cur"), QStringLiteral("handgrab.cur")};
        QImage sheet(6 * 96, 2 * 110, QImage::Format_RGB32);
        sheet.fill(QColor(236, 236, 236));
        QPainter p(&sheet);
        for (int i = 0; i < files.size(); ++i) {
            const CursorImage cursor =
                ReadCursorFile(Folders::ProgramFolder() + QStringLiteral("/Cursors/") + files[i]);
            if (!cursor.ok()) {
                ok = false;
                continue;
            }
            const QRect cell((i % 6) * 96, (i / 6) * 110, 96, 110);
            p.drawImage(QRect(cell.left() + 16, cell.top() + 10, 64, 64), cursor.image);
            // The hot spot, a red dot.
            p.fillRect(QRect(cell.left() + 16 + cursor.hotSpot.x() * 2,
                             cell.top() + 10 + cursor.hotSpot.y() * 2, 2, 2),
                       Qt::red);
            p.setPen(Qt::black);
            p.drawText(QRect(cell.left(), cell.top() + 80, 96, 24), Qt::AlignCenter, files[i]);
        }
        p.end();
        ok &= sheet.save(folder + QStringLiteral("/paint-cursors.png"));
    }
    return ok ? 0 : 1;
}
