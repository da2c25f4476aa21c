#include "BackupNames.h"

#include "RecordFile.h"

#include <QFile>

QString CabinetBaseName(const QString &name)
{
    // The dot's place counted from 1; without a dot, the name's length.
    const qsizetype dot = name.indexOf(QLatin1Char('.'));
    const qsizetype place = dot >= 0 ? dot + 1 : name.size();
    return name.left(std::max<qsizetype>(place - 1, 0)) + QLatin1Char('_') + name.mid(place);
}

QString CabinetFileName(const QString &name)
{
    return CabinetBaseName(name) + QStringLiteral(".CAB");
}

QString CompressedDirName(const QString &folderName)
{
    return ReplaceSpaces(QStringLiteral("DirFile_") + folderName + QStringLiteral(".cab"),
                         QStringLiteral("_"));
}

bool IsCompressedDirectory(const QString &name)
{
    return name.contains(QLatin1String("DirFile_"));
}

QString PlaceHolderText()
{
    return QStringLiteral("This is a place holder file. Do not delete. The file is located in the "
                          "webspace backup.");
}

bool WritePlaceHolder(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray line = PlaceHolderText().toLatin1() + "\r\n";
    return file.write(line) == line.size() && file.flush();
}

QString BackupPagePath(const QString &uploadPath, const QString &ftpRoot)
{
    const QString root = ftpRoot.trimmed();
    if (root.isEmpty())
        return uploadPath;
    const qsizetype at = uploadPath.indexOf(root + QLatin1Char('/'));
    if (at < 0)
        return uploadPath;
    return uploadPath.left(at) + uploadPath.mid(at + root.size() + 1);
}

QString RemoteNameOf(const QString &uploadPath)
{
    return uploadPath.mid(uploadPath.lastIndexOf(QLatin1Char('/')) + 1);
}
