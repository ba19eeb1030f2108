#include "simulator/camera/FrameMaker.h"

#include <QMetaType>

namespace qr9::sim {

FrameMaker::FrameMaker(const optics::UnitConstants& constants, QObject* parent)
    : QObject(parent)
    , m_renderer(constants)
{
    qRegisterMetaType<optics::OpticalState>("qr9::optics::OpticalState");
    qRegisterMetaType<CaptureSettings>("qr9::sim::CaptureSettings");
    qRegisterMetaType<Picture>("qr9::sim::Picture");
    connect(this, &FrameMaker::sig_wanted, &m_worker,
        [this](quint64 number, const optics::OpticalState& view, const CaptureSettings& settings) {
            render(number, view, settings);
        });
    m_worker.moveToThread(&m_thread);
    m_thread.setObjectName("frames");
    m_thread.start();
}

FrameMaker::~FrameMaker()
{
    m_thread.quit();
    m_thread.wait();
}

void FrameMaker::make(quint64 number, const optics::OpticalState& view, const CaptureSettings& settings)
{
    emit sig_wanted(number, view, settings);
}

void FrameMaker::render(quint64 number, optics::OpticalState view, const CaptureSettings& settings)
{
    view.exposureMs = static_cast<double>(settings.exposure.count()) / 1000.0;
    view.gainDb = settings.gainDb;
    view.mirrorX = settings.mirrorX;
    view.mirrorY = settings.mirrorY;
    m_renderer.render(view, number, m_sensor);
    emit sig_made(number, develop(m_sensor, settings));
}

} // namespace qr9::sim
