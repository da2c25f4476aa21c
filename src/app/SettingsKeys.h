#pragma once

#include <QList>
#include <QString>

#include <optional>

// The keys of the settings store (group "Settings") and the values the window starts with when a
// key is absent. Misspelt keys are the program's own and stay as they are.
namespace SettingKey {
inline const QString Server = QStringLiteral("Server");
inline const QString WebPage = QStringLiteral("WebPage");
inline const QString User = QStringLiteral("User");
inline const QString Password = QStringLiteral("Password");
inline const QString EmailID = QStringLiteral("EmailID");
inline const QString Author = QStringLiteral("Author");
inline const QString BackupDirName = QStringLiteral("BackupDirName");
inline const QString BlogDirName = QStringLiteral("BlogDirName");
inline const QString SmlResize = QStringLiteral("sml_resize");
inline const QString LrgResize = QStringLiteral("lrg_resize");
inline const QString BlogResize = QStringLiteral("Blog_resize");
inline const QString WebRoot = QStringLiteral("WebRoot");
inline const QString FTPRoot = QStringLiteral("FTPRoot");
inline const QString ClientRoot = QStringLiteral("ClientRoot");
inline const QString PhotoIntructionView = QStringLiteral("PhotoIntructionView");
inline const QString BackupInstructionView = QStringLiteral("BackupInstructionView");
inline const QString BlogIntructionView = QStringLiteral("BlogIntructionView");
inline const QString PortalIntructionView = QStringLiteral("PortalIntructionView");
inline const QString SendFileInstructionView = QStringLiteral("SendFileInstructionView");
// The second spelling of Send a File's choice: read at start-up, written by nobody.
inline const QString SendFileIntructionView = QStringLiteral("SendFileIntructionView");
inline const QString FTPControlInstructionView = QStringLiteral("FTPControlInstructionView");
inline const QString AlernateLR = QStringLiteral("AlernateLR");
inline const QString PromptForTitle = QStringLiteral("PromptForTitle");
inline const QString PromptForDescription = QStringLiteral("PromptForDescription");
inline const QString HighLightSteps = QStringLiteral("HighLightSteps");
inline const QString LoadSpeed = QStringLiteral("LoadSpeed");
inline const QString SpellCheck = QStringLiteral("SpellCheck");
inline const QString Bit32 = QStringLiteral("Bit32");
inline const QString PhotoBGColor = QStringLiteral("PhotoBGColor");
inline const QString PhotoTitleColor = QStringLiteral("PhotoTitleColor");
inline const QString PhotoTextColor = QStringLiteral("PhotoTextColor");
inline const QString PhotoFont = QStringLiteral("PhotoFont");
inline const QString MstrBGColor = QStringLiteral("MstrBGColor");
inline const QString MstrTitleColor = QStringLiteral("MstrTitleColor");
inline const QString MstrTextColor = QStringLiteral("MstrTextColor");
inline const QString MstrFont = QStringLiteral("MstrFont");
inline const QString SUBackgroundColor = QStringLiteral("SUBackgroundColor");
inline const QString SUTitleColor = QStringLiteral("SUTitleColor");
inline const QString SUTextColor = QStringLiteral("SUTextColor");
inline const QString SUPageFont = QStringLiteral("SUPageFont");
inline const QString LogoPointer = QStringLiteral("LogoPointer");
inline const QString LogoPointerHeight = QStringLiteral("LogoPointerHeight");
inline const QString LogoPointerWidth = QStringLiteral("LogoPointerWidth");
inline const QString TempPath = QStringLiteral("TempPath");
inline const QString CopyPath = QStringLiteral("CopyPath");
inline const QString Compression = QStringLiteral("Compression");
inline const QString Entry = QStringLiteral("entry");
} // namespace SettingKey

