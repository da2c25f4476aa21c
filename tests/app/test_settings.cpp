#include "Folders.h"
#include "Settings.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

class TestSettings : public QObject
{
    Q_OBJECT
private slots:
    void init() { ClearTemporaryHome(); }

    void absentKeyGivesDefault()
    {
        QCOMPARE(GetSetting(QStringLiteral("Server"), QStringLiteral("x")), QStringLiteral("x"));
        QVERIFY(!HasSetting(QStringLiteral("Server")));
    }

    void savedValueIsReadBackAsString()
    {
        SaveSetting(QStringLiteral("sml_resize"), QStringLiteral("15"));
        QCOMPARE(GetSetting(QStringLiteral("sml_resize"), QStringLiteral("0")),
                 QStringLiteral("15"));
        SaveSetting(QStringLiteral("AlernateLR"), BoolText(true));
        QCOMPARE(GetSetting(QStringLiteral("AlernateLR")), QStringLiteral("True"));
    }

    void storeIsReadableByOwnerOnly()
    {
        SaveSetting(QStringLiteral("Password"), QStringLiteral("secret"));
        QFile file(TestHomePath() + QStringLiteral("/.config/Tarnwick/Tarnwick.conf"));
        QVERIFY(file.exists());
        QCOMPARE(file.permissions() & (QFileDevice::ReadGroup | QFileDevice::ReadOther),
                 QFileDevice::Permissions());
    }

    void unreadableStoreBehavesAsEmpty()
    {
        // Damaged so that the store can't be read as a whole, while a lenient reader would
        // still find Server=x in it.
        const QString conf = TestHomePath() + QStringLiteral("/.config/Tarnwick/Tarnwick.conf");
        QDir().mkpath(QFileInfo(conf).absolutePath());
        QFile file(conf);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[[[garbage\n=\n[Settings]\nServer=x\n");
        file.close();
        QCOMPARE(GetSetting(QStringLiteral("Server"), QStringLiteral("none")),
                 QStringLiteral("none"));
        QVERIFY(!HasSetting(QStringLiteral("Server")));

        // Read once more, it stays empty; the first write starts a new store and the damaged
        // one is kept aside.
        QCOMPARE(GetSetting(QStringLiteral("Server"), QStringLiteral("none")),
                 QStringLiteral("none"));
        SaveSetting(QStringLiteral("Author"), QStringLiteral("ann"));
        QCOMPARE(GetSetting(QStringLiteral("Author")), QStringLiteral("ann"));
        QVERIFY(!HasSetting(QStringLiteral("Server")));
        QFile aside(conf + QStringLiteral(".unreadable"));
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QVERIFY(aside.readAll().contains("Server=x"));
    }

    void storeThatIsAFolderBehavesAsEmpty()
    {
        // Not even root can read a folder as the store file.
        const QString conf = TestHomePath() + QStringLiteral("/.config/Tarnwick/Tarnwick.conf");
        QVERIFY(QDir().mkpath(conf + QStringLiteral("/Settings")));
        QCOMPARE(GetSetting(QStringLiteral("Server"), QStringLiteral("none")),
                 QStringLiteral("none"));
        QVERIFY(!HasSetting(QStringLiteral("Server")));
        SaveSetting(QStringLiteral("Server"), QStringLiteral("x")); // lost, and no harm done
        QCOMPARE(GetSetting(QStringLiteral("Server"), QStringLiteral("none")),
                 QStringLiteral("none"));
        QVERIFY(QFileInfo(conf).isDir());
    }

    void folderTreeIsMadeAndExistingTreeCostsNothing()
    {
        Folders::MakeFolderTree();
        QVERIFY(QDir(Folders::PhotosHtmlFolder()).exists());
        QVERIFY(QDir(Folders::MasterPointerFolder()).exists());
        QVERIFY(QDir(Folders::BlogPointerFolder()).exists());
        Folders::MakeFolderTree();
        QVERIFY(QDir(Folders::HistoryFolder()).exists());
        QVERIFY(Folders::HomeFolder().endsWith(QLatin1Char('/')));
    }
};

TARNWICK_TEST_MAIN(TestSettings)
#include "test_settings.moc"
