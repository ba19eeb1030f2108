#include "tests/simulator/BoardBench.h"

#include <QFile>

/// The bytes on the board's ports: how they become lines, lines that are none of its commands, and the log.
class tst_BoardLines : public BoardBench {
    Q_OBJECT

private slots:
    void init() { start({ "--seed", "2", "--quick" }); }
    void cleanup() { stop(); }

    void twoLinesInOneWrite_areTwoCommands()
    {
        QVERIFY(m_port->send("$A#LED OFF1\n$A#LED OFF2\n"));
        const QByteArray both = "$OK#A#LED OFF1\r\n$OK#A#LED OFF2\r\n";
        QCOMPARE(m_port->receive(both.size()), both);
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

QTEST_GUILESS_MAIN(tst_BoardLines)
#include "tst_board_lines.moc"
