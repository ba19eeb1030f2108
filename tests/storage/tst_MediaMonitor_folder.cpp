#include "MonitorViews.h"
#include "StickShelf.h"
#include "tests/support/program_output.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegExp>
#include <QTest>

#include <memory>

namespace {

const QByteArray pixels = "the pixels of a day's work";

/// Every file and folder that the program could reach, with size, time and identity; without /media, and what
/// the system and its mount program keep their books in.
QStringList everythingOutsideMedia()
{
    const QByteArray found = outputOf("/usr/bin/find",
        { "/", "-regex", "/\\(dev\\|media\\|proc\\|run\\|sys\\|tmp\\|usr\\)", "-prune", "-o", "-printf",
            "%p %y %s %T@ %i\n" });
    return QString(found).split('\n');
}

/// The lines that are not among the others.
QStringList without(QStringList lines, const QStringList& others)
{
    for (const QString& line : others) {
        lines.removeOne(line);
    }
    return lines;
}

} // namespace

/// /media itself: what is cleared out of it, and that nothing outside of it is touched.
class tst_MediaMonitor_folder : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_shelf.reset(); }

    void staleFoldersAndFiles_areRemoved();
    void folderOfAStickUnmountedByHand_isRemoved();
    void linksInMedia_areRemovedAndNotFollowed();
    void linksInStaleFolders_areNotFollowed();
    void everythingOutsideMedia_staysAsItIs();

    void labels_neverLeaveMedia_data();
    void labels_neverLeaveMedia();
    void labelThatIsTooLong_isAnError();

    void missingMedia_isAnError();
    void fileInPlaceOfMedia_isAnError();
    void missingDiskFolders_areNoSticks();
    void umountOfAFolderOutside_leavesTheFolder();

private:
    std::unique_ptr<StickShelf> m_shelf;
};

void tst_MediaMonitor_folder::init()
{
    m_shelf = std::make_unique<StickShelf>();
    QDir("/outside").removeRecursively();
    writeFile("/outside/folder/file", pixels);
}

