// Draws the Portal bullets Arrow0.gif to Arrow14.gif and NewW2.gif into the folder given.
#include "Bullets.h"
#include "GifFile.h"

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
    QString error;
    for (int number = 0; number < BulletCount; ++number) {
        const QString path = QDir(folder).filePath(QStringLiteral("Arrow%1.gif").arg(number));
        if (!WriteGifFile(DrawArrowBullet(number), path, &error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return 1;
        }
    }
    if (!WriteGifFile(DrawNewBadge(), QDir(folder).filePath(QStringLiteral("NewW2.gif")), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
