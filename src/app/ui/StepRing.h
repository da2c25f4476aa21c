#pragma once

#include <QColor>
#include <QFrame>
#include <QList>
#include <QPointer>

// One step ring (Shape1_i): a coloured rounded outline drawn around a control to point at the
// next step. It lives in the main window's work area and follows its target's geometry. Whether
// it is shown is the ring's own state (isShown); it is on screen only while its target is too.
class StepRing final : public QFrame
{
    Q_OBJECT
public:
    explicit StepRing(QWidget *overlayParent);

    void setTarget(QWidget *target);
    QWidget *target() const { return m_target; }

    void setShown(bool shown);
    bool isShown() const { return m_shown; }

    void setColour(const QColor &colour);
    QColor colour() const { return m_colour; }

    // Follows the target's place and visibility.
    void follow();

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void watchTarget(bool on);

    QPointer<QWidget> m_target;
    QList<QPointer<QWidget>> m_watched; // the target and its ancestors below the overlay
    QColor m_colour;
    bool m_shown = false;
};
