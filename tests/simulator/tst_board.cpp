#include "tests/simulator/RunningInstrument.h"
#include "tests/simulator/SerialLine.h"

#include <QFile>
#include <QJsonArray>
#include <QTest>

#include <memory>

// The controller board as the program meets it: lines on a serial port.
class tst_Board : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<RunningInstrument> m_instrument;
    std::unique_ptr<SerialLine> m_port;

    // A unit whose motions take their time, with the clock held so that only advance() lets them end.
    void startWithHeldClock()
    {
        start({ "--seed", "2" });
        m_instrument->holdClock();
    }

    void start(const QStringList& options)
    {
        m_port.reset();
        m_instrument = std::make_unique<RunningInstrument>(options);
        QVERIFY(m_instrument->isReady());
        m_port = std::make_unique<SerialLine>(m_instrument->boardPort());
        QVERIFY(m_port->isOpen());
    }

    int state(const QString& key) { return m_instrument->state(key).toInt(-1); }

    // The board has taken these lines in and answered nothing but `answered` so far.
    void sendAndReach(const QByteArray& line, int lines)
    {
        QVERIFY(m_port->send(line + '\n'));
        QVERIFY(m_instrument->hasReached(lines));
    }

    QStringList answers() { return m_instrument->transcript().filter(QRegExp("^<")); }

