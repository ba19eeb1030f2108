#pragma once

#include <pylon/Device.h>
#include <pylon/EventHandlers.h>
#include <pylon/GenApi.h>

#include <memory>

namespace Pylon {

class FeatureSource;
class InstantCameraCore;

enum EGrabStrategy {
    GrabStrategy_OneByOne = 0,
    GrabStrategy_LatestImageOnly = 1,
    GrabStrategy_LatestImages = 2,
    GrabStrategy_UpcomingImage = 3
};
enum EGrabLoop { GrabLoop_ProvidedByInstantCamera = 0, GrabLoop_ProvidedByUser = 1 };

/// One camera. Failing calls throw GenICam::GenericException.
/// Threads: one thread at a time steers the camera; the queries and triggers may come from any. With the
/// camera's own grab loop, handlers run on a thread that StartGrabbing starts and StopGrabbing ends.
class CInstantCamera {
public:
    /// Throws when the library is not initialised.
    CInstantCamera();
    CInstantCamera(const CInstantCamera&) = delete;
    CInstantCamera& operator=(const CInstantCamera&) = delete;
    virtual ~CInstantCamera();

    /// Takes a device; with Cleanup_Delete it is destroyed when the camera lets go of it.
    virtual void Attach(IPylonDevice* device, ECleanup cleanupProcedure = Cleanup_Delete);

    /// Hands the device back to the caller, or null.
    virtual IPylonDevice* DetachDevice();

    /// Lets go of the device.
    virtual void DestroyDevice();

    virtual void Open();
    virtual void Close();
    virtual bool IsOpen() const; ///< stays true when the plug is pulled
    virtual bool IsGrabbing() const; ///< stays true when the plug is pulled
    virtual bool IsPylonDeviceAttached() const;
    virtual bool IsCameraDeviceRemoved() const;

    /// Opens the camera if it is not open. The stand-in offers the strategies OneByOne and LatestImageOnly
    /// and the camera's own loop, and refuses the others.
    virtual void StartGrabbing(
        EGrabStrategy strategy = GrabStrategy_OneByOne, EGrabLoop grabLoopType = GrabLoop_ProvidedByUser);

    /// Returns when no handler runs any more, unless a handler calls it.
    virtual void StopGrabbing();

    virtual void RegisterImageEventHandler(
        CImageEventHandler* handler, ERegistrationMode mode, ECleanup cleanupProcedure);
    virtual bool DeregisterImageEventHandler(CImageEventHandler* handler);
    virtual void RegisterConfiguration(
        CConfigurationEventHandler* handler, ERegistrationMode mode, ECleanup cleanupProcedure);
    virtual bool DeregisterConfiguration(CConfigurationEventHandler* handler);

    /// The nodes of an open camera.
    virtual GenApi::INodeMap& GetNodeMap();

protected:
    FeatureSource& features();

private:
    std::unique_ptr<InstantCameraCore> m_core;
};

} // namespace Pylon