void tst_MediaMonitor_folder::staleFoldersAndFiles_areRemoved()
{
    writeFile("/media/stale/with/folders/file", "x");
    QVERIFY(QDir("/media").mkdir("STICK (1)"));
    writeFile("/media/file", "x");
    const MediaMonitor monitor;
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor_folder::folderOfAStickUnmountedByHand_isRemoved()
{
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    QCOMPARE(QProcess::execute("umount", { "/dev/sdb1" }), 0);
    QCOMPARE(media(), QStringList { "STICK" });
    monitor.cleanUp();
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor_folder::linksInMedia_areRemovedAndNotFollowed()
{
    QVERIFY(QFile::link("/outside/folder", "/media/link"));
    QVERIFY(QFile::link("/outside/folder/file", "/media/link to a file"));
    const MediaMonitor monitor;
    QCOMPARE(media(), QStringList());
    QCOMPARE(textOf("/outside/folder/file"), pixels);
}

void tst_MediaMonitor_folder::linksInStaleFolders_areNotFollowed()
{
    writeFile("/media/stale/file", "x");
    QVERIFY(QFile::link("/outside/folder", "/media/stale/link"));
    const MediaMonitor monitor;
    QCOMPARE(media(), QStringList());
    QCOMPARE(textOf("/outside/folder/file"), pixels);
}

void tst_MediaMonitor_folder::everythingOutsideMedia_staysAsItIs()
{
    m_shelf->plug("/dev/sda1", "1111-1111", "SYSTEM");
    m_shelf->plug("/dev/sdb1", "2222-2222", "STICK");
    m_shelf->plug("/dev/sdc1", "3333-3333", "BUSY");
    writeFile("/media/stale/folder/file", "x");
    writeFile("/media/stale file", "x");
    QVERIFY(QFile::link("/outside/folder", "/media/link"));
    QVERIFY(QFile::link("/outside", "/media/stale/folder/link"));
    QVERIFY(QFile::link("/outside/folder/file", "/media/link to a file"));
    const QStringList before = everythingOutsideMedia();
    QCOMPARE(before.filter(QRegExp("^/outside/folder/file f")).size(), 1);
    {
        MediaMonitor monitor;
        monitor.mountAll();
        QFile open("/media/BUSY/file");
        QVERIFY(open.open(QIODevice::WriteOnly));
        monitor.release();
        m_shelf->unplug("3333-3333", "BUSY");
        QTRY_COMPARE(monitor.devices().size(), std::size_t { 1 });
        monitor.release();
    }
    const QStringList after = everythingOutsideMedia();
    QCOMPARE(without(before, after).join("\n"), QString());
    QCOMPARE(without(after, before).join("\n"), QString());
}

void tst_MediaMonitor_folder::labels_neverLeaveMedia_data()
{
    QTest::addColumn<QString>("label");
    for (const char* label : { "..", ".", "...", "../outside", "../../etc", "/outside", "a/../../outside",
             "a/b", "/", "", "%1", "%2 (%1)", "-o", "new\nline", "*" }) {
        QTest::newRow(label) << label;
    }
}

void tst_MediaMonitor_folder::labels_neverLeaveMedia()
{
    QFETCH(QString, label);
    MediaMonitor monitor;
    QString first;
    QString second;
    QVERIFY(monitor.mount("/dev/sdb1", label, first));
    QVERIFY(monitor.mount("/dev/sdc1", label, second));
    for (const QString& mountPoint : { first, second }) {
        QCOMPARE(QFileInfo(mountPoint).path(), QString("/media"));
        QCOMPARE(QFileInfo(QFileInfo(mountPoint).canonicalFilePath()).path(), QString("/media"));
    }
    QCOMPARE(second, first + " (1)");
    QCOMPARE(QDir("/outside").entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList { "folder" });
    QVERIFY(monitor.umount(second));
    QVERIFY(monitor.umount(first));
    QCOMPARE(media(), QStringList());
}

void tst_MediaMonitor_folder::labelThatIsTooLong_isAnError()
{
    MediaMonitor monitor;
    QString mountPoint;
    QVERIFY(!monitor.mount("/dev/sdb1", QString(300, 'x'), mountPoint));
    QVERIFY(mountPoint.isEmpty());
    QCOMPARE(m_shelf->calls(), QStringList());
}

void tst_MediaMonitor_folder::missingMedia_isAnError()
{
    QVERIFY(QDir().rmdir("/media"));
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    MediaMonitor monitor;
    monitor.mountAll();
    QVERIFY(!monitor.devices().front().mounted);
    QCOMPARE(m_shelf->calls(), QStringList());
    QVERIFY(!QFileInfo::exists("/media"));
}

void tst_MediaMonitor_folder::fileInPlaceOfMedia_isAnError()
{
    QVERIFY(QDir().rmdir("/media"));
    writeFile("/media", "x");
    m_shelf->plug("/dev/sdb1", "1111-1111", "STICK");
    {
        MediaMonitor monitor;
        monitor.mountAll();
        QVERIFY(!monitor.devices().front().mounted);
    }
    QCOMPARE(textOf("/media"), QByteArray("x"));
    QVERIFY(QFile::remove("/media"));
}

void tst_MediaMonitor_folder::missingDiskFolders_areNoSticks()
{
    QVERIFY(QDir().rename("/dev/disk/by-uuid", "/dev/disk/away"));
    {
        MediaMonitor monitor;
        monitor.mountAll();
        monitor.slot_directoryChanged();
        QVERIFY(monitor.devices().empty());
    }
    QVERIFY(QDir().rename("/dev/disk/away", "/dev/disk/by-uuid"));
}

void tst_MediaMonitor_folder::umountOfAFolderOutside_leavesTheFolder()
{
    MediaMonitor monitor;
    QVERIFY(QDir().mkpath("/outside/empty"));
    QVERIFY(QDir("/media").mkdir("empty"));
    monitor.umount(QString("/outside/empty"));
    monitor.umount(QString("/media/empty/.."));
    QVERIFY(QFileInfo::exists("/outside/empty"));
    QVERIFY(QFileInfo::exists("/media/empty"));
}

QTEST_MAIN(tst_MediaMonitor_folder)

#include "tst_MediaMonitor_folder.moc"
