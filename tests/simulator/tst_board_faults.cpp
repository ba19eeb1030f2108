#include "tests/simulator/BoardBench.h"

#include <QJsonArray>

/// What can be made to go wrong between the board and the program.
class tst_BoardFaults : public BoardBench {
    Q_OBJECT

private:
    const QByteArray m_position = "$OK#Z#STAGE POS#5000\r\n";

    QByteArray askPosition() { return m_port->ask("$Z#STAGE POS"); }

private slots:
    void init() { start({ "--seed", "2", "--quick" }); }
    void cleanup() { stop(); }

    void cut_sendsTheReplyInPiecesOfThatSize()
    {
        m_instrument->holdClock();
        QVERIFY(m_instrument->fault("cut", "$Z#STAGE POS", 8));
        QVERIFY(m_port->send("$Z#STAGE POS\n"));
        QVERIFY(m_instrument->hasReached(1));
        m_instrument->advance(0);
        QCOMPARE(m_port->receiveOnce(), QByteArray("$OK#Z#ST"));
        m_instrument->advance(5);
        QCOMPARE(m_port->receiveOnce(), QByteArray("AGE POS#"));
        m_instrument->advance(5);
        QCOMPARE(m_port->receiveOnce(), QByteArray("5000\r\n"));
        QCOMPARE(answers(), QStringList({ "< $OK#Z#ST\\", "< AGE POS#\\", "< 5000" }));
    }

    void cut_takesAListOfSizesAndTheRestInOne()
    {
        m_instrument->holdClock();
        QVERIFY(m_instrument->fault("cut", {}, QJsonArray { 1, 19 }));
        QVERIFY(m_port->send("$Z#STAGE POS\n"));
        QVERIFY(m_instrument->hasReached(1));
        m_instrument->advance(100);
        QCOMPARE(m_port->receive(), m_position);
        QCOMPARE(answers(), QStringList({ "< $\\", "< OK#Z#STAGE POS#5000\\", "< " }));
    }

    void merge_sendsTheReplyTogetherWithTheNext()
    {
        QVERIFY(m_instrument->fault("merge", "$Z#STAGE POS"));
        QVERIFY(m_port->send("$Z#STAGE POS\n"));
        QVERIFY(m_instrument->hasReached(1));
        QCOMPARE(m_port->receiveOnce(0), QByteArray());
        QVERIFY(m_port->send("$A#LED OFF1\n"));
        QCOMPARE(m_port->receiveOnce(), m_position + "$OK#A#LED OFF1\r\n");
        QCOMPARE(answers(), QStringList("< $OK#Z#STAGE POS#5000\\r\\n$OK#A#LED OFF1"));
    }

    void late_sendsTheReplyLater()
    {
        m_instrument->holdClock();
        QVERIFY(m_instrument->fault("late", "$Z#STAGE POS", 300));
        QVERIFY(m_port->send("$Z#STAGE POS\n"));
        QVERIFY(m_instrument->hasReached(1));
        m_instrument->advance(299);
        QCOMPARE(answers(), QStringList());
        m_instrument->advance(1);
        QCOMPARE(m_port->receive(), m_position);
    }

    void late_letsOtherRepliesOvertake()
    {
        m_instrument->holdClock();
        QVERIFY(m_instrument->fault("late", "$Z#STAGE POS", 300));
        QVERIFY(m_port->send("$Z#STAGE POS\n"));
        QCOMPARE(m_port->ask("$A#LED OFF1"), QByteArray("$OK#A#LED OFF1\r\n"));
        m_instrument->advance(300);
        QCOMPARE(m_port->receive(), m_position);
    }

    void lose_carriesOutAndSaysNothing()
    {
        QVERIFY(m_instrument->fault("lose", "$Z#STAGE ABS"));
        QVERIFY(m_port->send("$Z#STAGE ABS 700\n"));
        QCOMPARE(askPosition(), QByteArray("$OK#Z#STAGE POS#700\r\n"));
        QCOMPARE(answers().size(), 1);
    }

    void nul_comesBeforeTheReply()
    {
        QVERIFY(m_instrument->fault("nul", "$Z#STAGE POS"));
        QCOMPARE(askPosition(), QByteArray(1, '\0') + m_position);
        QCOMPARE(answers(), QStringList("< \\0$OK#Z#STAGE POS#5000"));
    }

    void noise_comesBeforeTheReply()
    {
        QVERIFY(m_instrument->fault("noise", "$Z#STAGE POS", QString::fromLatin1("\xff\x01$#\n")));
        QCOMPARE(askPosition(), "\xff\x01$#\n" + m_position);
    }

