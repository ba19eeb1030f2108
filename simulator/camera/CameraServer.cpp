#include "simulator/camera/CameraServer.h"

#include "simulator/camera/ArduCamModel.h"
#include "simulator/camera/BaslerModel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

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

/// The request as faults name it: "Trigger", "SetFeature Gain", "WriteRegister 0x3012".
QString subjectOf(const wire::Message& request)
{
    const QString name = QString::fromLatin1(request.name);
    const QString address = "0x" + QString::number(request.code, 16).toUpper();
    switch (request.kind) {
    case wire::Kind::Devices:
        return QStringLiteral("Devices");
    case wire::Kind::Open:
        return QStringLiteral("Open");
    case wire::Kind::Close:
        return QStringLiteral("Close");
    case wire::Kind::SetFeature:
        return "SetFeature " + name;
    case wire::Kind::GetFeature:
        return "GetFeature " + name;
    case wire::Kind::WriteRegister:
        return "WriteRegister " + address;
    case wire::Kind::ReadRegister:
        return "ReadRegister " + address;
    case wire::Kind::StartStream:
        return QStringLiteral("StartStream");
    case wire::Kind::StopStream:
        return QStringLiteral("StopStream");
    case wire::Kind::Trigger:
        return QStringLiteral("Trigger");
    default:
        return {};
    }
}

template <typename Record> void append(QByteArray& bytes, const Record& record)
{
    bytes.append(reinterpret_cast<const char*>(&record), sizeof(record));
}

void copyText(char* field, std::size_t size, const QString& text)
{
    std::strncpy(field, text.toLatin1().constData(), size - 1);
}

int codeOf(wire::Error error)
{
    return static_cast<int>(error);
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

void CameraServer::serve(CameraClient* pClient, const wire::Message& request)
{
    const QString subject = subjectOf(request);
    if (m_faults.take(FaultKind::Unplug, subject)) {
        unplug();
    }
    if (const auto error = m_faults.take(FaultKind::CameraError, subject)) {
        // A negative number is an error of the wire, a positive one the code of a library of numbers.
        const double number = error->toDouble();
        const int code = number < 0.0 ? error->toInt() : codeOf(wire::Error::Bus);
        pClient->reply(request, code, std::max(number, 0.0), "The camera failed.");
        return;
    }
    if (pClient->isRemoved()) {
        pClient->reply(request, codeOf(wire::Error::Removed), 0.0, "The device has been removed.");
        return;
    }
    switch (request.kind) {
    case wire::Kind::Devices:
        serveDevices(pClient, request);
        return;
    case wire::Kind::Open:
        serveOpen(pClient, request);
        return;
    default:
        break;
    }
    if (m_pOwner != pClient) {
        pClient->reply(request, codeOf(wire::Error::Refused), 0.0, "The device is not open.");
        return;
    }
    int code = 0;
    const CameraAnswer answer = serveOpened(request, code);
    pClient->reply(
        request, answer.error == wire::Error::None ? code : codeOf(answer.error), answer.value, answer.text);
}

void CameraServer::serveDevices(CameraClient* pClient, const wire::Message& request)
{
    if (!isPlugged() || std::strcmp(request.name, m_pModel->deviceClass()) != 0) {
        pClient->reply(request, 0);
        return;
    }
    wire::Device device;
    copyText(device.deviceClass, sizeof(device.deviceClass), m_pModel->deviceClass());
    copyText(device.model, sizeof(device.model), m_unit.cameraModel);
    copyText(device.serial, sizeof(device.serial), m_unit.cameraSerial);
    QByteArray payload;
    append(payload, device);
    pClient->reply(request, 1, 0.0, {}, payload);
}

void CameraServer::serveOpen(CameraClient* pClient, const wire::Message& request)
{
    if (!isPlugged() || std::strcmp(request.name, m_pModel->deviceClass()) != 0 || request.code != 0) {
        pClient->reply(request, codeOf(wire::Error::NoSuchDevice), 0.0, "No such device.");
        return;
    }
    if (m_pOwner != nullptr || m_faults.take(FaultKind::OpenFails, "Open")) {
        pClient->reply(
            request, codeOf(wire::Error::Refused), 0.0, "The device is controlled by another application.");
        return;
    }
    m_pOwner = pClient;
    m_frame = 0;
    QByteArray payload;
    for (const wire::Feature& feature : m_pModel->features()) {
        if (!m_faults.isMissing(QString::fromLatin1(feature.name))) {
            append(payload, feature);
        }
    }
    pClient->reply(request, 0, 0.0, {}, payload);
}

CameraAnswer CameraServer::serveOpened(const wire::Message& request, int& code)
{
    const QString name = QString::fromLatin1(request.name);
    const bool namesFeature
        = request.kind == wire::Kind::SetFeature || request.kind == wire::Kind::GetFeature;
    if (namesFeature && m_faults.isMissing(name)) {
        return { wire::Error::NoSuchFeature, 0.0, "Node is not existing." };
    }
    switch (request.kind) {
    case wire::Kind::Close:
        closeDevice();
        return {};
    case wire::Kind::SetFeature:
        return m_pModel->setFeature(name, request.value);
    case wire::Kind::GetFeature:
        return m_pModel->feature(name);
    case wire::Kind::WriteRegister:
        return m_pModel->writeRegister(request.code, static_cast<int>(request.value));
    case wire::Kind::ReadRegister:
        return m_pModel->readRegister(request.code);
    case wire::Kind::StartStream:
        setStreaming(true);
        return {};
    case wire::Kind::StopStream:
        setStreaming(false);
        return {};
    case wire::Kind::Trigger:
        code = trigger() ? 0 : 1;
        return {};
    default:
        return { wire::Error::Refused, 0.0, "No such request." };
    }
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
