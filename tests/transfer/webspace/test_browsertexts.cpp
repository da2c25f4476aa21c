#include "BrowserTexts.h"
#include "TestMain.h"
#include "cDirList.h"

class TestBrowserTexts : public QObject
{
    Q_OBJECT
private slots:
    void attributes_data()
    {
        QTest::addColumn<quint32>("flags");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << quint32(0) << "";
        QTest::newRow("directory") << quint32(cDirItem::Directory) << " D ";
        QTest::newRow("normal") << quint32(cDirItem::Normal) << " N ";
        QTest::newRow("all in order")
            << quint32(cDirItem::ReadOnly | cDirItem::Hidden | cDirItem::System |
                       cDirItem::Directory | cDirItem::Archive | cDirItem::Normal |
                       cDirItem::Temporary | cDirItem::Compressed | cDirItem::Offline)
            << " A  C  D  H  N  O  R  S  T ";
        QTest::newRow("read-only archive")
            << quint32(cDirItem::ReadOnly | cDirItem::Archive) << " A  R ";
    }
    void attributes()
    {
        QFETCH(quint32, flags);
        QFETCH(QString, text);
        QCOMPARE(AttributeText(flags), text);
    }

    void sizes_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << qint64(0) << "0 bytes";
        QTest::newRow("bytes") << qint64(1023) << "1023 bytes";
        QTest::newRow("kilobytes") << qint64(1536) << "1.5 kB";
        QTest::newRow("megabytes") << qint64(3565158) << "3.4 MB";
    }
    void sizes()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, text);
        QCOMPARE(SizeText(bytes), text);
        QCOMPARE(DirectorySizeText(), QStringLiteral("< Directory >"));
    }

    void pointers_data()
    {
        QTest::addColumn<QString>("uploadPath");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("pointer");
        QTest::newRow("site root") << "example.org/"
                                   << "a.htm"
                                   << "http://example.org/a.htm";
        QTest::newRow("adds slash") << "example.org/docs"
                                    << "a.htm"
                                    << "http://example.org/docs/a.htm";
        QTest::newRow("blanks") << "example.org/my docs"
                                << "a b.htm"
                                << "http://example.org/my%20docs/a%20b.htm";
        QTest::newRow("keeps scheme") << "https://example.org/"
                                      << "a"
                                      << "https://example.org/a";
    }
    void pointers()
    {
        QFETCH(QString, uploadPath);
        QFETCH(QString, name);
        QFETCH(QString, pointer);
        QCOMPARE(FilePointerPath(uploadPath, name), pointer);
    }
};

TARNWICK_TEST_MAIN(TestBrowserTexts)
#include "test_browsertexts.moc"