    void silent_lastsUntilTheFaultsAreCleared()
    {
        QVERIFY(m_instrument->fault("silent", "$Z#STAGE POS"));
        QVERIFY(m_port->send("$Z#STAGE POS\n$A#LED OFF1\n$A#VER\n"));
        QVERIFY(m_instrument->hasReached(3));
        QCOMPARE(answers(), QStringList());
        QVERIFY(m_instrument->ask("clearFaults").value("ok").toBool());
        QCOMPARE(askPosition(), m_position);
    }

    void double_sendsTheReplyTwice()
    {
        QVERIFY(m_instrument->fault("double", "$Z#STAGE POS"));
        QVERIFY(m_port->send("$Z#STAGE POS\n"));
        QCOMPARE(m_port->receive(2 * m_position.size()), m_position + m_position);
    }

    void fault_strikesOnlyWhatItMatches()
    {
        QVERIFY(m_instrument->fault("nul", "$X#STAGE"));
        QCOMPARE(askPosition(), m_position);
        QCOMPARE(m_port->ask("$X#STAGE POS").at(0), '\0');
    }

    void fault_strikesAsOftenAsItsCount()
    {
        QVERIFY(m_instrument->fault("nul", "$Z", {}, 2));
        QCOMPARE(askPosition().at(0), '\0');
        QCOMPARE(askPosition().at(0), '\0');
        QCOMPARE(askPosition(), m_position);
    }

    void faultOfCountZero_strikesUntilCleared()
    {
        QVERIFY(m_instrument->fault("nul", "$Z", {}, 0));
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(askPosition().at(0), '\0');
        }
        QVERIFY(m_instrument->ask("clearFaults").value("ok").toBool());
        QCOMPARE(askPosition(), m_position);
    }

    void faultsOfSeveralKinds_meetOneReply()
    {
        QVERIFY(m_instrument->fault("nul"));
        QVERIFY(m_instrument->fault("noise", {}, "?"));
        QVERIFY(m_instrument->fault("cut", {}, 4));
        QCOMPARE(askPosition(), QByteArray("?\0", 2) + m_position);
        QCOMPARE(answers().first(), QString("< ?\\0$O\\"));
    }

    void clearingTheFaults_sendsAReplyThatWasHeld()
    {
        QVERIFY(m_instrument->fault("merge"));
        QVERIFY(m_port->send("$Z#STAGE POS\n"));
        QVERIFY(m_instrument->hasReached(1));
        QVERIFY(m_instrument->ask("clearFaults").value("ok").toBool());
        QCOMPARE(m_port->receive(), m_position);
    }

    void say_sendsBytesUnasked()
    {
        QVERIFY(m_instrument->ask({ { "cmd", "say" }, { "text", "$OK#Z#STAGE RUN#7\r\n" } })
                    .value("ok")
                    .toBool());
        QCOMPARE(m_port->receive(), QByteArray("$OK#Z#STAGE RUN#7\r\n"));
        QCOMPARE(answers(), QStringList("< $OK#Z#STAGE RUN#7"));
    }

    void wrongFault_isRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QJsonValue>("value");
        QTest::addColumn<int>("count");
        QTest::newRow("unknown name") << "explode" << QJsonValue() << 1;
        QTest::newRow("cut without a size") << "cut" << QJsonValue() << 1;
        QTest::newRow("cut into nothing") << "cut" << QJsonValue(0) << 1;
        QTest::newRow("cut by an empty list") << "cut" << QJsonValue(QJsonArray()) << 1;
        QTest::newRow("cut by a list with a 0") << "cut" << QJsonValue(QJsonArray { 3, 0 }) << 1;
        QTest::newRow("late by nothing") << "late" << QJsonValue() << 1;
        QTest::newRow("late by less than 0") << "late" << QJsonValue(-1) << 1;
        QTest::newRow("noise of a number") << "noise" << QJsonValue(3) << 1;
        QTest::newRow("noise beyond bytes") << "noise" << QJsonValue(QString(QChar(0x20ac))) << 1;
        QTest::newRow("count below 0") << "nul" << QJsonValue() << -1;
    }
    void wrongFault_isRefused()
    {
        QFETCH(QString, name);
        QFETCH(QJsonValue, value);
        QFETCH(int, count);
        QVERIFY(!m_instrument->fault(name, {}, value, count));
        QCOMPARE(askPosition(), m_position);
    }
};

QTEST_GUILESS_MAIN(tst_BoardFaults)
#include "tst_board_faults.moc"
