#pragma once

#include <QWidget>

#include <vector>

class QLabel;

// The paint window's colours: lblForeColor and lblFillColor (the foreground and fill colours,
// each as the label's back colour, the fill colour's square behind the foreground's) and the
// palette lblColor_0 to lblColor_27. A left click on the palette chooses the foreground colour,
// a right click the fill colour; a double click on lblForeColor or lblFillColor asks for a colour
// of one's own. It only shows and reports; the window decides.
class PaintColorBar final : public QWidget
{
    Q_OBJECT
public:
    explicit PaintColorBar(QWidget *parent = nullptr);

    // Colours as colour numbers (red + 256 green + 65536 blue).
    void sync(int foreColour, int fillColour);
    static const std::vector<int> &Palette();

signals:
    void foreColorClicked(int colour);
    void fillColorClicked(int colour);
    void foreColorDoubleClicked();
    void fillColorDoubleClicked();
    // The mouse is over a part whose hint stands in a pane of the status bar (1 the palette, 2
    // lblForeColor, 3 lblFillColor); 0 when it left.
    void hintPane(int pane);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLabel *m_fore = nullptr;
    QLabel *m_fill = nullptr;
    std::vector<QLabel *> m_palette;
};
