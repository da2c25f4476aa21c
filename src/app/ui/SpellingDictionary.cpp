#include "SpellingDictionary.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringList>

QString InstalledSpellingDictionary()
{
    const QStringList folders = {QStringLiteral("/usr/share/hunspell"),
                                 QStringLiteral("/usr/share/myspell/dicts"),
                                 QStringLiteral("/usr/share/myspell")};
    const QStringList wanted = {QLocale::system().name(), QStringLiteral("en_US")};
    for (const QString &name : wanted)
        for (const QString &folder : folders)
            if (QFileInfo::exists(folder + QLatin1Char('/') + name + QStringLiteral(".dic")))
                return name;
    return QString();
}

QString SpellingDictionaryPhrase()
{
    const QString dictionary = InstalledSpellingDictionary();
    return dictionary.isEmpty()
               ? QStringLiteral("a Hunspell spelling dictionary")
               : QStringLiteral("the Hunspell spelling dictionary \"%1\"").arg(dictionary);
}
