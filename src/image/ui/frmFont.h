#pragma once

#include <QDialog>

#include <array>

class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;

// "Select a font": the families of one font type in SystemFontList, the font it opened with
// (CurrentFont, CurrentExample) and the one picked (NewFontSelected, NewExample).
// SelectedFont is the exchange value: the family it opens with; after OK the family shown as
// picked, after Cancel the one it opened with. Most callers want PickFont (Pickers.h).
//
// Font types, as the option buttons' indexes: 4 TrueType (the smoothly scalable families),
// 1 raster (the bitmap families), 2 device and 0 vector (which this system does not have: their
// lists stay empty).
class frmFont final : public QDialog
{
    Q_OBJECT
public:
    explicit frmFont(const QString &SelectedFont, QWidget *parent = nullptr);

    QString SelectedFont() const { return m_selectedFont; }
    int FontTypeWanted() const { return m_fontTypeWanted; }

    // The families of one font type, in the font service's order.
    static QStringList FamiliesOfType(int fontType);

    void Option1_Click(int index);
    void Command1_Click();
    void SystemFontList_Click();
    void OKButton_Click();
    void CancelButton_Click();

private:
    QString m_selectedFont;
    int m_fontTypeWanted = 4;
    std::array<QRadioButton *, 5> m_options{};
    QPushButton *m_command1 = nullptr;
    QListWidget *m_list = nullptr;
    QLabel *m_currentFont = nullptr;
    QLabel *m_currentExample = nullptr;
    QLabel *m_newFont = nullptr;
    QLabel *m_newExample = nullptr;
};
