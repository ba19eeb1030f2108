// What clients ask of the camera, and what they are answered.
#include "simulator/camera/CameraServer.h"

#include <algorithm>
#include <cstring>

namespace qr9::sim {

namespace {

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

} // namespace qr9::sim
