// Packs folders into one cabinet: every file under each root, named by its path below that root,
// in name order, with the one file named as last put at the end.
//   tarnwick_makecab <cabinet> <name of the last file> <root>...
#include "Cabinet.h"

#include <QDir>
#include <QMap>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s <cabinet> <last file name> <root>...\n", argv[0]);
        return 2;
    }
    const QString cabinet = QString::fromLocal8Bit(argv[1]);
    const QString lastName = QString::fromLocal8Bit(argv[2]);

    QMap<QString, CabinetEntry> files; // by lower-cased name: the order, and no name twice
    for (int i = 3; i < argc; ++i) {
        const QString root = QString::fromLocal8Bit(argv[i]);
        if (!QDir(root).exists()) {
            std::fprintf(stderr, "no folder %s\n", argv[i]);
            return 1;
        }
        for (const CabinetEntry &entry : CabinetEntriesOf(root)) {
            const QString key = entry.nameInCabinet.toLower();
            if (files.contains(key)) {
                std::fprintf(stderr, "%s is given twice\n", qPrintable(entry.nameInCabinet));
                return 1;
            }
            files.insert(key, entry);
        }
    }
    const QString lastKey = lastName.toLower();
    if (!files.contains(lastKey)) {
        std::fprintf(stderr, "the last file %s is not in the roots\n", qPrintable(lastName));
        return 1;
    }

    QList<CabinetEntry> entries;
    for (auto it = files.cbegin(); it != files.cend(); ++it) {
        if (it.key() != lastKey)
            entries.append(it.value());
    }
    entries.append(files.value(lastKey));

    const CabinetResult result = WriteCabinet(cabinet, entries);
    if (!result.ok) {
        std::fprintf(stderr, "%s\n", qPrintable(result.message));
        return 1;
    }
    return 0;
}
