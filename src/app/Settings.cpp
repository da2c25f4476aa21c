#include "Settings.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

namespace {

void restrictToOwner(const QString &fileName)
{
    QFile file(fileName);
    if (!file.exists())
        return;
    const auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    if (file.permissions() != ownerOnly)
        file.setPermissions(ownerOnly);
}

// A store file that can't be read is moved to "Tarnwick.conf.unreadable" (replacing an older
// one there) as soon as it is met: from then on the store reads as empty and the next write
// starts a new one. (The parsed store is kept between uses, so only its first reading reports
// the damage.)
void setAsideUnreadableStore()
{
    QString fileName;
    {
        QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
        if (store.status() == QSettings::NoError)
            return;
        fileName = store.fileName();
    }
    if (!QFileInfo(fileName).isFile())
        return; // a folder in its place is left alone; writes then fail
    const QString aside = fileName + QStringLiteral(".unreadable");
    QFile::remove(aside);
    QFile::rename(fileName, aside);
}

} // namespace

QString GetSetting(const QString &key, const QString &defaultValue)
{
    setAsideUnreadableStore();
    QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
    if (store.status() != QSettings::NoError)
        return defaultValue;
    store.beginGroup(QStringLiteral("Settings"));
    const QVariant value = store.value(key);
    if (!value.isValid())
        return defaultValue;
    return value.toString();
}

void SaveSetting(const QString &key, const QString &value)
{
    setAsideUnreadableStore();
    QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
    store.beginGroup(QStringLiteral("Settings"));
    store.setValue(key, value);
    store.endGroup();
    store.sync();
    restrictToOwner(store.fileName());
}

bool HasSetting(const QString &key)
{
    setAsideUnreadableStore();
    QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
    if (store.status() != QSettings::NoError)
        return false;
    store.beginGroup(QStringLiteral("Settings"));
    return store.contains(key);
}
