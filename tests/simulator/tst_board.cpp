#include "tests/simulator/BoardBench.h"

#include <QJsonObject>

/// What the board answers to each command, and what that does to the unit.
class tst_Board : public BoardBench {
    Q_OBJECT

private slots:
    void init() { start({ "--seed", "2", "--quick" }); }
    void cleanup() { stop(); }

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
};

QTEST_GUILESS_MAIN(tst_Board)
#include "tst_board.moc"
