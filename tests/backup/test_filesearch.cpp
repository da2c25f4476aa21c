#include "FileSearch.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

class TestFileSearch : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;

    void touch(const QString &relative)
    {
        const QString path = m_dir.filePath(relative);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QStringList search(const QString &typed, bool subFolders)
    {
        std::atomic<bool> cancel{false};
        QStringList found;
        SearchFiles(m_dir.path(), SearchPatterns(typed), subFolders, cancel,
                    [&](const QList<FoundFile> &rows) {
                        for (const FoundFile &row : rows)
                            found << QDir(m_dir.path()).relativeFilePath(row.folder + row.name);
                    });
        return found;
    }

private slots:
    void initTestCase()
    {
        touch(QStringLiteral("report.doc"));
        touch(QStringLiteral("Notes.TXT"));
        touch(QStringLiteral("README"));
        touch(QStringLiteral(".hidden"));
        touch(QStringLiteral("a/deep.txt"));
        touch(QStringLiteral("a/b/deeper.doc"));
        touch(QStringLiteral("z/last.txt"));
    }

    void patternsOfTheTypedText()
    {
        QList<SearchPattern> patterns = SearchPatterns(QStringLiteral("doc"));
        QCOMPARE(patterns.size(), 1);
        QVERIFY(patterns[0].atStart && patterns[0].atEnd && !patterns[0].exact);
        QCOMPARE(patterns[0].text, QStringLiteral("DOC"));
        patterns = SearchPatterns(QStringLiteral("a;readme;.txt"));
        QCOMPARE(patterns.size(), 3);
        QVERIFY(patterns[0].atEnd && !patterns[0].atStart);
        QVERIFY(patterns[1].exact);
        QVERIFY(patterns[2].atStart && !patterns[2].atEnd);
        // Blanks are not trimmed.
        QCOMPARE(SearchPatterns(QStringLiteral("a; b"))[1].text, QStringLiteral(" B"));
    }

    void anEmptySearchStringListsAllFiles()
    {
        QCOMPARE(search(QString(), false),
                 (QStringList{QStringLiteral("Notes.TXT"), QStringLiteral("README"),
                              QStringLiteral("report.doc")}));
    }

    void aStarAloneIsNotWrappedAndMatchesAll()
    {
        const QList<SearchPattern> star = SearchPatterns(QStringLiteral("*"));
        QCOMPARE(star.size(), 1);
        QVERIFY(star[0].atEnd && !star[0].atStart);
        QCOMPARE(search(QStringLiteral("*"), false).size(), 3);
    }

    void lettersMatchWhateverTheirCase()
    {
        QCOMPARE(search(QStringLiteral("txt"), false), QStringList{QStringLiteral("Notes.TXT")});
    }

    void twoPatternsNeverListAFileTwice()
    {
        // "*.txt;notes*": an end test and a start test that both fit Notes.TXT.
        QCOMPARE(search(QStringLiteral(".txt;notes"), false),
                 QStringList{QStringLiteral("Notes.TXT")});
        // "*e;e*": names that end with E or start with it.
        QCOMPARE(search(QStringLiteral("e;e"), false), QStringList{QStringLiteral("README")});
    }

    void exactPatternsInTheMiddle()
    {
        // "x;readme;y" gives an end test, an exact name and a start test.
        QCOMPARE(search(QStringLiteral("zzz;readme;zzz"), false),
                 QStringList{QStringLiteral("README")});
    }

    void subFoldersAreWalkedBreadthFirst()
    {
        QCOMPARE(search(QString(), true),
                 (QStringList{QStringLiteral("Notes.TXT"), QStringLiteral("README"),
                              QStringLiteral("report.doc"), QStringLiteral("a/deep.txt"),
                              QStringLiteral("z/last.txt"), QStringLiteral("a/b/deeper.doc")}));
    }

    void aCancelKeepsWhatWasFound()
    {
        std::atomic<bool> cancel{false};
        QStringList found;
        const bool whole = SearchFiles(m_dir.path(), SearchPatterns(QString()), true, cancel,
                                       [&](const QList<FoundFile> &rows) {
                                           for (const FoundFile &row : rows)
                                               found << row.name;
                                           cancel = true;
                                       });
        QVERIFY(!whole);
        QCOMPARE(found.size(), 3);
    }

    void aFolderThatCantBeReadEndsTheSearchWithTheRowsSoFar()
    {
        std::atomic<bool> cancel{false};
        int rows = 0;
        QVERIFY(!SearchFiles(m_dir.filePath(QStringLiteral("missing")), SearchPatterns(QString()),
                             true, cancel,
                             [&](const QList<FoundFile> &found) { rows += int(found.size()); }));
        QCOMPARE(rows, 0);
    }
};

TARNWICK_TEST_MAIN(TestFileSearch)
#include "test_filesearch.moc"
