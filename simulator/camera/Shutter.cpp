#include "simulator/camera/Shutter.h"

#include <utility>

namespace qr9::sim {

Shutter::Shutter(World& world, const optics::UnitConstants& constants, QObject* parent)
    : QObject(parent)
    , m_world(world)
    , m_maker(constants)
{
    connect(&m_maker, &FrameMaker::sig_made, this, &Shutter::take);
}

void Shutter::open(const CaptureSettings& settings, Time late)
{
    ++m_number;
    m_exposure = Exposure { settings, 0, 0, false, std::nullopt };
    Clock& clock = m_world.clock();
    m_exposure->middle = clock.callAfter(
        settings.exposure / 2, [this] { m_maker.make(m_number, m_world.view(), m_exposure->settings); });
    m_exposure->end = clock.callAfter(settings.exposure + kReadout + late, [this] {
        m_exposure->bOver = true;
        deliverWhenDone();
    });
}

void Shutter::abort()
{
    if (m_exposure) {
        m_world.clock().cancel(m_exposure->middle);
        m_world.clock().cancel(m_exposure->end);
        m_exposure.reset();
    }
}

void Shutter::take(quint64 number, const Picture& picture)
{
    // A picture whose exposure was given up comes all the same.
    if (m_exposure && number == m_number) {
        m_exposure->picture = picture;
        deliverWhenDone();
    }
}

void Shutter::deliverWhenDone()
{
    if (m_exposure->bOver && m_exposure->picture) {
        const Picture picture = *std::exchange(m_exposure, std::nullopt)->picture;
        emit sig_delivered(picture);
    }
}

} // namespace qr9::sim
