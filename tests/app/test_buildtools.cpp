// The build tools that make the default data: the bullet drawer and the cabinet packer.
#include "Cabinet.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QProcess>
#include <QTemporaryDir>

namespace {

int run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return -1;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

const QString MakeCab = QStringLiteral(TARNWICK_MAKECAB);
const QString DrawBullets = QStringLiteral(TARNWICK_DRAWBULLETS);

} // namespace

class TestBuildTools : public QObject
{
    Q_OBJECT
private slots:
    void packerPutsTheNamedFileLast()
    {
        QTemporaryDir dir;
        writeFile(dir.filePath("a/Startup/Office Tools/Zipcode Search.ptr"), "sign");
        writeFile(dir.filePath("a/Startup/Zeta.Cat"), "z");
        writeFile(dir.filePath("a/Startup/alpha.Cat"), "a");
        writeFile(dir.filePath("b/Startup/Arrow0.gif"), "gif");
        const QString cab = dir.filePath("out.cab");
        QCOMPARE(run(MakeCab, {cab, "Startup/Office Tools/Zipcode Search.ptr", dir.filePath("a"),
                               dir.filePath("b")}),
                 0);
        const CabinetResult listed = ListCabinet(cab);
        QVERIFY(listed.ok);
        QCOMPARE(listed.names,
                 QStringList({"Startup/alpha.Cat", "Startup/Arrow0.gif", "Startup/Zeta.Cat",
                              "Startup/Office Tools/Zipcode Search.ptr"}));
    }

    void packerRefusesBadInput_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("last file missing") << "missing-last";
        QTest::newRow("root missing") << "missing-root";
        QTest::newRow("same name twice") << "twice";
        QTest::newRow("too few arguments") << "few";
    }
    void packerRefusesBadInput()
    {
        QFETCH(QString, fault);
        QTemporaryDir dir;
        writeFile(dir.filePath("a/Startup/x.ptr"), "x");
        writeFile(dir.filePath("b/Startup/x.ptr"), "x again");
        const QString cab = dir.filePath("out.cab");
        QStringList arguments;
        if (fault == "missing-last")
            arguments = {cab, "Startup/none.ptr", dir.filePath("a")};
        else if (fault == "missing-root")
            arguments = {cab, "Startup/x.ptr", dir.filePath("no-such-root")};
        else if (fault == "twice")
            arguments = {cab, "Startup/x.ptr", dir.filePath("a"), dir.filePath("b")};
        else
            arguments = {cab};
        QVERIFY(run(MakeCab, arguments) > 0);
        QVERIFY(!QFile::exists(cab));
    }

    void drawerMakesFifteenArrowsAndTheBadge()
    {
        QTemporaryDir dir;
        const QString out = dir.filePath("made/Startup");
        QCOMPARE(run(DrawBullets, {out}), 0);
        const QStringList made = QDir(out).entryList(QDir::Files);
        QCOMPARE(made.size(), 16);
        for (int number = 0; number <= 14; ++number) {
            QImageReader reader(out + QStringLiteral("/Arrow%1.gif").arg(number));
            QCOMPARE(reader.format(), QByteArray("gif"));
            QCOMPARE(reader.size(), QSize(15, 15));
        }
        QCOMPARE(QImageReader(out + "/NewW2.gif").format(), QByteArray("gif"));
        QVERIFY(run(DrawBullets, {}) > 0);
    }

    void drawingTwiceGivesTheSameFiles()
    {
        QTemporaryDir dir;
        QCOMPARE(run(DrawBullets, {dir.filePath("one")}), 0);
        QCOMPARE(run(DrawBullets, {dir.filePath("two")}), 0);
        for (const QString &name : QDir(dir.filePath("one")).entryList(QDir::Files)) {
            QFile a(dir.filePath("one/" + name)), b(dir.filePath("two/" + name));
            QVERIFY(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
            QCOMPARE(a.readAll(), b.readAll());
        }
    }
};

TARNWICK_TEST_MAIN(TestBuildTools)
#include "test_buildtools.moc"
