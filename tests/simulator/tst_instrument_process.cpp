#include "tests/simulator/RunningInstrument.h"
#include "tests/simulator/descriptors.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <csignal>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

struct Outcome {
    int code = -1;
    QByteArray out;
    QByteArray err;
};

Outcome run(const QStringList& arguments)
{
    QProcess process;
    process.start(RunningInstrument::program(), arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(kPatienceMs)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return { process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError() };
}

QJsonObject truth(const QStringList& arguments)
{
    return QJsonDocument::fromJson(run(QStringList("--truth") + arguments).out).object();
}

} // namespace

// The process as scripts start and end it.
class tst_InstrumentProcess : public QObject {
    Q_OBJECT

private slots:
    void truth_isTheSameOnEveryRun()
    {
        const Outcome first = run({ "--truth", "--seed", "7" });
        QCOMPARE(first.code, 0);
        QCOMPARE(first.out.count('\n'), 1);
        QCOMPARE(run({ "--truth", "--seed", "7" }).out, first.out);
        QVERIFY(run({ "--truth", "--seed", "8" }).out != first.out);
    }

    // Written down once from this program: a unit must stay itself on every machine and in every later
    // version.
    void unitOfSeedTwo_staysItself()
    {
        const QJsonObject unit = truth({ "--seed", "2" });
        QCOMPARE(unit.value("firmware").toString(), QString("2.2.00"));
        QCOMPARE(unit.value("camera").toString(), QString("basler"));
        QCOMPARE(unit.value("cameraModel").toString(), QString("daA1280-54um"));
        QCOMPARE(unit.value("cameraSerial").toString(), QString("QR9C00000002"));
        QCOMPARE(unit.value("seed").toInt(), 2);
    }

    void truth_isThatOfTheRunningUnit()
    {
        RunningInstrument instrument({ "--seed", "9" });
        QVERIFY(instrument.isReady());
        QCOMPARE(instrument.ask("truth").value("truth").toObject(), truth({ "--seed", "9" }));
    }

    void truthInAFile_isAUnit()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("unit.json"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(run({ "--truth", "--seed", "5", "--camera", "arducam" }).out);
        file.close();
        QCOMPARE(truth({ "--unit", file.fileName() }), truth({ "--seed", "5", "--camera", "arducam" }));
    }

    void unitFile_takesSomeConstantsAndLeavesTheOthersNominal()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("unit.json"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(R"({"magnification": 3.95, "slope": -7.5, "firmware": "9.99", "camera": "none"})");
        file.close();
        const QJsonObject unit = truth({ "--unit", file.fileName() });
        QCOMPARE(unit.value("magnification").toDouble(), 3.95);
        QCOMPARE(unit.value("slope").toDouble(), -7.5);
        QCOMPARE(unit.value("firmware").toString(), QString("9.99"));
        QCOMPARE(unit.value("camera").toString(), QString("none"));
        QCOMPARE(unit.value("bestFocusA1").toDouble(), 32000.0);
        QCOMPARE(unit.value("gfpShiftX").toDouble(), 0.0);
    }

