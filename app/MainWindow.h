#pragma once

#include "algorithms/alg_autoFocus.h"
#include "algorithms/alg_pixelShift.h"
#include "app/autofocus_steps.h"
#include "app/illumination_channels.h"
#include "app/protocol_info.h"
#include "app/shift_values.h"
#include "app/slide_geometry.h"
#include "app/z_slope_cal.h"
#include "storage/MediaMonitor.h"
#include "views/measure_info.h"

#include <opencv2/core.hpp>

#include <QMainWindow>
#include <QString>
#include <QStringList>

#include <array>

class Controller;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTimer;

namespace Ui {
class MainWindow;
}

/// The one top-level object: it owns the form, the serial link, the algorithm objects and every workflow.
/// Each workflow is a group of members under a heading below and an implementation file of its own.
///
/// Lives on the main thread for the life of the process; every member runs there. A call that says "direct"
/// blocks that thread until the board has answered, which for a motion means until the axis has arrived.
/// Positions are motor steps, exposures ms, gains dB, frames 1280 by 960 grey values of 8 bits.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

signals:
    /// The port search has ended and the local event loop of the connection may go on.
    void sig_finish_find_Controller();
    /// A workflow wanted a still frame: the buffer is `m_pImageBuffer`, valid until the next grab.
    void sig_ImageGrabbed(uchar* pixels, int width, int height);
    /// An X move by position has ended; calibrations wait for it.
    void sig_finish_X_Stage_Move();
    /// The still frame of the QC page has been taken.
    void sig_finish_QC_ImageGrabbed();
    /// A frame of the pixel shift run has been stored.
    void sig_finish_pixelshift_ImageGrabbed();
    /// The picture of one channel has been written, or could not be.
    void sig_finish_save_ImageGrabbed();
    /// An autofocus run has ended, its message box (if any) has not yet come up.
    void sig_finish_Autofocusing();

