#pragma once

#include <QImage>
#include <QWidget>

#include <functional>

class QLabel;

// "Zoom - Move edges to zoom": one picture, large. The window opens at three quarters of the
// screen's height and the picture's width for that height; when the user drags its edges the
// picture keeps its ratio, as large as fits, centred. A double click on the picture opens it in
// the paint window (through the opener set with setPaintOpener). A picture that can't be read
// leaves the window empty. The window deletes itself when closed.
class frmZoom final : public QWidget
{
    Q_OBJECT
public:
    // ZoomPicturePath: the picture; ZoomPictureRatio: its width divided by its height (taken
    // from the picture itself when not above 0).
    frmZoom(const QString &ZoomPicturePath, double ZoomPictureRatio, QWidget *parent = nullptr);

    // Makes a zoom window for the picture and shows it (a separate window above parent).
    static frmZoom *ShowPicture(const QString &ZoomPicturePath, double ZoomPictureRatio,
                                QWidget *parent = nullptr);

    // What a double click on the picture calls with ZoomPicturePath (the paint window's open).
    static void setPaintOpener(std::function<void(const QString &path)> opener);

    QString ZoomPicturePath() const { return m_path; }
    double ZoomPictureRatio() const { return m_ratio; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitPicture();

    QString m_path;
    double m_ratio = 0;
    QImage m_picture;
    QLabel *m_image1 = nullptr;
};