// Start-up defaults that are fixed texts.
namespace SettingDefault {
inline const QString Show = QStringLiteral("Show");
inline const QString Hide = QStringLiteral("Hide");
inline const QString BackupDirName = QStringLiteral("Backup");
inline const QString BlogDirName = QStringLiteral("Web_Log");
inline const QString SmlResize = QStringLiteral("15");
inline const QString LrgResize = QStringLiteral("30");
inline const QString BlogResize = QStringLiteral("15");
inline const QString AlernateLR = QStringLiteral("True");
inline const QString PromptForTitle = QStringLiteral("False");
inline const QString PromptForDescription = QStringLiteral("False");
inline const QString HighLightSteps = QStringLiteral("True");
inline const QString LoadSpeed = QStringLiteral("0.1");
inline const QString SpellCheck = QStringLiteral("False");
inline const QString PhotoBGColor = QStringLiteral("#7F7Fff");
inline const QString PhotoTitleColor = QStringLiteral("#008000");
inline const QString PhotoTextColor = QStringLiteral("#000000");
inline const QString PhotoFont = QStringLiteral("Arial");
inline const QString MstrBGColor = QStringLiteral("#7F7Fff");
inline const QString MstrTitleColor = QStringLiteral("#008000");
inline const QString MstrTextColor = QStringLiteral("#000000");
inline const QString MstrFont = QStringLiteral("Arial");
inline const QString SUBackgroundColor = QStringLiteral("#7FFF7F");
inline const QString SUTitleColor = QStringLiteral("#7F7FFF");
inline const QString SUTextColor = QStringLiteral("#000000");
inline const QString SUPageFont = QStringLiteral("Arial");
inline const QString LogoPointerHeight = QStringLiteral("145");
inline const QString LogoPointerWidth = QStringLiteral("145");
inline const QString Compression = QStringLiteral("1");
inline const QString Entry = QStringLiteral("");
// What the first run writes to "entry" once the Configuration page is confirmed.
inline const QString EntryDone = QStringLiteral("5");
} // namespace SettingDefault

// One row of the table of keys: the key and what start-up reads it with. hasDefault is false for
// Bit32 alone, which is read with no default and so comes back "" when absent.
struct SettingInfo
{
    QString key;
    QString startupDefault;
    bool hasDefault = true;
};

// Every key the window reads at start-up, in the order of the table. TempPath's default is the
// program's home folder and CopyPath's the user's documents folder, computed at the call.
QList<SettingInfo> StartupSettings();
// The start-up default of key ("" for a key that isn't in the table, and for Bit32).
QString StartupDefault(const QString &key);
// GetSetting(key, StartupDefault(key)).
QString ReadStartupSetting(const QString &key);

// A stored boolean word: "True"/"False" in any case, or a number (0 is false, any other true).
// Nothing for anything else, the empty text included: the caller then keeps its former state.
std::optional<bool> ParseBoolSetting(const QString &text);

// The home folder of the program without its final "/", the default of TempPath.
QString DefaultTempPath();

// The four looks of the photo page and of the Web Log master page, as the window shows them.
struct ColourAndFontSettings
{
    QString PhotoBGColor, PhotoTitleColor, PhotoTextColor, PhotoFont;
    QString MstrBGColor, MstrTitleColor, MstrTextColor, MstrFont;
};

// Reads the eight colour and font keys with ""; a key that comes back empty first gets its
// built-in value written to the store. Returns the values the window puts into its controls.
// Afterwards all eight keys are in the store. The Portal's SU keys are not touched.
ColourAndFontSettings WriteColourAndFontDefaults();

// The six instruction pages and the key that says whether each is shown ("Show"/"Hide").
enum class InstructionPage
{
    Photo = 0,
    Backup = 1,
    SendFile = 2,
    Blog = 3,
    Portal = 4,
    FTPControls = 5
};
QString InstructionViewKey(InstructionPage page);
// True when the page's key holds "Show"; an absent key counts as "Show".
bool InstructionPageShown(InstructionPage page);
// Writes "Show" or "Hide" to the page's key.
void SetInstructionPageShown(InstructionPage page, bool shown);
