#pragma once

#include <pylon/PylonIncludes.h>
#include <pylon/usb/BaslerUsbInstantCamera.h>

#include <QString>

#include <atomic>
#include <limits>

/// What is known of a camera once it has been set up.
struct DeviceNodeMap {
    static constexpr double kUnset = std::numeric_limits<double>::quiet_NaN(); ///< limits nothing

    QString modelName; ///< node "DeviceModelName"
    int family = 0; ///< by the first two letters of the model: 0 "ac", 1 "pu" and unknown ones, 2 "da"
    int widthMin = 0; ///< px
    int widthMax = 0; ///< px
    int width = 0; ///< px; the requested one, clamped
    int heightMin = 0; ///< rows
    int heightMax = 0; ///< rows
    int height = 0; ///< rows; the requested one, clamped
    double exposureMin = kUnset; ///< us
    double exposureMax = kUnset; ///< us
    double exposure = 0.0; ///< reserved
    double gainMin = kUnset; ///< dB
    double gainMax = kUnset; ///< dB
    double gain = 0.0; ///< reserved
};

/// One Basler USB3 camera: the thin layer over the camera library.
///
/// Role: owns the connection to the device, sets the device up once, and offers exposure, gain, gamma, mirror
/// and software trigger as plain calls. It knows nothing of frames: they go from the library straight to the
/// image event handler that is registered here.
/// Thread: called from the GUI thread, without a lock. The library must have been initialised before.
/// Failures: exceptions of the library (GenICam::GenericException) are logged and absorbed where that is
/// said; everywhere else they pass out to the caller. Owner: BaslerFrameDelivery, which never deletes it: the
/// process is ending when it is given up.
class BaslerCamera : public Pylon::CBaslerUsbInstantCamera {
public:
    /// The camera that was made last.
    static BaslerCamera* m_Instance;

    /// A frame is under way: set when a software trigger is issued, cleared when the frame has been taken
    /// over. The one writes on the GUI thread, the other on the library's grab thread, and not always under
    /// one lock.
    static std::atomic<bool> m_bFrameIsGrabbing;

    /// Opens nothing.
    BaslerCamera();

    /// Logs, and returns m_Instance.
    static BaslerCamera* instance();

    /// Number of Basler USB cameras on the bus. Throws.
    static int is_BaslerCamAttached();

    /// Attaches the first camera on the bus and registers the two handlers, which stay the caller's.
    /// `configuration` is registered only together with a `handler`. False, logged, when there is no camera
    /// or the library refuses.
    bool connect(Pylon::CImageEventHandler* handler, Pylon::CConfigurationEventHandler* configuration);

    /// Opens the attached device. A failure is logged; the camera then stays closed.
    void open();

    /// Sets the open camera up: a picture of `width` by `height` pixels, clamped to the camera's limits, with
    /// 16 bits a pixel or else 8, fixed exposure and gain. `map` takes what was read. A model of an unknown
    /// family keeps its own settings, and `map` stays as it was. Throws, also when the camera is not open.
    void initalize(uint width, uint height, uint bitsPerPixel, DeviceNodeMap& map);

    /// Starts the library's own grab thread, which keeps only the newest image. A failure is logged.
    void start();

    /// Ends grabbing.
    void stop();

    /// True between start and stop.
    bool isRunning();

    /// Frames come by software trigger (on) or freely (off). Does nothing but log on a closed camera. Throws.
    void SetSoftwareTriggerMode(bool on);

    /// Fires one software trigger; nothing happens unless the camera is grabbing. A failure is logged, and
    /// m_bFrameIsGrabbing then stays set.
    void ExecuteSWTrigger();

    /// Sets the exposure in us, limited to what the camera can do. A failure is logged; the old value stays.
    void setExposure(float value);

    /// Sets the gain in dB, limited to what the camera can do. A failure is logged; the old value stays.
    void setGain(float value);

    /// Throws, also for a value out of range.
    void setGamma(double value);

    /// Exposure in us as the camera has it. Throws.
    float getExposure();

    /// Gain in dB as the camera has it. Throws.
    float getGain();

    /// Mirrors the picture in X and in Y. Throws.
    void setReverse(bool reverseX, bool reverseY);

    /// A copy of what initalize has read.
    DeviceNodeMap device_node_map();

    /// Stops grabbing and deregisters those of the two handlers that are given. Waits for a handler that
    /// runs.
    void release(Pylon::CImageEventHandler* handler, Pylon::CConfigurationEventHandler* configuration);

    /// Stops grabbing and closes the device, if one is attached.
    void close();

    /// Gives the device back, if one is attached.
    void disconnect();

private:
    DeviceNodeMap m_nodeMap;
};
