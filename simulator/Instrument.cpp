#include "simulator/Instrument.h"

namespace qr9::sim {

Instrument::Instrument(const Unit& unit)
    : m_unit(unit)
    , m_world(m_clock)
    , m_log(m_clock)
    , m_board(m_world, m_faults, m_log, unit.firmware.toLatin1())
{
}

QString Instrument::open(const QString& folder, int silentPorts)
{
    QString error = m_log.open(folder + "/board.log");
    if (error.isEmpty()) {
        error = m_board.open(silentPorts);
    }
    return error;
}

void Instrument::clearFaults()
{
    m_faults.clear();
    m_board.recover();
}

} // namespace qr9::sim
