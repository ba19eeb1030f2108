#include "views/CAPTURE_ImageWidget.h"

#include "views/targetmark.h"
#include "views/zoom.h"

#include <opencv2/imgproc.hpp>

#include <QDebug>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace {

/// The overview is the frame divided by this, 100 pixels wide for the camera's frame.
constexpr double kOverviewDivisor = 12.8;

/// Whole pixel of an event, halves away from zero on either side of it (QPointF::toPoint() rounds those below
/// zero up).
QPoint wholePixel(const QMouseEvent* event)
{
    const QPointF place = event->localPos();
    return { static_cast<int>(std::lround(place.x())), static_cast<int>(std::lround(place.y())) };
}

} // namespace

CAPTURE_ImageWidget::CAPTURE_ImageWidget(QWidget* parent)
    : QWidget(parent)
    , m_pixmap(m_image_width, m_image_height)
{
    m_pixmap.fill(QColor(Qt::black));
    m_navigation.setNavigationColor(255, 255, 0);
    m_navigation.setNavigationSize(100, 80);
}

void CAPTURE_ImageWidget::setImageData(unsigned char* pixels, int width, int height, int bits)
{
    if (pixels == nullptr || width <= 0 || height <= 0 || bits < 8) {
        qDebug() << Q_FUNC_INFO << "no picture of" << width << "by" << height << "with" << bits << "bits";
        return;
    }

    const std::size_t bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height)
        * static_cast<std::size_t>(bits) / 8;
    m_image_data.assign(pixels, pixels + bytes);
    m_image_bits = bits;

    const QImage image = bits == 24
        ? QImage(m_image_data.data(), width, height, 3 * width, QImage::Format_RGB888)
        : QImage(m_image_data.data(), width, height, width, QImage::Format_Indexed8);
    m_pixmap = QPixmap::fromImage(image);

    if (width != m_image_width || height != m_image_height) {
        setImageSize(width, height);
        updateNavigation();
        m_view_x = 0;
        m_view_y = 0;
        update();
    } else {
        updateNavigation();
        setScale(1.0);
    }
}

void CAPTURE_ImageWidget::setImageSize(int width, int height)
{
    m_image_width = width;
    m_image_height = height;
}

void CAPTURE_ImageWidget::setScale(double scale)
{
    if (scale >= 1.0)
        m_scale = scale;
    m_navigation.setDisplaySize(static_cast<int>(width() / m_scale), static_cast<int>(height() / m_scale));
    limitView();
    m_navigation.setNavigationPosition(m_view_x, m_view_y);
    update();
}

void CAPTURE_ImageWidget::setTargetingMode(bool on)
{
    m_targeting_mode = on;
    if (on)
        m_cursor_set = false;
    update();
}

void CAPTURE_ImageWidget::setPoint(int index)
{
    // Before the first frame there is nothing to find.
    targetmark::Contours contours;
    cv::Mat source;
    cv::Rect window;
    if (!m_image_data.empty() && m_image_data.size() == frameBytes()) {
        source = greySource();
        window = targetmark::searchWindow({ m_cursor_x, m_cursor_y }, source.size());
        contours = targetmark::darkContours(source, window);
    }

    if (contours.empty()) {
        emit sig_measure_error(TARGETING_NO_CIRCLE);
        return;
    }
    if (contours.size() > 1) {
        emit sig_measure_error(TARGETING_TOO_MANY_CIRCLES);
        return;
    }

    const cv::Point center = targetmark::center(contours.front(), window);
    if (index == 0) {
        m_point1_set = true;
        m_point1 = center;
        emit sig_measure_point(0, center.x, center.y);
    } else if (index == 1) {
        m_point2_set = true;
        m_point2 = center;
        emit sig_measure_point(1, center.x, center.y);
    }
    showPoints(source);
}

bool CAPTURE_ImageWidget::event(QEvent* event)
{
    if (event->type() == QEvent::WindowDeactivate)
        qDebug() << "QEvent::WindowDeactivate";
    return QWidget::event(event);
}

