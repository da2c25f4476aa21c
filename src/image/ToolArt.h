#pragma once

#include <QImage>
#include <QPoint>
#include <QString>

#include <vector>

// The pictures of the paint tools, drawn by the program: the cursors that stand in the data
// folder's Cursors (made at build time) and the pictures on the tool buttons. Shapes only, no
// fonts, so they draw without a screen.

struct CursorArt
{
    QString file; // "pencil.cur", ...
    QImage image; // 32 x 32, ARGB32
    QPoint hotSpot;
};

// The twelve cursors of the tools: pick, eraser, fill, pencil, cross, text, airbrush, filter,
// zoom, brush, handflat and handgrab.
std::vector<CursorArt> DrawToolCursors();

// The picture of a tool's button (optTools), size x size pixels, transparent around it.
QImage DrawToolIcon(int tool, int size);
