#pragma once

#include "PhotoFrameServices.h"

#include <QWidget>

#include <array>

class QCheckBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
struct PhotoPage;

// The "Settings" tab of Send a Photo Page: the look of the page (background, title and text
// colours, font), the two picture sizes with the camera table, the alternating placement of
// pictures, the JPEG quality of the copies and the working folder. Every control writes its setting at once; there is no Apply.
class PhotoFrameSettings final : public QWidget
{
    Q_OBJECT
public:
    PhotoFrameSettings(PhotoPage &page, PhotoFrameServices &services, QWidget *parent = nullptr);

    // The text of the instructions beside the picture sizes.
    static QString InstructionsText();

    // A colour box (0 background, 1 title, 2 text) or the font box clicked.
    void ColourBox_Click(int index);
    void PhotoFont_Click();
    // Camera table short cut (5-9, and 10-12 for today's cameras): fills both size boxes.
    void Command1_Click(int index);
    // Leaving a size box: a value below 2 becomes "2", above 120 "120".
    void My_resize_LostFocus(int index);
    // Leaving the JPEG quality box: held to 50 to 100; anything but a number gives "85".
    void JpegQuality_LostFocus();
    void AlernateCheck_Click();
    // Pre-fills the placement of rows 0 to 400 alternately, row 0 on the right.
    void fillAlternating();

    // Shows the working folder.
    void setWorkingFolder(const QString &folder);
    // Puts a field that the window owns (the image load speed) into the page.
    void addField(const QString &caption, QWidget *field);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *buildLookBox();
    QWidget *buildSizeBox();
    QWidget *buildLayoutBox();
    void showColour(int index, const QString &colour);

    PhotoPage &m_page;
    PhotoFrameServices &m_services;
    std::array<QPushButton *, 3> m_colourBoxes{};
    QPushButton *m_fontBox = nullptr;
    QLabel *m_fontExample = nullptr;
    std::array<QLineEdit *, 2> m_resize{};
    QLineEdit *m_quality = nullptr;
    QCheckBox *m_alternate = nullptr;
    QLineEdit *m_uploadPath = nullptr;
    QFormLayout *m_layoutForm = nullptr;
};
