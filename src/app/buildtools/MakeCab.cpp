// Packs folders into one cabinet: every file under each root, named by its path below that root,
// in name order, with the one file named as last put at the end.
//   tarnwick_makecab <cabinet> <name of the last file> <root>...
#include "Cabinet.h"

#include <QDir>
#include <QDirIterator>
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

    QMap<QString, QString> files; // name in the cabinet, lower-cased for the order -> source
    QMap<QString, QString> names;
    for (int i = 3; i < argc; ++i) {
        const QDir root(QString::fromLocal8Bit(argv[i]));
        if (!root.exists()) {
            std::fprintf(stderr, "no folder %s\n", argv[i]);
            return 1;
        }
        QDirIterator it(root.path(), QDir::Files | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString source = it.next();
            const QString name = root.relativeFilePath(source);
            const QString key = name.toLower();
            if (files.contains(key)) {
                std::fprintf(stderr, "%s is given twice\n", qPrintable(name));
                return 1;
            }
            files.insert(key, source);
            names.insert(key, name);
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
            entries.append({it.value(), names.value(it.key())});
    }
    entries.append({files.value(lastKey), names.value(lastKey)});

    const CabinetResult result = WriteCabinet(cabinet, entries);
    if (!result.ok) {
        std::fprintf(stderr, "%s\n", qPrintable(result.message));
        return 1;
    }
    return 0;
}
