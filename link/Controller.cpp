#include "link/Controller.h"

#include "link/reply_text.h"

#include <QDebug>
#include <QThread>

namespace {

constexpr int kSearchRoundMs = 1000;
constexpr int kExchangeWaitMs = 10000;
/// A port in an error state ends every wait at once; this keeps the exchange from taking a whole processor.
constexpr unsigned long kErrorPauseMs = 20;

constexpr char kVersionQuery[] = "$A#VER\n";

} // namespace

Controller::Controller(QObject* parent)
    : QObject(parent)
    , m_serialPort(new QSerialPort(this))
{
    connect(m_serialPort, &QSerialPort::readyRead, this, &Controller::slot_readyRead_Controller);

    m_timer_round.setSingleShot(true);
    m_timer_round.setTimerType(Qt::PreciseTimer);
    connect(&m_timer_round, &QTimer::timeout, this, &Controller::slot_Timer_PortFind_Controller);
}

void Controller::do_COM_PortFind_Controller()
{
    m_readBuffer.clear();
    try_COM_PortFind_Controller();
    m_timer_round.start(kSearchRoundMs);
}

void Controller::try_COM_PortFind_Controller()
{
    if (m_serialPort->isOpen()) {
        m_serialPort->close();
    }
    if (m_portIndex < 0 || m_portIndex >= m_portList.size()) {
        return;
    }

    m_serialPort->setPortName(m_portList.at(m_portIndex).portName());
    m_serialPort->setBaudRate(QSerialPort::Baud115200, QSerialPort::AllDirections);
    m_serialPort->setDataBits(QSerialPort::Data8);
    m_serialPort->setParity(QSerialPort::NoParity);
    m_serialPort->setStopBits(QSerialPort::OneStop);
    m_serialPort->setFlowControl(QSerialPort::NoFlowControl);

    if (m_serialPort->open(QIODevice::ReadWrite)) {
        check_Connection_Controller();
    } else {
        qDebug() << "[Error] : " << m_serialPort->portName() + m_serialPort->errorString();
    }
}

void Controller::check_Connection_Controller()
{
    m_serialPort->write(kVersionQuery);
}

void Controller::slot_Timer_PortFind_Controller()
{
    if (m_bFound) {
        const QString portName = m_serialPort->portName();
        qDebug() << "[Controller] : " << portName;
        emit sig_finish_find_Controller(true, portName);
        return;
    }

    if (m_serialPort->isOpen()) {
        m_serialPort->close();
    }
    if (m_portIndex < m_portLast) {
        ++m_portIndex;
        do_COM_PortFind_Controller();
        return;
    }
    qDebug() << "[Error] : "
             << "COM Port [Controller] not find !!!";
    emit sig_finish_find_Controller(false, "");
}

void Controller::slot_readyRead_Controller()
{
    const QByteArray reply = reply_text::take(m_readBuffer, m_serialPort->readAll());
    if (reply.isEmpty()) {
        return;
    }
    qDebug() << "[Controller] <<----- " << reply;

    // Before the signal, so that the parser sees the flag already set.
    if (!m_bFound && reply_text::isFromBoard(reply)) {
        m_bFound = true;
    }
    emit sig_parsing_protocol_Controller(reply_text::upToNul(reply));
}

void Controller::write_command(QString command)
{
    m_serialPort->write(command.toLocal8Bit());
    qDebug() << Q_FUNC_INFO << "command : " << command;
}

QString Controller::direct_read(QString command)
{
    disconnect(m_serialPort, &QSerialPort::readyRead, this, &Controller::slot_readyRead_Controller);

    m_serialPort->write(command.toLocal8Bit());
    qDebug() << Q_FUNC_INFO << "command : " << command;
    m_serialPort->waitForBytesWritten(kExchangeWaitMs);

    QByteArray reply;
    while (!reply_text::isComplete(reply)) {
        // A quick answer can have been read while the command was still being written; a wait would then be
        // for bytes that never come.
        if (m_serialPort->bytesAvailable() == 0 && !m_serialPort->waitForReadyRead(kExchangeWaitMs)) {
            QThread::msleep(kErrorPauseMs);
        }
        reply.append(m_serialPort->readAll());
    }
    qDebug() << Q_FUNC_INFO << "reply : " << reply;

    connect(m_serialPort, &QSerialPort::readyRead, this, &Controller::slot_readyRead_Controller);
    return reply_text::upToNul(reply);
}
