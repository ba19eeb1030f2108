// Who has the camera open, and the course of its exposures.
#include "simulator/camera/CameraServer.h"

#include "simulator/camera/ArduCamModel.h"
#include "simulator/camera/BaslerModel.h"

#include <cmath>

namespace qr9::sim {

namespace {

std::unique_ptr<CameraModel> makeModel(const Unit& unit)
{
    switch (unit.camera) {
    case CameraKind::Basler:
        return std::make_unique<BaslerModel>(unit.cameraModel);
    case CameraKind::ArduCam:
        return std::make_unique<ArduCamModel>();
    case CameraKind::None:
        break;
    }
    return nullptr;
}

} // namespace

CameraServer::CameraServer(World& world, Faults& faults, CameraLog& log, const Unit& unit, QObject* parent)
    : QObject(parent)
    , m_faults(faults)
    , m_log(log)
    , m_unit(unit)
    , m_pModel(makeModel(unit))
    , m_shutter(world, unit.constants)
{
    connect(&m_listener, &UnixListener::sig_connected, this, &CameraServer::accept);
    connect(&m_shutter, &Shutter::sig_delivered, this, &CameraServer::deliver);
}

CameraServer::~CameraServer() = default;

QString CameraServer::listen(const QString& path)
{
    return m_listener.listen(path);
}

void CameraServer::accept(int fd)
{
    auto* pClient = new CameraClient(fd, this);
    connect(pClient, &CameraClient::sig_request, this,
        [this, pClient](const wire::Message& request) { serve(pClient, request); });
    connect(pClient, &CameraClient::sig_closed, this, [this, pClient] { drop(pClient); });
}

void CameraServer::drop(CameraClient* pClient)
{
    if (m_pOwner == pClient) {
        closeDevice();
    }
    pClient->deleteLater();
}

void CameraServer::closeDevice()
{
    setStreaming(false);
    m_pOwner = nullptr;
}

void CameraServer::setStreaming(bool streaming)
{
    m_bStreaming = streaming;
    m_pModel->setStreaming(streaming);
    if (!streaming) {
        m_shutter.abort();
    } else if (!m_shutter.isBusy() && m_pModel->isRunningFreely()) {
        expose();
    }
}

bool CameraServer::trigger()
{
    if (m_shutter.isBusy() || !m_pModel->isWaitingForTrigger()) {
        return false;
    }
    expose();
    m_log.triggered(m_frame);
    return true;
}

void CameraServer::expose()
{
    const QString subject = QStringLiteral("Trigger");
    m_fate = { m_faults.take(FaultKind::LoseFrame, subject).has_value(),
        m_faults.take(FaultKind::GrabFails, subject) };
    const double lateMs = m_faults.take(FaultKind::LateFrame, subject).value_or(0.0).toDouble();
    ++m_frame;
    m_shutter.open(m_pModel->settings(), Time(std::llround(lateMs * 1000.0)));
}

void CameraServer::deliver(const Picture& picture)
{
    if (m_fate.failure) {
        const QString text = m_fate.failure->toString("The buffer was incompletely grabbed.");
        m_pOwner->sendFailedGrab(m_frame, text, m_fate.failure->toDouble());
    } else if (!m_fate.bLost) {
        m_log.sent(m_frame);
        m_pOwner->sendPicture(m_frame, picture);
    }
    if (m_pOwner != nullptr && m_pModel->isRunningFreely()) {
        expose();
    }
}

void CameraServer::unplug()
{
    m_bPlugged = false;
    if (m_pOwner != nullptr) {
        CameraClient* const pClient = m_pOwner;
        closeDevice();
        pClient->sendRemoved();
    }
}

void CameraServer::checkFaults()
{
    // Only a fault whose match is empty fits the empty subject.
    if (m_faults.take(FaultKind::Unplug, QStringLiteral(""))) {
        unplug();
    }
}

QJsonObject CameraServer::state() const
{
    QJsonObject state { { "kind", cameraKindName(m_unit.camera) }, { "model", m_unit.cameraModel },
        { "plugged", isPlugged() }, { "open", m_pOwner != nullptr }, { "streaming", m_bStreaming },
        { "exposing", m_shutter.isBusy() }, { "exposures", static_cast<qint64>(m_shutter.exposures()) } };
    if (const std::optional<CaptureSettings> now = settings()) {
        state["exposureUs"] = static_cast<qint64>(now->exposure.count());
        state["gainDb"] = now->gainDb;
        state["mirrorX"] = now->mirrorX;
        state["mirrorY"] = now->mirrorY;
    }
    return state;
}

std::optional<CaptureSettings> CameraServer::settings() const
{
    return m_pModel ? std::optional(m_pModel->settings()) : std::nullopt;
}

} // namespace qr9::sim