void CAPTURE_ImageWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (!m_pixmap.isNull()) {
        painter.save();
        if (m_scale != 1.0)
            painter.scale(m_scale, m_scale);
        painter.drawPixmap(rect(), m_pixmap, QRect(QPoint(m_view_x, m_view_y), size()));
        painter.restore();
        m_navigation.draw(painter);
    }
    if (m_targeting_mode && m_cursor_set) {
        painter.setPen(Qt::green);
        // The outline is the outermost pixels of what is searched.
        painter.drawRect(m_cursor_x - m_view_x - targetmark::kSearchBefore,
            m_cursor_y - m_view_y - targetmark::kSearchBefore, targetmark::kSearchSize - 1,
            targetmark::kSearchSize - 1);
    }
}

void CAPTURE_ImageWidget::mousePressEvent(QMouseEvent* event)
{
    const QPoint position = wholePixel(event);
    m_press_x = position.x();
    m_press_y = position.y();
    // The first move of a drag counts from the press.
    m_last_x = m_press_x;
    m_last_y = m_press_y;
    m_mouse_down = true;
    if (m_targeting_mode) {
        m_cursor_set = true;
        moveSearchPosition(m_press_x, m_press_y);
    }
}

void CAPTURE_ImageWidget::mouseReleaseEvent(QMouseEvent*)
{
    m_mouse_down = false;
}

void CAPTURE_ImageWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_mouse_down)
        return;

    const QPoint position = wholePixel(event);
    const int dx = position.x() - m_last_x;
    const int dy = position.y() - m_last_y;
    m_last_x = position.x();
    m_last_y = position.y();

    if (m_targeting_mode) {
        moveSearchPosition(position.x(), position.y());
        return;
    }
    // The picture follows the hand.
    m_view_x -= dx;
    m_view_y -= dy;
    limitView();
    m_navigation.setNavigationPosition(m_view_x, m_view_y);
    update();
}

void CAPTURE_ImageWidget::wheelEvent(QWheelEvent* event)
{
    setScale(zoom::nextScale(m_scale, zoom::wheelStep(event)));
}

void CAPTURE_ImageWidget::updateNavigation()
{
    m_navigation.setNavigationSize(static_cast<int>(m_image_width / kOverviewDivisor),
        static_cast<int>(m_image_height / kOverviewDivisor));
    m_navigation.setDisplaySize(static_cast<int>(width() / m_scale), static_cast<int>(height() / m_scale));
    m_navigation.setImageSize(m_image_width, m_image_height);
    m_navigation.setNavigationPosition(0, 0);
}

void CAPTURE_ImageWidget::limitView()
{
    m_view_x = zoom::limitedOffset(m_view_x, m_image_width, width(), m_scale);
    m_view_y = zoom::limitedOffset(m_view_y, m_image_height, height(), m_scale);
}

/// The search position is a frame pixel only at zoom 1: like the green square it takes no notice of the zoom.
void CAPTURE_ImageWidget::moveSearchPosition(int x, int y)
{
    m_cursor_x = x + m_view_x;
    m_cursor_y = y + m_view_y;
    update();
}

std::size_t CAPTURE_ImageWidget::frameBytes() const
{
    return static_cast<std::size_t>(m_image_width) * static_cast<std::size_t>(m_image_height)
        * static_cast<std::size_t>(m_image_bits) / 8;
}

/// The frame as one grey plane: a header on the stored frame, or the green plane of a coloured one.
cv::Mat CAPTURE_ImageWidget::greySource()
{
    if (m_image_bits == 8)
        return { m_image_height, m_image_width, CV_8UC1, m_image_data.data() };

    cv::Mat source(m_image_height, m_image_width, CV_8UC1, cv::Scalar(0));
    if (m_image_bits == 24) {
        const cv::Mat color(m_image_height, m_image_width, CV_8UC3, m_image_data.data());
        cv::extractChannel(color, source, 1);
    }
    return source;
}

/// Shows the frame in grey with a cross and a label at each point that was ever found.
void CAPTURE_ImageWidget::showPoints(const cv::Mat& source)
{
    cv::Mat picture;
    cv::cvtColor(source, picture, cv::COLOR_GRAY2BGR);
    if (m_point1_set)
        targetmark::drawPoint(picture, m_point1, "1");
    if (m_point2_set)
        targetmark::drawPoint(picture, m_point2, "2");
    cv::cvtColor(picture, picture, cv::COLOR_BGR2RGB);
    m_pixmap = QPixmap::fromImage(QImage(
        picture.data, picture.cols, picture.rows, static_cast<int>(picture.step), QImage::Format_RGB888));
    update();
}
