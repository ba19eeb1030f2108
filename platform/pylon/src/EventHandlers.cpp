#include <pylon/EventHandlers.h>

#include <pylon/usb/BaslerUsbInstantCamera.h>

#include "FeatureNodes.h"

#include <cstdio>
#include <cstdlib>

namespace Pylon {

namespace {

void requireDeregistered(long registrations)
{
    if (registrations == 0)
        return;
    std::fputs("Error: The event handler must not be destroyed while it is registered.\n", stderr);
    std::abort();
}

} // namespace

CImageEventHandler::~CImageEventHandler()
{
    requireDeregistered(m_registrations);
}
void CImageEventHandler::OnImagesSkipped(CInstantCamera& /*camera*/, size_t /*countOfSkippedImages*/) { }
void CImageEventHandler::OnImageGrabbed(CInstantCamera& /*camera*/, const CGrabResultPtr& /*grabResult*/) { }
void CImageEventHandler::OnImageEventHandlerRegistered(CInstantCamera& /*camera*/) { }
void CImageEventHandler::OnImageEventHandlerDeregistered(CInstantCamera& /*camera*/) { }
void CImageEventHandler::DestroyImageEventHandler()
{
    delete this;
}

CConfigurationEventHandler::~CConfigurationEventHandler()
{
    requireDeregistered(m_registrations);
}
void CConfigurationEventHandler::OnAttach(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnAttached(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnDetach(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnDetached(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnDestroy(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnDestroyed(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnOpen(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnOpened(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnClose(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnClosed(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnGrabStart(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnGrabStarted(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnGrabStop(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnGrabStopped(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnGrabError(CInstantCamera& /*camera*/, const char* /*errorMessage*/) { }
void CConfigurationEventHandler::OnCameraDeviceRemoved(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnConfigurationRegistered(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::OnConfigurationDeregistered(CInstantCamera& /*camera*/) { }
void CConfigurationEventHandler::DestroyConfiguration()
{
    delete this;
}

} // namespace Pylon
