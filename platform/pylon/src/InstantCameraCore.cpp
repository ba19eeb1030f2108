#include "InstantCameraCore.h"
#include "Runtime.h"

#include <exception>
#include <utility>

namespace Pylon {

InstantCameraCore::InstantCameraCore(CInstantCamera& camera)
    : images(camera)
    , configurations(camera)
    , m_camera(camera)
{
    requireRuntime();
}

InstantCameraCore::~InstantCameraCore()
{
    destroyDevice();
    joinGrabThread();
}

void InstantCameraCore::tell(Event event)
{
    configurations.forEach(
        [this, event](CConfigurationEventHandler& handler) { (handler.*event)(m_camera); });
}

void InstantCameraCore::attach(IPylonDevice* device, ECleanup cleanup)
{
    requireRuntime();
    auto* const usbDevice = dynamic_cast<UsbDevice*>(device);
    if (usbDevice == nullptr)
        throw GenICam::InvalidArgumentException("The device to attach is not one of this library.");
    destroyDevice();
    tell(&CConfigurationEventHandler::OnAttach);
    m_device = usbDevice;
    m_cleanup = cleanup;
    tell(&CConfigurationEventHandler::OnAttached);
}

IPylonDevice* InstantCameraCore::detach()
{
    if (m_device == nullptr)
        return nullptr;
    stopGrabbing();
    tell(&CConfigurationEventHandler::OnDetach);
    UsbDevice* const device = std::exchange(m_device, nullptr);
    tell(&CConfigurationEventHandler::OnDetached);
    return device;
}

void InstantCameraCore::destroyDevice()
{
    if (m_device == nullptr)
        return;
    stopGrabbing();
    close();
    tell(&CConfigurationEventHandler::OnDestroy);
    UsbDevice* const device = std::exchange(m_device, nullptr);
    if (m_cleanup == Cleanup_Delete)
        destroyMadeDevice(device);
    tell(&CConfigurationEventHandler::OnDestroyed);
}

void InstantCameraCore::open()
{
    requireRuntime();
    if (m_device == nullptr)
        throw GenICam::LogicalErrorException("Open: No device is attached.");
    if (m_device->isOpen())
        return;
    tell(&CConfigurationEventHandler::OnOpen);
    m_device->open([this] { tell(&CConfigurationEventHandler::OnCameraDeviceRemoved); });
    try {
        tell(&CConfigurationEventHandler::OnOpened);
    } catch (...) {
        m_device->close();
        throw;
    }
}

void InstantCameraCore::close()
{
    if (!isOpen())
        return;
    stopGrabbing();
    tell(&CConfigurationEventHandler::OnClose);
    m_device->close();
    tell(&CConfigurationEventHandler::OnClosed);
}

void InstantCameraCore::startGrabbing(EGrabStrategy strategy, EGrabLoop loop)
{
    requireRuntime();
    if (loop != GrabLoop_ProvidedByInstantCamera
        || (strategy != GrabStrategy_OneByOne && strategy != GrabStrategy_LatestImageOnly))
        throw GenICam::InvalidArgumentException("StartGrabbing: This stand-in does not offer that.");
    if (m_bGrabbing)
        throw GenICam::LogicalErrorException("StartGrabbing: The camera is already grabbing.");
    open();
    joinGrabThread(); // of a grab that ended by itself
    tell(&CConfigurationEventHandler::OnGrabStart);
    m_queue = std::make_shared<GrabQueue>(strategy);
    device().startStream(m_queue);
    m_bGrabbing = true;
    m_grabThread = std::thread([this] { grabLoop(); });
    tell(&CConfigurationEventHandler::OnGrabStarted);
}

void InstantCameraCore::stopGrabbing()
{
    if (m_bGrabbing) {
        tell(&CConfigurationEventHandler::OnGrabStop);
        endGrabbing();
        joinGrabThread();
        tell(&CConfigurationEventHandler::OnGrabStopped);
    } else {
        joinGrabThread();
    }
}

void InstantCameraCore::endGrabbing()
{
    if (!m_bGrabbing.exchange(false))
        return;
    m_queue->end();
    m_device->stopStream();
}

/// A handler that stops the camera runs on the thread itself, which then ends on its return.
void InstantCameraCore::joinGrabThread()
{
    if (m_grabThread.joinable() && m_grabThread.get_id() != std::this_thread::get_id())
        m_grabThread.join();
}

void InstantCameraCore::grabLoop()
{
    const std::shared_ptr<GrabQueue> queue = m_queue;
    CGrabResultPtr grab;
    size_t skipped = 0;
    try {
        while (queue->take(grab, skipped)) {
            GrabBufferPool::setSkippedImages(grab, skipped);
            images.forEach([&](CImageEventHandler& handler) {
                if (skipped > 0)
                    handler.OnImagesSkipped(m_camera, skipped);
                handler.OnImageGrabbed(m_camera, grab);
            });
            grab.Release();
        }
    } catch (const GenICam::GenericException& exception) {
        failGrabbing(exception.GetDescription());
    } catch (const std::exception& exception) {
        failGrabbing(exception.what());
    }
}

void InstantCameraCore::failGrabbing(const char* description)
{
    configurations.forEach([this, description](CConfigurationEventHandler& handler) {
        handler.OnGrabError(m_camera, description);
    });
    endGrabbing();
}

UsbDevice& InstantCameraCore::device() const
{
    if (!isOpen())
        throw GenICam::AccessException("The camera is not open.");
    return *m_device;
}

const qr9::wire::Feature* InstantCameraCore::find(const std::string& name) const
{
    return device().find(name);
}

double InstantCameraCore::read(const std::string& name)
{
    return device().read(name);
}

void InstantCameraCore::write(const std::string& name, double value)
{
    device().write(name, value);
}

void InstantCameraCore::execute(const std::string& name)
{
    UsbDevice& open = device();
    if (m_bGrabbing) // otherwise nothing waits for a trigger
        open.execute(name);
}

GenApi::INode* InstantCameraCore::GetNode(const GenICam::gcstring& name) const
{
    const std::string key = name.c_str();
    if (find(key) == nullptr)
        return nullptr;
    std::unique_ptr<FeatureNode>& node = m_nodes[key];
    if (node == nullptr)
        node = makeNode(const_cast<InstantCameraCore&>(*this), key);
    return node.get();
}

} // namespace Pylon
