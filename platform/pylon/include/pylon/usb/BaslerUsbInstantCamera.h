#pragma once

#include <pylon/PylonIncludes.h>

#include <memory>

/// The parameters of a USB camera as typed members.
namespace Basler_UsbCameraParams {

enum ExposureAutoEnums { ExposureAuto_Off = 0 };
enum GainAutoEnums { GainAuto_Off = 0 };
enum PixelFormatEnums { PixelFormat_Mono8 = 0, PixelFormat_Mono12 = 3 };
enum TriggerSelectorEnums { TriggerSelector_FrameStart = 1 };
enum TriggerModeEnums { TriggerMode_Off = 0, TriggerMode_On = 1 };
enum TriggerSourceEnums { TriggerSource_Software = 0 };
enum OverlapModeEnums { OverlapMode_On = 0, OverlapMode_Off = 1 };

/// Each member is a reference to a node of the open camera; a node that the camera does not have throws when
/// it is used.
class CUsbCameraParams_Params {
    struct Nodes;
    std::unique_ptr<Nodes> m_nodes;

protected:
    explicit CUsbCameraParams_Params(Pylon::FeatureSource& features);

public:
    CUsbCameraParams_Params(const CUsbCameraParams_Params&) = delete;
    CUsbCameraParams_Params& operator=(const CUsbCameraParams_Params&) = delete;
    ~CUsbCameraParams_Params();

    GenApi::IInteger& Width; ///< px
    GenApi::IInteger& Height; ///< rows
    GenApi::IBoolean& CenterX;
    GenApi::IBoolean& CenterY;
    GenApi::IBoolean& ReverseX;
    GenApi::IBoolean& ReverseY;
    GenApi::IEnumerationT<PixelFormatEnums>& PixelFormat;
    GenApi::IFloat& Gain; ///< dB
    GenApi::IEnumerationT<GainAutoEnums>& GainAuto;
    GenApi::IFloat& Gamma;
    GenApi::IFloat& ExposureTime; ///< us
    GenApi::IEnumerationT<ExposureAutoEnums>& ExposureAuto;
    GenApi::IEnumerationT<OverlapModeEnums>& OverlapMode;
    GenApi::IEnumerationT<TriggerSelectorEnums>& TriggerSelector;
    GenApi::IEnumerationT<TriggerModeEnums>& TriggerMode;
    GenApi::IEnumerationT<TriggerSourceEnums>& TriggerSource;

    /// Fires the frame start trigger. A camera that does not wait for one ignores it.
    GenApi::ICommand& TriggerSoftware;
};

} // namespace Basler_UsbCameraParams

namespace Pylon {

/// A USB camera: device class "BaslerUsb".
class CBaslerUsbInstantCamera : public CInstantCamera,
                                public Basler_UsbCameraParams::CUsbCameraParams_Params {
public:
    CBaslerUsbInstantCamera();
    ~CBaslerUsbInstantCamera() override;
};

} // namespace Pylon
