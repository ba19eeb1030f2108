#pragma once

#include "simulator/camera/Picture.h"
#include "simulator/optics/OpticalState.h"
#include "simulator/optics/Renderer.h"

#include <QObject>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace qr9::sim {

/// Renders frames on a thread of its own, so that the board answers while a picture is made.
/// Thread: main. The renderer and the sensor's frame belong to the worker, the two queues to whoever holds
/// the lock. Owner: Shutter.
class FrameMaker : public QObject {
    Q_OBJECT

public:
    explicit FrameMaker(const optics::UnitConstants& constants, QObject* parent = nullptr);
    /// Waits for the frame that is being made; it and those that wait never come.
    ~FrameMaker() override;

    /// Begins to make frame `number` of the world as `view` shows it; returns at once. Frames are made in the
    /// order of the calls. The number also chooses the noise.
    void make(quint64 number, const optics::OpticalState& view, const CaptureSettings& settings);

signals:
    void sig_made(quint64 number, const qr9::sim::Picture& picture);

private slots:
    /// Hands out what the worker has made.
    void slot_collect();

private:
    struct Order {
        quint64 number = 0;
        optics::OpticalState view;
        CaptureSettings settings;
    };
    struct Frame {
        quint64 number = 0;
        Picture picture;
    };

    void work();

    optics::Renderer m_renderer;
    cv::Mat m_sensor;

    std::mutex m_mutex; ///< guards the members up to m_bEnding
    std::condition_variable m_ordered;
    std::deque<Order> m_orders;
    std::deque<Frame> m_frames;
    bool m_bEnding = false;

    std::thread m_worker; ///< last: it uses what stands above
};

} // namespace qr9::sim
