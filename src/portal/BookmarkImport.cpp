#include "BookmarkImport.h"

#include "BuildStartup.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QUrl>

namespace BookmarkImport {

namespace {

bool isEndTrim(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('.') || c == QLatin1Char('-');
}

QString trimEnds(const QString &text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last &&
           (text.at(first) == QLatin1Char(' ') || text.at(first) == QLatin1Char('.')))
        ++first;
    while (last > first && isEndTrim(text.at(last - 1)))
        --last;
    return text.mid(first, last - first);
}

// Cut to MaxNameLength characters, at a blank where one stands near the end, never inside a
// surrogate pair.
QString cut(const QString &text)
{
    if (text.size() <= MaxNameLength)
        return text;
    qsizetype at = MaxNameLength;
    const qsizetype blank = text.lastIndexOf(QLatin1Char(' '), MaxNameLength);
    if (blank >= MaxNameLength * 2 / 3)
        at = blank;
    if (at > 0 && text.at(at - 1).isHighSurrogate())
        --at;
    return text.left(at);
}

// The names of the files that end in extension in folder (their base names), lower-cased.
QSet<QString> baseNames(const QString &folder, const QString &extension)
{
    QSet<QString> names;
    const QStringList entries =
        QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        if (entry.size() > extension.size() && entry.endsWith(extension, Qt::CaseInsensitive))
            names.insert(entry.left(entry.size() - extension.size()).toLower());
    }
    return names;
}

struct CategoryWork
{
    qsizetype index = -1;    // into the plan
    QSet<QString> names;     // lower-cased names of the Page Links there and planned
    QSet<QString> addresses; // AddressKey of the links there and planned
};

// The Startup folder's own files: a Category's folder of such a name would stand in their way.
bool isPortalFile(const QString &name)
{
    static const QStringList own = [] {
        QStringList names = {QStringLiteral("portal.htm"),       QStringLiteral("top.txt"),
                             QStringLiteral("bodysub1.txt"),     QStringLiteral("bodysub2cat.txt"),
                             QStringLiteral("bodysub3link.txt"), QStringLiteral("bodysub4.txt"),
                             QStringLiteral("end.txt"),          QStringLiteral("neww2.gif")};
        for (int i = 0; i <= BuildStartup::LastBullet; ++i)
            names << QStringLiteral("arrow") + QString::number(i) + QStringLiteral(".gif");
        return names;
    }();
    return own.contains(name.toLower());
}

QString hostOf(const QString &url)
{
    const QUrl parsed(url, QUrl::TolerantMode);
    return parsed.host().isEmpty() ? QString() : parsed.host();
}

} // namespace

QString LegalName(const QString &text, const QString &fallback)
{
    QString name = text;
    name.replace(QLatin1String(": "), QLatin1String(" - "));
    QString out;
    out.reserve(name.size());
    for (const QChar c : name) {
        const char16_t u = c.unicode();
        if (u == u'/' || u == u'\\' || u == u'|')
            out += QLatin1Char('-');
        else if (u < 0x20 || u == 0x7F || u == u'\t')
            out += QLatin1Char(' ');
        else if (u == u':' || u == u'*' || u == u'?' || u == u'"' || u == u'<' || u == u'>')
            continue;
        else if (c.isSpace())
            out += QLatin1Char(' ');
        else if (c.isNonCharacter())
            continue;
        else
            out += c;
    }
    // Lone surrogate halves are no characters.
    QString whole;
    whole.reserve(out.size());
    for (qsizetype i = 0; i < out.size(); ++i) {
        const QChar c = out.at(i);
        if (c.isHighSurrogate() && i + 1 < out.size() && out.at(i + 1).isLowSurrogate()) {
            whole += c;
            whole += out.at(++i);
        } else if (!c.isSurrogate()) {
            whole += c;
        }
    }
    name = trimEnds(cut(trimEnds(whole.simplified())));
    while (name.toUtf8().size() > 200)
        name.chop(1);
    name = trimEnds(name);
    if (!BuildStartup::FileNameProblem(name).isEmpty())
        return fallback;
    return name;
}

