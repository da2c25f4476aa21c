#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>

class Hunspell;

// The installed Hunspell dictionary that the spelling check uses: the one of the user's
// language when it is there, else en_US.
struct DictionaryFiles
{
    QString name; // "en_US"; "" when none is installed
    QString aff;
    QString dic;
};
DictionaryFiles FindSpellingDictionary();
// The folders looked in, in order (/usr/share/hunspell, /usr/share/myspell/dicts,
// /usr/share/myspell). Tests point them elsewhere; an empty list restores these.
void SetSpellingDictionaryFolders(const QStringList &folders);

// The user's own words, added with "Add" in the spelling dialog: one word a line (UTF-8) in
// the program's home folder, so they go wherever the user's data goes.
QString PersonalWordListPath();

// One word the dictionary does not know, by its place in the text.
struct Misspelling
{
    qsizetype start = 0;
    qsizetype length = 0;
    QString word;
};

// A spelling checker over one Hunspell dictionary and the personal word list. Words are runs
// of letters (an apostrophe inside a word belongs to it); HTML tags and entities, web and mail
// addresses, words touching digits and words in capitals alone are not checked. Words ignored
// with "Ignore All" stay ignored for the checker's life. Not thread-safe; never touches the
// event loop.
class WordChecker final
{
public:
    // Loads the dictionary that FindSpellingDictionary() names (or files, when given) and the
    // personal word list. isReady() is false when there is no dictionary.
    WordChecker();
    explicit WordChecker(const DictionaryFiles &files);
    ~WordChecker();
    WordChecker(const WordChecker &) = delete;
    WordChecker &operator=(const WordChecker &) = delete;

    bool isReady() const { return m_hunspell != nullptr; }
    QString dictionaryName() const { return m_files.name; }

    // True when the word is known, in the personal list, or ignored.
    bool isKnown(const QString &word) const;
    QStringList suggestions(const QString &word) const;
    // Every unknown word of text, in order.
    QList<Misspelling> misspellings(const QString &text) const;

    void ignoreAll(const QString &word);
    // Known from now on, and kept in the personal word list. false when the list can't be
    // written (the word is known for this run all the same).
    bool addToPersonalList(const QString &word);

private:
    void load();
    std::string encode(const QString &word) const;
    QString decode(const std::string &word) const;

    DictionaryFiles m_files;
    std::unique_ptr<Hunspell> m_hunspell;
    bool m_utf8 = true;
    QSet<QString> m_ignored;
    QSet<QString> m_personal;
};

// One run of the spelling dialog over a text. The unknown words are found at once; then the
// user's answers go through them in order. The text only ever changes where a word is changed,
// and only for a non-empty replacement: a check never blanks or loses text, and a cancel keeps
// the text as it then stands.
class SpellingSession final
{
public:
    SpellingSession(WordChecker &checker, const QString &text);

    // The word now asked about (after the changes and ignores made so far are applied to the
    // words that follow), or nothing when the check is through.
    const Misspelling *current() const;
    QString text() const { return m_text; }
    int changes() const { return m_changes; }
    int found() const { return int(m_words.size()); }

    // The answers; each moves on to the next word.
    void ignore();
    void ignoreAll();
    // An empty replacement changes nothing (it moves on like Ignore).
    void change(const QString &replacement);
    void changeAll(const QString &replacement);
    void add();

    // The words around the current one: from the start of its line or sentence (at most
    // about 60 characters before it) to the end (at most about 60 after it).
    QString context(qsizetype *wordStart = nullptr) const;

private:
    void replaceCurrent(const QString &replacement);
    void advance();

    WordChecker &m_checker;
    QString m_text;
    QList<Misspelling> m_words;
    qsizetype m_index = 0;
    QHash<QString, QString> m_changeAll;
    int m_changes = 0;
};
