#pragma once

#include <QWidget>

#include <array>

class PaintDocument;
class QLabel;
class QLineEdit;
class QRubberBand;

// picPaint: draws the document's picture at its zoom factor, with the floating selection
// (picSelect) over it, and passes the mouse to the document's tool in picture pixels. Over the
// picture stand what the tool shows: Curve's four handles (imgBezier_0 to imgBezier_3, dragged
// one at a time) and Text's box (txtText, sized by the hidden label lblTextSize). Its container
// also holds the three handles (picPaintResize 0 right edge, 1 corner, 2 bottom edge) that resize
// the picture by dragging.
class PaintCanvas final : public QWidget
{
    Q_OBJECT
public:
    explicit PaintCanvas(PaintDocument &document, QWidget *container);

    // Follows the document: size, zoom, selection and handles.
    void syncToDocument();
    // Follows what the tool shows over the picture.
    void syncOverlay();
    // Shows a part of the picture again (picture pixels).
    void showPicture(const QRect &area);
    QPoint toPicture(const QPoint &widgetPoint) const;
    QPoint toWidget(const QPoint &picturePoint) const;

signals:
    void mouseAt(const QPoint &picturePoint);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void placeHandles();
    bool bezierEvent(int index, QEvent *event);
    bool textBoxEvent(QEvent *event);

    PaintDocument &m_document;
    QWidget *m_container;
    QWidget *m_select = nullptr;
    std::array<QWidget *, 3> m_handles{};
    QRubberBand *m_frame = nullptr;
    int m_dragging = -1;
    QPoint m_dragStart;
    std::array<QWidget *, 4> m_bezier{};
    int m_bezierDragging = -1;
    QPoint m_bezierLast; // the mouse on the screen
    QLineEdit *m_text = nullptr;
    QLabel *m_textSize = nullptr;
    bool m_syncingText = false;
};
