#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// The partitions that the system names below /dev/disk, by their device ("/dev/sdb1").
namespace partitions {

/// The folder in which a link comes and goes with each partition.
QString watchedFolder();

/// A partition of any disk that speaks the language of USB sticks ("/dev/sdb1").
bool isPartition(const QString& device);
/// A partition of the disk that the instrument runs from ("/dev/sda1"): never to be touched.
bool isOfSystemDisk(const QString& device);

/// Every partition that is there now, those of the system disk included, each once, in no certain order.
QStringList present();

/// The labels of the partitions that have one, by device.
QMap<QString, QString> labels();

} // namespace partitions
