#include "Settings.h"

#include <QFile>
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

} // namespace

QString GetSetting(const QString &key, const QString &defaultValue)
{
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
    QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
    store.beginGroup(QStringLiteral("Settings"));
    store.setValue(key, value);
    store.endGroup();
    store.sync();
    restrictToOwner(store.fileName());
}

bool HasSetting(const QString &key)
{
    QSettings store(QStringLiteral("Tarnwick"), QStringLiteral("Tarnwick"));
    store.beginGroup(QStringLiteral("Settings"));
    return store.contains(key);
}
