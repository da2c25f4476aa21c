#pragma once

#include <QString>

// The mount point of the last removable medium found ("" when none): volumes under /media or
// /run/media, or on a block device that /sys/block flags as removable. Network file systems are
// skipped. Safe to call from a worker thread.
QString LastRemovableDrive();

// Whether a mounted volume counts as removable, from its mount point and device path.
bool IsRemovableVolume(const QString &mountPoint, const QString &device);
