#include "camera/BaslerCamera.h"

#include <QDebug>

#include <algorithm>
#include <array>

namespace {

constexpr char kDeviceClass[] = "BaslerUsb";

/// A family of cameras by the first two letters of the model name.
struct Family {
    const char* prefix;
    int family;
    bool centred; ///< has CenterX and CenterY
};
constexpr std::array<Family, 3> kFamilies { {
    { "ac", 0, true },
    { "pu", 1, false },
    { "da", 2, false },
} };
constexpr int kUnknownFamily = 1;

const Family* familyOf(const QString& modelName)
{
    const QString prefix = modelName.left(2).toLower();
    const auto* const found = std::find_if(kFamilies.begin(), kFamilies.end(),
        [&prefix](const Family& family) { return prefix == QLatin1String(family.prefix); });
    return found == kFamilies.end() ? nullptr : found;
}

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

int clampTo(uint requested, int lowest, int highest)
{
    const auto wanted = static_cast<qint64>(requested);
    if (wanted < lowest)
        return lowest;
    return wanted > highest ? highest : static_cast<int>(wanted);
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

void BaslerCamera::initalize(uint width, uint height, uint bitsPerPixel, DeviceNodeMap& map)
{
    qDebug() << Q_FUNC_INFO;
    GenApi::INodeMap& nodes = GetNodeMap();
    const GenApi::CFloatPtr gainNode = nodes.GetNode("Gain");
    const GenApi::CFloatPtr exposureNode = nodes.GetNode("ExposureTime");
    const GenApi::CIntegerPtr widthNode = nodes.GetNode("Width");
    const GenApi::CIntegerPtr heightNode = nodes.GetNode("Height");

    m_nodeMap.widthMin = static_cast<int>(widthNode->GetMin());
    m_nodeMap.widthMax = static_cast<int>(widthNode->GetMax());
    m_nodeMap.heightMin = static_cast<int>(heightNode->GetMin());
    m_nodeMap.heightMax = static_cast<int>(heightNode->GetMax());

    const GenApi::CStringPtr modelNode = nodes.GetNode("DeviceModelName");
    m_nodeMap.modelName = QString::fromUtf8(modelNode->GetValue().c_str());
    const Family* const family = familyOf(m_nodeMap.modelName);
    if (family == nullptr) {
        m_nodeMap.family = kUnknownFamily;
        return;
    }
    m_nodeMap.family = family->family;

    m_nodeMap.width = clampTo(width, m_nodeMap.widthMin, m_nodeMap.widthMax);
    m_nodeMap.height = clampTo(height, m_nodeMap.heightMin, m_nodeMap.heightMax);
    m_nodeMap.exposureMin = exposureNode->GetMin();
    m_nodeMap.exposureMax = exposureNode->GetMax();
    m_nodeMap.gainMin = gainNode->GetMin();
    m_nodeMap.gainMax = gainNode->GetMax();
    map = m_nodeMap;

    ExposureAuto.SetValue(Basler_UsbCameraParams::ExposureAuto_Off, true);
    GainAuto.SetValue(Basler_UsbCameraParams::GainAuto_Off, true);
    widthNode->SetValue(m_nodeMap.width, true);
    heightNode->SetValue(m_nodeMap.height, true);
    if (family->centred) {
        CenterX.SetValue(true, true);
        CenterY.SetValue(true, true);
    }
    PixelFormat.SetValue(bitsPerPixel == 16 ? Basler_UsbCameraParams::PixelFormat_Mono12
                                            : Basler_UsbCameraParams::PixelFormat_Mono8,
        true);
    ReverseX.SetValue(true, true);
    ReverseY.SetValue(false, true);
    OverlapMode.SetValue(Basler_UsbCameraParams::OverlapMode_Off, true);
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
    stop();
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
    qDebug() << "disconnect" << 219 << IsPylonDeviceAttached();
    DetachDevice();
    DestroyDevice();
    qDebug() << "disconnect" << 222 << IsPylonDeviceAttached();
}
