#pragma once

#include <QString>
#include <QStringList>

/// /media, the folder in which sticks get their mount points. No call leaves it, whatever a stick's label
/// says, and none deletes anything from what is mounted there.
namespace media_folder {

/// "/media/NAME".
QString path(const QString& name);
/// Names of the files and folders in it.
QStringList names();

/// Makes a new folder and returns its path: NAME, or "NAME (1)", "NAME (2)" and so on where that is taken. A
/// name that is no name of a folder in it (slashes, dots alone) is made one. Empty when no folder can be
/// made.
QString make(const QString& name);

/// Removes an empty folder by its path; a path that is not directly in /media is left alone.
void removeEmpty(const QString& path);

/// Removes a file or a folder with everything in it, without following links; not where something is mounted
/// on it or below it, and not when that cannot be known.
void removeStale(const QString& name);

} // namespace media_folder
