#include "Folders.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TestMain.h"

#include <QSet>

class TestSettingsKeys : public QObject
{
    Q_OBJECT
private slots:
    void init() { ClearTemporaryHome(); }

    void startupDefaults_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Server") << "Server"
                                << "";
        QTest::newRow("BackupDirName") << "BackupDirName"
                                       << "Backup";
        QTest::newRow("BlogDirName") << "BlogDirName"
                                     << "Web_Log";
        QTest::newRow("sml_resize") << "sml_resize"
                                    << "15";
        QTest::newRow("lrg_resize") << "lrg_resize"
                                    << "30";
        QTest::newRow("Blog_resize") << "Blog_resize"
                                     << "15";
        QTest::newRow("PhotoIntructionView") << "PhotoIntructionView"
                                             << "Show";
        QTest::newRow("AlernateLR") << "AlernateLR"
                                    << "True";
        QTest::newRow("PromptForTitle") << "PromptForTitle"
                                        << "False";
        QTest::newRow("HighLightSteps") << "HighLightSteps"
                                        << "True";
        QTest::newRow("LoadSpeed") << "LoadSpeed"
                                   << "0.1";
        QTest::newRow("SpellCheck") << "SpellCheck"
                                    << "False";
        QTest::newRow("Bit32 has none") << "Bit32"
                                        << "";
        QTest::newRow("SUBackgroundColor") << "SUBackgroundColor"
                                           << "#7FFF7F";
        QTest::newRow("SUTitleColor") << "SUTitleColor"
                                      << "#7F7FFF";
        QTest::newRow("SUPageFont") << "SUPageFont"
                                    << "Arial";
        QTest::newRow("LogoPointerHeight") << "LogoPointerHeight"
                                           << "145";
        QTest::newRow("Compression") << "Compression"
                                     << "1";
        QTest::newRow("entry") << "entry"
                               << "";
        QTest::newRow("unknown key") << "NoSuchKey"
                                     << "";
    }
    void startupDefaults()
    {
        QFETCH(QString, key);
        QFETCH(QString, expected);
        QCOMPARE(StartupDefault(key), expected);
        QCOMPARE(ReadStartupSetting(key), expected);
    }

    void tableHasEveryKeyOnce()
    {
        QSet<QString> keys;
        for (const SettingInfo &info : StartupSettings()) {
            QVERIFY2(!keys.contains(info.key), qPrintable(info.key));
            keys.insert(info.key);
            QCOMPARE(info.hasDefault, info.key != SettingKey::Bit32);
        }
        QCOMPARE(keys.size(), 47);
    }

    void folderDefaults()
    {
        QCOMPARE(StartupDefault(SettingKey::TempPath),
                 TestHomePath() + QStringLiteral("/Tarnwick"));
        QCOMPARE(StartupDefault(SettingKey::CopyPath),
                 Folders::FindSystemFolder(Folders::SystemFolder::Documents));
    }

    void storedValueWinsOverDefault()
    {
        SaveSetting(SettingKey::SmlResize, QStringLiteral("20"));
        QCOMPARE(ReadStartupSetting(SettingKey::SmlResize), QStringLiteral("20"));
    }

    void sendFileSecondSpellingAlwaysShows()
    {
        QCOMPARE(ReadStartupSetting(SettingKey::SendFileIntructionView), QStringLiteral("Show"));
        QVERIFY(InstructionPageShown(InstructionPage::SendFile));
        SetInstructionPageShown(InstructionPage::SendFile, false);
        QCOMPARE(ReadStartupSetting(SettingKey::SendFileIntructionView), QStringLiteral("Show"));
        QCOMPARE(GetSetting(SettingKey::SendFileInstructionView), QStringLiteral("Hide"));
        QVERIFY(!InstructionPageShown(InstructionPage::SendFile));
        QVERIFY(!HasSetting(SettingKey::SendFileIntructionView));
    }

    void instructionPagesUseTheirOwnKeys_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<QString>("key");
        QTest::newRow("photo") << 0 << "PhotoIntructionView";
        QTest::newRow("backup") << 1 << "BackupInstructionView";
        QTest::newRow("send file") << 2 << "SendFileInstructionView";
        QTest::newRow("blog") << 3 << "BlogIntructionView";
        QTest::newRow("portal") << 4 << "PortalIntructionView";
        QTest::newRow("ftp") << 5 << "FTPControlInstructionView";
    }
    void instructionPagesUseTheirOwnKeys()
    {
        QFETCH(int, page);
        QFETCH(QString, key);
        const auto which = InstructionPage(page);
        QCOMPARE(InstructionViewKey(which), key);
        QVERIFY(InstructionPageShown(which));
        SetInstructionPageShown(which, false);
        QCOMPARE(GetSetting(key), QStringLiteral("Hide"));
        QVERIFY(!InstructionPageShown(which));
        SetInstructionPageShown(which, true);
        QCOMPARE(GetSetting(key), QStringLiteral("Show"));
        SaveSetting(key, QStringLiteral("garbage"));
        QVERIFY(!InstructionPageShown(which));
    }

    void bit32WithoutDefaultDoesNotConvert()
    {
        QCOMPARE(GetSetting(SettingKey::Bit32), QString());
        QVERIFY(!ParseBoolSetting(ReadStartupSetting(SettingKey::Bit32)).has_value());
        bool xpOrBetter = true; // the check keeps its former state
        if (const auto value = ParseBoolSetting(ReadStartupSetting(SettingKey::Bit32)))
            xpOrBetter = *value;
        QVERIFY(xpOrBetter);
        SaveSetting(SettingKey::Bit32, BoolText(false));
        QCOMPARE(ParseBoolSetting(ReadStartupSetting(SettingKey::Bit32)),
                 std::optional<bool>(false));
    }

    void parseBool_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("expected"); // -1 none, 0 false, 1 true
        QTest::newRow("True") << "True" << 1;
        QTest::newRow("False") << "False" << 0;
        QTest::newRow("lower") << "true" << 1;
        QTest::newRow("minus one") << "-1" << 1;
        QTest::newRow("zero") << "0" << 0;
        QTest::newRow("empty") << "" << -1;
        QTest::newRow("word") << "Yes" << -1;
    }
    void parseBool()
    {
        QFETCH(QString, text);
        QFETCH(int, expected);
        const auto value = ParseBoolSetting(text);
        QCOMPARE(value.has_value() ? int(*value) : -1, expected);
    }

    void colourDefaultsAreWrittenWhenEmpty()
    {
        const ColourAndFontSettings first = WriteColourAndFontDefaults();
        QCOMPARE(first.PhotoBGColor, QStringLiteral("#7F7Fff"));
        QCOMPARE(first.PhotoTitleColor, QStringLiteral("#008000"));
        QCOMPARE(first.PhotoTextColor, QStringLiteral("#000000"));
        QCOMPARE(first.PhotoFont, QStringLiteral("Arial"));
        QCOMPARE(first.MstrBGColor, QStringLiteral("#7F7Fff"));
        QCOMPARE(first.MstrTitleColor, QStringLiteral("#008000"));
        QCOMPARE(first.MstrTextColor, QStringLiteral("#000000"));
        QCOMPARE(first.MstrFont, QStringLiteral("Arial"));
        for (const QString &key :
             {SettingKey::PhotoBGColor, SettingKey::PhotoTitleColor, SettingKey::PhotoTextColor,
              SettingKey::PhotoFont, SettingKey::MstrBGColor, SettingKey::MstrTitleColor,
              SettingKey::MstrTextColor, SettingKey::MstrFont})
            QVERIFY2(HasSetting(key), qPrintable(key));
        QVERIFY(!HasSetting(SettingKey::SUBackgroundColor));
        QVERIFY(!HasSetting(SettingKey::SUPageFont));
    }

    void colourChoiceIsKeptAndEmptiedKeyRefilled()
    {
        SaveSetting(SettingKey::PhotoBGColor, QStringLiteral("#123456"));
        SaveSetting(SettingKey::MstrFont, QString());
        const ColourAndFontSettings s = WriteColourAndFontDefaults();
        QCOMPARE(s.PhotoBGColor, QStringLiteral("#123456"));
        QCOMPARE(s.MstrFont, QStringLiteral("Arial"));
        QCOMPARE(GetSetting(SettingKey::MstrFont), QStringLiteral("Arial"));
        QCOMPARE(GetSetting(SettingKey::PhotoBGColor), QStringLiteral("#123456"));
    }

    void emptyRootsAreAllowed()
    {
        for (const QString &key :
             {SettingKey::WebRoot, SettingKey::FTPRoot, SettingKey::ClientRoot}) {
            QCOMPARE(ReadStartupSetting(key), QString());
            SaveSetting(key, QString());
            QVERIFY(HasSetting(key));
            QCOMPARE(ReadStartupSetting(key), QString());
        }
    }
};

TARNWICK_TEST_MAIN(TestSettingsKeys)
#include "test_settingskeys.moc"