private slots:
    void init() { start({ "--seed", "2", "--quick" }); }
    void cleanup()
    {
        m_port.reset();
        m_instrument.reset();
    }

    void everyCommand_isAnsweredAsTheProgramReadsIt_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("reply");
        const QList<QPair<QByteArray, QByteArray>> rows {
            { "$X#STAGE ORIGIN", "$OK#X#STAGE ORIGIN" },
            { "$X#STAGE EJECT", "$OK#X#STAGE EJECT" },
            { "$X#STAGE INSERT", "$OK#X#STAGE INSERT" },
            { "$X#STAGE ABS 30931", "$OK#X#STAGE ABS 30931" },
            { "$X#STAGE ABS -2107", "$OK#X#STAGE ABS -2107" },
            { "$X#STAGE DIR MINUS", "$OK#X#STAGE DIR MINUS" },
            { "$X#STAGE DIR PLUS", "$OK#X#STAGE DIR PLUS" },
            { "$X#STAGE STEP 13", "$OK#X#STAGE STEP 13" },
            { "$X#STAGE STOP", "$OK#X#STAGE STOP" },
            { "$Z#STAGE ORIGIN", "$OK#Z#STAGE ORIGIN" },
            { "$Z#STAGE ABS 1234", "$OK#Z#STAGE ABS 1234" },
            { "$Z#STAGE DIR MINUS", "$OK#Z#STAGE DIR MINUS" },
            { "$Z#STAGE DIR PLUS", "$OK#Z#STAGE DIR PLUS" },
            { "$Z#STAGE STEP 115", "$OK#Z#STAGE STEP 115" },
            { "$Z#STAGE SPEED 100", "$OK#Z#STAGE SPEED 100" },
            { "$Z#STAGE BOTTOM", "$OK#Z#STAGE BOTTOM" },
            { "$Z#STAGE TOP", "$OK#Z#STAGE TOP" },
            { "$Z#STAGE STOP", "$OK#Z#STAGE STOP" },
            { "$A#FILTER ORIGIN", "$OK#A#FILTER ORIGIN" },
            { "$A#FILTER GO 1", "$OK#A#FILTER GO 1" },
            { "$A#FILTER GO 3", "$OK#A#FILTER GO 3" },
            { "$A#FILTER READ1", "$OK#A#FILTER READ1#10" },
            { "$A#FILTER READ2", "$OK#A#FILTER READ2#10" },
            { "$A#FILTER READ3", "$OK#A#FILTER READ3#10" },
            { "$A#FILTER COR2 250", "$OK#A#FILTER COR2 250" },
            { "$A#LED BRT1 7 6", "$OK#A#LED BRT1 7 6" },
            { "$A#LED BRT2 300", "$OK#A#LED BRT2 300" },
            { "$A#LED BRT3 350", "$OK#A#LED BRT3 350" },
            { "$A#LED OFF1", "$OK#A#LED OFF1" },
            { "$A#LED OFF2", "$OK#A#LED OFF2" },
            { "$A#LED OFF3", "$OK#A#LED OFF3" },
        };
        for (const auto& row : rows) {
            QTest::newRow(row.first.constData()) << row.first << row.second;
        }
    }
    void everyCommand_isAnsweredAsTheProgramReadsIt()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, reply);
        QCOMPARE(m_port->ask(line), reply + "\r\n");
        QCOMPARE(state("ignoredLines"), 0);
        QCOMPARE(state("unusableNumbers"), 0);
    }

    void versionReply_carriesTheUnitsFirmware()
    {
        const QString firmware
            = m_instrument->ask("truth").value("truth").toObject().value("firmware").toString();
        QVERIFY(!firmware.isEmpty());
        QCOMPARE(m_port->ask("$A#VER"), "$OK#A#VER#" + firmware.toLatin1() + "\r\n");
    }

    void position_isZeroAfterOrigin()
    {
        QVERIFY(m_port->ask("$Z#STAGE POS") != "$OK#Z#STAGE POS#0\r\n");
        m_port->ask("$Z#STAGE ORIGIN");
        QCOMPARE(m_port->ask("$Z#STAGE POS"), QByteArray("$OK#Z#STAGE POS#0\r\n"));
        m_port->ask("$X#STAGE ORIGIN");
        QCOMPARE(m_port->ask("$X#STAGE POS"), QByteArray("$OK#X#STAGE POS#0\r\n"));
    }

    void run_movesByTheStepInTheDirectionAndReportsWhereItGot()
    {
        m_port->ask("$Z#STAGE ABS 32000");
        m_port->ask("$Z#STAGE STEP 460");
        m_port->ask("$Z#STAGE DIR MINUS");
        QCOMPARE(m_port->ask("$Z#STAGE RUN"), QByteArray("$OK#Z#STAGE RUN#31540\r\n"));
        QCOMPARE(m_port->ask("$Z#STAGE RUN"), QByteArray("$OK#Z#STAGE RUN#31080\r\n"));
        m_port->ask("$Z#STAGE DIR PLUS");
        QCOMPARE(m_port->ask("$Z#STAGE RUN"), QByteArray("$OK#Z#STAGE RUN#31540\r\n"));
        QCOMPARE(state("z"), 31540);
    }

    void axesKeepTheirOwnStepAndDirection()
    {
        m_port->ask("$X#STAGE ABS 1000");
        m_port->ask("$Z#STAGE ABS 2000");
        m_port->ask("$X#STAGE STEP 13");
        m_port->ask("$Z#STAGE STEP 115");
        m_port->ask("$X#STAGE DIR MINUS");
        m_port->ask("$Z#STAGE DIR PLUS");
        QCOMPARE(m_port->ask("$X#STAGE RUN"), QByteArray("$OK#X#STAGE RUN#987\r\n"));
        QCOMPARE(m_port->ask("$Z#STAGE RUN"), QByteArray("$OK#Z#STAGE RUN#2115\r\n"));
    }

    void moveBeyondTheEndSwitch_endsAtItAndReportsIt()
    {
        m_port->ask("$Z#STAGE ABS 100");
        m_port->ask("$Z#STAGE STEP 2147483647");
        m_port->ask("$Z#STAGE DIR MINUS");
        QCOMPARE(m_port->ask("$Z#STAGE RUN"), QByteArray("$OK#Z#STAGE RUN#0\r\n"));
        QCOMPARE(m_port->ask("$Z#STAGE ABS -5"), QByteArray("$OK#Z#STAGE ABS 0\r\n"));
    }

    void eject_bringsTheTrayOut_insertBringsItIn()
    {
        m_port->ask("$X#STAGE EJECT");
        QCOMPARE(state("x"), 80000);
        m_port->ask("$X#STAGE INSERT");
        QCOMPARE(state("x"), 0);
    }

    void reply_comesWhenTheAxisHasArrived()
    {
        startWithHeldClock();
        m_instrument->set("z", 1000);
        sendAndReach("$Z#STAGE ABS 11000", 1); // 10000 steps at 20000 steps/s
        m_instrument->advance(499);
        QCOMPARE(answers(), QStringList());
        QCOMPARE(state("z"), 10980);
        QCOMPARE(m_instrument->state("zMoving").toBool(), true);
        m_instrument->advance(1);
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE ABS 11000\r\n"));
        QCOMPARE(m_instrument->state("zMoving").toBool(), false);
    }

    void moveOfZeroSteps_isAnsweredAtOnce()
    {
        startWithHeldClock();
        m_instrument->set("z", 1000);
        QCOMPARE(m_port->ask("$Z#STAGE ABS 1000"), QByteArray("$OK#Z#STAGE ABS 1000\r\n"));
        QCOMPARE(m_port->ask("$Z#STAGE STEP 0"), QByteArray("$OK#Z#STAGE STEP 0\r\n"));
        QCOMPARE(m_port->ask("$Z#STAGE RUN"), QByteArray("$OK#Z#STAGE RUN#1000\r\n"));
    }

    void commandsForOneAxis_waitInOrder()
    {
        startWithHeldClock();
        m_instrument->set("z", 0);
        sendAndReach("$Z#STAGE ABS 2000\n$Z#STAGE STEP 100\n$Z#STAGE RUN\n$Z#STAGE POS", 4);
        QCOMPARE(answers(), QStringList());
        m_instrument->advance(100);
        QCOMPARE(answers(), QStringList({ "< $OK#Z#STAGE ABS 2000", "< $OK#Z#STAGE STEP 100" }));
        m_instrument->advance(5);
        QCOMPARE(answers().mid(2), QStringList({ "< $OK#Z#STAGE RUN#2100", "< $OK#Z#STAGE POS#2100" }));
    }

    void otherUnits_areAnsweredMeanwhile()
    {
        startWithHeldClock();
        sendAndReach("$X#STAGE EJECT\n$A#FILTER GO 2", 2);
        QCOMPARE(m_port->ask("$Z#STAGE POS"), QByteArray("$OK#Z#STAGE POS#5000\r\n"));
        QCOMPARE(m_port->ask("$A#LED BRT2 300"), QByteArray("$OK#A#LED BRT2 300\r\n"));
        m_instrument->advance(100);
        QCOMPARE(m_port->receive(), QByteArray("$OK#A#FILTER GO 2\r\n"));
        m_instrument->advance(5000);
        QCOMPARE(m_port->receive(), QByteArray("$OK#X#STAGE EJECT\r\n"));
    }

    void twoLinesInOneWrite_areTwoCommands()
    {
        QVERIFY(m_port->send("$A#LED OFF1\n$A#LED OFF2\n"));
        const QByteArray both = "$OK#A#LED OFF1\r\n$OK#A#LED OFF2\r\n";
        QCOMPARE(m_port->receive(both.size()), both);
    }

    void topRun_lastsUntilStop_andBothAreAnswered()
    {
        startWithHeldClock();
        m_instrument->set("z", 1000);
        sendAndReach("$Z#STAGE TOP\n$Z#STAGE POS", 2);
        m_instrument->advance(250);
        QCOMPARE(answers(), QStringList());
        sendAndReach("$Z#STAGE STOP", 3);
        QCOMPARE(
            answers(), QStringList({ "< $OK#Z#STAGE TOP", "< $OK#Z#STAGE STOP", "< $OK#Z#STAGE POS#6000" }));
        m_instrument->advance(1000);
        QCOMPARE(state("z"), 6000);
    }

    void bottomRun_endsAtTheEndSwitch()
    {
        startWithHeldClock();
        m_instrument->set("z", 2000);
        sendAndReach("$Z#STAGE BOTTOM", 1);
        m_instrument->advance(99);
        QCOMPARE(answers(), QStringList());
        m_instrument->advance(1);
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE BOTTOM\r\n"));
        QCOMPARE(state("z"), 0);
    }

    void stopOfAMove_answersItWithThePositionReached()
    {
        startWithHeldClock();
        m_instrument->set("z", 0);
        sendAndReach("$Z#STAGE ABS 20000", 1);
        m_instrument->advance(500);
        sendAndReach("$Z#STAGE STOP", 2);
        QCOMPARE(answers(), QStringList({ "< $OK#Z#STAGE ABS 10000", "< $OK#Z#STAGE STOP" }));
    }

    void speed_changesHowLongAMoveTakes()
    {
        startWithHeldClock();
        m_instrument->set("z", 0);
        m_port->ask("$Z#STAGE SPEED 50");
        sendAndReach("$Z#STAGE ABS 10000", 2);
        m_instrument->advance(999);
        QCOMPARE(answers().size(), 1);
        m_instrument->advance(1);
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE ABS 10000\r\n"));
    }

    void homing_takesLessThanHalfASecondFromAnywhere()
    {
        startWithHeldClock();
        m_instrument->set("x", 80000);
        sendAndReach("$X#STAGE ORIGIN", 1);
        m_instrument->advance(500);
        QCOMPARE(m_port->receive(), QByteArray("$OK#X#STAGE ORIGIN\r\n"));
        QCOMPARE(state("x"), 0);
    }

    void filterWheel_letsNothingThroughWhileItTurns()
    {
        startWithHeldClock();
        QCOMPARE(state("filter"), 1);
        sendAndReach("$A#FILTER GO 3", 1);
        QCOMPARE(state("filter"), 0);
        m_instrument->advance(200);
        QCOMPARE(m_port->receive(), QByteArray("$OK#A#FILTER GO 3\r\n"));
        QCOMPARE(state("filter"), 3);
    }

    void filterCorrections_areKeptByTheBoard()
    {
        m_port->ask("$A#FILTER COR1 0");
        m_port->ask("$A#FILTER COR3 9999");
        QCOMPARE(m_port->ask("$A#FILTER READ1"), QByteArray("$OK#A#FILTER READ1#0\r\n"));
        QCOMPARE(m_port->ask("$A#FILTER READ2"), QByteArray("$OK#A#FILTER READ2#10\r\n"));
        QCOMPARE(m_port->ask("$A#FILTER READ3"), QByteArray("$OK#A#FILTER READ3#9999\r\n"));
    }

    void leds_areLitOneChannelAtATime()
    {
        const auto leds = [this] { return m_instrument->state("leds").toObject(); };
        m_port->ask("$A#LED BRT1 7 6");
        QCOMPARE(leds(), QJsonObject({ { "bf1", 7 }, { "bf2", 6 }, { "gfp", 0 }, { "rfp", 0 } }));
        m_port->ask("$A#LED BRT2 300");
        QCOMPARE(leds(), QJsonObject({ { "bf1", 0 }, { "bf2", 0 }, { "gfp", 300 }, { "rfp", 0 } }));
        m_port->ask("$A#LED OFF1");
        QCOMPARE(leds().value("gfp").toInt(), 300);
        m_port->ask("$A#LED OFF2");
        QCOMPARE(leds().value("gfp").toInt(), 0);
        m_port->ask("$A#LED BRT3 350");
        QCOMPARE(leds().value("rfp").toInt(), 350);
        m_port->ask("$A#LED OFF3");
        QCOMPARE(leds().value("rfp").toInt(), 0);
    }

    void malformedLine_isIgnored_data()
    {
        QTest::addColumn<QByteArray>("line");
        const QList<QByteArray> lines { "", "A#VER", "$A#VER ", "$a#VER", "$A#VERSION", "$B#VER", "$A#", "$",
            "$$A#VER", " $A#VER", "$A#VER\r", "$X#STAGE", "$X#STAGE JUMP 3", "$X#STAGE ABSOLUTE 3",
            "$X#STAGE BOTTOM", "$Z#STAGE EJECT", "$Z#STAGE RUN 5", "$Z#STAGE DIR", "$Z#STAGE DIR UP",
            "$A#FILTER READ4", "$A#LED BRT4 1", "$A#LED OFF", "$OK#A#VER", QByteArray("$A#VER\0", 7),
            "\xff\xfe\x80", "\x01\x02\x1b[A", QByteArray(5000, 'x'), "$Z#STAGE ABS " + QByteArray(300, '1') };
        for (const QByteArray& line : lines) {
            QTest::newRow(line.left(30).toPercentEncoding().constData()) << line;
        }
    }
    void malformedLine_isIgnored()
    {
        QFETCH(QByteArray, line);
        const int z = state("z");
        QVERIFY(m_port->send(line + '\n'));
        QVERIFY(m_port->ask("$A#VER").startsWith("$OK#A#VER#"));
        QCOMPARE(state("ignoredLines"), 1);
        QCOMPARE(state("z"), z);
    }

    void unusableNumber_isAcknowledgedAndChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("reply");
        const auto echoed = [](const QByteArray& line) {
            QTest::newRow(line.toPercentEncoding().constData()) << line << "$OK#" + line.mid(1) + "\r\n";
        };
        echoed("$Z#STAGE STEP ");
        echoed("$Z#STAGE STEP");
        echoed("$Z#STAGE STEP abc");
        echoed("$Z#STAGE STEP 1 2");
        echoed("$Z#STAGE STEP  5");
        echoed("$Z#STAGE STEP -5");
        echoed("$Z#STAGE STEP 1.5");
        echoed("$Z#STAGE STEP 99999999999");
        echoed("$Z#STAGE SPEED 0");
        echoed("$Z#STAGE SPEED -100");
        echoed("$Z#STAGE SPEED fast");
        echoed("$A#FILTER GO 0");
        echoed("$A#FILTER GO 4");
        echoed("$A#FILTER GO x");
        echoed("$A#FILTER COR1 ");
        echoed("$A#LED BRT1 7");
        echoed("$A#LED BRT1 7 x");
        echoed("$A#LED BRT2 -1");
        QTest::newRow("ABS") << QByteArray("$Z#STAGE ABS up") << QByteArray("$OK#Z#STAGE ABS 700\r\n");
    }
    void unusableNumber_isAcknowledgedAndChangesNothing()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, reply);
        m_port->ask("$Z#STAGE ABS 700");
        m_port->ask("$Z#STAGE STEP 115");
        m_port->ask("$A#FILTER GO 2");
        m_port->ask("$A#LED BRT1 7 6");
        const auto before = [this] {
            QJsonObject state = m_instrument->ask("state");
            state.remove("ms");
            state.remove("unusableNumbers");
            return state;
        };
        const QJsonObject was = before();
        QCOMPARE(m_port->ask(line), reply);
        QCOMPARE(before(), was);
        QCOMPARE(state("unusableNumbers"), 1);
    }

    void halfALine_waitsForItsRest()
    {
        QVERIFY(m_port->send("$Z#STA"));
        QCOMPARE(m_instrument->ask("state").value("ok").toBool(), true);
        QVERIFY(m_port->send("GE PO"));
        QCOMPARE(m_instrument->transcript(), QStringList());
        QVERIFY(m_port->send("S\n"));
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE POS#5000\r\n"));
    }

    void lineAfterAnOverlongOne_isAnswered()
    {
        QVERIFY(m_port->send(QByteArray(100000, 'x')));
        QVERIFY(m_port->send("\n$Z#STAGE POS\n"));
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE POS#5000\r\n"));
        QCOMPARE(state("ignoredLines"), 1);
        QCOMPARE(m_instrument->transcript().first().size(), 2 + 256);
    }

    void silentPorts_swallowWhatTheyGet()
    {
        start({ "--seed", "2", "--quick", "--silent-ports", "2" });
        QCOMPARE(m_instrument->ports().size(), 3);
        QCOMPARE(m_instrument->ports().last(), m_instrument->boardPort());
        SerialLine silent(m_instrument->ports().first());
        QVERIFY(silent.send("$A#VER\n"));
        QVERIFY(m_instrument->hasReached(1));
        QVERIFY(m_port->ask("$A#VER").startsWith("$OK#A#VER#"));
        QCOMPARE(silent.receiveOnce(0), QByteArray());
    }

    void port_doesNotEcho()
    {
        SerialLine other(m_instrument->boardPort());
        QVERIFY(m_port->ask("$A#LED OFF1") == "$OK#A#LED OFF1\r\n");
        QCOMPARE(m_port->receiveOnce(0), QByteArray());
    }

    void port_outlivesAProgramThatClosesIt()
    {
        m_port.reset();
        m_port = std::make_unique<SerialLine>(m_instrument->boardPort());
        QCOMPARE(m_port->ask("$A#LED OFF1"), QByteArray("$OK#A#LED OFF1\r\n"));
    }

    void log_hasOneLineForEachLineOnTheWire()
    {
        start({ "--seed", "2", "--silent-ports", "1" });
        m_instrument->holdClock();
        const double ms = m_instrument->state("ms").toDouble();
        SerialLine silent(m_instrument->ports().first());
        QVERIFY(silent.send("$A#VER\n"));
        QVERIFY(m_instrument->hasReached(1));
        m_port->ask("$A#LED BRT1 7 6");
        m_instrument->advance(1000);
        QVERIFY(m_port->send("a\\\t\x01\xe9\r\n"));
        QVERIFY(m_instrument->hasReached(3));
        QFile log(m_instrument->file("board.log"));
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QByteArray at = QByteArray::number(static_cast<qlonglong>(ms));
        const QByteArray later = QByteArray::number(static_cast<qlonglong>(ms + 1000.0));
        QCOMPARE(log.readAll(),
            at + " 0 > $A#VER\n" + at + " 1 > $A#LED BRT1 7 6\n" + at + " 1 < $OK#A#LED BRT1 7 6\n" + later
                + " 1 > a\\\\\\t\\x01\\xe9\\r\n");
    }
};

QTEST_GUILESS_MAIN(tst_Board)
#include "tst_board.moc"
