#include "tests/simulator/RunningInstrument.h"
#include "tests/simulator/SerialLine.h"
#include "tests/simulator/descriptors.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <cmath>
#include <memory>

#include <unistd.h>

// The control socket: what a test bench asks of the instrument and does to it.
class tst_ControlServer : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<RunningInstrument> m_instrument;

    QJsonObject ask(const QJsonObject& request) { return m_instrument->ask(request); }
    static QJsonObject parsed(const QByteArray& line) { return QJsonDocument::fromJson(line).object(); }

private slots:
    void init()
    {
        m_instrument = std::make_unique<RunningInstrument>();
        QVERIFY(m_instrument->isReady());
    }
    void cleanup() { m_instrument.reset(); }

    void malformedRequest_isRefusedAndTheNextOneServed_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no JSON") << QByteArray("hello");
        QTest::newRow("half an object") << QByteArray("{\"cmd\":");
        QTest::newRow("array") << QByteArray("[1,2]");
        QTest::newRow("no command") << QByteArray("{}");
        QTest::newRow("unknown command") << QByteArray("{\"cmd\":\"fly\"}");
        QTest::newRow("command of a number") << QByteArray("{\"cmd\":7}");
        QTest::newRow("binary") << QByteArray("\x00\xff\x01", 3);
    }
    void malformedRequest_isRefusedAndTheNextOneServed()
    {
        QFETCH(QByteArray, line);
        const int fd = connectedSocket(m_instrument->file("control.sock"));
        QVERIFY(writeAll(fd, line + "\n"));
        const QJsonObject refusal = parsed(readUntil(fd, "\n"));
        QCOMPARE(refusal.value("ok").toBool(true), false);
        QVERIFY(!refusal.value("error").toString().isEmpty());
        QVERIFY(writeAll(fd, "{\"cmd\":\"state\"}\n"));
        QCOMPARE(parsed(readUntil(fd, "\n")).value("ok").toBool(), true);
        ::close(fd);
    }

    void twoRequestsInOneWrite_areAnsweredInOrder()
    {
        const int fd = connectedSocket(m_instrument->file("control.sock"));
        QVERIFY(writeAll(fd, "{\"cmd\":\"fly\"}\n{\"cmd\":\"state\"}\n{\"cmd\":\"st"));
        QByteArray both;
        while (both.count('\n') < 2) {
            both += readUntil(fd, "\n");
        }
        QCOMPARE(parsed(both.left(both.indexOf('\n'))).value("ok").toBool(true), false);
        QCOMPARE(parsed(both.mid(both.indexOf('\n'))).value("ok").toBool(), true);
        QVERIFY(writeAll(fd, "ate\"}\n"));
        QCOMPARE(parsed(readUntil(fd, "\n")).value("ok").toBool(), true);
        ::close(fd);
    }

    void twoClients_areServedSideBySide()
    {
        const int fd = connectedSocket(m_instrument->file("control.sock"));
        QVERIFY(writeAll(fd, "{\"cmd\":\"set\",\"key\":\"z\""));
        QCOMPARE(m_instrument->state("z").toInt(), 5000);
        QVERIFY(writeAll(fd, ",\"value\":77}\n"));
        QCOMPARE(parsed(readUntil(fd, "\n")).value("ok").toBool(), true);
        QCOMPARE(m_instrument->state("z").toInt(), 77);
        ::close(fd);
    }

    void clientThatSendsWithoutEnd_isDropped()
    {
        const int fd = connectedSocket(m_instrument->file("control.sock"));
        const QByteArray block(65536, 'x');
        bool taken = true;
        for (int i = 0; i < 64 && taken; ++i) {
            taken = writeAll(fd, block);
        }
        QCOMPARE(readUntil(fd, "\n"), QByteArray());
        ::close(fd);
        QVERIFY(m_instrument->ask("state").value("ok").toBool());
    }

    void set_putsTheWorld_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("x") << "x" << QJsonValue(30931);
        QTest::newRow("z") << "z" << QJsonValue(32000);
        QTest::newRow("quick") << "quick" << QJsonValue(false);
        for (const char* slide :
            { "1ch", "2ch", "3ch", "8ch", "reusable", "validation", "prisma", "target", "empty" }) {
            QTest::newRow(slide) << "slide" << QJsonValue(slide);
        }
    }
    void set_putsTheWorld()
    {
        QFETCH(QString, key);
        QFETCH(QJsonValue, value);
        QVERIFY(m_instrument->set(key, value));
        QCOMPARE(m_instrument->state(key), value);
    }

    void setSpeed_shortensEveryMotion()
    {
        m_instrument->set("quick", false);
        m_instrument->holdClock();
        m_instrument->set("z", 0);
        QVERIFY(m_instrument->set("speed", 10));
        SerialLine port(m_instrument->boardPort());
        QVERIFY(port.send("$Z#STAGE ABS 20000\n"));
        QVERIFY(m_instrument->hasReached(1));
        m_instrument->advance(99);
        QCOMPARE(m_instrument->state("zMoving").toBool(), true);
        m_instrument->advance(1);
        QCOMPARE(port.receive(), QByteArray("$OK#Z#STAGE ABS 20000\r\n"));
    }

    void wrongSetting_isRefusedAndChangesNothing_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("unknown key") << "colour" << QJsonValue(1);
        QTest::newRow("x of a text") << "x" << QJsonValue("far");
        QTest::newRow("no value") << "x" << QJsonValue();
        QTest::newRow("unknown slide") << "slide" << QJsonValue("4ch");
        QTest::newRow("slide of a number") << "slide" << QJsonValue(1);
        QTest::newRow("quick of a number") << "quick" << QJsonValue(0);
        QTest::newRow("speed of 0") << "speed" << QJsonValue(0);
    }
    void wrongSetting_isRefusedAndChangesNothing()
    {
        QFETCH(QString, key);
        QFETCH(QJsonValue, value);
        QJsonObject before = m_instrument->ask("state");
        QVERIFY(!m_instrument->set(key, value));
        QJsonObject after = m_instrument->ask("state");
        before.remove("ms");
        after.remove("ms");
        QCOMPARE(after, before);
    }

    void transcript_goesOnFromWhereItWasLeft()
    {
        SerialLine port(m_instrument->boardPort());
        port.ask("$A#LED OFF1");
        const QJsonObject first = ask({ { "cmd", "transcript" }, { "from", 0 } });
        QCOMPARE(first.value("next").toInt(), 2);
        const QJsonObject line = first.value("lines").toArray().at(0).toObject();
        QCOMPARE(line.value("dir").toString(), QString(">"));
        QCOMPARE(line.value("text").toString(), QString("$A#LED OFF1"));
        QCOMPARE(line.value("port").toInt(), 0);
        port.ask("$A#LED OFF2");
        const QJsonObject second = ask({ { "cmd", "transcript" }, { "from", 2 } });
        QCOMPARE(second.value("lines").toArray().size(), 2);
        QCOMPARE(second.value("next").toInt(), 4);
        QCOMPARE(ask({ { "cmd", "transcript" }, { "from", 99 } }).value("lines").toArray().size(), 0);
        QCOMPARE(ask({ { "cmd", "transcript" }, { "from", -3 } }).value("lines").toArray().size(), 4);
    }

    void bestFocus_followsTheSlope()
    {
        const QJsonObject truth = m_instrument->ask("truth").value("truth").toObject();
        const QJsonObject derived = truth.value("derived").toObject();
        const QJsonObject a1 = derived.value("focusA1").toObject();
        QCOMPARE(a1.value("x").toInt(), static_cast<int>(truth.value("markX").toDouble()) + 18931);
        QCOMPARE(derived.value("focusB1").toObject().value("x").toInt(), a1.value("x").toInt() - 20799);
        QVERIFY(std::abs(a1.value("bf").toDouble() - truth.value("bestFocusA1").toDouble()) < 0.01);
        QCOMPARE(a1.value("gfp").toDouble() - a1.value("bf").toDouble(),
            truth.value("fluorescenceFocusOffset").toDouble());
        const QJsonObject asked = ask({ { "cmd", "bestFocus" }, { "x", a1.value("x") } });
        QCOMPARE(asked.value("bf"), a1.value("bf"));
        QVERIFY(!ask({ { "cmd", "bestFocus" } }).value("ok").toBool());
    }

    void referenceMark_standsInTheMiddleAtItsX()
    {
        const double markX = m_instrument->ask("truth").value("truth").toObject().value("markX").toDouble();
        m_instrument->set("x", markX);
        const QJsonArray mark = m_instrument->ask("inPicture").value("referenceMark").toArray();
        QVERIFY(std::abs(mark.at(0).toDouble() - 639.5) < 1.5);
        QVERIFY(std::abs(mark.at(1).toDouble() - 479.5) < 1.5);
    }

    void targetMarks_areHalfAMillimetreApart()
    {
        const QJsonObject truth = m_instrument->ask("truth").value("truth").toObject();
        const double pixelsPerUm = truth.value("derived").toObject().value("pixelsPerUm").toDouble();
        QVERIFY(std::abs(pixelsPerUm - truth.value("magnification").toDouble() / 3.75) < 1e-9);
        m_instrument->set("slide", "target");
        m_instrument->set("x", 30931);
        const QJsonArray marks = m_instrument->ask("inPicture").value("targetMarks").toArray();
        int neighbours = 0;
        for (int i = 1; i < marks.size(); ++i) {
            const QJsonObject left = marks.at(i - 1).toObject();
            const QJsonObject right = marks.at(i).toObject();
            if (left.value("row") == right.value("row")
                && std::abs(right.value("column").toInt() - left.value("column").toInt()) == 1) {
                const double pixels = std::hypot(right.value("x").toDouble() - left.value("x").toDouble(),
                    right.value("y").toDouble() - left.value("y").toDouble());
                QVERIFY(std::abs(pixels / pixelsPerUm - 500.0) < 0.01);
                ++neighbours;
            }
        }
        QVERIFY(neighbours > 0);
    }

    void shiftInThePicture_turnsWithTheMirror()
    {
        const QJsonObject truth = m_instrument->ask("truth").value("truth").toObject();
        const QJsonArray shift = m_instrument->ask("inPicture").value("gfpShift").toArray();
        QCOMPARE(shift.at(0).toDouble(), truth.value("gfpShiftX").toDouble());
        QCOMPARE(shift.at(1).toDouble(), truth.value("gfpShiftY").toDouble());
    }

    void clock_standsStillWhileItIsHeld()
    {
        m_instrument->holdClock();
        const double held = m_instrument->state("ms").toDouble();
        QCOMPARE(m_instrument->state("ms").toDouble(), held);
        m_instrument->advance(2.5);
        QCOMPARE(m_instrument->state("ms").toDouble(), held + 2.5);
        QVERIFY(ask({ { "cmd", "clock" }, { "action", "release" } }).value("ok").toBool());
        QTRY_VERIFY_WITH_TIMEOUT(m_instrument->state("ms").toDouble() > held + 2.5, kPatienceMs);
    }

    void wrongClockRequest_isRefused()
    {
        QVERIFY(!ask({ { "cmd", "clock" }, { "action", "advance" }, { "ms", 5 } }).value("ok").toBool());
        m_instrument->holdClock();
        QVERIFY(!ask({ { "cmd", "clock" }, { "action", "advance" }, { "ms", -5 } }).value("ok").toBool());
        QVERIFY(!ask({ { "cmd", "clock" }, { "action", "advance" } }).value("ok").toBool());
        QVERIFY(!ask({ { "cmd", "clock" }, { "action", "stop" } }).value("ok").toBool());
    }

    void sayWithoutAText_isRefused() { QVERIFY(!ask({ { "cmd", "say" } }).value("ok").toBool()); }
};

QTEST_GUILESS_MAIN(tst_ControlServer)
#include "tst_control_server.moc"
