#include "InstantCameraCore.h"

#include <pylon/InstantCamera.h>

namespace Pylon {

CInstantCamera::CInstantCamera()
    : m_core(std::make_unique<InstantCameraCore>(*this))
{
}

CInstantCamera::~CInstantCamera() = default;

void CInstantCamera::Attach(IPylonDevice* device, ECleanup cleanupProcedure)
{
    m_core->attach(device, cleanupProcedure);
}

IPylonDevice* CInstantCamera::DetachDevice()
{
    return m_core->detach();
}

void CInstantCamera::DestroyDevice()
{
    m_core->destroyDevice();
}

void CInstantCamera::Open()
{
    m_core->open();
}

void CInstantCamera::Close()
{
    m_core->close();
}

bool CInstantCamera::IsOpen() const
{
    return m_core->isOpen();
}

bool CInstantCamera::IsGrabbing() const
{
    return m_core->isGrabbing();
}

bool CInstantCamera::IsPylonDeviceAttached() const
{
    return m_core->isAttached();
}

bool CInstantCamera::IsCameraDeviceRemoved() const
{
    return m_core->isRemoved();
}

void CInstantCamera::StartGrabbing(EGrabStrategy strategy, EGrabLoop grabLoopType)
{
    m_core->startGrabbing(strategy, grabLoopType);
}

void CInstantCamera::StopGrabbing()
{
    m_core->stopGrabbing();
}

void CInstantCamera::RegisterImageEventHandler(
    CImageEventHandler* handler, ERegistrationMode mode, ECleanup cleanupProcedure)
{
    m_core->images.add(handler, mode, cleanupProcedure);
}

bool CInstantCamera::DeregisterImageEventHandler(CImageEventHandler* handler)
{
    return m_core->images.remove(handler);
}

void CInstantCamera::RegisterConfiguration(
    CConfigurationEventHandler* handler, ERegistrationMode mode, ECleanup cleanupProcedure)
{
    m_core->configurations.add(handler, mode, cleanupProcedure);
}

bool CInstantCamera::DeregisterConfiguration(CConfigurationEventHandler* handler)
{
    return m_core->configurations.remove(handler);
}

GenApi::INodeMap& CInstantCamera::GetNodeMap()
{
    if (!IsOpen())
        throw GenICam::AccessException("GetNodeMap: The camera is not open.");
    return *m_core;
}

FeatureSource& CInstantCamera::features()
{
    return *m_core;
}

} // namespace Pylon
