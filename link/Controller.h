#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QString>
#include <QTimer>

/// The serial link to the instrument's controller board: finds the port that the board hangs on, sends
/// command lines, and cuts the incoming bytes into reply texts. Of the protocol it knows one word, the
/// version reply by which the board is recognised.
///
/// Lives on the GUI thread, which makes every call; the window creates and owns it. The members are public
/// because the window starts a search by writing them: m_portList, m_portLast (count - 1), m_portIndex (0),
/// m_bFound (false), m_bSearching (true), and then calls do_COM_PortFind_Controller().
///
/// Opening a port needs a writable lock folder (/var/lock): the serial port layer keeps a lock file per port
/// there.
class Controller : public QObject {
    Q_OBJECT

public:
    explicit Controller(QObject* parent = nullptr);

    /// One round of the search: opens the port under trial, asks for the version, and judges the answer 1000
    /// ms later. Returns at once. A round that is started while another is under way takes its place.
    void do_COM_PortFind_Controller();
    /// Sets the port under trial to 115200 baud 8N1 without flow control, opens it, and sends the version
    /// query. A port that is still open from an earlier search is closed first. With no port under trial
    /// nothing is opened.
    void try_COM_PortFind_Controller();
    /// Sends the version query, without waiting.
    void check_Connection_Controller();

    /// Sends a whole line, terminator included, and returns at once; the reply comes through
    /// sig_parsing_protocol_Controller. A failed write is not reported.
    void write_command(QString command);
    /// Sends a whole line, terminator included, and returns the reply with its "\r\n"; the reply does not
    /// reach the parser. Takes the next line that arrives, whatever command it answers. The text is Latin-1
    /// up to the first NUL byte, so a reply that begins with one is returned empty.
    ///
    /// Blocks the GUI thread until a line is complete, without a limit: workflows take an empty text for a
    /// failed step, and some of them repeat such a step at once, so a board that stays silent (or a dead or
    /// closed port) must hold the caller and not let it go on empty-handed.
    QString direct_read(QString command);

    QSerialPort* m_serialPort;
    QByteArray m_readBuffer; ///< received since the last complete reply text
    QList<QSerialPortInfo> m_portList; ///< the ports to try, in this order
    int m_portLast = -1; ///< index of the last entry of m_portList
    int m_portIndex = 0; ///< the port under trial; after a successful search the port in use
    bool m_bFound = false; ///< the board has answered on the port under trial
    bool m_bSearching = false; ///< set by the window when a search starts, cleared by it at the end

signals:
    /// The search is over; without a board the port name is empty.
    void sig_finish_find_Controller(bool found, QString portName);
    /// One reply text, which holds several replies when they arrived together; Latin-1 up to the first NUL
    /// byte.
    void sig_parsing_protocol_Controller(QString reply);

public slots:
    void slot_Timer_PortFind_Controller();
    void slot_readyRead_Controller();

private:
    QTimer m_timer_round; ///< ends a round of the search
};
