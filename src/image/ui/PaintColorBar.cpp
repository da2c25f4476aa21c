#include "PaintColorBar.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>

namespace {

QColor toQColor(int colour)
{
    return QColor(colour & 255, (colour >> 8) & 255, (colour >> 16) & 255);
}

constexpr int rgb(int r, int g, int b)
{
    return r + 256 * g + 65536 * b;
}

void paintSwatch(QLabel *label, int colour)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::Window, toQColor(colour));
    label->setPalette(palette);
}

QLabel *swatch(const QString &name, QSize size, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setFixedSize(size);
    label->setAutoFillBackground(true);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Sunken);
    return label;
}

} // namespace

const std::vector<int> &PaintColorBar::Palette()
{
    // Two rows of fourteen: the dark colours above, the light ones below.
    static const std::vector<int> colours = {
        rgb(0, 0, 0),       rgb(128, 128, 128), rgb(128, 0, 0),     rgb(128, 128, 0),
        rgb(0, 128, 0),     rgb(0, 128, 128),   rgb(0, 0, 128),     rgb(128, 0, 128),
        rgb(128, 128, 64),  rgb(0, 64, 64),     rgb(0, 128, 255),   rgb(0, 64, 128),
        rgb(128, 0, 255),   rgb(128, 64, 0),    rgb(255, 255, 255), rgb(192, 192, 192),
        rgb(255, 0, 0),     rgb(255, 255, 0),   rgb(0, 255, 0),     rgb(0, 255, 255),
        rgb(0, 0, 255),     rgb(255, 0, 255),   rgb(255, 255, 128), rgb(0, 255, 128),
        rgb(128, 255, 255), rgb(128, 128, 255), rgb(255, 0, 128),   rgb(255, 128, 64),
    };
    return colours;
}

PaintColorBar::PaintColorBar(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("picColors"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(4, 2, 4, 2);
    row->setSpacing(8);

    // The fill colour's square stands behind and below the foreground's, as the two overlap.
    auto *pair = new QWidget(this);
    pair->setFixedSize(40, 36);
    m_fill = swatch(QStringLiteral("lblFillColor"), QSize(22, 22), pair);
    m_fill->move(16, 12);
    m_fore = swatch(QStringLiteral("lblForeColor"), QSize(22, 22), pair);
    m_fore->move(2, 2);
    m_fore->setFrameShadow(QFrame::Raised);
    for (QLabel *label : {m_fore, m_fill})
        label->installEventFilter(this);
    row->addWidget(pair);

    auto *grid = new QGridLayout;
    grid->setSpacing(1);
    const std::vector<int> &colours = Palette();
    for (size_t i = 0; i < colours.size(); ++i) {
        QLabel *label = swatch(QStringLiteral("lblColor_%1").arg(i), QSize(16, 16), this);
        paintSwatch(label, colours[i]);
        label->installEventFilter(this);
        grid->addWidget(label, int(i) / 14, int(i) % 14);
        m_palette.push_back(label);
    }
    row->addLayout(grid);
    row->addStretch(1);
}

void PaintColorBar::sync(int foreColour, int fillColour)
{
    paintSwatch(m_fore, foreColour);
    paintSwatch(m_fill, fillColour);
}

bool PaintColorBar::eventFilter(QObject *watched, QEvent *event)
{
    const auto paletteIndex = [this, watched]() -> int {
        for (size_t i = 0; i < m_palette.size(); ++i)
            if (m_palette[i] == watched)
                return int(i);
        return -1;
    };
    switch (event->type()) {
    case QEvent::Enter:
        if (watched == m_fore)
            emit hintPane(2);
        else if (watched == m_fill)
            emit hintPane(3);
        else if (paletteIndex() >= 0)
            emit hintPane(1);
        break;
    case QEvent::Leave:
        emit hintPane(0);
        break;
    case QEvent::MouseButtonPress: {
        const int index = paletteIndex();
        if (index < 0)
            break;
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::LeftButton)
            emit foreColorClicked(Palette()[size_t(index)]);
        else if (mouse->button() == Qt::RightButton)
            emit fillColorClicked(Palette()[size_t(index)]);
        return true;
    }
    case QEvent::MouseButtonDblClick:
        if (watched == m_fore) {
            emit foreColorDoubleClicked();
            return true;
        }
        if (watched == m_fill) {
            emit fillColorDoubleClicked();
            return true;
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}
