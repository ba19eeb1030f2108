#include "tests/link/Link.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTextCodec>

// A controller as it is made, what it sends, how it knows the board, and searches that find nothing.
class tst_Controller : public QObject {
    Q_OBJECT

private slots:
    void construction_opensNoPort();
    void versionReply_setsFoundBeforeTheSignal();
    void versionReplyAmongOthers_setsFound();
    void otherReply_leavesFoundUnset();
    void secondVersionReply_keepsFoundAndIsDelivered();
    void writeCommand_sendsTheLineAsItIs();
    void text_goesOutInTheLocalEncoding();
    void writeCommand_isLogged();
    void versionQuery_isSentStraight();
    void searchWithoutPorts_failsAfterItsFirstSecond();
    void searchOfPortsThatDoNotOpen_costsASecondEach();
    void roundOfTheSearch_forgetsWhatWasReceivedBefore();
    void searchStartedDuringASearch_takesItsPlace();
    void searchWithoutPortsAfterASuccess_closesThePort();
};

void tst_Controller::construction_opensNoPort()
{
    const Controller controller;
    QVERIFY(!controller.m_serialPort->isOpen());
    QCOMPARE(controller.m_serialPort->parent(), &controller);
    QVERIFY(!controller.m_bFound);
}

void tst_Controller::versionReply_setsFoundBeforeTheSignal()
{
    Link link;
    bool foundAtTheSignal = false;
    connect(&link.controller, &Controller::sig_parsing_protocol_Controller, this,
        [&] { foundAtTheSignal = link.controller.m_bFound; });
    link.board.send("$OK#A#VER#1.2.3\r\n");
    QTRY_COMPARE(link.texts(), QStringList { "$OK#A#VER#1.2.3\r\n" });
    QVERIFY(foundAtTheSignal);
}

void tst_Controller::versionReplyAmongOthers_setsFound()
{
    Link link;
    link.board.send("noise$OK#A#LED OFF1\r\n$OK#A#VER#1\r\n");
    QTRY_COMPARE(link.replies.size(), 1);
    QVERIFY(link.controller.m_bFound);
}

void tst_Controller::otherReply_leavesFoundUnset()
{
    Link link;
    link.board.send("$OK#A#VE\r\n");
    QTRY_COMPARE(link.replies.size(), 1);
    QVERIFY(!link.controller.m_bFound);
}

void tst_Controller::secondVersionReply_keepsFoundAndIsDelivered()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#A#VER#1\r\n", "$OK#A#VER#1\r\n" }));
    QVERIFY(link.controller.m_bFound);
    QCOMPARE(link.replies.size(), 2);
}

void tst_Controller::writeCommand_sendsTheLineAsItIs()
{
    Link link;
    link.controller.write_command("$Z#STAGE RUN\n");
    link.controller.write_command("no line end");
    const QByteArray expected = "$Z#STAGE RUN\nno line end";
    QTRY_COMPARE(link.controller.m_serialPort->bytesToWrite(), 0);
    QCOMPARE(link.board.receive(expected.size()), expected);
}

void tst_Controller::text_goesOutInTheLocalEncoding()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO 8859-15"));
    Link link;
    const QByteArray line = "$\xA4\xB5\n"; // the sign of the Euro, and that of a micrometre
    link.controller.write_command(QString::fromUtf8("$€µ\n"));
    QTRY_COMPARE(link.controller.m_serialPort->bytesToWrite(), 0);
    link.board.send("$OK\r\n");
    link.controller.direct_read(QString::fromUtf8("$€µ\n"));
    QTextCodec::setCodecForLocale(nullptr);
    QCOMPARE(link.board.receive(2 * line.size()), line + line);
}

void tst_Controller::writeCommand_isLogged()
{
    Link link;
    QTest::ignoreMessage(
        QtDebugMsg, R"(void Controller::write_command(QString) command :  "$Z#STAGE RUN\n")");
    link.controller.write_command("$Z#STAGE RUN\n");
}

void tst_Controller::versionQuery_isSentStraight()
{
    Link link;
    link.controller.check_Connection_Controller();
    QTRY_COMPARE(link.controller.m_serialPort->bytesToWrite(), 0);
    QCOMPARE(link.board.receive(7), QByteArray("$A#VER\n"));
}

void tst_Controller::searchWithoutPorts_failsAfterItsFirstSecond()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    QTest::ignoreMessage(QtDebugMsg, "[Error] :  COM Port [Controller] not find !!!");
    QElapsedTimer clock;
    clock.start();
    controller.do_COM_PortFind_Controller();
    QVERIFY(finished.wait());
    QVERIFY2(clock.elapsed() >= 990, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(finished.first(), (QList<QVariant> { false, QString() }));
    QVERIFY(!finished.wait(1200));
}

void tst_Controller::searchOfPortsThatDoNotOpen_costsASecondEach()
{
    Controller controller;
    controller.m_portList
        = { QSerialPortInfo(), QSerialPortInfo() }; // without a name, so they cannot be opened
    controller.m_portLast = 1;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    // The (empty) name and the reason stand without a separator; what opens is the folder /dev.
    const char* openFailure = R"([Error] :  "Is a directory")";
    QTest::ignoreMessage(QtDebugMsg, openFailure);
    QTest::ignoreMessage(QtDebugMsg, openFailure);
    QTest::ignoreMessage(QtDebugMsg, "[Error] :  COM Port [Controller] not find !!!");
    QElapsedTimer clock;
    clock.start();
    controller.do_COM_PortFind_Controller();
    QVERIFY(finished.wait());
    QVERIFY2(clock.elapsed() >= 1980, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(finished.first(), (QList<QVariant> { false, QString() }));
    QCOMPARE(controller.m_portIndex, 1);
}

void tst_Controller::roundOfTheSearch_forgetsWhatWasReceivedBefore()
{
    Link link;
    QVERIFY(link.sendInPieces({ "$OK#Z#ST" }));
    QCOMPARE(link.controller.m_readBuffer, QByteArray("$OK#Z#ST"));
    link.controller.do_COM_PortFind_Controller();
    QCOMPARE(link.controller.m_readBuffer, QByteArray());
}

void tst_Controller::searchStartedDuringASearch_takesItsPlace()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    controller.do_COM_PortFind_Controller();
    controller.do_COM_PortFind_Controller();
    QVERIFY(finished.wait());
    QVERIFY(!finished.wait(1200));
}

void tst_Controller::searchWithoutPortsAfterASuccess_closesThePort()
{
    Link link;
    QSignalSpy finished(&link.controller, &Controller::sig_finish_find_Controller);
    link.controller.do_COM_PortFind_Controller();
    QVERIFY(!link.controller.m_serialPort->isOpen());
    QVERIFY(finished.wait());
    QCOMPARE(finished.first(), (QList<QVariant> { false, QString() }));
}

QTEST_GUILESS_MAIN(tst_Controller)

#include "tst_Controller.moc"
