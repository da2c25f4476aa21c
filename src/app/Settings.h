#pragma once

#include <QString>

// The per-user settings store: application "Tarnwick", group "Settings", every value a string.
// The file is ~/.config/Tarnwick/Tarnwick.conf and is kept readable by its owner alone, since
// it holds the FTP password. A store that can't be read behaves as an empty one: it is set aside as
// Tarnwick.conf.unreadable when first met, and the next write starts a new one.

// Returns the stored string, or defaultValue when the key is absent.
QString GetSetting(const QString &key, const QString &defaultValue = QString());
// Writes one key at once (last writer wins).
void SaveSetting(const QString &key, const QString &value);
// True when the key is present in the store.
bool HasSetting(const QString &key);

// "True"/"False" as the store spells booleans.
inline QString BoolText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}
