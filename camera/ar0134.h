#pragma once

#include <ArduCamLib.h>
#include <arducam_config_parser.h>

#include <opencv2/core.hpp>

#include <QImage>
#include <QMutex>
#include <QObject>
#include <QWaitCondition>

#include <cstdint>

/// The sensor configuration of the instrument, in the working directory of the program.
constexpr char config_file_name[] = "./AR0134_Merel.cfg";

/// Driver of an AR0134 sensor on an ArduCam USB board.
///
/// Role: opens the board from its configuration file, reads and writes sensor registers, fires software
/// triggers, and keeps the newest frame as a picture. In the live state each trigger queues the next one, so
/// that the loop runs by way of the event loop of the object's thread. Thread: lives on the worker thread of
/// Ar0134FrameDelivery, where its slots for trigger and live state run. Everything that touches registers or
/// the picture may be called from any thread. Failures: a line in the critical log and signal_cameraError;
/// the state stays as it is. Owner: Ar0134FrameDelivery; it dies with the worker thread.
class AR0134 : public QObject {
    Q_OBJECT

public:
    enum cameraError {
        ERROR_EXPOSURE_READ = 1,
        ERROR_EXPOSURE_WRITE = 2,
        ERROR_GAIN_READ = 3,
        ERROR_GAIN_WRITE = 4,
        ERROR_MIRROR_WRITE = 5,
        ERROR_GAIN_NEGATIVE = 6,
        ERROR_TRIGGER = 7, ///< ends the live loop
        ERROR_FRAME_NOT_READY = 8, ///< ends the live loop
        ERROR_GET_FRAME = 9,
        ERROR_CONVERT = 10,
    };
    Q_ENUM(cameraError)

    enum State {
        STATE_CLOSED = 0,
        STATE_OPEN = 1,
        STATE_LIVE = 2,
    };

    /// 1 when at least one board is on the bus, else 0; lists the boards on the standard output.
    static int is_AR0134Attached();

    /// Opens the board with the configuration of `file`, with no gain and 20 ms of exposure. Blocks for as
    /// long as the register list takes, some tenths of a second. state() tells whether it worked.
    explicit AR0134(const char* file, QObject* parent = nullptr);
    ~AR0134() override;

    /// Opens the board. False when there is none, it refuses, or its firmware knows no single frames; it is
    /// left closed then, so that a second attempt can have it.
    bool open(const char* file);

    /// Ends live mode, waits for the trigger under way, and gives the board back. A trigger that is still
    /// queued does not reach the library any more. Events of the calling thread are processed meanwhile, as
    /// long as its event loop runs: those behind the loop's end would find a window that is half gone.
    void closeCamera();

    /// One of State.
    int state() const;

    /// Exposure read back, in us, -1 on a failure. It differs from what was set by up to a sensor
    /// line, 24.539 us.
    int getExposure();

    /// Gain read back, in dB (10 log10), -1.0 on a failure.
    double getGain();

    /// Mirrors the picture in the sensor itself.
    void setReverse(bool reverseX, bool reverseY);

    /// Sets the grey value of black.
    void setPedestal(uint16_t pedestal);

    /// Waits for the next frame of the trigger path, 3 s at most. False when none came.
    bool waitForFrameReady();

    /// Fetches the triggered frame and makes it the newest one. Blocks 3 s at most.
    void getSingleFrame();

    /// Copies the newest frame, 1280 by 960 without the two rows above it. False when closed, or without a
    /// frame of that size; `image` is as it was then.
    bool getMatImg(cv::Mat& image);

    /// The same into `image`, at least 1280 by 960 with one byte a pixel, row by row.
    bool getQImg(QImage& image);

    /// Sum of the grey values of 1280 by 962 pixels from the third row on: two rows more than the picture
    /// that getMatImg() gives. -1.0 when closed or without a frame of that size.
    double getIntensity();

    /// Frames delivered by all drivers of the process.
    static int totalFrames();

public slots:
    /// Switches the live loop on or off; nothing happens when closed or already as asked.
    void slot_setLiveViewState(bool on);

    /// Exposure in us, in steps of 24.539 us.
    void slot_setExposure(unsigned int exposure);

    /// Gain in dB, by which 10 log10 of the factor is meant: 3 dB doubles the grey values.
    void slot_setGain(double gain);

    /// Triggers one frame and waits until it is the newest one. Passed over when closed or when a trigger is
    /// being worked through.
    void slot_executeSoftwareTrigger();

signals:
    void signal_cameraError(AR0134::cameraError error);

    /// A new frame is there. Emitted on the driver's thread.
    void sig_imgReady();

    /// The heartbeat of the live loop, queued to the driver itself.
    void sig_selfExecuteSoftwareTrigger();

private:
    bool camera_initFromFile(const char* file, ArduCamHandle& handle);
    void applyConfiguration(ArduCamHandle& handle, const CameraConfigs& configs);
    void configBoard(ArduCamHandle& handle, Config config);
    void print_cameraConfig() const;
    cv::Mat ConvertImage(const ArduCamOutData* data) const;
    bool holdsRegion(const cv::Rect& region) const;
    void queueTrigger();
    void report(const char* signature, cameraError error);

    mutable QMutex m_mutex; ///< guards the image, m_handle, m_state, m_bBusy and register access
    QWaitCondition m_frameReady;
    void* m_handle = nullptr; ///< null when closed
    int m_state = STATE_CLOSED;
    bool m_bBusy = false; ///< a trigger is being worked through; the board is not closed meanwhile
    ArduCamCfg m_config {};
    cv::Mat m_image;
    /// The next trigger of the live loop is queued. Live mode that is switched off and on again before that
    /// one runs takes it over, as does a one-shot trigger that comes before it, so that there is one loop and
    /// not two.
    bool m_bTriggerQueued = false;
    int m_subFormat = 0; ///< order of the colour filter, of formats that have one
};
