#include "camera/BaslerCamera.h"

#include <QDebug>

namespace {

constexpr char kDeviceClass[] = "BaslerUsb";

Pylon::CDeviceInfo usbFilter()
{
    Pylon::CDeviceInfo info;
    info.SetDeviceClass(kDeviceClass);
    return info;
}

int enumerate(Pylon::DeviceInfoList& list)
{
    Pylon::DeviceInfoList filter;
    filter.push_back(usbFilter());
    return Pylon::CTlFactory::GetInstance().EnumerateDevices(list, filter, false);
}

/// Writes `value` unless the node has it already. The limits are those of the map, in the precision of the
/// value.
void writeLimited(GenApi::IFloat& node, float value, double lowest, double highest)
{
    if (node.GetValue() == static_cast<double>(value))
        return;
    if (value > static_cast<float>(highest))
        value = static_cast<float>(highest);
    else if (value < static_cast<float>(lowest))
        value = static_cast<float>(lowest);
    node.SetValue(static_cast<double>(value), true);
}

} // namespace

BaslerCamera* BaslerCamera::m_Instance = nullptr;
std::atomic<bool> BaslerCamera::m_bFrameIsGrabbing { false };

BaslerCamera::BaslerCamera()
{
    qDebug() << Q_FUNC_INFO;
    m_Instance = this;
}

BaslerCamera* BaslerCamera::instance()
{
    qDebug() << Q_FUNC_INFO;
    return m_Instance;
}

int BaslerCamera::is_BaslerCamAttached()
{
    qDebug() << Q_FUNC_INFO;
    Pylon::DeviceInfoList list;
    return enumerate(list);
}

bool BaslerCamera::connect(
    Pylon::CImageEventHandler* handler, Pylon::CConfigurationEventHandler* configuration)
{
    qDebug() << Q_FUNC_INFO;
    try {
        Pylon::DeviceInfoList list;
        if (enumerate(list) == 0)
            return false;
        Attach(Pylon::CTlFactory::GetInstance().CreateFirstDevice(usbFilter()), Pylon::Cleanup_Delete);
        if (handler != nullptr) {
            RegisterImageEventHandler(handler, Pylon::RegistrationMode_ReplaceAll, Pylon::Cleanup_None);
            RegisterConfiguration(configuration, Pylon::RegistrationMode_Append, Pylon::Cleanup_None);
        }
    } catch (const GenICam::GenericException&) {
        qDebug() << Q_FUNC_INFO << "Exception: Basler Camera Attach() failed";
        return false;
    }
    return true;
}

void BaslerCamera::open()
{
    qDebug() << Q_FUNC_INFO;
    try {
        Open();
    } catch (const GenICam::GenericException& exception) {
        qDebug() << Q_FUNC_INFO << "Exception: Basler Camera Open() failed" << exception.GetDescription();
    }
}

void BaslerCamera::start()
{
    qDebug() << Q_FUNC_INFO;
    try {
        StartGrabbing(Pylon::GrabStrategy_LatestImageOnly, Pylon::GrabLoop_ProvidedByInstantCamera);
    } catch (const GenICam::GenericException& exception) {
        qDebug() << Q_FUNC_INFO << "Exception: Start Grabbing failed" << exception.GetDescription();
    }
}

void BaslerCamera::stop()
{
    qDebug() << Q_FUNC_INFO;
    StopGrabbing();
}

bool BaslerCamera::isRunning()
{
    return IsGrabbing();
}

