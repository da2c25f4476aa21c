#include "PaintToolBox.h"

#include "PaintTool.h"
#include "ToolArt.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QToolButton>
#include <QVBoxLayout>

#include <functional>

namespace {

// A mark of an option frame: a small picture of the option, shaded while chosen.
class OptionMark final : public QAbstractButton
{
public:
    OptionMark(const QString &name, QSize size, std::function<void(QPainter &, QRect)> picture,
               QWidget *parent)
        : QAbstractButton(parent), m_picture(std::move(picture))
    {
        setObjectName(name);
        setCheckable(true);
        setFixedSize(size);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        if (isChecked())
            p.fillRect(rect(), palette().color(QPalette::Highlight).lighter(170));
        if (underMouse())
            p.fillRect(rect(), QColor(0, 0, 0, 18));
        p.setPen(QColor(20, 20, 20));
        p.setBrush(QColor(20, 20, 20));
        m_picture(p, rect());
    }

private:
    std::function<void(QPainter &, QRect)> m_picture;
};

void brushShapePicture(QPainter &p, QRect box, int shape)
{
    p.setRenderHint(QPainter::Antialiasing, false);
    const QPoint c = box.center();
    const int r = std::min(box.width(), box.height()) / 2 - 4;
    const QRect square(c.x() - r, c.y() - r, 2 * r, 2 * r);
    p.setPen(QColor(20, 20, 20));
    switch (shape) {
    case 0:
        p.drawRect(square);
        break;
    case 1:
        p.drawEllipse(square);
        break;
    case 2:
        p.setBrush(Qt::NoBrush);
        p.drawRect(square);
        break;
    case 3:
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(square);
        break;
    case 4:
        p.drawLine(c.x(), c.y() - r, c.x(), c.y() + r);
        p.drawLine(c.x() - r, c.y(), c.x() + r, c.y());
        break;
    case 5:
        p.drawLine(c.x() - r, c.y() + r, c.x() + r, c.y() - r);
        p.drawLine(c.x() + r, c.y() + r, c.x() - r, c.y() - r);
        break;
    case 6:
        p.drawLine(c.x() - r, c.y() + r, c.x() + r, c.y() - r);
        break;
    case 7:
        p.drawLine(c.x() + r, c.y() + r, c.x() - r, c.y() - r);
        break;
    case 8:
        p.drawLine(c.x(), c.y() - r, c.x(), c.y() + r);
        break;
    default:
        p.drawLine(c.x() - r, c.y(), c.x() + r, c.y());
        break;
    }
}

QFrame *optionFrame(const QString &name, QWidget *parent)
{
    auto *frame = new QFrame(parent);
    frame->setObjectName(name);
    frame->setFrameShape(QFrame::StyledPanel);
    frame->setFrameShadow(QFrame::Sunken);
    return frame;
}

} // namespace

