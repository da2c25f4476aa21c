#include "FileListModel.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("x");
}

const QString ImagePattern =
    QStringLiteral("\"(*.dib *.bmp *.gif *.jpg *.htm)|*.dib;*.bmp;*.gif;*.jpg;*.htm\"");

} // namespace

class TestFileListModel : public QObject
{
    Q_OBJECT
private slots:
    void matches_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<bool>("expected");
        QTest::newRow("jpg") << "a.jpg"
                             << "*.jpg" << true;
        QTest::newRow("case ignored") << "HOLIDAY.JPG"
                                      << "*.jpg" << true;
        QTest::newRow("other type") << "a.jpeg"
                                    << "*.jpg" << false;
        QTest::newRow("star dot star without dot") << "README"
                                                   << "*.*" << true;
        QTest::newRow("star") << "anything.x"
                              << "*" << true;
        QTest::newRow("question mark") << "a1.txt"
                                       << "a?.txt" << true;
        QTest::newRow("question mark needs one") << "a.txt"
                                                 << "a?.txt" << false;
        QTest::newRow("list second item") << "b.gif"
                                          << "*.bmp;*.gif" << true;
        QTest::newRow("list none") << "b.png"
                                   << "*.bmp;*.gif" << false;
        QTest::newRow("star in the middle") << "Sml_00012_x.jpg"
                                            << "Sml_*.jpg" << true;
        QTest::newRow("several stars") << "abcabcX"
                                       << "*abc*X" << true;
        QTest::newRow("brackets are plain") << "a[1].jpg"
                                            << "a[1].*" << true;
        QTest::newRow("brackets are not a set") << "a1.jpg"
                                                << "a[1].jpg" << false;
        QTest::newRow("empty pattern") << "x"
                                       << "" << true;
        QTest::newRow("image pattern bmp") << "a.bmp" << ImagePattern << true;
        QTest::newRow("image pattern gif") << "a.GIF" << ImagePattern << true;
        QTest::newRow("image pattern jpg") << "a.jpg" << ImagePattern << true;
        QTest::newRow("image pattern dib") << "a.dib" << ImagePattern << false;
        QTest::newRow("image pattern htm") << "a.htm" << ImagePattern << false;
        QTest::newRow("image pattern png") << "a.png" << ImagePattern << false;
    }
    void matches()
    {
        QFETCH(QString, name);
        QFETCH(QString, pattern);
        QFETCH(bool, expected);
        QCOMPARE(FileListModel::matches(name, pattern), expected);
    }

    void listsSortedIgnoringCase()
    {
        QTemporaryDir dir;
        for (const char *name : {"b.jpg", "A.jpg", "c.JPG", "a2.gif", "Z.txt", ".hidden.jpg"})
            touch(dir.filePath(QString::fromLatin1(name)));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("folder.jpg")));

        FileListModel model;
        model.setPattern(QStringLiteral("*.jpg;*.gif"));
        model.setPath(dir.path());
        QCOMPARE(model.fileNames(),
                 (QStringList{QStringLiteral("A.jpg"), QStringLiteral("a2.gif"),
                              QStringLiteral("b.jpg"), QStringLiteral("c.JPG")}));
        QCOMPARE(model.rowCount(), 4);
        QCOMPARE(model.data(model.index(2)).toString(), QStringLiteral("b.jpg"));
        QCOMPARE(model.filePath(0), dir.path() + QStringLiteral("/A.jpg"));
        QCOMPARE(model.data(model.index(0), FileListModel::FilePathRole).toString(),
                 dir.path() + QStringLiteral("/A.jpg"));
        QCOMPARE(model.filePath(9), QString());

        model.setPattern(QStringLiteral("*.*"));
        QCOMPARE(model.rowCount(), 5);
        QCOMPARE(model.fileName(4), QStringLiteral("Z.txt"));
    }

    void refreshSeesNewFiles()
    {
        QTemporaryDir dir;
        FileListModel model;
        model.setPattern(QStringLiteral("*.*"));
        model.setPath(dir.path() + QLatin1Char('/'));
        QCOMPARE(model.path(), dir.path());
        QCOMPARE(model.rowCount(), 0);
        touch(dir.filePath(QStringLiteral("new.txt")));
        QCOMPARE(model.rowCount(), 0);
        model.refresh();
        QCOMPARE(model.fileNames(), QStringList{QStringLiteral("new.txt")});
    }

    void missingFolderIsEmpty()
    {
        FileListModel model;
        model.setPattern(QStringLiteral("*.*"));
        model.setPath(QStringLiteral("/no/such/folder/here"));
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.filePath(0), QString());
    }
};

TARNWICK_TEST_MAIN(TestFileListModel)
#include "test_filelistmodel.moc"
