#include "Folders.h"
#include "TestMain.h"
#include "WordChecker.h"

#include <QFile>
#include <QTemporaryDir>

// The spelling checker over the installed en_US dictionary: which words it asks about, and a
// session of answers that never loses text.
class TestWordChecker : public QObject
{
    Q_OBJECT
private:
    static DictionaryFiles english()
    {
        SetSpellingDictionaryFolders({});
        for (const QString &folder :
             {QStringLiteral("/usr/share/hunspell"), QStringLiteral("/usr/share/myspell")}) {
            const QString base = folder + "/en_US";
            if (QFile::exists(base + ".dic"))
                return {"en_US", base + ".aff", base + ".dic"};
        }
        return {};
    }

    static QStringList words(const QList<Misspelling> &list)
    {
        QStringList out;
        for (const Misspelling &m : list)
            out << m.word;
        return out;
    }

private slots:
    void init()
    {
        ClearTemporaryHome();
        Folders::MakeFolderTree();
        QVERIFY2(!english().aff.isEmpty(), "the en_US dictionary (hunspell-en-us) is missing");
    }

    void findsTheUnknownWordsOnly()
    {
        WordChecker checker(english());
        QVERIFY(checker.isReady());
        const QString text = "We arived at the harbour. It's a beautful <b>day</b>!";
        const QList<Misspelling> found = checker.misspellings(text);
        QCOMPARE(words(found), QStringList({"arived", "harbour", "beautful"}));
        QCOMPARE(text.mid(found.at(0).start, found.at(0).length), QString("arived"));
    }

    void tagsAddressesNumbersAndCapitalsAreNotWords()
    {
        WordChecker checker(english());
        const QString text =
            "<Center>fine</Center> <a href=\"http://exmpl.org/pth\">go</a> www.qqqzzz.com "
            "ann@qqqzzz.org 2nd 3xyzq NASA QQQZ &nbsp; &amp;";
        QCOMPARE(words(checker.misspellings(text)).join(","), QString());
    }

    void suggestionsForAWord()
    {
        WordChecker checker(english());
        QVERIFY(checker.suggestions("arived").contains("arrived"));
    }

    void aSessionChangesIgnoresAndAdds()
    {
        WordChecker checker(english());
        SpellingSession session(checker, "Teh cat and teh dog.\r\nA zorblat and a zorblat. Helo.");
        QCOMPARE(session.found(), 5);
        QCOMPARE(session.current()->word, QString("Teh"));
        qsizetype at = -1;
        QCOMPARE(session.context(&at), QString("Teh cat and teh dog."));
        QCOMPARE(at, 0);
        session.change("The");
        QCOMPARE(session.current()->word, QString("teh"));
        session.changeAll("the");
        QCOMPARE(session.current()->word, QString("zorblat"));
        QCOMPARE(session.context(&at), QString("A zorblat and a zorblat. Helo."));
        QCOMPARE(at, 2);
        session.add();
        // The second "zorblat" is known now; the next word is "Helo".
        QCOMPARE(session.current()->word, QString("Helo"));
        session.ignore();
        QVERIFY(!session.current());
        QCOMPARE(session.text(), QString("The cat and the dog.\r\nA zorblat and a zorblat. Helo."));
        QCOMPARE(session.changes(), 2);
        // Added words are kept in the personal list and known to a new checker.
        QVERIFY(QFile(PersonalWordListPath()).exists());
        WordChecker again(english());
        QVERIFY(again.isKnown("zorblat"));
    }

    void changeAllReachesLaterWordsAndIgnoreAllLasts()
    {
        WordChecker checker(english());
        SpellingSession session(checker, "recieve, recieve and recieve; wierd wierd");
        session.changeAll("receive");
        QCOMPARE(session.current()->word, QString("wierd"));
        session.ignoreAll();
        QVERIFY(!session.current());
        QCOMPARE(session.text(), QString("receive, receive and receive; wierd wierd"));
        QVERIFY(checker.misspellings("wierd").isEmpty());
    }

    void aCheckNeverBlanksText()
    {
        WordChecker checker(english());
        const QString text = "Speling is hard.";
        SpellingSession session(checker, text);
        session.change(QString());
        QCOMPARE(session.text(), text);
        SpellingSession cancelled(checker, "Teh end of teh story");
        cancelled.change("The");
        // Leaving the dialog here keeps what was changed and all the rest.
        QCOMPARE(cancelled.text(), QString("The end of teh story"));
    }

    void withoutADictionaryNothingIsAskedAndTextStays()
    {
        QTemporaryDir empty;
        SetSpellingDictionaryFolders({empty.path()});
        QVERIFY(FindSpellingDictionary().name.isEmpty());
        WordChecker checker;
        QVERIFY(!checker.isReady());
        SpellingSession session(checker, "Teh text");
        QVERIFY(!session.current());
        QCOMPARE(session.text(), QString("Teh text"));
        SetSpellingDictionaryFolders({});
    }

    void theUsersLanguageComesFirstElseEnglish()
    {
        QTemporaryDir folder;
        for (const char *name : {"en_US.aff", "en_US.dic"})
            QVERIFY(
                QFile::copy(english().aff.section('/', 0, -2) + "/" + name, folder.filePath(name)));
        SetSpellingDictionaryFolders({folder.path()});
        QCOMPARE(FindSpellingDictionary().name, QString("en_US"));
        const QString own = QLocale::system().name();
        if (own != "en_US") {
            QVERIFY(QFile::copy(folder.filePath("en_US.aff"), folder.filePath(own + ".aff")));
            QVERIFY(QFile::copy(folder.filePath("en_US.dic"), folder.filePath(own + ".dic")));
            QCOMPARE(FindSpellingDictionary().name, own);
        }
        SetSpellingDictionaryFolders({});
    }
};

TARNWICK_TEST_MAIN(TestWordChecker)
#include "test_wordchecker.moc"
