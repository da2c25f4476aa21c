#include "frmZoom.h"

#include "PictureLoader.h"

#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QResizeEvent>
#include <QScreen>

#include <cmath>

namespace {

std::function<void(const QString &)> &paintOpener()
{
    static std::function<void(const QString &)> opener;
    return opener;
}

} // namespace

frmZoom::frmZoom(const QString &ZoomPicturePath, double ZoomPictureRatio, QWidget *parent)
    : QWidget(parent, Qt::Window), m_path(ZoomPicturePath), m_ratio(ZoomPictureRatio)
{
    setObjectName(QStringLiteral("frmZoom"));
    setWindowTitle(QStringLiteral("Zoom - Move edges to zoom"));
    setAttribute(Qt::WA_DeleteOnClose);
    QPalette dark = palette();
    dark.setColor(QPalette::Window, QColor(32, 32, 32));
    setPalette(dark);
    setAutoFillBackground(true);

    m_image1 = new QLabel(this);
    m_image1->setObjectName(QStringLiteral("Image1"));
    m_image1->setScaledContents(true);
    m_image1->installEventFilter(this);
    // The tip promises the paint window only where one is there to open.
    if (paintOpener())
        m_image1->setToolTip(QStringLiteral("Double click to open the picture in the paint window"));

    m_picture = ReadPicture(m_path);
    if (!m_picture.isNull()) {
        m_image1->setPixmap(QPixmap::fromImage(m_picture));
        if (!(m_ratio > 0) && m_picture.height() > 0)
            m_ratio = double(m_picture.width()) / m_picture.height();
    }

    const QScreen *screen = parent != nullptr && parent->screen() != nullptr
                                ? parent->screen()
                                : QGuiApplication::primaryScreen();
    const QRect available = screen != nullptr ? screen->availableGeometry() : QRect(0, 0, 800, 600);
    const int height =
        int(std::lround(0.75 * (screen != nullptr ? screen->geometry().height() : 600)));
    int width = m_ratio > 0 ? int(std::lround(height * m_ratio)) : height;
    // A panorama wider than the screen opens as wide as the screen; the picture then fits.
    width = std::clamp(width, 100, std::max(100, available.width()));
    resize(width, height);
    fitPicture();
}

frmZoom *frmZoom::ShowPicture(const QString &ZoomPicturePath, double ZoomPictureRatio,
                              QWidget *parent)
{
    auto *zoom = new frmZoom(ZoomPicturePath, ZoomPictureRatio, parent);
    zoom->show();
    zoom->raise();
    zoom->activateWindow();
    return zoom;
}

void frmZoom::setPaintOpener(std::function<void(const QString &)> opener)
{
    paintOpener() = std::move(opener);
}

void frmZoom::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fitPicture();
}

void frmZoom::fitPicture()
{
    if (!(m_ratio > 0))
        return;
    const double formWidth = width();
    const double formHeight = height();
    double w = 0;
    double h = 0;
    if (width() != m_image1->width()) {
        w = formWidth;
        h = formWidth / m_ratio;
        if (h > formHeight) {
            h = formHeight;
            w = h * m_ratio;
        }
    } else {
        h = formHeight;
        w = h * m_ratio;
        if (w > formWidth) {
            w = formWidth;
            h = w / m_ratio;
        }
    }
    const int iw = int(std::lround(w));
    const int ih = int(std::lround(h));
    m_image1->setGeometry((width() - iw) / 2, (height() - ih) / 2, iw, ih);
}

bool frmZoom::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_image1 && event->type() == QEvent::MouseButtonDblClick) {
        if (const auto &open = paintOpener())
            open(m_path);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