public slots:
    // Connection and shutdown: MainWindow_connection.cpp

    /// The whole way from nothing to a running camera: port search, bring-up, illumination, camera.
    void on_pushButton_CONNECT_clicked();
    void slot_finish_find_Controller(bool found, QString port);
    /// Light off and X home (direct), camera stopped, window closed. During a search only when that has
    /// ended.
    void on_pushButton_EXIT_clicked();

    // Replies of the board: MainWindow_protocol.cpp

    /// Cuts a reply text into frames, parses each and lets it act.
    void slot_parsing_protocol_Controller(QString text);

    // Z axis panel, queued unless it says direct: MainWindow_zaxis.cpp

    void on_pushButton_STEP_Z_clicked();
    void on_pushButton_SPEED_Z_clicked();
    void on_pushButton_POSITION_Z_clicked();
    void on_pushButton_ABS_Z_clicked();
    void on_pushButton_REFERENCE_Z_clicked();
    /// Stores the Z offset; no command goes to the board.
    void on_pushButton_OFFSET_Z_clicked();
    /// One step down or up: direction direct, move queued.
    void on_pushButton_MVN_Z_clicked();
    void on_pushButton_MVP_Z_clicked();
    /// Down or up for as long as the button is held.
    void on_pushButton_RON_Z_pressed();
    void on_pushButton_RON_Z_released();
    void on_pushButton_ROP_Z_pressed();
    void on_pushButton_ROP_Z_released();
    /// Direct, then asks for the position.
    void on_pushButton_STOP_Z_clicked();

    // Debug console: MainWindow_console.cpp

    void on_pushButton_SEND_CMD_CONTROLLER_clicked();
    void on_lineEdit_SEND_CMD_CONTROLLER_returnPressed();
    void on_pushButton_CLEAR_CMD_RECEIVED_clicked();

    // X axis panel and X calibration: MainWindow_xaxis.cpp

    void on_pushButton_STEP_X_clicked();
    void on_pushButton_POSITION_X_clicked();
    void on_pushButton_MVN_X_clicked();
    void on_pushButton_MVP_X_clicked();
    /// Moves to where the last calibration found the reference mark.
    void on_pushButton_START_X_REF_clicked();
    /// Stores the start position of every slide type, from the position shown.
    void on_pushButton_START_X_CALIBRATION_clicked();

    // Frames: MainWindow_acquisition.cpp

    void on_checkBox_CROSS_LINE_clicked(bool checked);
    void on_checkBox_SCALE_TO_FIT_clicked(bool checked);
    /// `basler_camera_grab(true)`, at the end of a settling time.
    void slot_request_camera_grab();
    void slot_FpsUpdate(float fps);
    void slot_FpsUpdate_UI();
    void on_pushButton_INTENSITY_clicked();
    void slot_IntensityUpdate(double average, double object, double background);

    // Illumination: MainWindow_illumination.cpp

    void on_pushButton_ILLUMINATION_BF_clicked();
    void on_pushButton_ILLUMINATION_GFP_clicked();
    void on_pushButton_ILLUMINATION_RFP_clicked();
    void on_pushButton_LED_TOGGLE_clicked();
    void on_doubleSpinBox_GAIN_editingFinished();
    void on_horizontalSlider_GAIN_sliderReleased();
    void on_spinBox_EXPOSURE_editingFinished();
    void on_horizontalSlider_EXPOSURE_sliderReleased();
    void on_spinBox_LED1_editingFinished();
    void on_spinBox_LED2_editingFinished();
    void on_pushButton_ILLUMINATION_SET_clicked();

    // Filter wheel panel, queued: MainWindow_filter.cpp

    void on_pushButton_FILTER1_GO_clicked();
    void on_pushButton_FILTER2_GO_clicked();
    void on_pushButton_FILTER3_GO_clicked();
    void on_pushButton_FILTER1_READ_clicked();
    void on_pushButton_FILTER2_READ_clicked();
    void on_pushButton_FILTER3_READ_clicked();
    void on_pushButton_FILTER1_CORR_clicked();
    void on_pushButton_FILTER2_CORR_clicked();
    void on_pushButton_FILTER3_CORR_clicked();

    // Slide map and field navigation: MainWindow_slide.cpp

    /// Brings the slide in: light, height of the slide type (direct), X home (queued).
    void on_pushButton_INSERT_clicked();
    void on_pushButton_EJECT_clicked();
    /// Takes the slide type and brings it in at once.
    void on_comboBox_SLIDE_currentIndexChanged(int index);
    void on_pushButton_FIELD_PREV_clicked();
    void on_pushButton_FIELD_NEXT_clicked();
    /// Changes to the channel of the column.
    void on_tableWidget_SLIDE_cellDoubleClicked(int row, int column);

    // Autofocus: MainWindow_autofocus.cpp

    void on_pushButton_AUTOFOCUS_clicked();
    /// Measures a frame and makes the next move. Connected to `sig_ImageGrabbed` only during a run.
    void slot_ImageGrabbed_AutoFocusing(uchar* pixels, int width, int height);

    // Z reference and slope: MainWindow_zslope.cpp

    /// Takes the Z position on show as the autofocus reference.
    void on_pushButton_REFERENCE_AUTOFOCUS_SET_clicked();
    /// Focuses at two fields 39 mm apart, derives the height of every slide type and stores all of it.
    void on_pushButton_REFERENCE_Z_SLOPE_clicked();

    // Pixel shift calibration: MainWindow_pixelshift.cpp

    /// Walks twelve fields and measures the shifts; pressed again, goes back to the live picture.
    void on_pushButton_PIXEL_SHIFT_clicked();
    /// Stores a frame. Connected to `sig_ImageGrabbed` only during a run; the size is always the camera's.
    void slot_ImageGrabbed_pixelshift(uchar* pixels, int width, int height);

    // Pixel shift panel: MainWindow_shiftpanel.cpp

    /// Stores the four values on show.
    void on_pushButton_PIXEL_SHIFT_SET_clicked();
    /// Zeroes the four values, on show and in the file.
    void on_pushButton_PIXEL_SHIFT_RESET_clicked();
    /// Choose the channel that the arrows work on.
    void on_pushButton_SHIFT_GFP_clicked();
    void on_pushButton_SHIFT_RFP_clicked();
    /// One pixel each.
    void on_pushButton_SHIFT_X_MINUS_clicked();
    void on_pushButton_SHIFT_X_PLUS_clicked();
    void on_pushButton_SHIFT_Y_MINUS_clicked();
    void on_pushButton_SHIFT_Y_PLUS_clicked();
    /// Shows the overlay of a field, from 1 to 12.
    void on_spinBox_PIXEL_SHIFT_valueChanged(int field);

    // QC measurement: MainWindow_qc.cpp

    /// Takes a still frame after one exposure and 250 ms and shows it in place of the live picture.
    void on_pushButton_QC_CAPTURE_clicked();
    void on_pushButton_QC_LIVE_clicked();
    void slot_QC_ImageGrabbed();
    void on_checkBox_TARGETING_MODE_clicked(bool checked);
    void on_pushButton_SET_POINT_clicked();
    void on_pushButton_MEASURE_clicked();
    /// Stores the last measurement, and not what the fields show.
    void on_pushButton_MEASURE_WRITE_clicked();
    void on_doubleSpinBox_VOLUME_OFFSET_editingFinished();
    void slot_measure_point(int index, int x, int y);
    void slot_measure_result(measure_info info);
    void slot_measure_error(TargetingError error);

    // Image capture to a stick: MainWindow_capture.cpp

    /// Asks for a name and saves one colour picture for each ticked channel.
    void on_pushButton_CAPTURE_clicked();
    void on_pushButton_UNMOUNT_clicked();
    void slot_save_ImageGrabbed();

    // Identity, options and mirrors: MainWindow_identity.cpp

    /// Stores the serial number and runs the host name script. Blocks for at most 30 s.
    void on_pushButton_SERIAL_WRITE_clicked();
    void on_lineEdit_SERIAL_MODEL_textEdited(const QString& text);
    void on_radioButton_VATLINE_YES_clicked();
    void on_radioButton_VATLINE_NO_clicked();
    void on_radioButton_TALLYLINK_YES_clicked();
    void on_radioButton_TALLYLINK_NO_clicked();
    void on_radioButton_QLPK_YES_clicked();
    void on_radioButton_QLPK_NO_clicked();
    void on_checkBox_HOR_MIRROR_clicked(bool checked);
    void on_checkBox_VER_MIRROR_clicked(bool checked);
    void on_spinBox_REUSABLE_OFFSET_valueChanged(int value);
    void on_spinBox_VALIDATION_OFFSET_valueChanged(int value);
    void on_spinBox_PRISMA_OFFSET_valueChanged(int value);