    void badUnitFile_endsWithItsReason_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("empty") << QByteArray() << QByteArray("unit.json");
        QTest::newRow("binary") << QByteArray("\x00\xff\x00\x01", 4) << QByteArray("unit.json");
        QTest::newRow("array") << QByteArray("[]") << QByteArray("not a JSON object");
        QTest::newRow("unknown constant")
            << QByteArray(R"({"magnificaton": 4})") << QByteArray("magnificaton");
        QTest::newRow("wrong type") << QByteArray(R"({"slope": "steep"})") << QByteArray("slope");
        QTest::newRow("impossible value")
            << QByteArray(R"({"magnification": 0})") << QByteArray("magnification");
        QTest::newRow("text of a number") << QByteArray(R"({"firmware": 2})") << QByteArray("firmware");
        QTest::newRow("unknown camera") << QByteArray(R"({"camera": "film"})") << QByteArray("camera");
        QTest::newRow("seed below 0") << QByteArray(R"({"seed": -1})") << QByteArray("seed");
        QTest::newRow("seed in parts") << QByteArray(R"({"seed": 1.5})") << QByteArray("seed");
    }
    void badUnitFile_endsWithItsReason()
    {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, reason);
        QTemporaryDir folder;
        QFile file(folder.filePath("unit.json"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        const Outcome outcome = run({ "--truth", "--unit", file.fileName() });
        QCOMPARE(outcome.code, 1);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY2(outcome.err.contains(reason), outcome.err.constData());
    }

    void badCommandLine_endsWithItsReason_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("nothing") << QStringList() << QByteArray("--seed");
        QTest::newRow("both units") << QStringList({ "--seed", "1", "--unit", "x" }) << QByteArray("--seed");
        QTest::newRow("seed of letters") << QStringList({ "--truth", "--seed", "one" }) << QByteArray("one");
        QTest::newRow("no such file")
            << QStringList({ "--truth", "--unit", "/nowhere" }) << QByteArray("/nowhere");
        QTest::newRow("camera") << QStringList({ "--truth", "--seed", "1", "--camera", "film" })
                                << QByteArray("film");
        QTest::newRow("no folder") << QStringList({ "--seed", "1" }) << QByteArray("--rig");
        QTest::newRow("folder that is none")
            << QStringList({ "--seed", "1", "--rig", "/nowhere" }) << QByteArray("/nowhere");
        QTest::newRow("ports") << QStringList({ "--seed", "1", "--rig", "/tmp", "--silent-ports", "-1" })
                               << QByteArray("--silent-ports");
        QTest::newRow("unknown option") << QStringList({ "--seed", "1", "--fly" }) << QByteArray("fly");
        QTest::newRow("stray word") << QStringList({ "--seed", "1", "fly" }) << QByteArray("fly");
    }
    void badCommandLine_endsWithItsReason()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, reason);
        const Outcome outcome = run(arguments);
        QCOMPARE(outcome.code, 1);
        QVERIFY2(outcome.err.contains(reason), outcome.err.constData());
    }

    void readyLine_namesThePorts()
    {
        RunningInstrument instrument({ "--seed", "1", "--silent-ports", "1" });
        QVERIFY(instrument.isReady());
        QCOMPARE(instrument.ports().size(), 2);
        QVERIFY(QFileInfo::exists(instrument.ports().first()));
        QVERIFY(QFileInfo::exists(instrument.boardPort()));
    }

    void ending_takesTheSocketsAway_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGHUP") << SIGHUP;
        QTest::newRow("end of input") << 0;
    }
    void ending_takesTheSocketsAway()
    {
        QFETCH(int, signal);
        RunningInstrument instrument;
        QVERIFY(QFileInfo::exists(instrument.file("camera.sock")));
        QVERIFY(QFileInfo::exists(instrument.file("control.sock")));
        if (signal == 0) {
            instrument.process().closeWriteChannel();
        } else {
            ::kill(static_cast<pid_t>(instrument.process().processId()), signal);
        }
        QVERIFY(instrument.process().waitForFinished(kPatienceMs));
        QCOMPARE(instrument.process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(instrument.process().exitCode(), 0);
        QVERIFY(!QFileInfo::exists(instrument.file("camera.sock")));
        QVERIFY(!QFileInfo::exists(instrument.file("control.sock")));
        QVERIFY(QFileInfo::exists(instrument.file("board.log")));
    }

    void endingInTheMiddleOfAnExposure_isAsClean()
    {
        RunningInstrument instrument;
        const int fd = connectedSocket(instrument.file("control.sock"));
        instrument.set("quick", false);
        const int port = openedPort(instrument.boardPort());
        writeAll(port, "$X#STAGE EJECT\n");
        QVERIFY(instrument.hasReached(1));
        instrument.process().terminate();
        QVERIFY(instrument.process().waitForFinished(kPatienceMs));
        QCOMPARE(instrument.process().exitCode(), 0);
        ::close(port);
        ::close(fd);
    }

    void endOfInput_isIgnoredUnlessAskedFor()
    {
        QTemporaryDir folder;
        QProcess process;
        process.start(RunningInstrument::program(), { "--rig", folder.path(), "--seed", "1" });
        process.closeWriteChannel();
        QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine(), kPatienceMs);
        const int fd = connectedSocket(folder.filePath("control.sock"));
        QVERIFY(writeAll(fd, "{\"cmd\":\"state\"}\n"));
        QVERIFY(readUntil(fd, "\n").contains("\"ok\":true"));
        ::close(fd);
        process.terminate();
        QVERIFY(process.waitForFinished(kPatienceMs));
    }

    void secondInstrumentInOneFolder_isRefused()
    {
        RunningInstrument first;
        const Outcome second = run({ "--rig", QFileInfo(first.file("board.log")).path(), "--seed", "2" });
        QCOMPARE(second.code, 1);
        QVERIFY2(second.err.contains("another instrument"), second.err.constData());
        QVERIFY(first.ask("state").value("ok").toBool());
    }

    void socketsOfADeadProcess_areReplaced()
    {
        RunningInstrument killed;
        const QString folder = QFileInfo(killed.file("board.log")).path();
        killed.process().kill();
        QVERIFY(killed.process().waitForFinished(kPatienceMs));
        QVERIFY(QFileInfo::exists(killed.file("camera.sock")));
        QProcess next;
        next.start(RunningInstrument::program(), { "--rig", folder, "--seed", "2", "--until-eof" });
        QTRY_VERIFY_WITH_TIMEOUT(next.canReadLine(), kPatienceMs);
        next.closeWriteChannel();
        QVERIFY(next.waitForFinished(kPatienceMs));
        QCOMPARE(next.exitCode(), 0);
    }

    void fileInTheSocketsPlace_isLeftAlone()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("control.sock"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("precious");
        file.close();
        const Outcome outcome = run({ "--rig", folder.path(), "--seed", "2" });
        QCOMPARE(outcome.code, 1);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("precious"));
    }

    void folderWithATooLongName_isRefused()
    {
        QTemporaryDir folder;
        const QString deep = folder.filePath(QString(110, 'd'));
        QVERIFY(QDir().mkpath(deep));
        const Outcome outcome = run({ "--rig", deep, "--seed", "2" });
        QCOMPARE(outcome.code, 1);
        QVERIFY2(outcome.err.contains("too long"), outcome.err.constData());
    }
};

QTEST_GUILESS_MAIN(tst_InstrumentProcess)
#include "tst_instrument_process.moc"
