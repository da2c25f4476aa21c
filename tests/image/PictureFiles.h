#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QString>

// A real JPEG file whose header says width x height while it holds the few pixels of a small
// picture: a reader learns the size without decoding, as from a huge photo.
inline bool WriteJpegClaimingSize(const QString &path, int width, int height)
{
    QImage small(16, 16, QImage::Format_RGB32);
    small.fill(qRgb(90, 120, 150));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!small.save(&buffer, "JPEG"))
        return false;
    // The frame header: FF C0, length, precision, height, width.
    for (qsizetype i = 0; i + 8 < bytes.size(); ++i) {
        if (uchar(bytes[i]) == 0xFF && uchar(bytes[i + 1]) == 0xC0) {
            bytes[i + 5] = char(height >> 8);
            bytes[i + 6] = char(height & 255);
            bytes[i + 7] = char(width >> 8);
            bytes[i + 8] = char(width & 255);
            QFile file(path);
            return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
        }
    }
    return false;
}

#include <QFileInfo>
#include <QProcess>

// Makes folder read-only for this process, root included (whose writes a mode of 0555 does not
// stop: the folder is then made immutable). Returns false when it can't be done here.
inline bool MakeFolderReadOnly(const QString &folder)
{
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                      QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
    const QString probe = folder + QStringLiteral("/.probe");
    const auto writable = [&probe] {
        QFile file(probe);
        const bool opened = file.open(QIODevice::WriteOnly);
        file.close();
        if (opened)
            QFile::remove(probe);
        return opened;
    };
    if (!writable())
        return true;
    QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("+i"), folder});
    return !writable();
}

// Gives the folder back its write permission.
inline void MakeFolderWritable(const QString &folder)
{
    QProcess::execute(QStringLiteral("chattr"), {QStringLiteral("-i"), folder});
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