public:
    // Connection and shutdown: MainWindow_connection.cpp

    void connect_Controller();
    /// Stage and illumination brought up; stops at the first step that fails.
    bool initialize_Controller();
    /// Starts the frame source; message boxes tell a missing or silent camera.
    void check_CameraConnection();

    // Replies of the board: MainWindow_protocol.cpp

    void do_protocol_function_Controller(protocol_Controller_info info);
    void function_Controller_main(protocol_Controller_info info);
    void function_Controller_stage(protocol_Controller_info info);
    void function_Controller_filter(protocol_Controller_info info);

    // Stage bring-up, all direct: MainWindow_stage.cpp

    /// Homes X, Z and the filter wheel, one after the other. False on an empty reply.
    bool origin_STAGE();
    /// Z step and speed to the board, stored calibration to the form. False on an empty reply.
    bool setup_STAGE();
    /// X to the eject position, Z to the 2-channel reference. False on an empty reply.
    bool standby_STAGE();

    // Frames: MainWindow_acquisition.cpp

    /// Starts the frame source of either camera, opens the tabs and switches the live picture on.
    void initialize_Basler(int width, int height, int bitsPerPixel);
    /// Copies the newest frame into `m_pImageBuffer` and returns it; without a frame the old content stays.
    unsigned char* basler_camera_grab();
    /// The same, and emits `sig_ImageGrabbed` before it returns. The flag has no effect.
    unsigned char* basler_camera_grab(bool);

    // Illumination: MainWindow_illumination.cpp

    /// Lights bright field. Always true.
    bool setup_ILLUMINATION();
    void set_illumination_GAIN(double gain);
    void set_illumination_EXPOSURE(double exposure);
    /// Direct. The second level counts for bright field only.
    void set_illumination_LED(int led1, int led2);
    void off_illumination_LED();
    /// Direct. Turns the filter wheel to the position of the channel in use, whatever the argument.
    void change_illumination_FILTER(ILLUMINATION_type type);
    void get_illumination_GAIN_ini(ILLUMINATION_type type);
    void get_illumination_EXPOSURE_ini(ILLUMINATION_type type);
    void get_illumination_LED_ini(ILLUMINATION_type type);
    void get_illumination_ini(ILLUMINATION_type type);

    // Filter wheel panel: MainWindow_filter.cpp

    /// The stored corrections into the three boxes.
    void get_illumination_CORRECTION_ini();

    // Slide map and field navigation: MainWindow_slide.cpp

    /// Refreshes the five start positions.
    void get_slide_POSITION_ini();
    /// Redraws the map and sets the enabled state of the navigation.
    void set_SLIDE_indicator(SLIDE_type type, int channel, int field);

    // Autofocus: MainWindow_autofocus.cpp

    /// Starts a run around `lineEdit_REFERENCE_AUTOFOCUS`: coarse and fine, or fine alone.
    void pushButton_AUTOFOCUS_clicked(bool coarse);
    /// The same without a message box; runs the event loop until the run has ended. False when the program is
    /// left meanwhile. The flag that keeps the box away stays set: the calibration that called clears it.
    bool focusSilently(bool coarse);
    void prepareAutoFocusing_Step1();
    void prepareAutoFocusing_Step2();
    void prepareAutoFocusing_Step3();
    void beginAutoFocusing_Step1();
    void beginAutoFocusing_Step2();
    void beginAutoFocusing_Step3();
    /// Ends the measuring and moves to the best position. The flag has no effect.
    void prepareEndAutoFocusing(bool);
    /// Makes the last fine step down. The flag has no effect.
    void endAutoFocusing(bool);

    // Channel overlay: MainWindow_overlay.cpp

    /// The picture by which a shift is judged, of a field from 1 to 12: 960 by 1280 pixels, red, green, blue.
    /// `shifted` moves the channels by the values on show. Fields without frames give a picture, too.
    cv::Mat make_overlayImage(int field, bool shifted);

    // Image capture to a stick: MainWindow_capture.cpp

    /// Writes red, green, blue pixels to `m_save_file_name`; a failure is logged.
    void save_ImageGrabbed(unsigned char* pixels, int width, int height);

    // Version panel: MainWindow_version.cpp

    /// Shows the builds of this tool and of the instrument's main application. Blocks for at most 30 s.
    void set_version();

    // Settings: MainWindow_ini.cpp

    /// The start-up reader: stored configuration into the form and the members.
    void get_TAVO_QR9_ini();

