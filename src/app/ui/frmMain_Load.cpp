#include "frmMain.h"

#include "DefaultData.h"
#include "Folders.h"
#include "GuiJobUi.h"
#include "JobState.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "SpellingDictionary.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>

namespace {

QString setting(const char *key, const char *defaultValue = "")
{
    return GetSetting(QString::fromLatin1(key), QString::fromLatin1(defaultValue));
}

// A stored boolean word; anything else leaves the former state, as a failed conversion leaves a
// control as it was.
bool readBool(const QString &text, bool former)
{
    return ParseBoolSetting(text).value_or(former);
}

} // namespace

void frmMain::readStartupSettings()
{
    StartupValues &v = m_startup;
    m_txtServer->setText(setting("Server"));
    m_txtWebSite->setText(setting("WebPage"));
    m_txtUser->setText(setting("User"));
    m_txtEmailID->setText(setting("EmailID"));
    m_txtDefaultAuthor->setText(setting("Author"));
    m_txtPassword->setText(setting("Password"));
    v.BackupDirName = setting("BackupDirName", "Backup");
    v.sml_resize = setting("sml_resize", "15");
    v.lrg_resize = setting("lrg_resize", "30");
    m_webRoot->setText(setting("WebRoot"));
    m_ftpRoot->setText(setting("FTPRoot"));
    m_clientRoot->setText(setting("ClientRoot"));

    v.PhotoIntructionView = setting("PhotoIntructionView", "Show");
    v.BackupInstructionView = setting("BackupInstructionView", "Show");
    v.BlogIntructionView = setting("BlogIntructionView", "Show");
    v.PortalIntructionView = setting("PortalIntructionView", "Show");
    // Read at start-up under this spelling only; where a page is shown the other one counts.
    v.SendFileIntructionView = setting("SendFileIntructionView", "Show");
    v.FTPControlInstructionView = setting("FTPControlInstructionView", "Show");
    v.AlernateLR = readBool(setting("AlernateLR", "True"), v.AlernateLR);
    v.PromptForTitle = readBool(setting("PromptForTitle", "False"), v.PromptForTitle);
    v.PromptForDescription =
        readBool(setting("PromptForDescription", "False"), v.PromptForDescription);

    const bool highlight = readBool(setting("HighLightSteps", "True"), true);
    v.BlogDirName = setting("BlogDirName", "Web_Log");
    v.LoadSpeed = setting("LoadSpeed", "0.1");
    m_loadSpeed->setText(v.LoadSpeed);
    v.SpellCheck = readBool(setting("SpellCheck", "False"), v.SpellCheck);
    m_spellCheckOn->setChecked(v.SpellCheck);
    updateSpellingEntries();
    m_highLightSteps->setChecked(highlight);

    v.ColourAndFont = WriteColourAndFontDefaults();
    v.Blog_resize = setting("Blog_resize", "15");
}

void frmMain::Load()
{
    m_state.UploadCancelled = false;
    m_state.BackgroundRequested = false;
    PositionThings();
    m_runWithoutMenu->setChecked(false);
    m_direction = QStringLiteral("R");

    readStartupSettings();
    const QString entry = setting("entry");

    Folders::MakeFolderTree();
    m_copyFilesReport = CopyFiles(*m_jobUi);

    if (entry.isEmpty()) {
        PromptForSetup();
        SaveSetting(QStringLiteral("Bit32"), BoolText(true)); // Linux counts as the NT family
        askSpellingQuestion();
    }

    m_startup.SpellCheck = readBool(setting("SpellCheck"), m_startup.SpellCheck);
    m_startup.IsNTFamily = readBool(setting("Bit32"), m_startup.IsNTFamily);
    m_xpOrBetter->setChecked(m_startup.IsNTFamily);

    m_startup.ChoosenUploadPath = GetSetting(SettingKey::TempPath, DefaultTempPath());
    m_startup.ChoosenCopyPath = GetSetting(
        QStringLiteral("CopyPath"), Folders::FindSystemFolder(Folders::SystemFolder::Documents));

    DoCleanup();
    setWindowTitle(QStringLiteral("Tarnwick - Ready to Connect"));

    m_startup.LogoTxt = setting("LogoPointer");
    m_startup.SULogoH = setting("LogoPointerHeight", "145");
    m_startup.LogoPointerWidth = setting("LogoPointerWidth", "145");
    m_startup.SUBackgroundColor = setting("SUBackgroundColor", "#7FFF7F");
    m_startup.SUTitleColor = setting("SUTitleColor", "#7F7FFF");
    m_startup.SUTextColor = setting("SUTextColor", "#000000");
    m_startup.SUPageFont = setting("SUPageFont", "Arial");

    for (const ShellFunction &function : m_functions)
        if (function.loaded)
            function.loaded();

    m_timer1->start();
    m_timer2->start(); // Timer3 waits for the FTP tab's Connect
    m_timer4->start();
    refreshDrives();
}

void frmMain::PromptForSetup()
{
    if (m_setupPage)
        m_setupPage();
}

void frmMain::askSpellingQuestion()
{
    const QString name = SpellingDictionaryPhrase();
    const QString text =
        QStringLiteral("The Spell Checker requires that you have %1 installed on your system.")
            .arg(name) +
        QLatin1Char('\n') +
        QStringLiteral("Running the Spell Checker on a system without the dictionary could result "
                       "in unpredictable behavior.") +
        QLatin1Char('\n') + QStringLiteral("This option can be changed later.") +
        QStringLiteral("\n\n") + QString(33, QLatin1Char(' ')) +
        QStringLiteral("Is %1 installed on this system?").arg(name);
    const bool yes = m_jobUi->Message(text, QStringLiteral("Tarnwick"), JobUi::Buttons::YesNo,
                                      JobUi::Icon::Question) == JobUi::Answer::Yes;
    SaveSetting(QStringLiteral("SpellCheck"), BoolText(yes));
    m_spellCheckOn->setChecked(yes);
    updateSpellingEntries();
}

void frmMain::DoCleanup()
{
    // Resized pictures of an earlier session wait in the home folder; only images go.
    QDir home(Folders::HomeFolder());
    const QStringList images =
        home.entryList({QStringLiteral("*.jpg"), QStringLiteral("*.jpeg"), QStringLiteral("*.gif"),
                        QStringLiteral("*.bmp"), QStringLiteral("*.dib"), QStringLiteral("*.png")},
                       QDir::Files | QDir::NoSymLinks);
    for (const QString &name : images)
        QFile::remove(home.filePath(name)); // a failure is passed over
    for (const ShellFunction &function : m_functions)
        if (function.cleanup)
            function.cleanup();
}
