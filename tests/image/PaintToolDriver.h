#pragma once

// Drives the paint window's tools as a user does: clicks on the tool box and the colour bar,
// mouse presses, moves and releases on picPaint, keys. Shared by the tool tests.

#include "frmPaint.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QWidget>

namespace paintdriver {

// The part of two pictures that differs: how many pixels and their bounding box.
struct Change
{
    int count = 0;
    QRect box;
};

inline Change changed(const QImage &before, const QImage &after)
{
    Change change;
    if (before.size() != after.size())
        return {-1, {}};
    for (int y = 0; y < before.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(before.constScanLine(y));
        const auto *b = reinterpret_cast<const QRgb *>(after.constScanLine(y));
        for (int x = 0; x < before.width(); ++x)
            if ((a[x] & 0xFFFFFF) != (b[x] & 0xFFFFFF)) {
                ++change.count;
                change.box |= QRect(x, y, 1, 1);
            }
    }
    return change;
}

// Pixels of one colour inside a rectangle.
inline int countColour(const QImage &image, const QRect &area, QRgb colour)
{
    int n = 0;
    const QRect r = area.intersected(image.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            if ((image.pixel(x, y) & 0xFFFFFF) == (colour & 0xFFFFFF))
                ++n;
    return n;
}

class PaintDriver
{
public:
    PaintDriver()
    {
        window = frmPaint::OpenPaint(QString());
        window->show();
        if (!QTest::qWaitForWindowExposed(window))
            qWarning("the paint window was not shown");
        pic = window->findChild<QWidget *>(QStringLiteral("picPaint"));
    }
    ~PaintDriver() { delete window.data(); }
    PaintDriver(const PaintDriver &) = delete;
    PaintDriver &operator=(const PaintDriver &) = delete;

    PaintDocument &doc() { return window->document(); }
    QImage picture() { return doc().picture().copy(); }
    int undoPosition() { return doc().undoRing().UndoCurrent(); }

    QAbstractButton *button(const QString &name)
    {
        return window->findChild<QAbstractButton *>(name);
    }
    void tool(int number)
    {
        QTest::mouseClick(button(QStringLiteral("optTools_%1").arg(number)), Qt::LeftButton);
    }
    void dotSize(int size)
    {
        QTest::mouseClick(button(QStringLiteral("shpDot_%1").arg(size)), Qt::LeftButton);
    }
    void fillMode(int mode)
    {
        QTest::mouseClick(button(QStringLiteral("shpRect_%1").arg(mode)), Qt::LeftButton);
    }
    void brushShape(int shape)
    {
        QTest::mouseClick(button(QStringLiteral("imgBrush_%1").arg(shape)), Qt::LeftButton);
    }

    // Mouse events on picPaint (or another widget), at widget points.
    void send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers keys = {}, QWidget *on = nullptr)
    {
        QWidget *target = on ? on : pic;
        QMouseEvent event(type, QPointF(at), QPointF(target->mapToGlobal(at)), button, buttons,
                          keys);
        QApplication::sendEvent(target, &event);
    }
    void press(QPoint at, Qt::KeyboardModifiers keys = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, at, button, button, keys);
    }
    void move(QPoint at, Qt::KeyboardModifiers keys = {}, Qt::MouseButtons held = Qt::LeftButton)
    {
        send(QEvent::MouseMove, at, Qt::NoButton, held, keys);
    }
    void release(QPoint at, Qt::KeyboardModifiers keys = {},
                 Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, at, button, Qt::NoButton, keys);
    }
    void doubleClick(QPoint at)
    {
        send(QEvent::MouseButtonDblClick, at, Qt::LeftButton, Qt::LeftButton);
        release(at);
    }
    // A drag from a to b through a few points between.
    void drag(QPoint a, QPoint b, Qt::KeyboardModifiers keys = {})
    {
        press(a, keys);
        for (int i = 1; i <= 4; ++i)
            move(a + (b - a) * i / 4, keys);
        release(b, keys);
    }
    void click(QPoint at, Qt::KeyboardModifiers keys = {}, Qt::MouseButton button = Qt::LeftButton)
    {
        press(at, keys, button);
        release(at, keys, button);
    }

    QPointer<frmPaint> window;
    QWidget *pic = nullptr;
};

} // namespace paintdriver
