#include <pylon/InstantCamera.h>
#include <pylon/usb/BaslerUsbInstantCamera.h>

namespace Pylon {

void CSoftwareTriggerConfiguration::OnOpened(CInstantCamera& camera)
{
    using namespace Basler_UsbCameraParams;
    GenApi::INodeMap& nodes = camera.GetNodeMap();
    const GenApi::CFloatPtr selector = nodes.GetNode("TriggerSelector");
    const GenApi::CFloatPtr mode = nodes.GetNode("TriggerMode");
    const GenApi::CFloatPtr source = nodes.GetNode("TriggerSource");
    if (!selector.IsValid() || !mode.IsValid() || !source.IsValid())
        return;
    // The frame start trigger comes last and stays selected.
    const int last = static_cast<int>(selector->GetMax());
    for (int other = static_cast<int>(selector->GetMin()); other <= last; ++other) {
        if (other == TriggerSelector_FrameStart)
            continue;
        selector->SetValue(static_cast<double>(other), true);
        mode->SetValue(static_cast<double>(TriggerMode_Off), true);
    }
    selector->SetValue(static_cast<double>(TriggerSelector_FrameStart), true);
    mode->SetValue(static_cast<double>(TriggerMode_On), true);
    source->SetValue(static_cast<double>(TriggerSource_Software), true);
}

} // namespace Pylon
