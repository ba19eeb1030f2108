#include "simulator/camera/FrameMaker.h"

#include <QMetaObject>

namespace qr9::sim {

FrameMaker::FrameMaker(const optics::UnitConstants& constants, QObject* parent)
    : QObject(parent)
    , m_renderer(constants)
{
    m_worker.moveToThread(&m_thread);
    m_thread.setObjectName("frames");
    m_thread.start();
}

FrameMaker::~FrameMaker()
{
    m_thread.quit();
    m_thread.wait();
}

void FrameMaker::make(quint64 number, optics::OpticalState view, const CaptureSettings& settings)
{
    view.exposureMs = static_cast<double>(settings.exposure.count()) / 1000.0;
    view.gainDb = settings.gainDb;
    view.mirrorX = settings.mirrorX;
    view.mirrorY = settings.mirrorY;
    QMetaObject::invokeMethod(&m_worker, [this, number, view, settings] {
        m_renderer.render(view, number, m_sensor);
        const Picture picture = develop(m_sensor, settings);
        QMetaObject::invokeMethod(this, [this, number, picture] { emit sig_made(number, picture); });
    });
}

} // namespace qr9::sim
