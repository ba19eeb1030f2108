#pragma once

#include "views/Navigation.h"
#include "views/measure_info.h"

#include <opencv2/core.hpp>

#include <QPixmap>
#include <QWidget>

#include <cstddef>
#include <vector>

/// One captured still frame, in the place of the live view: zoomed with the wheel, panned with the hand. In
/// targeting mode a click sets a search position; the marks found near two such positions give the optical
/// magnification and the counting volume of the instrument. GUI thread only; created by the form, owned by
/// the main window.
class CAPTURE_ImageWidget : public QWidget {
    Q_OBJECT

public:
    explicit CAPTURE_ImageWidget(QWidget* parent = nullptr);

    /// Euclidean distance in pixels.
    static float diameter(cv::Point a, cv::Point b);

    /// Rounds `value` to a whole multiple of 1 / `scale`, halves away from zero. The product is single
    /// precision, the half is added in double precision.
    static float round2(float value, float scale);

public slots:
    /// Shows a copy of a frame of width by height pixels without padding: 24 bits are RGB, anything else one
    /// grey byte a pixel. `pixels` stays the caller's. A frame of the same size resets the zoom, another size
    /// keeps it. Without pixels (null, an empty size, less than 8 bits) the widget stays as it was and the
    /// log tells.
    void setImageData(unsigned char* pixels, int width, int height, int bits);

    /// Size of the frame in pixels; setImageData() calls it when a frame of another size arrives.
    void setImageSize(int width, int height);

    /// Zoom factor, 1, 2 or 4. Below 1.0 nothing but the limits of the view is applied.
    void setScale(double scale);

    /// With true a click sets the search position, and the last one is forgotten; with false a drag pans.
    void setTargetingMode(bool on);

    /// Finds the one dark mark near the search position and stores its centre as the first (0) or second (1)
    /// point: sig_measure_point() and a picture with the crosses; or sig_measure_error(), and nothing
    /// changes. Blocks for the filters of the whole frame, some tens of ms.
    void setPoint(int index);

    /// Computes magnification and volume from the two points as they are stored, (0, 0) where none was found,
    /// and emits sig_measure_result(). A distance of zero is not guarded: the results are infinite or
    /// undefined.
    void measure2Point();

signals:
    /// A centre was found: 0 or 1, and its frame pixel.
    void sig_measure_point(int index, int x, int y);
    void sig_measure_result(measure_info info);
    void sig_measure_error(TargetingError error);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void updateNavigation();
    void limitView();
    void moveSearchPosition(int x, int y);
    std::size_t frameBytes() const;
    cv::Mat greySource();
    void showPoints(const cv::Mat& source);

    int m_image_width = 1280;
    int m_image_height = 960;
    int m_image_bits = 8;
    std::vector<unsigned char> m_image_data;
    double m_scale = 1.0;
    QPixmap m_pixmap;
    Navigation m_navigation;
    bool m_mouse_down = false;
    int m_view_x = 0;
    int m_view_y = 0;
    int m_press_x = 0;
    int m_press_y = 0;
    int m_last_x = 0;
    int m_last_y = 0;
    bool m_targeting_mode = false;
    bool m_cursor_set = false;
    int m_cursor_x = 0;
    int m_cursor_y = 0;
    bool m_point1_set = false;
    bool m_point2_set = false;
    cv::Point m_point1;
    cv::Point m_point2;
    measure_info m_measure_info;
};
