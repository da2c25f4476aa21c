#pragma once

#include <QDialog>

#include <array>

class QLabel;
class QLineEdit;
class QScrollBar;

// "Select a Color": a palette of 26 colours, a red, green and blue box each with its scroll bar
// (0 to 255), and the "New" and "Old" samples. SelectedColor is the exchange value: the colour
// text "#RRGGBB" it opens with, and after OK the colour chosen, in capitals. Cancel leaves it as
// it was. Most callers want PickColor (Pickers.h) rather than this class.
class frmSelectColor final : public QDialog
{
    Q_OBJECT
public:
    explicit frmSelectColor(const QString &SelectedColor, QWidget *parent = nullptr);

    QString SelectedColor() const { return m_selectedColor; }

    // The palette's colours as colour numbers (red + 256 green + 65536 blue).
    static const std::array<int, 26> &PaletteColors();

    void lblColor_Click(int index);
    void RGB_Change(int index);
    void VScroll1_Change(int index);
    void ColorOKButton_Click();
    void CancelColorButton_Click();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showSample(QLabel *sample, int colour);

    QString m_selectedColor;
    std::array<QLabel *, 26> m_palette{};
    std::array<QLineEdit *, 3> m_rgb{};
    std::array<QScrollBar *, 3> m_scroll{};
    std::array<QLabel *, 2> m_samples{};
    std::array<QLabel *, 3> m_channelSamples{};
};
