#include "WordChecker.h"

#include "Folders.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>
#include <QTextStream>

#include <hunspell/hunspell.hxx>

namespace {

QStringList &dictionaryFolders()
{
    static QStringList folders;
    return folders;
}

QStringList defaultFolders()
{
    return {QStringLiteral("/usr/share/hunspell"), QStringLiteral("/usr/share/myspell/dicts"),
            QStringLiteral("/usr/share/myspell")};
}

bool isApostrophe(QChar c)
{
    return c == QLatin1Char('\'') || c == QChar(0x2019);
}

bool isWordChar(QChar c)
{
    return c.isLetter() || c.isMark();
}

// The end of a run that is not text to check, starting at i: an HTML tag, an entity or an
// address; i itself when none starts there.
qsizetype skipMarkup(const QString &text, qsizetype i)
{
    const QChar c = text.at(i);
    if (c == QLatin1Char('<')) {
        const qsizetype close = text.indexOf(QLatin1Char('>'), i + 1);
        // A "<" that opens no tag ("a < b") is only a sign.
        if (close > i && close - i < 512 && i + 1 < text.size() &&
            (text.at(i + 1).isLetter() || text.at(i + 1) == QLatin1Char('/') ||
             text.at(i + 1) == QLatin1Char('!')))
            return close + 1;
        return i;
    }
    if (c == QLatin1Char('&')) {
        qsizetype j = i + 1;
        while (j < text.size() && j - i < 12 &&
               (text.at(j).isLetterOrNumber() || text.at(j) == QLatin1Char('#')))
            ++j;
        if (j < text.size() && j > i + 1 && text.at(j) == QLatin1Char(';'))
            return j + 1;
        return i;
    }
    const QStringView rest = QStringView(text).mid(i);
    if (rest.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
        rest.startsWith(QLatin1String("https://"), Qt::CaseInsensitive) ||
        rest.startsWith(QLatin1String("ftp://"), Qt::CaseInsensitive) ||
        rest.startsWith(QLatin1String("www."), Qt::CaseInsensitive)) {
        qsizetype j = i;
        while (j < text.size() && !text.at(j).isSpace() && text.at(j) != QLatin1Char('<') &&
               text.at(j) != QLatin1Char('"'))
            ++j;
        return j;
    }
    return i;
}

} // namespace

void SetSpellingDictionaryFolders(const QStringList &folders)
{
    dictionaryFolders() = folders;
}

DictionaryFiles FindSpellingDictionary()
{
    const QStringList folders =
        dictionaryFolders().isEmpty() ? defaultFolders() : dictionaryFolders();
    const QStringList wanted = {QLocale::system().name(), QStringLiteral("en_US")};
    for (const QString &name : wanted) {
        for (const QString &folder : folders) {
            const QString base = folder + QLatin1Char('/') + name;
            if (QFileInfo::exists(base + QStringLiteral(".dic")) &&
                QFileInfo::exists(base + QStringLiteral(".aff")))
                return {name, base + QStringLiteral(".aff"), base + QStringLiteral(".dic")};
        }
    }
    return {};
}

QString PersonalWordListPath()
{
    return Folders::HomeFolder() + QStringLiteral("PersonalWords.txt");
}

WordChecker::WordChecker() : m_files(FindSpellingDictionary())
{
    load();
}

WordChecker::WordChecker(const DictionaryFiles &files) : m_files(files)
{
    load();
}

WordChecker::~WordChecker() = default;

void WordChecker::load()
{
    if (m_files.aff.isEmpty() || !QFileInfo(m_files.aff).isFile() ||
        !QFileInfo(m_files.dic).isFile())
        return;
    m_hunspell = std::make_unique<Hunspell>(QFile::encodeName(m_files.aff).constData(),
                                            QFile::encodeName(m_files.dic).constData());
    const QString encoding = QString::fromLatin1(m_hunspell->get_dict_encoding().c_str());
    m_utf8 = encoding.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0;

    QFile personal(PersonalWordListPath());
    if (personal.open(QIODevice::ReadOnly | QIODevice::Text)) {
        QTextStream in(&personal);
        in.setEncoding(QStringConverter::Utf8);
        QString line;
        while (in.readLineInto(&line)) {
            const QString word = line.trimmed();
            if (!word.isEmpty()) {
                m_personal.insert(word);
                m_hunspell->add(encode(word));
            }
        }
    }
}

std::string WordChecker::encode(const QString &word) const
{
    return m_utf8 ? word.toStdString() : word.toLatin1().toStdString();
}

QString WordChecker::decode(const std::string &word) const
{
    return m_utf8 ? QString::fromStdString(word) : QString::fromLatin1(word.data(), word.size());
}

bool WordChecker::isKnown(const QString &word) const
{
    if (!m_hunspell || m_ignored.contains(word) || m_personal.contains(word))
        return true;
    QString plain = word;
    plain.replace(QChar(0x2019), QLatin1Char('\''));
    return m_hunspell->spell(encode(plain));
}

