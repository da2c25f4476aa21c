#pragma once

#include <QPixmap>

// Small pictures of the start screen, drawn at run time so they stay sharp at any scale.
namespace StartScreenArt {

// The function buttons' icons, index 0-5 in the order of the functions.
QPixmap FunctionIcon(int index, int size, qreal devicePixelRatio);
// The animation: a page on its way to the web space, and the link that comes back.
QPixmap TravellingPage(int size, qreal devicePixelRatio);
QPixmap ReturningLink(int size, qreal devicePixelRatio);
// The two ends of the track: the user's computer and the web space.
QPixmap Computer(int size, qreal devicePixelRatio);
QPixmap WebSpace(int size, qreal devicePixelRatio);

} // namespace StartScreenArt
