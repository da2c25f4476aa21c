#pragma once

#include <QWidget>

#include <array>

class QAbstractButton;
class QButtonGroup;
class QFrame;
class QLabel;

// The paint window's tool box: the eighteen tool buttons (optTools_0 to optTools_17, captions
// from the ToolTable) and below them the option frames: fraOptDot (eight width marks shpDot_0
// to shpDot_7 and lblDot with the width), fraOptFill (shpRect_0 to shpRect_2: outline, outline
// and fill, fill) and fraBrush (imgBrush_0 to imgBrush_9, with lblBrush behind the chosen one).
// It only shows and reports; the window decides.
class PaintToolBox final : public QWidget
{
    Q_OBJECT
public:
    explicit PaintToolBox(QWidget *parent = nullptr);

    // Shows the state: the tool's button set and its frames shown, the marks chosen.
    void sync(int tool, int dotSize, int fillMode, int brushShape);
    QAbstractButton *toolButton(int tool) const { return m_tools[size_t(tool)]; }

signals:
    // A mouse press on a tool button (before its click).
    void toolPressed(int tool);
    void toolClicked(int tool);
    void dotSizeClicked(int dotSize);
    void fillModeClicked(int fillMode);
    void brushShapeClicked(int shape);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void placeBrushMark();

    std::array<QAbstractButton *, 18> m_tools{};
    std::array<QAbstractButton *, 8> m_dots{};
    std::array<QAbstractButton *, 3> m_fills{};
    std::array<QAbstractButton *, 10> m_brushes{};
    QFrame *m_dotFrame = nullptr;
    QFrame *m_fillFrame = nullptr;
    QFrame *m_brushFrame = nullptr;
    QLabel *m_dotLabel = nullptr;
    QLabel *m_brushMark = nullptr;
    int m_brushShape = 0;
};