QString RecordAddress(const QString &url)
{
    QString address;
    address.reserve(url.size());
    for (const QChar c : url.trimmed()) {
        if (c.unicode() >= 0x20 && c.unicode() != 0x7F)
            address += c;
    }
    const QUrl parsed(address, QUrl::TolerantMode);
    if (parsed.isValid() && !parsed.scheme().isEmpty())
        address = parsed.toString(QUrl::FullyEncoded);
    address.replace(QLatin1Char(','), QLatin1String("%2C"));
    address.replace(QLatin1Char('"'), QLatin1String("%22"));
    // What is left beyond ASCII (an address QUrl could not read) %-escaped in UTF-8, as the
    // record writes it; every printable ASCII character as it stands.
    QString escaped;
    escaped.reserve(address.size());
    for (qsizetype i = 0; i < address.size(); ++i) {
        const QChar c = address.at(i);
        if (c.unicode() > 0x20 && c.unicode() < 0x7F) {
            escaped += c;
            continue;
        }
        QString character(c);
        if (c.isHighSurrogate() && i + 1 < address.size() && address.at(i + 1).isLowSurrogate())
            character += address.at(++i);
        else if (c.isSurrogate())
            continue; // half a character is none
        for (const char byte : character.toUtf8())
            escaped += QLatin1Char('%') + QString::number(static_cast<unsigned char>(byte), 16)
                                              .toUpper()
                                              .rightJustified(2, QLatin1Char('0'));
    }
    return escaped;
}

QString AddressKey(const QString &url)
{
    QString key = RecordAddress(url);
    const QUrl parsed(key, QUrl::TolerantMode);
    if (parsed.isValid() && !parsed.scheme().isEmpty()) {
        QUrl adjusted = parsed.adjusted(QUrl::StripTrailingSlash | QUrl::NormalizePathSegments);
        if (adjusted.path().isEmpty())
            adjusted.setPath(QStringLiteral("/")); // "http://a.org" is "http://a.org/"
        key = adjusted.toString(QUrl::FullyEncoded);
    }
    key.replace(QLatin1String("%2c"), QLatin1String("%2C"));
    key.replace(QLatin1Char(','), QLatin1String("%2C"));
    return key;
}

QString CategoryFolderName(const QString &name, const QString &startupFolder)
{
    // "<name>.Cat" beside a folder "<name>": a name ending in ".Cat" would make a folder where
    // another Category's file goes.
    QString base = name;
    if (base.endsWith(QLatin1String(".cat"), Qt::CaseInsensitive))
        base[base.size() - 4] = QLatin1Char(' ');
    const auto taken = [&startupFolder](const QString &candidate) {
        const QFileInfo info(startupFolder + QLatin1Char('/') + candidate);
        return isPortalFile(candidate) || (info.exists() && !info.isDir());
    };
    QString result = base;
    for (int n = 2; taken(result); ++n)
        result = base + QStringLiteral(" (") + QString::number(n) + QLatin1Char(')');
    return result;
}

QString CategoryNameFor(const QStringList &path)
{
    QStringList parts;
    for (const QString &part : path) {
        const QString legal = LegalName(part, QString());
        if (!legal.isEmpty())
            parts << legal;
    }
    return LegalName(parts.join(QStringLiteral(" - ")), QStringLiteral("Bookmarks"));
}

