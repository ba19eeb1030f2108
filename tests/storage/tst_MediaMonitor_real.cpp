#include "storage/MediaMonitor.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>
#include <QTest>

namespace {

void plug()
{
    QVERIFY(QFile::link("../../sdb1", "/dev/disk/by-label/STICK"));
    QVERIFY(QFile::link("../../sdb1", "/dev/disk/by-uuid/1234-ABCD"));
}

void unplug()
{
    QVERIFY(QFile::remove("/dev/disk/by-label/STICK"));
    QVERIFY(QFile::remove("/dev/disk/by-uuid/1234-ABCD"));
}

} // namespace

/// The monitor on a real block device, mounted by the system's own programs; see with_real_stick, which reads
/// the file of the test back from the stick's image.
class tst_MediaMonitor_real : public QObject {
    Q_OBJECT

private slots:
    void stickPluggedIn_isMountedWrittenAndReleased();
    void stickPluggedInAgain_holdsTheFile();
    void pulledStick_leavesMediaEmpty();
    void endOfTheProgram_unmounts();
};

void tst_MediaMonitor_real::stickPluggedIn_isMountedWrittenAndReleased()
{
    MediaMonitor monitor;
    plug();
    QString mountPoint;
    QString unused;
    QTRY_VERIFY(monitor.isConnectedUSB(mountPoint, unused));
    QCOMPARE(mountPoint, QString("/media/STICK"));
    QCOMPARE(QStorageInfo(mountPoint).device(), QByteArray("/dev/sdb1"));
    const float free = monitor.freeDiskSpace(mountPoint);
    QVERIFY2(free > 5 && free <= 16, qPrintable(QString::number(free)));

    QVERIFY(QDir(mountPoint).mkpath("pictures"));
    QFile file(mountPoint + "/pictures/field.txt");
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("the pixels of a field") > 0);
    QVERIFY2(!monitor.umount(mountPoint), "a stick with an open file was unmounted");
    file.close();
    QVERIFY(monitor.umount(mountPoint));
    QVERIFY(!monitor.isMounted("/dev/sdb1"));
    QVERIFY(QDir("/media").isEmpty());
    unplug();
    QTRY_VERIFY(monitor.devices().empty());
}

void tst_MediaMonitor_real::stickPluggedInAgain_holdsTheFile()
{
    plug();
    MediaMonitor monitor;
    monitor.umountAll();
    monitor.mountAll();
    QFile file("/media/STICK/pictures/field.txt");
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("the pixels of a field"));
    file.close();
    monitor.release();
    QVERIFY(QDir("/media").isEmpty());
    unplug();
}

void tst_MediaMonitor_real::pulledStick_leavesMediaEmpty()
{
    const MediaMonitor monitor;
    plug();
    QTRY_VERIFY(!monitor.devices().empty() && monitor.devices().front().mounted);
    unplug();
    QTRY_VERIFY(monitor.devices().empty());
    QVERIFY(!monitor.isMounted("/dev/sdb1"));
    QVERIFY(QDir("/media").isEmpty());
}

void tst_MediaMonitor_real::endOfTheProgram_unmounts()
{
    plug();
    {
        MediaMonitor monitor;
        monitor.mountAll();
        QVERIFY(monitor.isMounted("/media/STICK"));
    }
    QVERIFY(QDir("/media").isEmpty());
    QVERIFY(QStorageInfo("/media").device() != "/dev/sdb1");
    unplug();
}

QTEST_MAIN(tst_MediaMonitor_real)

#include "tst_MediaMonitor_real.moc"
