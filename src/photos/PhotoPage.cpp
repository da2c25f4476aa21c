#include "PhotoPage.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>

bool IsNumericText(const QString &text)
{
    static const QRegularExpression number(
        QStringLiteral("^\\s*[+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?\\s*$"));
    return number.match(text).hasMatch();
}

double NumericValue(const QString &text)
{
    static const QRegularExpression leading(
        QStringLiteral("^\\s*([+-]?(\\d+\\.?\\d*|\\.\\d+)([eE][+-]?\\d+)?)"));
    const auto match = leading.match(text);
    if (!match.hasMatch())
        return 0;
    return match.captured(1).toDouble();
}

QString RemoveGroupNumber(const QString &name)
{
    const qsizetype cut = name.indexOf(QLatin1Char('_'));
    if (cut < 0 || !IsNumericText(name.left(cut)))
        return name;
    return name.mid(cut + 1);
}

QString GetGroupNumber(const QString &name)
{
    const qsizetype cut = name.indexOf(QLatin1Char('_'));
    if (cut < 0 || !IsNumericText(name.left(cut)))
        return QStringLiteral("00000");
    return name.left(cut);
}

QString FormatGroup(const QString &prefix)
{
    const double value = NumericValue(QStringLiteral("00") + prefix);
    const QString digits = QString::number(static_cast<qint64>(value));
    return (QStringLiteral("00000") + digits).right(5);
}

namespace {

QStringList listFiles(const QString &folder, const QStringList &patterns)
{
    if (folder.isEmpty())
        return {};
    // Name filters match without regard to case unless QDir::CaseSensitive is given.
    QStringList names = QDir(folder).entryList(patterns, QDir::Files, QDir::NoSort);
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

const QStringList PicturePatterns = {QStringLiteral("*.dib"), QStringLiteral("*.bmp"),
                                     QStringLiteral("*.gif"), QStringLiteral("*.jpg"),
                                     QStringLiteral("*.ddd")};

} // namespace

QStringList ListPictureFiles(const QString &folder)
{
    return listFiles(folder, PicturePatterns);
}

QStringList ListSourcePictureFiles(const QString &folder)
{
    return listFiles(folder, PicturePatterns + QStringList{QStringLiteral("*.heic"),
                                                           QStringLiteral("*.heif"),
                                                           QStringLiteral("*.webp"),
                                                           QStringLiteral("*.png"),
                                                           QStringLiteral("*.tif"),
                                                           QStringLiteral("*.tiff")});
}
