// Draws the paint window with a photo, with its Filter and Effect menus open, and the colour and
// font pickers, and writes each to a PNG file in the folder given as the first argument (the
// photo is the second argument; a drawn picture stands in without one).
#include "frmFont.h"
#include "frmPaint.h"
#include "frmSelectColor.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool save(QWidget &widget, const QString &folder, const QString &name)
{
    widget.show();
    if (!QTest::qWaitForWindowExposed(&widget))
        return false;
    QTest::qWait(200);
    // A window that shows a photo is kept as JPEG, a plain dialog as PNG.
    return widget.grab().save(folder + QLatin1Char('/') + name, nullptr,
                              name.endsWith(QLatin1String(".jpg")) ? 90 : -1);
}

// The window with one of its menus (and a submenu) open: the menus are windows of their own, so
// they are drawn onto the window's picture where they stand.
bool saveWithMenu(frmPaint &paint, const char *menuName, const char *submenuAction,
                  const QString &folder, const QString &name)
{
    auto *menu = paint.findChild<QMenu *>(QLatin1String(menuName));
    if (!menu)
        return false;
    const QRect item = paint.menuBar()->actionGeometry(menu->menuAction());
    const QPoint at = paint.menuBar()->mapToGlobal(item.bottomLeft());
    menu->popup(at);
    QTest::qWait(150);
    QMenu *sub = nullptr;
    if (submenuAction) {
        for (QAction *a : menu->actions())
            if (a->objectName() == QLatin1String(submenuAction) && a->menu())
                sub = a->menu();
        if (sub) {
            const QRect r = menu->actionGeometry(sub->menuAction());
            menu->setActiveAction(sub->menuAction());
            sub->popup(menu->mapToGlobal(r.topRight()));
            QTest::qWait(150);
        }
    }
    QPixmap shot = paint.grab();
    QPainter p(&shot);
    p.drawPixmap(paint.mapFromGlobal(menu->pos()), menu->grab());
    if (sub)
        p.drawPixmap(paint.mapFromGlobal(sub->pos()), sub->grab());
    p.end();
    if (sub)
        sub->hide();
    menu->hide();
    return shot.save(folder + QLatin1Char('/') + name, nullptr, 90);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath();
    QDir().mkpath(folder);
    QString photo = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    QTemporaryDir scratch;
    if (photo.isEmpty()) {
        QImage drawn(1200, 800, QImage::Format_RGB32);
        QPainter p(&drawn);
        QLinearGradient sky(0, 0, 0, 800);
        sky.setColorAt(0, QColor(70, 130, 200));
        sky.setColorAt(1, QColor(230, 200, 150));
        p.fillRect(drawn.rect(), sky);
        p.setBrush(QColor(60, 110, 50));
        p.setPen(Qt::NoPen);
        p.drawEllipse(QPoint(300, 900), 700, 400);
        p.end();
        photo = scratch.filePath(QStringLiteral("photo.jpg"));
        drawn.save(photo);
    }
    bool ok = true;

    frmPaint paint;
    paint.resize(1000, 700);
    paint.show();
    paint.document().mnuOpen_My_Click(photo);
    // Zoomed out until the photo fits the window.
    while (paint.document().picture().width() * paint.document().ZoomFactor() > 960 ||
           paint.document().picture().height() * paint.document().ZoomFactor() > 600)
        paint.document().zoomAt(QPoint(0, 0), true);
    ok &= save(paint, folder, QStringLiteral("paint-window.jpg"));
    ok &=
        saveWithMenu(paint, "mnuFilter", nullptr, folder, QStringLiteral("paint-filter-menu.jpg"));
    ok &= saveWithMenu(paint, "mnuEffect", "mnuRotate", folder,
                       QStringLiteral("paint-effect-menu.jpg"));
    paint.findChild<QAction *>(QStringLiteral("mnuEmboss"))->trigger();
    while (paint.document().picture().width() * paint.document().ZoomFactor() > 960 ||
           paint.document().picture().height() * paint.document().ZoomFactor() > 600)
        paint.document().zoomAt(QPoint(0, 0), true);
    ok &= save(paint, folder, QStringLiteral("paint-emboss.jpg"));
    paint.document().mnuUndo_Click();

    frmSelectColor colour(QStringLiteral("#7F7Fff"));
    ok &= save(colour, folder, QStringLiteral("select-a-color.png"));
    frmFont font(QStringLiteral("Liberation Serif"));
    ok &= save(font, folder, QStringLiteral("select-a-font.png"));
    paint.document().setClipboard(QImage());
    return ok ? 0 : 1;
}