QStringList WordChecker::suggestions(const QString &word) const
{
    QStringList list;
    if (!m_hunspell)
        return list;
    QString plain = word;
    plain.replace(QChar(0x2019), QLatin1Char('\''));
    for (const std::string &suggestion : m_hunspell->suggest(encode(plain)))
        list << decode(suggestion);
    return list;
}

QList<Misspelling> WordChecker::misspellings(const QString &text) const
{
    QList<Misspelling> found;
    if (!m_hunspell)
        return found;
    qsizetype i = 0;
    const qsizetype size = text.size();
    while (i < size) {
        const qsizetype skipped = skipMarkup(text, i);
        if (skipped != i) {
            i = skipped;
            continue;
        }
        if (!isWordChar(text.at(i))) {
            ++i;
            continue;
        }
        const qsizetype start = i;
        while (i < size && (isWordChar(text.at(i)) || (isApostrophe(text.at(i)) && i + 1 < size &&
                                                       isWordChar(text.at(i + 1)) && i > start)))
            ++i;
        const bool nextToDigit =
            (start > 0 && text.at(start - 1).isDigit()) || (i < size && text.at(i).isDigit());
        // A mail address is not a word.
        const bool inAddress = (i < size && text.at(i) == QLatin1Char('@')) ||
                               (start > 0 && text.at(start - 1) == QLatin1Char('@'));
        if (nextToDigit || inAddress) {
            while (i < size && !text.at(i).isSpace())
                ++i;
            continue;
        }
        const QString word = text.mid(start, i - start);
        if (word.size() > 1 && word == word.toUpper())
            continue;
        if (!isKnown(word))
            found.append({start, i - start, word});
    }
    return found;
}

void WordChecker::ignoreAll(const QString &word)
{
    m_ignored.insert(word);
}

bool WordChecker::addToPersonalList(const QString &word)
{
    if (word.trimmed().isEmpty())
        return false;
    m_personal.insert(word);
    if (m_hunspell)
        m_hunspell->add(encode(word));
    QFile file(PersonalWordListPath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return false;
    const QByteArray line = word.toUtf8() + '\n';
    return file.write(line) == line.size();
}

SpellingSession::SpellingSession(WordChecker &checker, const QString &text)
    : m_checker(checker), m_text(text), m_words(checker.misspellings(text))
{
    advance();
}

const Misspelling *SpellingSession::current() const
{
    return m_index < m_words.size() ? &m_words.at(m_index) : nullptr;
}

void SpellingSession::replaceCurrent(const QString &replacement)
{
    Misspelling &word = m_words[m_index];
    m_text.replace(word.start, word.length, replacement);
    const qsizetype shift = replacement.size() - word.length;
    for (qsizetype i = m_index + 1; i < m_words.size(); ++i)
        m_words[i].start += shift;
    word.length = replacement.size();
    ++m_changes;
}

// Moves to the next word still to ask about: words ignored or added since are passed over,
// and words given a "Change All" are changed on the way.
void SpellingSession::advance()
{
    while (m_index < m_words.size()) {
        const Misspelling &word = m_words.at(m_index);
        const auto changed = m_changeAll.constFind(word.word);
        if (changed != m_changeAll.constEnd()) {
            replaceCurrent(*changed);
            ++m_index;
            continue;
        }
        if (m_checker.isKnown(word.word)) {
            ++m_index;
            continue;
        }
        return;
    }
}

void SpellingSession::ignore()
{
    if (!current())
        return;
    ++m_index;
    advance();
}

void SpellingSession::ignoreAll()
{
    if (const Misspelling *word = current())
        m_checker.ignoreAll(word->word);
    ignore();
}

void SpellingSession::change(const QString &replacement)
{
    if (!current())
        return;
    if (!replacement.isEmpty() && replacement != current()->word)
        replaceCurrent(replacement);
    ++m_index;
    advance();
}

void SpellingSession::changeAll(const QString &replacement)
{
    if (const Misspelling *word = current(); word && !replacement.isEmpty())
        m_changeAll.insert(word->word, replacement);
    change(replacement);
}

void SpellingSession::add()
{
    if (const Misspelling *word = current())
        m_checker.addToPersonalList(word->word);
    ignore();
}

QString SpellingSession::context(qsizetype *wordStart) const
{
    const Misspelling *word = current();
    if (!word)
        return QString();
    constexpr qsizetype Reach = 60;
    qsizetype from = std::max<qsizetype>(0, word->start - Reach);
    for (qsizetype i = word->start - 1; i >= from; --i) {
        const QChar c = m_text.at(i);
        if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) {
            from = i + 1;
            break;
        }
    }
    qsizetype to = std::min(m_text.size(), word->start + word->length + Reach);
    for (qsizetype i = word->start + word->length; i < to; ++i) {
        const QChar c = m_text.at(i);
        if (c == QLatin1Char('\r') || c == QLatin1Char('\n')) {
            to = i;
            break;
        }
    }
    if (wordStart)
        *wordStart = word->start - from;
    return m_text.mid(from, to - from);
}