ImportPlan PlanBookmarkImport(const BookmarkFileResult &file, const QString &startupFolder)
{
    ImportPlan plan;
    plan.startupFolder = startupFolder;
    plan.notWeb = file.notWeb;

    // Categories already there, by their name ignoring case.
    QHash<QString, QString> existing;
    {
        const QStringList entries =
            QDir(startupFolder)
                .entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString &entry : entries) {
            if (entry.size() > 4 && entry.endsWith(QLatin1String(".Cat"), Qt::CaseInsensitive)) {
                const QString name = entry.left(entry.size() - 4);
                if (!existing.contains(name.toLower()))
                    existing.insert(name.toLower(), name);
            }
        }
    }

    QHash<QString, CategoryWork> work; // by lower-cased Category name
    for (const BookmarkFolder &folder : file.folders) {
        const QString wanted = CategoryFolderName(CategoryNameFor(folder.path), startupFolder);
        const QString key = wanted.toLower();
        auto found = work.find(key);
        if (found == work.end()) {
            ImportCategory category;
            category.exists = existing.contains(key);
            category.name = category.exists ? existing.value(key) : wanted;
            CategoryWork made;
            const QString categoryFolder = startupFolder + QLatin1Char('/') + category.name;
            made.names = baseNames(categoryFolder, QStringLiteral(".ptr"));
            for (const QString &name : BuildStartup::PageLinkFiles(categoryFolder)) {
                PageLink link;
                if (BuildStartup::LoadPageLink(categoryFolder + QLatin1Char('/') + name, link).ok &&
                    !link.URLName.isEmpty())
                    made.addresses.insert(AddressKey(link.URLName));
            }
            made.index = plan.categories.size();
            plan.categories.append(category);
            found = work.insert(key, made);
        }
        ImportCategory &category = plan.categories[found->index];
        const QString source = folder.path.join(QStringLiteral(" / "));
        if (!category.sources.contains(source))
            category.sources << source;
        for (const Bookmark &bookmark : folder.links) {
            const QString address = RecordAddress(bookmark.url);
            const QString addressKey = AddressKey(address);
            if (found->addresses.contains(addressKey)) {
                category.duplicates.append(bookmark);
                ++plan.duplicates;
                continue;
            }
            found->addresses.insert(addressKey);
            QString fallback = hostOf(address);
            if (!BuildStartup::FileNameProblem(fallback).isEmpty())
                fallback = QStringLiteral("Link");
            const QString base =
                LegalName(bookmark.title, LegalName(fallback, QStringLiteral("Link")));
            QString name = base;
            for (int n = 2; found->names.contains(name.toLower()); ++n) {
                const QString suffix = QStringLiteral(" (") + QString::number(n) + QLatin1Char(')');
                name = trimEnds(base.left(MaxNameLength - suffix.size())) + suffix;
            }
            found->names.insert(name.toLower());
            ImportLink link;
            link.name = name;
            link.title = bookmark.title;
            link.url = address;
            link.renamed = name != bookmark.title;
            if (link.renamed)
                ++plan.renamed;
            category.links.append(link);
            ++plan.links;
        }
    }
    for (const ImportCategory &category : plan.categories) {
        if (!category.exists && !category.links.isEmpty())
            ++plan.newCategories;
    }
    return plan;
}

ImportResult ApplyBookmarkImport(const ImportPlan &plan,
                                 const std::function<bool(int done, int total)> &progress)
{
    ImportResult result;
    int done = 0;
    for (const ImportCategory &category : plan.categories) {
        if (category.links.isEmpty())
            continue;
        const QString folder = plan.startupFolder + QLatin1Char('/') + category.name;
        if (!category.exists) {
            if (!BuildStartup::MakeCategoryIn(plan.startupFolder, category.name)) {
                result.failures << category.name +
                                       QStringLiteral(".Cat: could not be written in ") +
                                       QDir::toNativeSeparators(plan.startupFolder);
                done += int(category.links.size());
                if (progress && !progress(done, plan.links)) {
                    result.cancelled = true;
                    return result;
                }
                continue;
            }
            ++result.categoriesMade;
        } else {
            QDir().mkpath(folder);
        }
        for (const ImportLink &link : category.links) {
            PageLink record;
            record.LinkName = link.name;
            record.URLName = link.url;
            record.Bullet = BuildStartup::NewLinkBullet;
            const QString path = BuildStartup::PageLinkPath(folder, link.name);
            // Never over a link that came to be there since the plan was made.
            if (QFileInfo::exists(path))
                result.failures << category.name + QLatin1Char('/') + link.name +
                                       QStringLiteral(".ptr: a Page Link of that name is there "
                                                      "already");
            else if (BuildStartup::WriteNewPageLink(path, record))
                ++result.linksWritten;
            else
                result.failures << category.name + QLatin1Char('/') + link.name +
                                       QStringLiteral(".ptr: could not be written");
            ++done;
            if (progress && !progress(done, plan.links)) {
                result.cancelled = done < plan.links;
                return result;
            }
        }
    }
    return result;
}

} // namespace BookmarkImport
