#include "FeatureNodes.h"

#include <pylon/usb/BaslerUsbInstantCamera.h>

namespace Basler_UsbCameraParams {

struct CUsbCameraParams_Params::Nodes {
    explicit Nodes(Pylon::FeatureSource& features)
        : width(features, "Width")
        , height(features, "Height")
        , centerX(features, "CenterX")
        , centerY(features, "CenterY")
        , reverseX(features, "ReverseX")
        , reverseY(features, "ReverseY")
        , pixelFormat(features, "PixelFormat")
        , gain(features, "Gain")
        , gainAuto(features, "GainAuto")
        , gamma(features, "Gamma")
        , exposureTime(features, "ExposureTime")
        , exposureAuto(features, "ExposureAuto")
        , overlapMode(features, "OverlapMode")
        , triggerSelector(features, "TriggerSelector")
        , triggerMode(features, "TriggerMode")
        , triggerSource(features, "TriggerSource")
        , triggerSoftware(features, "TriggerSoftware")
    {
    }

    Pylon::IntegerNode width;
    Pylon::IntegerNode height;
    Pylon::BooleanNode centerX;
    Pylon::BooleanNode centerY;
    Pylon::BooleanNode reverseX;
    Pylon::BooleanNode reverseY;
    Pylon::EnumerationNode<PixelFormatEnums> pixelFormat;
    Pylon::FloatNode gain;
    Pylon::EnumerationNode<GainAutoEnums> gainAuto;
    Pylon::FloatNode gamma;
    Pylon::FloatNode exposureTime;
    Pylon::EnumerationNode<ExposureAutoEnums> exposureAuto;
    Pylon::EnumerationNode<OverlapModeEnums> overlapMode;
    Pylon::EnumerationNode<TriggerSelectorEnums> triggerSelector;
    Pylon::EnumerationNode<TriggerModeEnums> triggerMode;
    Pylon::EnumerationNode<TriggerSourceEnums> triggerSource;
    Pylon::CommandNode triggerSoftware;
};

CUsbCameraParams_Params::CUsbCameraParams_Params(Pylon::FeatureSource& features)
    : m_nodes(std::make_unique<Nodes>(features))
    , Width(m_nodes->width)
    , Height(m_nodes->height)
    , CenterX(m_nodes->centerX)
    , CenterY(m_nodes->centerY)
    , ReverseX(m_nodes->reverseX)
    , ReverseY(m_nodes->reverseY)
    , PixelFormat(m_nodes->pixelFormat)
    , Gain(m_nodes->gain)
    , GainAuto(m_nodes->gainAuto)
    , Gamma(m_nodes->gamma)
    , ExposureTime(m_nodes->exposureTime)
    , ExposureAuto(m_nodes->exposureAuto)
    , OverlapMode(m_nodes->overlapMode)
    , TriggerSelector(m_nodes->triggerSelector)
    , TriggerMode(m_nodes->triggerMode)
    , TriggerSource(m_nodes->triggerSource)
    , TriggerSoftware(m_nodes->triggerSoftware)
{
}

CUsbCameraParams_Params::~CUsbCameraParams_Params() = default;

} // namespace Basler_UsbCameraParams

namespace Pylon {

CBaslerUsbInstantCamera::CBaslerUsbInstantCamera()
    : CUsbCameraParams_Params(features())
{
}

CBaslerUsbInstantCamera::~CBaslerUsbInstantCamera() = default;

} // namespace Pylon
