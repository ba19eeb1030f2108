#pragma once

#include <QByteArray>
#include <QString>

/// A pseudo-terminal as a serial port under test: the program opens name(), the test holds the board's end.
class PseudoPort {
public:
    PseudoPort();
    ~PseudoPort();
    PseudoPort(const PseudoPort&) = delete;
    PseudoPort& operator=(const PseudoPort&) = delete;

    bool isGood() const { return m_slave >= 0; }
    QString name() const { return m_name; }

    void send(const QByteArray& bytes) const;
    /// Waits up to 5 s until at least so many bytes have come from the program; gives all that came.
    QByteArray receive(int atLeast) const;
    /// Pulls the cable: the program's end becomes an error.
    void hangUp();

private:
    int m_master = -1;
    int m_slave = -1; ///< kept open so that the line stands while the program has it closed
    QString m_name;
};
