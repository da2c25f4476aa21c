#include "Bullets.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygon>

#include <array>

namespace {

constexpr int Size = 15;

QColor bulletColour(int number)
{
    static constexpr std::array<QRgb, BulletCount> colours = {
        0x1F5FBF, 0x2E8B57, 0xC0392B, 0xE67E22, 0x8E44AD, 0x16A085, 0xD4AC0D, 0x2C3E50,
        0xE84393, 0x27AE60, 0x7F8C8D, 0xA0522D, 0x0097E6, 0x6D214F, 0x000000};
    return QColor::fromRgb(colours[size_t(number) % colours.size()]);
}

QImage blank()
{
    QImage image(Size, Size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return image;
}

void fill(QPainter &p, const QPolygon &shape, const QColor &colour)
{
    p.setPen(QPen(colour.darker(160), 1));
    p.setBrush(colour);
    p.drawPolygon(shape);
}

void triangle(QPainter &p, const QColor &c)
{
    fill(p, QPolygon({{3, 1}, {12, 7}, {3, 13}}), c);
}

void blockArrow(QPainter &p, const QColor &c)
{
    fill(p, QPolygon({{1, 5}, {7, 5}, {7, 1}, {13, 7}, {7, 13}, {7, 9}, {1, 9}}), c);
}

void chevron(QPainter &p, const QColor &c)
{
    fill(p, QPolygon({{2, 1}, {6, 1}, {12, 7}, {6, 13}, {2, 13}, {8, 7}}), c);
}

void roundArrow(QPainter &p, const QColor &c)
{
    p.setPen(QPen(c.darker(160), 1));
    p.setBrush(c);
    p.drawEllipse(0, 0, Size - 1, Size - 1);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawPolygon(QPolygon({{5, 3}, {11, 7}, {5, 11}}));
}

void doubleChevron(QPainter &p, const QColor &c)
{
    fill(p, QPolygon({{0, 2}, {3, 2}, {7, 7}, {3, 12}, {0, 12}, {4, 7}}), c);
    fill(p, QPolygon({{6, 2}, {9, 2}, {13, 7}, {9, 12}, {6, 12}, {10, 7}}), c);
}

} // namespace

QImage DrawArrowBullet(int number)
{
    QImage image = blank();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, false); // crisp edges on any page colour
    const QColor colour = bulletColour(number);
    switch (number % 5) {
    case 0:
        triangle(p, colour);
        break;
    case 1:
        blockArrow(p, colour);
        break;
    case 2:
        chevron(p, colour);
        break;
    case 3:
        roundArrow(p, colour);
        break;
    default:
        doubleChevron(p, colour);
        break;
    }
    return image;
}

QImage DrawNewBadge()
{
    // Letters of a 5 x 7 pixel font, so the badge looks the same wherever it is made.
    static const char *const letters[3][7] = {
        {"X...X", "XX..X", "XX..X", "X.X.X", "X..XX", "X..XX", "X...X"},
        {"XXXXX", "X....", "X....", "XXXX.", "X....", "X....", "XXXXX"},
        {"X...X", "X...X", "X...X", "X.X.X", "X.X.X", "XX.XX", "X...X"},
    };
    constexpr int pad = 3, width = 3 * 5 + 2 + 2 * pad, height = 7 + 2 * pad;
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    const QColor red(0xD6, 0x28, 0x28);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(QPen(red.darker(150), 1));
    p.setBrush(red);
    p.drawRect(0, 1, width - 1, height - 3);
    p.drawRect(1, 0, width - 3, height - 1);
    p.end();
    for (int l = 0; l < 3; ++l)
        for (int y = 0; y < 7; ++y)
            for (int x = 0; x < 5; ++x)
                if (letters[l][y][x] == 'X')
                    image.setPixel(pad + l * 6 + x, pad + y, qRgb(255, 255, 255));
    return image;
}
