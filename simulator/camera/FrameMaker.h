#pragma once

#include "simulator/camera/Picture.h"
#include "simulator/optics/OpticalState.h"
#include "simulator/optics/Renderer.h"

#include <QObject>
#include <QThread>

namespace qr9::sim {

/// Renders frames on a thread of its own, so that the board answers while a picture is made.
/// Thread: main; the renderer and the sensor's frame are touched on the worker's thread alone. Owner:
/// Shutter.
class FrameMaker : public QObject {
    Q_OBJECT

public:
    explicit FrameMaker(const optics::UnitConstants& constants, QObject* parent = nullptr);
    ~FrameMaker() override;

    /// Begins to make frame `number` of the world as `view` shows it; returns at once. Frames are made in the
    /// order of the calls. The number also chooses the noise.
    void make(quint64 number, const optics::OpticalState& view, const CaptureSettings& settings);

signals:
    /// Emitted on the worker's thread.
    void sig_made(quint64 number, const qr9::sim::Picture& picture);

    /// From make() to the worker.
    void sig_wanted(
        quint64 number, const qr9::optics::OpticalState& view, const qr9::sim::CaptureSettings& settings);

private:
    void render(quint64 number, optics::OpticalState view, const CaptureSettings& settings);

    QThread m_thread;
    QObject m_worker; ///< lives on m_thread
    optics::Renderer m_renderer;
    cv::Mat m_sensor;
};

} // namespace qr9::sim