void BaslerCamera::SetSoftwareTriggerMode(bool on)
{
    qDebug() << Q_FUNC_INFO;
    if (!IsOpen()) {
        qDebug() << "SetSoftwareTriggerMode"
                 << "!!! Cannot open the camera and init SW Trigger mode !!!";
        return;
    }
    if (on) {
        TriggerSelector.SetValue(Basler_UsbCameraParams::TriggerSelector_FrameStart, true);
        TriggerMode.SetValue(Basler_UsbCameraParams::TriggerMode_On, true);
        TriggerSource.SetValue(Basler_UsbCameraParams::TriggerSource_Software, true);
        qDebug() << "SetSoftwareTriggerMode"
                 << "SW Trigger mode is ON";
    } else {
        // The selector stays where it is.
        TriggerMode.SetValue(Basler_UsbCameraParams::TriggerMode_Off, true);
        TriggerSource.SetValue(Basler_UsbCameraParams::TriggerSource_Software, true);
        qDebug() << "SetSoftwareTriggerMode"
                 << "SW Trigger mode is OFF";
    }
}

void BaslerCamera::ExecuteSWTrigger()
{
    if (!IsGrabbing())
        return;
    m_bFrameIsGrabbing = true; // before the trigger: the frame may land before the call is back
    try {
        TriggerSoftware.Execute(true);
    } catch (const GenICam::GenericException& exception) {
        qDebug() << "ExecuteSWTrigger"
                 << "setSWTrigger: Exception in BasslerCamera SetSWTrigger & RetrieveResult"
                 << exception.GetDescription();
    }
}

void BaslerCamera::setExposure(float value)
{
    qDebug() << Q_FUNC_INFO;
    try {
        writeLimited(ExposureTime, value, m_nodeMap.exposureMin, m_nodeMap.exposureMax);
    } catch (const GenICam::GenericException& exception) {
        qDebug() << "Exception: BaslerCamera SetExposure failed" << exception.GetDescription();
    }
}

void BaslerCamera::setGain(float value)
{
    qDebug() << Q_FUNC_INFO;
    try {
        writeLimited(Gain, value, m_nodeMap.gainMin, m_nodeMap.gainMax);
    } catch (const GenICam::GenericException& exception) {
        qDebug() << "Exception: BaslerCamera SetGain failed" << exception.GetDescription();
    }
}

void BaslerCamera::setGamma(double value)
{
    qDebug() << Q_FUNC_INFO;
    Gamma.SetValue(value, true);
}

float BaslerCamera::getExposure()
{
    qDebug() << Q_FUNC_INFO;
    return static_cast<float>(ExposureTime.GetValue());
}

float BaslerCamera::getGain()
{
    return static_cast<float>(Gain.GetValue());
}

void BaslerCamera::setReverse(bool reverseX, bool reverseY)
{
    qDebug() << Q_FUNC_INFO;
    ReverseX.SetValue(reverseX, true);
    ReverseY.SetValue(reverseY, true);
}

DeviceNodeMap BaslerCamera::device_node_map()
{
    qDebug() << Q_FUNC_INFO;
    return m_nodeMap;
}

void BaslerCamera::release(
    Pylon::CImageEventHandler* handler, Pylon::CConfigurationEventHandler* configuration)
{
    qDebug() << Q_FUNC_INFO;
    try {
        stop();
    } catch (const GenICam::GenericException& exception) {
        // The handlers must go all the same: their owner may be about to end.
        qDebug() << Q_FUNC_INFO << exception.GetDescription();
    }
    if (handler != nullptr)
        DeregisterImageEventHandler(handler);
    if (configuration != nullptr)
        DeregisterConfiguration(configuration);
}

void BaslerCamera::close()
{
    qDebug() << Q_FUNC_INFO;
    if (!IsPylonDeviceAttached())
        return;
    if (IsGrabbing())
        StopGrabbing();
    Close();
}

void BaslerCamera::disconnect()
{
    qDebug() << Q_FUNC_INFO;
    if (!IsPylonDeviceAttached())
        return;
    // The numbers are part of lines that readers of the log look for.
    qDebug() << "disconnect" << 219 << IsPylonDeviceAttached();
    DetachDevice();
    DestroyDevice();
    qDebug() << "disconnect" << 222 << IsPylonDeviceAttached();
}
