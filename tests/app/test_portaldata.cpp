#include "Cabinet.h"
#include "RecordFile.h"
#include "TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImageReader>
#include <QSet>
#include <QTemporaryDir>

// The default data as it ships: Tarnwicklib.cab made by the build from the Portal folder.
class TestPortalData : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString startup() const { return m_dir.filePath("Startup"); }

private slots:
    void initTestCase()
    {
        const CabinetResult result = ExtractCabinet(
            QStringLiteral(TARNWICK_STAGED_DATA_DIR "/Tarnwicklib.cab"), m_dir.path());
        QVERIFY2(result.ok, qPrintable(result.message));
    }

    void signFileIsLast()
    {
        const CabinetResult listed =
            ListCabinet(QStringLiteral(TARNWICK_STAGED_DATA_DIR "/Tarnwicklib.cab"));
        QVERIFY(listed.ok);
        QCOMPARE(listed.names.last(), QStringLiteral("Startup/Office Tools/Zipcode Search.ptr"));
        for (const QString &name : listed.names)
            QVERIFY2(name.startsWith(QStringLiteral("Startup/")), qPrintable(name));
    }

    void cabinetMatchesTheSourceFolder()
    {
        QDirIterator it(QStringLiteral(TARNWICK_SOURCE_DIR "/data/portal/Startup"), QDir::Files,
                        QDirIterator::Subdirectories);
        int count = 0;
        while (it.hasNext()) {
            const QString source = it.next();
            const QString relative =
                QDir(QStringLiteral(TARNWICK_SOURCE_DIR "/data/portal/Startup"))
                    .relativeFilePath(source);
            QFile a(source), b(startup() + u'/' + relative);
            QVERIFY(a.open(QIODevice::ReadOnly));
            QVERIFY2(b.open(QIODevice::ReadOnly), qPrintable(relative));
            QCOMPARE(b.readAll(), a.readAll());
            ++count;
        }
        QVERIFY(count > 20);
    }

    void bulletsAreRealGifs()
    {
        QSet<QByteArray> distinct;
        for (int number = 0; number <= 14; ++number) {
            QImageReader reader(startup() + QStringLiteral("/Arrow%1.gif").arg(number));
            QCOMPARE(reader.format(), QByteArray("gif"));
            const QImage image = reader.read().convertToFormat(QImage::Format_ARGB32);
            QCOMPARE(image.size(), QSize(15, 15));
            QCOMPARE(qAlpha(image.pixel(0, 14)), 0); // a corner shows the page behind it
            distinct.insert(
                QByteArray(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes()));
        }
        QCOMPARE(distinct.size(), 15);
        QImageReader badge(startup() + QStringLiteral("/NewW2.gif"));
        QCOMPARE(badge.format(), QByteArray("gif"));
        const QImage image = badge.read();
        QVERIFY(image.width() > image.height());
    }

    void categoriesAndLinksKeepTheRecordFormat()
    {
        const QDir dir(startup());
        const QStringList categories = dir.entryList({QStringLiteral("*.Cat")}, QDir::Files);
        QVERIFY(categories.size() >= 5 && categories.size() <= 7);
        QVERIFY(categories.contains(QStringLiteral("Office Tools.Cat")));
        for (const QString &cat : categories) {
            const QString name = cat.chopped(4);
            QFile file(dir.filePath(cat));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll(), QByteArray("directory file ") + name.toLatin1() + "\r\n");

            const QDir links(dir.filePath(name));
            const QStringList ptrs = links.entryList({QStringLiteral("*.ptr")}, QDir::Files);
            QVERIFY2(ptrs.size() >= 3, qPrintable(name));
            for (const QString &ptr : ptrs) {
                QFile link(links.filePath(ptr));
                QVERIFY(link.open(QIODevice::ReadOnly));
                const QByteArray bytes = link.readAll();
                QVERIFY2(bytes.endsWith("\r\n\r\n"), qPrintable(ptr));
                QCOMPARE(bytes.count('\n'), bytes.count("\r\n"));
                const QList<QByteArray> lines = bytes.split('\n');
                QVERIFY(lines.at(0).startsWith("LinkName = "));
                QVERIFY(lines.at(1).startsWith("URLName = "));
                QVERIFY(lines.at(2).startsWith("Bullet = "));

                const RecordFileResult record =
                    ReadRecordFile(links.filePath(ptr), RecordDecoding::Raw);
                QVERIFY(record.ok);
                const QString linkName = GetRecordValue(record.text, QStringLiteral("LinkName"));
                QCOMPARE(linkName, EncodeRecordText(ptr.chopped(4), true));
                const QString url = GetRecordValue(record.text, QStringLiteral("URLName"));
                QVERIFY2(url.startsWith(QStringLiteral("https://")), qPrintable(url));
                QVERIFY(!url.contains(u','));
                bool isNumber = false;
                const int bullet =
                    GetRecordValue(record.text, QStringLiteral("Bullet")).toInt(&isNumber);
                QVERIFY(isNumber && bullet >= 0 && bullet <= 13);
            }
        }
        QVERIFY(QFile::exists(startup() + QStringLiteral("/Office Tools/Zipcode Search.ptr")));
    }
};

TARNWICK_TEST_MAIN(TestPortalData)
#include "test_portaldata.moc"
