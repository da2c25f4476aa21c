#include "frmSelectColor.h"

#include "Helpers.h"

#include <QEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>

namespace {

int red(int colour)
{
    return colour & 255;
}
int green(int colour)
{
    return (colour / 256) & 255;
}
int blue(int colour)
{
    return (colour / 65536) & 255;
}

QColor toQColor(int colour)
{
    return QColor(red(colour), green(colour), blue(colour));
}

// The number a text starts with, as a user's entry is read: leading blanks, a sign, digits;
// anything else ends it, and no digits read as 0.
qint64 leadingNumber(const QString &text)
{
    int i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == u'-' || text.at(i) == u'+')) {
        negative = text.at(i) == u'-';
        ++i;
    }
    qint64 value = 0;
    while (i < text.size() && text.at(i).isDigit() && value < 1000000000) {
        value = value * 10 + text.at(i).digitValue();
        ++i;
    }
    return negative ? -value : value;
}

// Two hexadecimal digits in capitals ("0" put in front, the last two kept).
QString twoHex(int value)
{
    return (QStringLiteral("0") + QString::number(value, 16).toUpper()).right(2);
}

} // namespace

const std::array<int, 26> &frmSelectColor::PaletteColors()
{
    // Common colours, as colour numbers (red + 256 green + 65536 blue).
    static const std::array<int, 26> colours = {
        0x000000, 0x404040, 0x808080, 0xC0C0C0, 0xFFFFFF, 0x000080, 0x0000FF, 0x0080FF, 0x00FFFF,
        0x80FFFF, 0x008000, 0x00FF00, 0x80FF80, 0x808000, 0xFFFF00, 0xFFFF80, 0x800000, 0xFF0000,
        0xFF8080, 0x800080, 0xFF00FF, 0xFF80FF, 0x004080, 0x4080FF, 0x408080, 0x8000FF};
    return colours;
}

frmSelectColor::frmSelectColor(const QString &SelectedColor, QWidget *parent)
    : QDialog(parent), m_selectedColor(SelectedColor)
{
    setObjectName(QStringLiteral("frmSelectColor"));
    setWindowTitle(QStringLiteral("Select a Color"));
    setWindowModality(Qt::WindowModal);

    auto *palette = new QGridLayout;
    palette->setSpacing(3);
    for (int i = 0; i < int(m_palette.size()); ++i) {
        auto *label = new QLabel(this);
        label->setObjectName(QStringLiteral("lblColor_%1").arg(i));
        label->setFixedSize(24, 24);
        label->setFrameShape(QFrame::Box);
        label->setCursor(Qt::PointingHandCursor);
        showSample(label, PaletteColors()[i]);
        label->installEventFilter(this);
        m_palette[i] = label;
        palette->addWidget(label, i / 13, i % 13);
    }

    auto *channels = new QGridLayout;
    const QString captions[3] = {QStringLiteral("Red"), QStringLiteral("Green"),
                                 QStringLiteral("Blue")};
    for (int i = 0; i < 3; ++i) {
        auto *caption = new QLabel(captions[i], this);
        caption->setAlignment(Qt::AlignCenter);
        m_rgb[i] = new QLineEdit(this);
        m_rgb[i]->setObjectName(QStringLiteral("RGB_%1").arg(i));
        m_rgb[i]->setMaximumWidth(56);
        m_rgb[i]->setAlignment(Qt::AlignRight);
        m_scroll[i] = new QScrollBar(Qt::Vertical, this);
        m_scroll[i]->setObjectName(QStringLiteral("VScroll1_%1").arg(i));
        m_scroll[i]->setRange(0, 255);
        m_scroll[i]->setMinimumHeight(110);
        m_channelSamples[i] = new QLabel(this);
        m_channelSamples[i]->setObjectName(QStringLiteral("bgcolorRGB_%1").arg(i));
        m_channelSamples[i]->setFixedSize(56, 14);
        m_channelSamples[i]->setFrameShape(QFrame::Box);
        channels->addWidget(caption, 0, i, Qt::AlignHCenter);
        channels->addWidget(m_rgb[i], 1, i, Qt::AlignHCenter);
        channels->addWidget(m_channelSamples[i], 2, i, Qt::AlignHCenter);
        channels->addWidget(m_scroll[i], 3, i, Qt::AlignHCenter);
        connect(m_rgb[i], &QLineEdit::textChanged, this, [this, i] { RGB_Change(i); });
        connect(m_scroll[i], &QScrollBar::valueChanged, this, [this, i] { VScroll1_Change(i); });
    }

    auto *samples = new QVBoxLayout;
    const QString sampleCaptions[2] = {QStringLiteral("New"), QStringLiteral("Old")};
    for (int i = 0; i < 2; ++i) {
        m_samples[i] = new QLabel(this);
        m_samples[i]->setObjectName(QStringLiteral("bgcolor_%1").arg(i));
        m_samples[i]->setFixedSize(80, 50);
        m_samples[i]->setFrameShape(QFrame::Box);
        samples->addWidget(new QLabel(sampleCaptions[i], this));
        samples->addWidget(m_samples[i]);
    }
    samples->addStretch(1);

    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("ColorOKButton"));
    ok->setDefault(true);
    auto *cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("CancelColorButton"));
    connect(ok, &QPushButton::clicked, this, &frmSelectColor::ColorOKButton_Click);
    connect(cancel, &QPushButton::clicked, this, &frmSelectColor::CancelColorButton_Click);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);

    auto *middle = new QHBoxLayout;
    middle->addLayout(channels);
    middle->addSpacing(12);
    middle->addLayout(samples);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(palette);
    layout->addSpacing(8);
    layout->addLayout(middle);
    layout->addLayout(buttons);

    // Load: the colour it opens with in both samples and in the three boxes (which move the
    // scroll bars and so the New sample).
    const int colour = HexColorToRGB(m_selectedColor);
    showSample(m_samples[0], colour);
    showSample(m_samples[1], colour);
    m_rgb[0]->setText(QString::number(red(colour)));
    m_rgb[1]->setText(QString::number(green(colour)));
    m_rgb[2]->setText(QString::number(blue(colour)));
    for (int i = 0; i < 3; ++i)
        VScroll1_Change(i);

    adjustSize();
    if (const QScreen *screen = parent ? parent->screen() : QGuiApplication::primaryScreen()) {
        const QRect area = screen->geometry();
        move(area.left() + (area.width() - width()) / 2,
             area.top() + (area.height() - height()) / 2);
    }
}

