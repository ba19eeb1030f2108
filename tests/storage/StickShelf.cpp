#include "StickShelf.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

namespace {

const QString shelf = "/run/rig/shelf";
const QString mtab = "/run/rig/mtab";

const QString programs = "/run/source/tests/storage/sticks";

void runToTheEnd(const QString& program, const QStringList& arguments = {})
{
    QCOMPARE(QProcess::execute(program, arguments), 0);
}

QStringList mountPoints()
{
    QStringList places;
    const QList<QByteArray> lines = textOf("/proc/self/mounts").split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("/dev/sd") && line.split(' ').at(1).startsWith("/m")) {
            places.prepend(QString(line.split(' ').at(1)).replace("\\040", " ").replace("\\134", "\\"));
        }
    }
    return places;
}

void emptyFolder(const QString& path)
{
    QDir(path).removeRecursively();
    QVERIFY(QDir().mkpath(path));
}

void setBehaviour(const QString& program, StickShelf::Behaviour behaviour)
{
    const char* words[] = { "works", "fails", "complains", "hangs" };
    writeFile(shelf + '/' + program, words[static_cast<int>(behaviour)]);
}

void clearUp()
{
    const QStringList places = mountPoints();
    for (const QString& place : places) {
        QProcess::execute("/usr/bin/umount", { "-l", place });
    }
    emptyFolder("/media");
    for (const char* links : { "/dev/disk/by-uuid", "/dev/disk/by-label" }) {
        const QFileInfoList entries
            = QDir(links).entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
        for (const QFileInfo& entry : entries) {
            QFile::remove(entry.filePath());
        }
    }
}

} // namespace

void writeFile(const QString& path, const QByteArray& text)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(text), text.size());
}

QByteArray textOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

StickShelf::StickShelf()
{
    clearUp();
    runToTheEnd("/bin/rm", { "-rf", shelf });
    writeFile(shelf + "/calls", "");
    writeFile(shelf + "/mtab_lines", "");
    writeFile(mtab, "");
    setMounting(Behaviour::works);
    setUnmounting(Behaviour::works);
    qputenv("PATH", QFile::encodeName(programs + ":/usr/bin:/bin"));
}

StickShelf::~StickShelf()
{
    clearUp();
}

void StickShelf::plug(const QString& device, const QString& uuid, const QString& labelLink) const
{
    const QString target = "../../" + QFileInfo(device).fileName();
    if (!QFile::exists(device)) {
        writeFile(device, "");
    }
    if (!labelLink.isEmpty()) {
        QVERIFY(QFile::link(target, "/dev/disk/by-label/" + labelLink));
    }
    QVERIFY(QFile::link(target, "/dev/disk/by-uuid/" + uuid));
}

void StickShelf::unplug(const QString& uuid, const QString& labelLink) const
{
    if (!labelLink.isEmpty()) {
        QVERIFY(QFile::remove("/dev/disk/by-label/" + labelLink));
    }
    QVERIFY(QFile::remove("/dev/disk/by-uuid/" + uuid));
}

void StickShelf::setMounting(Behaviour behaviour) const
{
    setBehaviour("mount", behaviour);
}

void StickShelf::setUnmounting(Behaviour behaviour) const
{
    setBehaviour("umount", behaviour);
}

void StickShelf::makeSmall(const QString& device, int kilobytes) const
{
    writeFile(shelf + "/size/" + QFileInfo(device).fileName(), QByteArray::number(kilobytes) + 'k');
}

void StickShelf::mountByHand(const QString& device, const QString& folder) const
{
    QVERIFY(QDir().mkpath(folder));
    runToTheEnd(programs + "/really_mount", { device, folder });
}

void StickShelf::addMtabLine(const QByteArray& line) const
{
    writeFile(shelf + "/mtab_lines", textOf(shelf + "/mtab_lines") + line + '\n');
    runToTheEnd(programs + "/list_mounts");
}

void StickShelf::endHangingProgramSoon() const
{
    QVERIFY(QProcess::startDetached("/bin/sh",
        { "-c",
            "until [ -s /run/rig/shelf/hanging ]; do sleep 0.05; done; kill -9 $(cat "
            "/run/rig/shelf/hanging)" }));
}

QString StickShelf::hangingProcess()
{
    return textOf(shelf + "/hanging").trimmed();
}

QString StickShelf::filesOf(const QString& device)
{
    return shelf + "/files/" + QFileInfo(device).fileName();
}

QStringList StickShelf::calls()
{
    return QString(textOf(shelf + "/calls")).split('\n', Qt::SkipEmptyParts);
}
