#pragma once

#include <QString>

/// Texts about builds, made from the records of the build metadata.
namespace version_text {

/// The part of a record behind "=": the value of "VERSION=2.4.2" is "2.4.2".
QString valueOf(const QString& record);

/// Seconds since 1970 as local time, "yyyy-MM-dd hh:mm".
QString dateText(qulonglong seconds);

/// The version text of the application: version record, build seconds and revision record, parted by "|".
QString applicationVersion();

} // namespace version_text
