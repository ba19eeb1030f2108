#pragma once

#include "simulator/Clock.h"
#include "simulator/Faults.h"
#include "simulator/Unit.h"
#include "simulator/World.h"
#include "simulator/board/BoardLog.h"
#include "simulator/board/BoardServer.h"
#include "simulator/camera/CameraLog.h"
#include "simulator/camera/CameraServer.h"

#include <QJsonObject>
#include <QString>

namespace qr9::sim {

/// One virtual instrument: the unit's constants, the world, and the servers that read and drive it.
/// Thread: main. Owner: main().
class Instrument {
public:
    explicit Instrument(const Unit& unit);

    /// Makes the serial ports, and the sockets and the logs below `folder`.
    /// \returns an empty text, or why not
    QString open(const QString& folder, int silentPorts);

    const Unit& unit() const { return m_unit; }
    Clock& clock() { return m_clock; }
    World& world() { return m_world; }
    Faults& faults() { return m_faults; }
    BoardServer& board() { return m_board; }
    CameraServer& camera() { return m_camera; }
    const BoardLog& log() const { return m_log; }

    /// Takes a fault of the control socket in.
    /// \returns an empty text, or what is wrong with it
    QString armFault(const QJsonObject& fault);

    /// Everything true again: no fault waits, the board has its voice, the camera's plug is in.
    void clearFaults();

private:
    Unit m_unit;
    Clock m_clock;
    World m_world;
    Faults m_faults;
    BoardLog m_log;
    BoardServer m_board;
    CameraLog m_cameraLog;
    CameraServer m_camera;
};

} // namespace qr9::sim