private:
    // Connection and shutdown

    /// Stage, light and camera behind a finished port search. False, after a message box, without a stage.
    bool bringUpUnit();
    /// The mirrors of the AR0134 are the technician's; those of the Basler camera are fixed.
    void showMirrorBoxes();

    // Replies of the board

    void function_Controller_stageX(const protocol_Controller_info& info);
    void function_Controller_stageZ(const protocol_Controller_info& info);

    // Z axis panel

    void moveZAbsolute(QPushButton* button, const QLineEdit* target);

    // X axis panel

    /// Queued.
    void moveXTo(int target);

    // Frames

    void copyNewestFrame();

    // Illumination

    void selectIlluminationChannel(ILLUMINATION_type type);

    // Filter wheel panel

    void goToFilter(int position);
    void readFilter(int position);
    void correctFilter(int position, const QSpinBox* correction);

    // Slide map and field navigation

    int slideStartPosition(SlideStart start) const;
    int insertHeight(const SlideHeight& height, double slope) const;
    /// Direct.
    void moveZToSlideHeight(int target);
    void moveToField(const FieldMove& move);
    void disableNavigation();
    void drawSlideMap(const SlideGeometry& slide, int channel);
    void setNavigationStates(const SlideGeometry& slide, int channel, int field);
    /// The reply to an X move by position, and to an eject.
    void finishXMove();
    void finishEject();

    // Z reference and slope

    /// X by position (direct), then a silent coarse and fine run; returns when it has ended, or false when
    /// the program is left meanwhile.
    bool focusAt(int positionX);
    /// The best position of a run that belongs to the slope calibration.
    void recordZSlope(int bestPosition);
    static void storeZSlope(const z_slope_cal_info& cal);

    // Pixel shift calibration

    void runPixelShift();
    void leavePixelShift();
    void enableShiftArrows(bool enabled);
    /// The three frames of the field under the objective; each returns when its frame is stored, or false
    /// when the program is left meanwhile.
    bool takeShiftFrames(int zOffset);
    bool takeShiftFrame();
    /// Moves Z by the offset, in fine steps, to the focus of fluorescence (+1) or back (-1). Direct.
    void moveZForFluorescence(const char* logText, int zOffset, int sign);
    /// Returns when X has moved, which at the end of a channel has to be done by hand; false when the program
    /// is left meanwhile.
    bool goToNextShiftField();
    ShiftValues measureFieldShift(int field);
    void showAverageShift(const FieldShifts& shifts);
    /// The four line edits: GFP X, GFP Y, RFP X, RFP Y.
    std::array<QLineEdit*, 4> shiftFields() const;
    void storeShifts();
    void adjustShift(QLineEdit* field, float change);
    void showOverlay(int field);

    // QC measurement

    void enableTargeting(bool enabled);

    // Image capture to a stick

    /// Takes a frame after one exposure and 250 ms and saves it; returns when that is done. False when the
    /// program is left meanwhile.
    bool saveFrameWhenSettled();

    // Identity, options and mirrors

    /// Shows the stored serial number and returns its parts, which may be fewer than three, or longer than
    /// what the fields take.
    QStringList showSerialNumber();
    void applyMirrors();

    // Autofocus

    /// Asks the board for the Z position until the answer has its shape, and shows it.
    int readPositionZ();
    /// Sends a Z setting until the answer has the shape of an echo.
    void sendSettingZ(const QString& command);
    /// Sets step and direction from `from` to `to`, shows where the move will end and returns that.
    int setUpMoveZ(int from, int to);
    void prepareScan(const AutofocusStep& step);
    void beginScan(const AutofocusStep& step);
    void finishScan(const AutofocusStep& step);
    /// The reply to a Z move while a run is under way: the next thing to do, by the state.
    void advanceAutofocus(int position);
    void finishAutofocus();
    QString debugFolder(const AutofocusStep& step) const;
    void saveDebugFrame(const AutofocusStep& step, int width, int height, double value) const;
    void saveDebugTable(const AutofocusStep& step, std::size_t best) const;

    unsigned char* m_pImageBuffer = nullptr;
    bool m_bConnected_Controller = false;
    bool m_bConnected_Camera = false;
    int m_CAM_type = 0; ///< a CameraType
    QTimer* m_timer_FPS = nullptr;
    Controller* m_pController = nullptr;
    QString m_strCommand; ///< the last line built for the board
    protocol_Controller_info m_protocol_info;
    SLIDE_type m_slide_type = SLIDE_2CH;
    int m_slide_channel = -1; ///< from 0; -1: no slide is in
    int m_slide_field = -2; ///< from 0; -1: X home, before the first field; -2: ejected
    int m_slide_motion = SLIDE_MOTION_NONE;
    bool m_bSerialChanged = false;
    bool m_bConnecting = false; ///< a connection sequence is under way: a second press does nothing
    bool m_bLeaving = false; ///< the exit button was pressed: nothing is brought up any more
    float m_fps = 0.0F;

    ILLUMINATION_type m_illumination_type = ILLUMINATION_BF;
    bool m_bLED_On = false;
    double m_illumination_gain = 0.0;
    double m_illumination_exposure = 0.0;
    int m_illumination_LED1 = 0;
    int m_illumination_LED2 = 0;

    int m_slide_start_1ch = 9893; ///< X of the first field of each slide type
    int m_slide_start_2ch = 30931;
    int m_slide_start_3ch = 30505;
    int m_slide_start_8ch = 38291;
    int m_slide_start_prisma = 28580;

    int m_z_target = 0; ///< requested by the last absolute Z move of the panel

    int m_autofocusState = AF_IDLE;
    int m_autofocusSilent = 0; ///< non-zero: no message box at the end of a run
    QString m_strAutofocusing; ///< debug folder; empty: no debug output
    int m_AutofocusingRef = 0; ///< reference, then the best position of each finished step
    int m_autofocusFineStart = 0;
    int m_autofocusCount = 0; ///< frames measured in the current step
    int m_autofocusPos = 0; ///< Z position of the next frame
    alg_autoFocus m_autoFocus;

    z_slope_cal_info m_z_slope_cal;
    int m_z_slope_stage = Z_SLOPE_NONE;

    bool m_bPixelShiftRun = false; ///< flips at every click; true also while the overlay is on view
    alg_pixelShift m_pixelShift;
    std::array<cv::Mat, kShiftFields> m_matBF; ///< frames of the last run, by field
    std::array<cv::Mat, kShiftFields> m_matGFP;
    std::array<cv::Mat, kShiftFields> m_matRFP;
    int m_shiftChannel = ILLUMINATION_BF; ///< array that the next frame goes to
    int m_shiftAdjust = 0; ///< channel of the arrows: 0 GFP, 1 RFP
    int m_shiftField = 0;
    ShiftValues m_shiftAverage = {};

    measure_info m_measure_info;

    MediaMonitor m_media_monitor;
    QString m_usb_mount_path; ///< of the stick that the last capture found; empty: none
    QString m_save_file_name; ///< full path of the picture of the current channel

    Ui::MainWindow* ui = nullptr;
};
