#include "Folders.h"
#include "Settings.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>

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
        QCOMPARE(GetSetting(QStringLiteral("sml_resize"), QStringLiteral("0")), QStringLiteral("15"));
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
        QDir().mkpath(TestHomePath() + QStringLiteral("/.config/Tarnwick"));
        QFile file(TestHomePath() + QStringLiteral("/.config/Tarnwick/Tarnwick.conf"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("\x00\xff\xfe[[[garbage\n=\n\x01\x02", 16);
        file.close();
        QCOMPARE(GetSetting(QStringLiteral("Server"), QStringLiteral("none")), QStringLiteral("none"));
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
