#include "simulator/Instrument.h"

namespace qr9::sim {

Instrument::Instrument(const Unit& unit)
    : m_unit(unit)
    , m_world(m_clock)
    , m_log(m_clock)
    , m_board(m_world, m_faults, m_log, unit.firmware.toLatin1())
    , m_camera(m_world, m_faults, m_cameraLog, unit)
{
}

QString Instrument::open(const QString& folder, int silentPorts)
{
    QString error = m_log.open(folder + "/board.log");
    if (error.isEmpty()) {
        error = m_cameraLog.open(folder + "/camera.log");
    }
    if (error.isEmpty()) {
        error = m_board.open(silentPorts);
    }
    if (error.isEmpty()) {
        error = m_camera.listen(folder + "/camera.sock");
    }
    return error;
}

QString Instrument::armFault(const QJsonObject& fault)
{
    QString error = m_faults.arm(fault);
    m_camera.checkFaults();
    return error;
}

void Instrument::clearFaults()
{
    m_faults.clear();
    m_board.recover();
    m_camera.plugIn();
}

} // namespace qr9::sim
