#include "simulator/camera/BaslerModel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qr9::sim {

namespace {

constexpr char kModelNode[] = "DeviceModelName";
constexpr double kMono12 = 3.0;
constexpr double kSoftware = 0.0;
constexpr double kOn = 1.0;

void copyText(char* field, std::size_t size, const char* text)
{
    std::strncpy(field, text, size - 1);
}

} // namespace

struct BaslerModel::NodeRow {
    const char* name;
    double powerOn;
    double min;
    double max;
    bool bWhole; ///< takes whole numbers only
    bool bLocked; ///< cannot be written while the stream runs
};

// Limits of the sensor of 1280 by 960; enumerations by their numbers.
const std::array<BaslerModel::NodeRow, BaslerModel::NodeCount> BaslerModel::kNodes { {
    { "Width", 1280.0, 16.0, 1280.0, true, true },
    { "Height", 960.0, 16.0, 960.0, true, true },
    { "ExposureTime", 10000.0, 20.0, 1000000.0, false, false },
    { "Gain", 0.0, 0.0, 23.79, false, false },
    { "Gamma", 1.0, 0.0, 4.0, false, false },
    { "ReverseX", 0.0, 0.0, 1.0, true, false },
    { "ReverseY", 0.0, 0.0, 1.0, true, false },
    { "CenterX", 0.0, 0.0, 1.0, true, true },
    { "CenterY", 0.0, 0.0, 1.0, true, true },
    { "ExposureAuto", 0.0, 0.0, 2.0, true, false },
    { "GainAuto", 0.0, 0.0, 2.0, true, false },
    { "PixelFormat", 0.0, 0.0, kMono12, true, true },
    { "OverlapMode", 0.0, 0.0, 1.0, true, true },
    { "TriggerSelector", 1.0, 0.0, 1.0, true, false },
    { "TriggerMode", 0.0, 0.0, 1.0, true, false },
    { "TriggerSource", kSoftware, 0.0, 3.0, true, false },
} };

BaslerModel::BaslerModel(const QString& modelName)
    : m_modelName(modelName)
    , m_bCentring(modelName.startsWith("ac", Qt::CaseInsensitive))
{
    std::transform(
        kNodes.begin(), kNodes.end(), m_values.begin(), [](const NodeRow& row) { return row.powerOn; });
}

bool BaslerModel::has(Node node) const
{
    return m_bCentring || (node != CenterX && node != CenterY);
}

BaslerModel::Node BaslerModel::find(const QString& name) const
{
    const auto row = std::find_if(kNodes.begin(), kNodes.end(),
        [&name](const NodeRow& node) { return name == QLatin1String(node.name); });
    const auto node = static_cast<Node>(row - kNodes.begin());
    return has(node) ? node : NodeCount;
}

std::vector<wire::Feature> BaslerModel::features() const
{
    std::vector<wire::Feature> features(1);
    copyText(features[0].name, sizeof(features[0].name), kModelNode);
    copyText(features[0].text, sizeof(features[0].text), m_modelName.toLatin1().constData());
    for (int node = 0; node < NodeCount; ++node) {
        if (has(static_cast<Node>(node))) {
            const NodeRow& row = kNodes.at(static_cast<std::size_t>(node));
            wire::Feature feature;
            copyText(feature.name, sizeof(feature.name), row.name);
            feature.value = value(static_cast<Node>(node));
            feature.min = row.min;
            feature.max = row.max;
            features.push_back(feature);
        }
    }
    return features;
}

CameraAnswer BaslerModel::setFeature(const QString& name, double value)
{
    if (name == QLatin1String(kModelNode)) {
        return { wire::Error::Refused, 0.0, "Node is not writable." };
    }
    const Node node = find(name);
    if (node == NodeCount) {
        return { wire::Error::NoSuchFeature, 0.0, "Node is not existing." };
    }
    const NodeRow& row = kNodes.at(node);
    if (row.bLocked && m_bStreaming) {
        return { wire::Error::Refused, 0.0, "Node is not writable while grabbing." };
    }
    // Written so that a value that is no number at all is out of range too.
    if (!(value >= row.min && value <= row.max) || (row.bWhole && value != std::floor(value))) {
        return { wire::Error::OutOfRange, 0.0, QStringLiteral("Value %1 is out of range.").arg(value) };
    }
    m_values.at(node) = value;
    return {};
}

CameraAnswer BaslerModel::feature(const QString& name) const
{
    if (name == QLatin1String(kModelNode)) {
        return { wire::Error::None, 0.0, m_modelName };
    }
    const Node node = find(name);
    if (node == NodeCount) {
        return { wire::Error::NoSuchFeature, 0.0, "Node is not existing." };
    }
    return { wire::Error::None, value(node), {} };
}

CameraAnswer BaslerModel::writeRegister(int /*address*/, int /*value*/)
{
    return { wire::Error::Refused, 0.0, "This camera has no registers." };
}

CameraAnswer BaslerModel::readRegister(int /*address*/) const
{
    return { wire::Error::Refused, 0.0, "This camera has no registers." };
}

bool BaslerModel::isWaitingForTrigger() const
{
    return m_bStreaming && value(TriggerMode) == kOn && value(TriggerSource) == kSoftware;
}

bool BaslerModel::isRunningFreely() const
{
    return m_bStreaming && value(TriggerMode) != kOn;
}

CaptureSettings BaslerModel::settings() const
{
    CaptureSettings settings;
    settings.exposure = Time(std::llround(value(ExposureTime)));
    settings.gainDb = value(Gain);
    settings.mirrorX = value(ReverseX) != 0.0;
    settings.mirrorY = value(ReverseY) != 0.0;
    settings.width = static_cast<int>(value(Width));
    settings.height = static_cast<int>(value(Height));
    settings.bCentreX = value(CenterX) != 0.0;
    settings.bCentreY = value(CenterY) != 0.0;
    settings.bytesPerPixel = value(PixelFormat) == kMono12 ? 2 : 1;
    settings.gamma = value(Gamma);
    return settings;
}

} // namespace qr9::sim
