#pragma once

#include <QString>
#include <QtGlobal>

// Texts of the web space browser's listing.

// The attribute column of cDirItem::Attributes: " A ", " C ", " D ", " H ", " N ", " O ", " R ", "
// S ", " T " for the flags that are set, in that order.
QString AttributeText(quint32 attributes);

// The size column of a file: a short form such as "532 bytes", "1.2 kB" or "3.4 MB".
QString SizeText(qint64 bytes);

// The size column of a directory.
inline QString DirectorySizeText()
{
    return QStringLiteral("< Directory >");
}

// The pointer of a listed file: the web address of the current directory, "/" unless it ends
// so, the name; blanks as "%20"; "http://" in front unless the text begins with a scheme.
QString FilePointerPath(const QString &uploadPath, const QString &name);
