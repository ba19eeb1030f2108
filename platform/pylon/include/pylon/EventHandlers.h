#pragma once

#include <pylon/GrabResult.h>

/// What user code can hook into. Handlers are called inside of the lock of their registry, which register and
/// deregister take too. They must not be destroyed while they are registered.
namespace Pylon {

class CInstantCamera;
template <typename Handler> class HandlerRegistry;

enum ERegistrationMode { RegistrationMode_Append = 0, RegistrationMode_ReplaceAll = 1 };
enum ECleanup { Cleanup_None = 0, Cleanup_Delete = 1 };

/// Gets the pictures, on the camera's grab thread.
class CImageEventHandler {
public:
    CImageEventHandler() = default;
    CImageEventHandler(const CImageEventHandler&) = delete;
    CImageEventHandler& operator=(const CImageEventHandler&) = delete;
    virtual ~CImageEventHandler();

    /// `countOfSkippedImages` pictures were overwritten by newer ones before anyone saw them.
    virtual void OnImagesSkipped(CInstantCamera& camera, size_t countOfSkippedImages);
    virtual void OnImageGrabbed(CInstantCamera& camera, const CGrabResultPtr& grabResult);
    virtual void OnImageEventHandlerRegistered(CInstantCamera& camera);
    virtual void OnImageEventHandlerDeregistered(CInstantCamera& camera);
    virtual void DestroyImageEventHandler();
    const long& DebugGetEventHandlerRegistrationCount() const { return m_registrations; }

private:
    friend class HandlerRegistry<CImageEventHandler>;
    long m_registrations = 0;
};

/// Is told of what happens to the camera, on the thread that does it; of a removal on a thread of the
/// library's, where the device must not be destroyed.
class CConfigurationEventHandler {
public:
    CConfigurationEventHandler() = default;
    CConfigurationEventHandler(const CConfigurationEventHandler&) = delete;
    CConfigurationEventHandler& operator=(const CConfigurationEventHandler&) = delete;
    virtual ~CConfigurationEventHandler();

    virtual void OnAttach(CInstantCamera& camera);
    virtual void OnAttached(CInstantCamera& camera);
    virtual void OnDetach(CInstantCamera& camera);
    virtual void OnDetached(CInstantCamera& camera);
    virtual void OnDestroy(CInstantCamera& camera);
    virtual void OnDestroyed(CInstantCamera& camera);
    virtual void OnOpen(CInstantCamera& camera);
    virtual void OnOpened(CInstantCamera& camera);
    virtual void OnClose(CInstantCamera& camera);
    virtual void OnClosed(CInstantCamera& camera);
    virtual void OnGrabStart(CInstantCamera& camera);
    virtual void OnGrabStarted(CInstantCamera& camera);
    virtual void OnGrabStop(CInstantCamera& camera);
    virtual void OnGrabStopped(CInstantCamera& camera);
    virtual void OnGrabError(CInstantCamera& camera, const char* errorMessage);
    virtual void OnCameraDeviceRemoved(CInstantCamera& camera);
    virtual void OnConfigurationRegistered(CInstantCamera& camera);
    virtual void OnConfigurationDeregistered(CInstantCamera& camera);
    virtual void DestroyConfiguration();
    const long& DebugGetEventHandlerRegistrationCount() const { return m_registrations; }

private:
    friend class HandlerRegistry<CConfigurationEventHandler>;
    long m_registrations = 0;
};

/// Puts a camera that is opened into software trigger: the frame start trigger on, with source software, and
/// all other triggers off.
class CSoftwareTriggerConfiguration : public CConfigurationEventHandler {
public:
    void OnOpened(CInstantCamera& camera) override;
};

} // namespace Pylon
