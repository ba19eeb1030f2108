// What a camera is told once, after it has been opened.

#include "camera/BaslerCamera.h"

#include <QDebug>

#include <algorithm>
#include <array>

namespace {

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

int clampTo(uint requested, int lowest, int highest)
{
    const auto wanted = static_cast<qint64>(requested);
    if (wanted < lowest)
        return lowest;
    return wanted > highest ? highest : static_cast<int>(wanted);
}

} // namespace

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
