#include "simulator/camera/FrameMaker.h"

#include <utility>

namespace qr9::sim {

FrameMaker::FrameMaker(const optics::UnitConstants& constants, QObject* parent)
    : QObject(parent)
    , m_renderer(constants)
    , m_worker([this] { work(); })
{
}

FrameMaker::~FrameMaker()
{
    {
        const std::lock_guard lock(m_mutex);
        m_bEnding = true;
    }
    m_ordered.notify_one();
    m_worker.join();
}

void FrameMaker::make(quint64 number, const optics::OpticalState& view, const CaptureSettings& settings)
{
    Order order { number, view, settings };
    order.view.exposureMs = static_cast<double>(settings.exposure.count()) / 1000.0;
    order.view.gainDb = settings.gainDb;
    order.view.mirrorX = settings.mirrorX;
    order.view.mirrorY = settings.mirrorY;
    {
        const std::lock_guard lock(m_mutex);
        m_orders.push_back(order);
    }
    m_ordered.notify_one();
}

void FrameMaker::slot_collect()
{
    std::deque<Frame> frames;
    {
        const std::lock_guard lock(m_mutex);
        std::swap(frames, m_frames);
    }
    for (const Frame& frame : frames) {
        emit sig_made(frame.number, frame.picture);
    }
}

void FrameMaker::work()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_ordered.wait(lock, [this] { return m_bEnding || !m_orders.empty(); });
        if (m_bEnding) {
            return;
        }
        const Order order = m_orders.front();
        m_orders.pop_front();
        lock.unlock();
        m_renderer.render(order.view, order.number, m_sensor);
        Frame frame { order.number, develop(m_sensor, order.settings) };
        lock.lock();
        m_frames.push_back(std::move(frame));
        QMetaObject::invokeMethod(this, "slot_collect", Qt::QueuedConnection);
    }
}

} // namespace qr9::sim
