#include "DirectoryName.h"

namespace {

// The characters of the list, and the control characters (NUL, line breaks, tabs ...) which no
// directory name on a server can hold and which would end the command that names it.
bool isUnwanted(QChar c)
{
    static const QString unwanted = QStringLiteral(".><{}][&+'%#@~;:^/\\?*|");
    return unwanted.contains(c) || c.unicode() < 0x20 || c.unicode() == 0x7f;
}

} // namespace

QString CleanDirectoryName(const QString &text)
{
    QString cleaned;
    cleaned.reserve(text.size());
    for (const QChar c : text) {
        if (!isUnwanted(c))
            cleaned.append(c);
    }
    return cleaned;
}

CleanedEdit CleanWhileTyping(const QString &text, int caret)
{
    CleanedEdit edit;
    edit.text = CleanDirectoryName(text);
    edit.caret = edit.text.size() < text.size() ? int(edit.text.size()) : caret;
    return edit;
}

QString SendFileDirectoryName(const QString &name)
{
    QString result = name;
    for (qsizetype i = result.size() - 1; i >= 0; --i) {
        const char16_t code = result.at(i).unicode();
        if (code < 32 || code > 125)
            result[i] = QLatin1Char(' ');
    }
    result.replace(QLatin1Char(' '), QLatin1Char('_'));
    return result;
}

QString DefaultSendFileDirectory(const QDateTime &now)
{
    const QDate date = now.date();
    const QTime time = now.time();
    return QStringLiteral("FileDirectory  %1 %2 %3 %4 %5")
        .arg(date.year())
        .arg(date.month(), 2, 10, QLatin1Char('0'))
        .arg(date.day(), 2, 10, QLatin1Char('0'))
        .arg(time.hour(), 2, 10, QLatin1Char('0'))
        .arg(time.minute());
}
