#pragma once

#include "FeatureNodes.h"
#include "HandlerRegistry.h"
#include "UsbDevice.h"

#include <pylon/InstantCamera.h>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <thread>

namespace Pylon {

/// What CInstantCamera hides: the device, the handlers and the grab thread. As a feature source and as a node
/// map it stands for the device that is open at the moment.
class InstantCameraCore : public FeatureSource, public GenApi::INodeMap {
public:
    explicit InstantCameraCore(CInstantCamera& camera);
    ~InstantCameraCore() override;

    void attach(IPylonDevice* device, ECleanup cleanup);
    IPylonDevice* detach();
    void destroyDevice();
    bool isAttached() const { return m_device != nullptr; }
    bool isOpen() const { return m_device != nullptr && m_device->isOpen(); }
    bool isRemoved() const { return m_device != nullptr && m_device->isRemoved(); }
    bool isGrabbing() const { return m_bGrabbing; }

    void open();
    void close();
    void startGrabbing(EGrabStrategy strategy, EGrabLoop loop);
    void stopGrabbing();

    const qr9::wire::Feature* find(const std::string& name) const override;
    double read(const std::string& name) override;
    void write(const std::string& name, double value) override;
    void execute(const std::string& name) override;
    GenApi::INode* GetNode(const GenICam::gcstring& name) const override;

    HandlerRegistry<CImageEventHandler> images;
    HandlerRegistry<CConfigurationEventHandler> configurations;

private:
    using Event = void (CConfigurationEventHandler::*)(CInstantCamera&);

    void tell(Event event);
    UsbDevice& device() const; ///< throws when none is open
    void grabLoop();
    void failGrabbing(const char* description);
    void endGrabbing();
    void joinGrabThread();

    CInstantCamera& m_camera;
    UsbDevice* m_device = nullptr;
    ECleanup m_cleanup = Cleanup_None;
    mutable std::map<std::string, std::unique_ptr<FeatureNode>> m_nodes; ///< made when asked for
    std::atomic<bool> m_bGrabbing { false };
    std::shared_ptr<GrabQueue> m_queue;
    std::thread m_grabThread;
};

} // namespace Pylon