void frmSelectColor::showSample(QLabel *sample, int colour)
{
    sample->setStyleSheet(QStringLiteral("background-color: %1;").arg(toQColor(colour).name()));
    sample->setProperty("colour", colour);
}

void frmSelectColor::lblColor_Click(int index)
{
    const int colour = m_palette[index]->property("colour").toInt();
    showSample(m_samples[0], colour);
    // The six digits stand blue, green, red: the last pair is red.
    QString digits = QString::number(colour, 16);
    if (digits.size() < 6)
        digits = (QStringLiteral("00000") + digits).right(6);
    m_rgb[0]->setText(QString::number(digits.mid(4, 2).toInt(nullptr, 16)));
    m_rgb[1]->setText(QString::number(digits.mid(2, 2).toInt(nullptr, 16)));
    m_rgb[2]->setText(QString::number(digits.mid(0, 2).toInt(nullptr, 16)));
}

void frmSelectColor::RGB_Change(int index)
{
    const qint64 value = leadingNumber(m_rgb[index]->text());
    if (value >= 0 && value <= 255) {
        m_scroll[index]->setValue(int(value));
    } else {
        // A wrong entry doesn't stay: the scroll bar's value goes back into the box.
        const QSignalBlocker blocker(m_rgb[index]);
        m_rgb[index]->setText(QString::number(m_scroll[index]->value()));
    }
}

void frmSelectColor::VScroll1_Change(int index)
{
    const int value = m_scroll[index]->value();
    {
        const QSignalBlocker blocker(m_rgb[index]);
        if (m_rgb[index]->text() != QString::number(value))
            m_rgb[index]->setText(QString::number(value));
    }
    const int single = value << (8 * index);
    showSample(m_channelSamples[index], single);
    const QString text = QLatin1Char('#') + twoHex(m_scroll[0]->value()) +
                         twoHex(m_scroll[1]->value()) + twoHex(m_scroll[2]->value());
    showSample(m_samples[0], HexColorToRGB(text));
}

void frmSelectColor::ColorOKButton_Click()
{
    QString text = QStringLiteral("#");
    for (int i = 0; i < 3; ++i)
        text += twoHex(int(leadingNumber(m_rgb[i]->text())));
    m_selectedColor = text;
    accept();
}

void frmSelectColor::CancelColorButton_Click()
{
    reject();
}

bool frmSelectColor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        for (int i = 0; i < int(m_palette.size()); ++i) {
            if (watched == m_palette[i]) {
                lblColor_Click(i);
                return true;
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}