PaintToolBox::PaintToolBox(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("picTools"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->setSpacing(6);

    auto *grid = new QGridLayout;
    grid->setSpacing(1);
    auto *group = new QButtonGroup(this);
    group->setExclusive(true);
    for (const ToolEntry &entry : ToolTable::tools()) {
        auto *button = new QToolButton(this);
        button->setObjectName(QStringLiteral("optTools_%1").arg(entry.number));
        button->setCheckable(true);
        button->setAutoRaise(false);
        button->setText(QLatin1String(entry.caption));
        button->setToolTip(QLatin1String(entry.caption));
        button->setAccessibleName(QLatin1String(entry.caption));
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        button->setIcon(QPixmap::fromImage(DrawToolIcon(entry.number, 24)));
        button->setIconSize(QSize(24, 24));
        button->setFixedSize(32, 32);
        button->setFocusPolicy(Qt::NoFocus);
        button->installEventFilter(this);
        group->addButton(button, entry.number);
        grid->addWidget(button, entry.number / 2, entry.number % 2);
        m_tools[size_t(entry.number)] = button;
        const int number = entry.number;
        connect(button, &QToolButton::clicked, this, [this, number] { emit toolClicked(number); });
    }
    column->addLayout(grid);

    // fraOptDot: the widths, a bar as thick as the pen.
    m_dotFrame = optionFrame(QStringLiteral("fraOptDot"), this);
    auto *dots = new QVBoxLayout(m_dotFrame);
    dots->setContentsMargins(3, 3, 3, 3);
    dots->setSpacing(0);
    auto *dotGroup = new QButtonGroup(this);
    for (int i = 0; i < 8; ++i) {
        auto *mark = new OptionMark(
            QStringLiteral("shpDot_%1").arg(i), QSize(56, 12),
            [i](QPainter &p, QRect box) {
                p.setPen(Qt::NoPen);
                p.drawRect(
                    QRect(box.left() + 6, box.center().y() - i / 2, box.width() - 12, i + 1));
            },
            m_dotFrame);
        mark->setToolTip(QStringLiteral("%1 pixels wide").arg(i + 1));
        dotGroup->addButton(mark, i);
        dots->addWidget(mark);
        m_dots[size_t(i)] = mark;
        connect(mark, &QAbstractButton::clicked, this, [this, i] { emit dotSizeClicked(i); });
    }
    m_dotLabel = new QLabel(m_dotFrame);
    m_dotLabel->setObjectName(QStringLiteral("lblDot"));
    m_dotLabel->setAlignment(Qt::AlignCenter);
    dots->addWidget(m_dotLabel);
    column->addWidget(m_dotFrame);

    // fraOptFill: outline only, outline and fill, fill only.
    m_fillFrame = optionFrame(QStringLiteral("fraOptFill"), this);
    auto *fills = new QVBoxLayout(m_fillFrame);
    fills->setContentsMargins(3, 3, 3, 3);
    fills->setSpacing(1);
    auto *fillGroup = new QButtonGroup(this);
    const char *fillTips[] = {"Outline", "Outline and fill", "Fill"};
    for (int i = 0; i < 3; ++i) {
        auto *mark = new OptionMark(
            QStringLiteral("shpRect_%1").arg(i), QSize(56, 20),
            [i](QPainter &p, QRect box) {
                const QRect r = box.adjusted(12, 4, -12, -5);
                p.setPen(i == 2 ? QPen(QColor(120, 120, 120)) : QPen(QColor(20, 20, 20), 1));
                p.setBrush(i == 0 ? QBrush(Qt::NoBrush) : QBrush(QColor(120, 120, 120)));
                p.drawRect(r);
            },
            m_fillFrame);
        mark->setToolTip(QLatin1String(fillTips[i]));
        fillGroup->addButton(mark, i);
        fills->addWidget(mark);
        m_fills[size_t(i)] = mark;
        connect(mark, &QAbstractButton::clicked, this, [this, i] { emit fillModeClicked(i); });
    }
    column->addWidget(m_fillFrame);

    // fraBrush: the ten shapes, lblBrush behind the chosen one.
    m_brushFrame = optionFrame(QStringLiteral("fraBrush"), this);
    auto *brushes = new QGridLayout(m_brushFrame);
    brushes->setContentsMargins(3, 3, 3, 3);
    brushes->setSpacing(1);
    m_brushMark = new QLabel(m_brushFrame);
    m_brushMark->setObjectName(QStringLiteral("lblBrush"));
    m_brushMark->setFrameShape(QFrame::Box);
    m_brushMark->setAutoFillBackground(true);
    QPalette markPalette = m_brushMark->palette();
    markPalette.setColor(QPalette::Window, markPalette.color(QPalette::Highlight).lighter(170));
    m_brushMark->setPalette(markPalette);
    auto *brushGroup = new QButtonGroup(this);
    for (int i = 0; i < 10; ++i) {
        auto *mark = new OptionMark(
            QStringLiteral("imgBrush_%1").arg(i), QSize(27, 22),
            [i](QPainter &p, QRect box) { brushShapePicture(p, box, i); }, m_brushFrame);
        brushGroup->addButton(mark, i);
        mark->installEventFilter(this); // lblBrush follows the chosen shape where it moves
        brushes->addWidget(mark, i / 2, i % 2);
        m_brushes[size_t(i)] = mark;
        connect(mark, &QAbstractButton::clicked, this, [this, i] { emit brushShapeClicked(i); });
    }
    m_brushMark->lower();
    column->addWidget(m_brushFrame);
    column->addStretch(1);
}

void PaintToolBox::placeBrushMark()
{
    if (m_brushShape >= 0 && m_brushShape < 10)
        m_brushMark->setGeometry(m_brushes[size_t(m_brushShape)]->geometry());
}

bool PaintToolBox::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize ||
        event->type() == QEvent::Show)
        placeBrushMark();
    if (event->type() == QEvent::MouseButtonPress) {
        for (size_t i = 0; i < m_tools.size(); ++i)
            if (watched == m_tools[i])
                emit toolPressed(int(i));
    }
    return QWidget::eventFilter(watched, event);
}

void PaintToolBox::sync(int tool, int dotSize, int fillMode, int brushShape)
{
    if (tool >= 0 && tool < int(m_tools.size()))
        m_tools[size_t(tool)]->setChecked(true);
    const ToolEntry *entry = ToolTable::find(tool);
    const unsigned frames = entry ? entry->frames : 0;
    m_dotFrame->setVisible(frames & FrameDot);
    m_fillFrame->setVisible(frames & FrameFill);
    m_brushFrame->setVisible(frames & FrameBrush);
    if (dotSize >= 0 && dotSize < 8)
        m_dots[size_t(dotSize)]->setChecked(true);
    m_dotLabel->setText(QString::number(dotSize + 1));
    if (fillMode >= 0 && fillMode < 3)
        m_fills[size_t(fillMode)]->setChecked(true);
    m_brushShape = brushShape;
    if (brushShape >= 0 && brushShape < 10)
        m_brushes[size_t(brushShape)]->setChecked(true);
    placeBrushMark();
}
