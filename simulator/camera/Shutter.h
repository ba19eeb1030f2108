#pragma once

#include "simulator/World.h"
#include "simulator/camera/FrameMaker.h"

#include <QObject>

#include <optional>

namespace qr9::sim {

/// Runs one exposure at a time: it lasts as long as it is set to, the picture shows the world as it stands at
/// its middle, and it is delivered when exposure and readout are over. Thread: main. Owner: CameraServer.
class Shutter : public QObject {
    Q_OBJECT

public:
    static constexpr Time kReadout = std::chrono::milliseconds(1);

    Shutter(World& world, const optics::UnitConstants& constants, QObject* parent = nullptr);

    /// An exposure is under way, or its picture has not been delivered yet.
    bool isBusy() const { return m_exposure.has_value(); }

    /// Opens the shutter; only when it is not busy. `late` is added to the time that the picture takes.
    void open(const CaptureSettings& settings, Time late);

    /// Gives the exposure under way up: its picture never comes.
    void abort();

    /// Exposures begun since the start of the process.
    quint64 exposures() const { return m_number; }

signals:
    /// The picture of the exposure that was opened last. The shutter is no longer busy.
    void sig_delivered(const qr9::sim::Picture& picture);

private:
    struct Exposure {
        CaptureSettings settings;
        Clock::Ticket middle;
        Clock::Ticket end;
        bool bOver; ///< exposure and readout are over
        std::optional<Picture> picture;
    };

    void take(quint64 number, const Picture& picture);
    void deliverWhenDone();

    World& m_world;
    FrameMaker m_maker;
    quint64 m_number = 0;
    std::optional<Exposure> m_exposure;
};

} // namespace qr9::sim
