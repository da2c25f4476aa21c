#pragma once

#include <QImage>

// The bullet pictures of the Portal page: fifteen arrows (0 to 14), each of its own colour and
// shape, 15 x 15 pixels on a transparent ground, and the "NEW" badge of NewW2.gif.
inline constexpr int BulletCount = 15;
QImage DrawArrowBullet(int number);
QImage DrawNewBadge();
