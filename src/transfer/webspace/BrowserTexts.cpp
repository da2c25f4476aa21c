#include "BrowserTexts.h"

#include "cDirList.h"

#include <QLocale>
#include <QRegularExpression>

QString AttributeText(quint32 attributes)
{
    struct Letter
    {
        quint32 flag;
        const char *text;
    };
    static constexpr Letter letters[] = {
        {cDirItem::Archive, " A "},  {cDirItem::Compressed, " C "}, {cDirItem::Directory, " D "},
        {cDirItem::Hidden, " H "},   {cDirItem::Normal, " N "},     {cDirItem::Offline, " O "},
        {cDirItem::ReadOnly, " R "}, {cDirItem::System, " S "},     {cDirItem::Temporary, " T "},
    };
    QString text;
    for (const Letter &letter : letters) {
        if (attributes & letter.flag)
            text += QLatin1String(letter.text);
    }
    return text;
}

QString SizeText(qint64 bytes)
{
    if (bytes < 1024)
        return QStringLiteral("%1 bytes").arg(bytes);
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

QString FilePointerPath(const QString &uploadPath, const QString &name)
{
    QString path = uploadPath;
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    path += name;
    path.replace(QLatin1Char(' '), QStringLiteral("%20"));
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]*://"));
    if (!scheme.match(path).hasMatch())
        path.prepend(QStringLiteral("http://"));
    return path;
}
