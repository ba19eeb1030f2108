#include "camera/ar0134.h"
#include "tests/camera/Ar0134Bench.h"
#include "tests/platform/ScriptedBoard.h"

#include <QtTest>

#include <cstdio>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

constexpr char kSettingsFolder[] = "/root/TAVO_QR9";
constexpr char kSettingsFile[] = "/root/TAVO_QR9/TAVO_QR9.ini";
constexpr int kSkipped = 77;

bool writeText(const char* path, const QByteArray& text)
{
    const int file = ::open(path, O_WRONLY);
    const bool good
        = file >= 0 && ::write(file, text.constData(), static_cast<std::size_t>(text.size())) == text.size();
    ::close(file);
    return good;
}

/// Gives this process an empty /root of its own, since the place of the settings file is fixed. For root and
/// for an ordinary user alike, where the system has user namespaces.
bool enterPrivateRoot()
{
    const QByteArray user = QByteArray::number(::getuid());
    const QByteArray group = QByteArray::number(::getgid());
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    return writeText("/proc/self/setgroups", "deny") && writeText("/proc/self/uid_map", "0 " + user + " 1")
        && writeText("/proc/self/gid_map", "0 " + group + " 1")
        && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && ::mount("tmpfs", "/root", "tmpfs", 0, nullptr) == 0;
}

} // namespace

// The mirrors that the driver sets by itself when it opens the board.
class tst_ar0134_settings : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(QDir().mkpath(kSettingsFolder)); }

    void mirrorsOfTheFile_areSetWhenTheBoardIsOpened_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("bits");
        const auto text = [](const char* horizontal, const char* vertical) {
            return QByteArray("[ArduCAM]\nHor.%20Mirror=") + horizontal + "\nVer.%20Mirror=" + vertical
                + "\n";
        };
        QTest::newRow("none") << text("No", "No") << 0;
        QTest::newRow("horizontal") << text("Yes", "No") << 0x4000;
        QTest::newRow("vertical") << text("No", "Yes") << 0x8000;
        QTest::newRow("both") << text("Yes", "Yes") << 0xC000;
        QTest::newRow("anything but No is yes") << text("no", "1") << 0xC000;
        QTest::newRow("nothing but the horizontal one")
            << QByteArray("[ArduCAM]\nHor.%20Mirror=Yes\n") << 0x4000;
        QTest::newRow("another group") << QByteArray("[Camera]\nHor.%20Mirror=Yes\n") << 0;
    }
    void mirrorsOfTheFile_areSetWhenTheBoardIsOpened()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, bits);
        QFile settings(kSettingsFile);
        QVERIFY(settings.open(QFile::WriteOnly | QFile::Truncate));
        settings.write(file);
        settings.close();
        ScriptedBoard board;
        Ar0134Bench bench;
        // The settings come after the list of the configuration file.
        bench.setConfiguration("[register parameter]\nREG = 0x3040, 0x1234\n");
        const AR0134 camera(bench.file());
        QCOMPARE(int(board.reg(0x3040)), bits);
        QVERIFY(settings.open(QFile::ReadOnly));
        QCOMPARE(settings.readAll(), file);
    }

    void missingFile_meansNoMirrorAndIsNotCreated()
    {
        QFile::remove(kSettingsFile);
        ScriptedBoard board;
        Ar0134Bench bench;
        bench.setConfiguration("[register parameter]\nREG = 0x3040, 0x1234\n");
        const AR0134 camera(bench.file());
        QCOMPARE(int(board.reg(0x3040)), 0);
        QVERIFY(!QFile::exists(kSettingsFile));
    }

    void mirrorThatCannotBeWritten_isLoggedAndTheBoardIsOpen()
    {
        ScriptedBoard board;
        const Ar0134Bench bench;
        board.failWrites(0x3040, 0xFF0C);
        QTest::ignoreMessage(QtCriticalMsg,
            QRegularExpression("AR0134::camera_initFromFile.* Writing a camera registry error"));
        const AR0134 camera(bench.file());
        QCOMPARE(camera.state(), int(AR0134::STATE_OPEN));
    }
};

int main(int argc, char* argv[])
{
    // Before anything starts a thread: a process of one thread alone may leave its user namespace.
    if (!enterPrivateRoot()) {
        std::fprintf(stderr, "skipped: this system gives no private /root (user namespaces)\n");
        return kSkipped;
    }
    const QCoreApplication application(argc, argv);
    tst_ar0134_settings test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ar0134_settings.moc"
