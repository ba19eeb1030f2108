#pragma once

#include "storage/MediaMonitor.h"

#include <QDir>
#include <QStringList>

/// What a technician sees below /media, by name.
inline QStringList media()
{
    return QDir("/media").entryList(
        QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

/// The stick that the monitor has known for longest; an empty record when it knows none.
inline storage_t firstOf(const MediaMonitor& monitor)
{
    const std::list<storage_t> all = monitor.devices();
    return all.empty() ? storage_t() : all.front();
}
