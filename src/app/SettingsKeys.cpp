#include "SettingsKeys.h"

#include "Folders.h"
#include "Settings.h"

QString DefaultTempPath()
{
    QString home = Folders::HomeFolder();
    home.chop(1);
    return home;
}

QList<SettingInfo> StartupSettings()
{
    namespace K = SettingKey;
    namespace D = SettingDefault;
    const QString none;
    return {
        {K::Server, none},
        {K::WebPage, none},
        {K::User, none},
        {K::Password, none},
        {K::EmailID, none},
        {K::Author, none},
        {K::BackupDirName, D::BackupDirName},
        {K::BlogDirName, D::BlogDirName},
        {K::SmlResize, D::SmlResize},
        {K::LrgResize, D::LrgResize},
        {K::BlogResize, D::BlogResize},
        {K::WebRoot, none},
        {K::FTPRoot, none},
        {K::ClientRoot, none},
        {K::PhotoIntructionView, D::Show},
        {K::BackupInstructionView, D::Show},
        {K::BlogIntructionView, D::Show},
        {K::PortalIntructionView, D::Show},
        {K::SendFileInstructionView, D::Show},
        {K::SendFileIntructionView, D::Show},
        {K::FTPControlInstructionView, D::Show},
        {K::AlernateLR, D::AlernateLR},
        {K::PromptForTitle, D::PromptForTitle},
        {K::PromptForDescription, D::PromptForDescription},
        {K::HighLightSteps, D::HighLightSteps},
        {K::LoadSpeed, D::LoadSpeed},
        {K::SpellCheck, D::SpellCheck},
        {K::Bit32, none, false},
        {K::PhotoBGColor, none},
        {K::PhotoTitleColor, none},
        {K::PhotoTextColor, none},
        {K::PhotoFont, none},
        {K::MstrBGColor, none},
        {K::MstrTitleColor, none},
        {K::MstrTextColor, none},
        {K::MstrFont, none},
        {K::SUBackgroundColor, D::SUBackgroundColor},
        {K::SUTitleColor, D::SUTitleColor},
        {K::SUTextColor, D::SUTextColor},
        {K::SUPageFont, D::SUPageFont},
        {K::LogoPointer, none},
        {K::LogoPointerHeight, D::LogoPointerHeight},
        {K::LogoPointerWidth, D::LogoPointerWidth},
        {K::TempPath, DefaultTempPath()},
        {K::CopyPath, Folders::FindSystemFolder(Folders::SystemFolder::Documents)},
        {K::Compression, D::Compression},
        {K::Entry, D::Entry},
    };
}

QString StartupDefault(const QString &key)
{
    if (key == SettingKey::TempPath)
        return DefaultTempPath();
    if (key == SettingKey::CopyPath)
        return Folders::FindSystemFolder(Folders::SystemFolder::Documents);
    for (const SettingInfo &info : StartupSettings()) {
        if (info.key == key)
            return info.startupDefault;
    }
    return QString();
}

QString ReadStartupSetting(const QString &key)
{
    return GetSetting(key, StartupDefault(key));
}

std::optional<bool> ParseBoolSetting(const QString &text)
{
    const QString word = text.trimmed();
    if (word.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0)
        return true;
    if (word.compare(QStringLiteral("False"), Qt::CaseInsensitive) == 0)
        return false;
    bool isNumber = false;
    const double number = word.toDouble(&isNumber);
    if (isNumber)
        return number != 0.0;
    return std::nullopt;
}

namespace {

QString readOrWriteDefault(const QString &key, const QString &builtIn)
{
    QString value = GetSetting(key, QString());
    if (value.isEmpty()) {
        SaveSetting(key, builtIn);
        value = builtIn;
    }
    return value;
}

} // namespace

ColourAndFontSettings WriteColourAndFontDefaults()
{
    namespace K = SettingKey;
    namespace D = SettingDefault;
    ColourAndFontSettings s;
    s.PhotoBGColor = readOrWriteDefault(K::PhotoBGColor, D::PhotoBGColor);
    s.PhotoTitleColor = readOrWriteDefault(K::PhotoTitleColor, D::PhotoTitleColor);
    s.PhotoTextColor = readOrWriteDefault(K::PhotoTextColor, D::PhotoTextColor);
    s.PhotoFont = readOrWriteDefault(K::PhotoFont, D::PhotoFont);
    s.MstrBGColor = readOrWriteDefault(K::MstrBGColor, D::MstrBGColor);
    s.MstrTitleColor = readOrWriteDefault(K::MstrTitleColor, D::MstrTitleColor);
    s.MstrTextColor = readOrWriteDefault(K::MstrTextColor, D::MstrTextColor);
    s.MstrFont = readOrWriteDefault(K::MstrFont, D::MstrFont);
    return s;
}

QString InstructionViewKey(InstructionPage page)
{
    switch (page) {
    case InstructionPage::Photo:
        return SettingKey::PhotoIntructionView;
    case InstructionPage::Backup:
        return SettingKey::BackupInstructionView;
    case InstructionPage::SendFile:
        return SettingKey::SendFileInstructionView;
    case InstructionPage::Blog:
        return SettingKey::BlogIntructionView;
    case InstructionPage::Portal:
        return SettingKey::PortalIntructionView;
    case InstructionPage::FTPControls:
        return SettingKey::FTPControlInstructionView;
    }
    return QString();
}

bool InstructionPageShown(InstructionPage page)
{
    return GetSetting(InstructionViewKey(page), SettingDefault::Show) == SettingDefault::Show;
}

void SetInstructionPageShown(InstructionPage page, bool shown)
{
    SaveSetting(InstructionViewKey(page), shown ? SettingDefault::Show : SettingDefault::Hide);
}
