#include "link/Controller.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

// The search over the ports of a room, as the system lists them: a silent one, one that cannot be opened, the
// board's.
class tst_Controller_search : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void boardOnTheThirdPort_isFoundAfterThreeSeconds();
    void searchAgain_runsTheWholeSearchAndFindsTheBoardAgain();
    void foundBoard_answersOnTheOpenPort();
    void boardOnTheFirstPortOfTheList_isReportedAfterTheFullSecond();
    void listWithoutTheBoard_failsAndClosesTheLastPort();

private:
    static void start(Controller& controller, const QList<QSerialPortInfo>& ports);
    QList<QSerialPortInfo> m_ports;
};

/// As the window starts a search.
void tst_Controller_search::start(Controller& controller, const QList<QSerialPortInfo>& ports)
{
    controller.m_portList = ports;
    controller.m_portLast = ports.size() - 1;
    controller.m_bFound = false;
    controller.m_portIndex = 0;
    controller.m_bSearching = true;
    controller.do_COM_PortFind_Controller();
}

void tst_Controller_search::initTestCase()
{
    m_ports = QSerialPortInfo::availablePorts();
    QStringList names;
    for (const QSerialPortInfo& port : qAsConst(m_ports)) {
        names << port.portName();
    }
    QCOMPARE(names, (QStringList { "ttyUSB0", "ttyUSB1", "ttyUSB2" }));
}

void tst_Controller_search::boardOnTheThirdPort_isFoundAfterThreeSeconds()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    QSignalSpy replies(&controller, &Controller::sig_parsing_protocol_Controller);
    QTest::ignoreMessage(QtDebugMsg, R"([Error] :  "ttyUSB1Inappropriate ioctl for device")");
    QTest::ignoreMessage(QtDebugMsg, R"([Controller] :  "ttyUSB2")");
    QElapsedTimer clock;
    clock.start();
    start(controller, m_ports);
    QVERIFY(finished.wait());
    QVERIFY2(clock.elapsed() >= 2980, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(finished.first(), (QList<QVariant> { true, "ttyUSB2" }));
    QCOMPARE(controller.m_portIndex, 2);
    QVERIFY(controller.m_bFound);
    QVERIFY(controller.m_serialPort->isOpen());
    QCOMPARE(controller.m_serialPort->portName(), QString("ttyUSB2"));
    QCOMPARE(controller.m_serialPort->baudRate(), 115200);
    QCOMPARE(controller.m_serialPort->dataBits(), QSerialPort::Data8);
    QCOMPARE(controller.m_serialPort->parity(), QSerialPort::NoParity);
    QCOMPARE(controller.m_serialPort->stopBits(), QSerialPort::OneStop);
    QCOMPARE(controller.m_serialPort->flowControl(), QSerialPort::NoFlowControl);
    QCOMPARE(replies.size(), 1);
    QVERIFY(replies.first().first().toString().startsWith("$OK#A#VER#"));
}

void tst_Controller_search::searchAgain_runsTheWholeSearchAndFindsTheBoardAgain()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    start(controller, m_ports.mid(2));
    QVERIFY(finished.wait());
    QVERIFY(controller.m_serialPort->isOpen());

    QElapsedTimer clock;
    clock.start();
    start(controller, m_ports);
    QCOMPARE(controller.m_serialPort->portName(), QString("ttyUSB0"));
    QVERIFY(finished.wait());
    QVERIFY2(clock.elapsed() >= 2980, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(finished.last(), (QList<QVariant> { true, "ttyUSB2" }));
    QVERIFY(controller.m_serialPort->isOpen());
}

void tst_Controller_search::foundBoard_answersOnTheOpenPort()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    start(controller, m_ports.mid(2));
    QVERIFY(finished.wait());
    QCOMPARE(controller.direct_read("$A#LED OFF1\n"), QString("$OK#A#LED OFF1\r\n"));

    QSignalSpy replies(&controller, &Controller::sig_parsing_protocol_Controller);
    controller.write_command("$A#LED OFF2\n");
    QVERIFY(replies.wait());
    QCOMPARE(replies.first().first().toString(), QString("$OK#A#LED OFF2\r\n"));
}

void tst_Controller_search::boardOnTheFirstPortOfTheList_isReportedAfterTheFullSecond()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    QElapsedTimer clock;
    clock.start();
    start(controller, { m_ports[2], m_ports[0] });
    QVERIFY(finished.wait());
    QVERIFY2(clock.elapsed() >= 990, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(finished.first(), (QList<QVariant> { true, "ttyUSB2" }));
    QCOMPARE(controller.m_portIndex, 0);
}

void tst_Controller_search::listWithoutTheBoard_failsAndClosesTheLastPort()
{
    Controller controller;
    QSignalSpy finished(&controller, &Controller::sig_finish_find_Controller);
    QTest::ignoreMessage(QtDebugMsg, "[Error] :  COM Port [Controller] not find !!!");
    start(controller, { m_ports[1], m_ports[0] });
    QVERIFY(finished.wait());
    QCOMPARE(finished.first(), (QList<QVariant> { false, "" }));
    QVERIFY(!controller.m_serialPort->isOpen());
}

QTEST_GUILESS_MAIN(tst_Controller_search)

#include "tst_Controller_search.moc"
