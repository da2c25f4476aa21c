// The settings reader on a settings file a user edited by hand or a crash cut short: every key
// the window reads at start-up, what the program makes of the values, and a value written and
// read back.
#include "FuzzSupport.h"
#include "Helpers.h"
#include "PhotoPage.h"
#include "PictureSizing.h"
#include "Settings.h"
#include "SettingsKeys.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileDevice>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QList<QByteArray> parts = Fuzz::parts(Fuzz::bytes(data, size), 2);
    const QString folder = Fuzz::home() + QStringLiteral("/.config/Tarnwick");
    const QString path = folder + QStringLiteral("/Tarnwick.conf");
    QFile::remove(path + QStringLiteral(".unreadable"));
    Fuzz::writeFile(path, parts[0]);
    // The store is parsed again only when the file's time or size changed: each input gets a
    // time of its own.
    static qint64 run = 0;
    {
        QFile file(path);
        file.open(QIODevice::ReadWrite);
        file.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000 + ++run),
                         QFileDevice::FileModificationTime);
    }

    for (const SettingInfo &info : StartupSettings()) {
        const QString value = ReadStartupSetting(info.key);
        if (!HasSetting(info.key))
            FUZZ_CHECK_MSG(value == StartupDefault(info.key), info.key);
        ParseBoolSetting(value);
        HexColorToRGB(value);
        const QString limited = LimitResizeText(value);
        const double number = NumericValue(limited);
        FUZZ_CHECK(limited == value || number == 2 || number == 120);
    }
    for (int page = 0; page < 6; ++page)
        InstructionPageShown(static_cast<InstructionPage>(page));

    // A value written is read back as it was, whatever it holds.
    const QString value = QString::fromUtf8(parts[1]);
    SaveSetting(QStringLiteral("Author"), value);
    FUZZ_CHECK_MSG(GetSetting(QStringLiteral("Author")) == value, value);
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther |
                        QFileDevice::WriteOther | QFileDevice::ExeGroup | QFileDevice::ExeOther;
    FUZZ_CHECK((QFile(path).permissions() & others) == 0);
    QFile::remove(path);
    return 0;
}
