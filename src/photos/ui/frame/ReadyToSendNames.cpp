#include "ReadyToSendNames.h"

#include <cmath>

QString AddSuffix(const QString &name, const QString &suffix)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return name;
    return name.left(dot) + suffix + name.mid(dot);
}

QString DecimalText(double value)
{
    if (std::isfinite(value) && std::floor(value) == value && std::fabs(value) < 1e15)
        return QString::number(static_cast<qint64>(value));
    return QString::number(value, 'g', 15);
}
