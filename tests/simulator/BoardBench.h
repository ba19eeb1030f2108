#pragma once

#include "tests/simulator/RunningInstrument.h"
#include "tests/simulator/SerialLine.h"

#include <QTest>

#include <memory>

/// The controller board as the program meets it: lines on the serial port of a running instrument. Base of
/// its tests.
class BoardBench : public QObject {
protected:
    void start(const QStringList& options)
    {
        m_port.reset();
        m_instrument = std::make_unique<RunningInstrument>(options);
        QVERIFY(m_instrument->isReady());
        m_port = std::make_unique<SerialLine>(m_instrument->boardPort());
        QVERIFY(m_port->isOpen());
    }

    void stop()
    {
        m_port.reset();
        m_instrument.reset();
    }

    int state(const QString& key) { return m_instrument->state(key).toInt(-1); }

    /// The board has taken so many lines in by now.
    void sendAndReach(const QByteArray& line, int lines)
    {
        QVERIFY(m_port->send(line + '\n'));
        QVERIFY(m_instrument->hasReached(lines));
    }

    QStringList answers() { return m_instrument->transcript().filter(QRegExp("^<")); }

    std::unique_ptr<RunningInstrument> m_instrument;
    std::unique_ptr<SerialLine> m_port;
};
