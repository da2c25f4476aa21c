// Draws the paint tools' cursor files (pencil.cur, cross.cur, ...) into the folder given.
#include "CursorFile.h"
#include "ToolArt.h"

#include <QDir>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <output folder>\n", argv[0]);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    if (!QDir().mkpath(folder)) {
        std::fprintf(stderr, "cannot make %s\n", argv[1]);
        return 1;
    }
    for (const CursorArt &art : DrawToolCursors()) {
        const QString path = QDir(folder).filePath(art.file);
        if (!WriteCursorFile(art.image, art.hotSpot, path)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
