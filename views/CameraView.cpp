#include "views/CameraView.h"

#include "camera/ar0134_framedelivery.h"
#include "camera/baslerframedelivery.h"
#include "camera/framedelivery.h"
#include "views/camera_type.h"
#include "views/reticle.h"
#include "views/zoom.h"

#include <QDebug>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <iterator>
#include <tuple>

namespace {

constexpr int kFrameWidth = FrameDelivery::kFrameWidth;
constexpr int kFrameHeight = FrameDelivery::kFrameHeight;

/// Which of the three colours a table shows; the grey value goes into each of them.
struct Tint {
    bool red;
    bool green;
    bool blue;
};

constexpr Tint kTints[] = {
    { true, true, true }, // grey, bright field
    { true, false, false }, // red, RFP
    { false, true, false }, // green, GFP
    { false, false, true }, // blue
    { true, true, false }, // yellow
    { false, true, true }, // cyan
    { true, false, true }, // magenta
};

} // namespace

CameraView* CameraView::m_instance = nullptr;

CameraView::CameraView(QWidget* parent, int pseudoColorTableIndex)
    : QWidget(parent)
{
    qDebug() << Q_FUNC_INFO;
    m_instance = this;
    m_pseudoColorTableIndex = pseudoColorTableIndex;
    initializePseudoColorTable();

    if (BaslerFrameDelivery::isCameraAttached() && createBaslerSource()) {
        qDebug() << Q_FUNC_INFO << "!!! Basler Camera is Attached !!!";
        m_cameraType = CAMERA_BASLER;
    } else {
        new Ar0134FrameDelivery(this);
        if (FrameDelivery::m_pInstance != nullptr) {
            qDebug() << Q_FUNC_INFO << "!!! AR0134 Camera is Attached !!!";
            m_cameraType = CAMERA_AR0134;
        } else {
            QMessageBox::information(this, "Error", "Check the CAMERA connection !", QMessageBox::Ok);
            qDebug() << Q_FUNC_INFO << "!!! No camera is found !!!";
            m_cameraType = CAMERA_NONE;
        }
    }

    m_image = QImage(kFrameWidth, kFrameHeight, QImage::Format_Indexed8);
    m_image.setColorTable(m_colorTables[static_cast<std::size_t>(m_pseudoColorTableIndex)]);
    // Until the first frame arrives there is nothing to show but black.
    m_image.fill(0);

    setAttribute(Qt::WA_AcceptTouchEvents);
    m_bFitMode = true;
    m_bCrossLine = false;
    initialize();
}

bool CameraView::createBaslerSource()
{
    try {
        new BaslerFrameDelivery(this);
    } catch (...) { // the source has logged the reason and let go of the camera
        qDebug() << Q_FUNC_INFO << "!!! Basler Camera cannot be used !!!";
        return false;
    }
    return true;
}

CameraView::~CameraView()
{
    qDebug() << Q_FUNC_INFO;
    if (m_instance == this)
        m_instance = nullptr;
}

CameraView* CameraView::Instance()
{
    qDebug() << Q_FUNC_INFO;
    return m_instance;
}

void CameraView::initialize()
{
    m_bShowNavigation = width() < kFrameWidth && height() < kFrameHeight;
    m_navigation.setNavigationPosition(0, 0);
    m_navigation.setNavigationColor(255, 255, 0);
    m_navigation.setNavigationSize(100, 67);
    m_navigation.setDisplaySize(540, 405);
    m_navigation.setImageSize(kFrameWidth, kFrameHeight);
    m_offsetX = 0;
    m_offsetY = 0;
    m_navigation.setNavigationPosition(m_offsetX, m_offsetY);
    m_scale = 1.0;
}

void CameraView::setScale(double scale)
{
    if (scale >= 1.0) {
        m_scale = scale;
        m_navigation.setDisplaySize(static_cast<int>(width() / scale), static_cast<int>(height() / scale));
    }
    limitOffsets();
    m_navigation.setNavigationPosition(m_offsetX, m_offsetY);
    update();
}

void CameraView::setFitMode(bool on)
{
    qDebug() << Q_FUNC_INFO << on;
    m_bFitMode = on;
    if (on) {
        m_offsetX = 0;
        m_offsetY = 0;
        m_scale = 1.0;
        m_navigation.setDisplaySize(width(), height());
        m_navigation.setNavigationPosition(m_offsetX, m_offsetY);
    }
    update();
}

void CameraView::setCrossLine(bool on)
{
    qDebug() << Q_FUNC_INFO << on;
    m_bCrossLine = on;
    update();
}

void CameraView::setPseudoColorTable(int index)
{
    qDebug() << Q_FUNC_INFO;
    m_pseudoColorTableIndex = index;
    m_image.setColorTable(m_colorTables[static_cast<std::size_t>(index)]);
}

int CameraView::pseudoColorTable() const
{
    qDebug() << Q_FUNC_INFO;
    return m_pseudoColorTableIndex;
}

void CameraView::initializePseudoColorTable()
{
    qDebug() << Q_FUNC_INFO;
    static_assert(std::size(kTints) == std::tuple_size<decltype(m_colorTables)>::value);
    for (std::size_t i = 0; i < m_colorTables.size(); ++i) {
        const Tint& tint = kTints[i];
        for (int v = 0; v < 256; ++v)
            m_colorTables[i].append(qRgb(tint.red ? v : 0, tint.green ? v : 0, tint.blue ? v : 0));
    }
}

void CameraView::slot_update()
{
    update();
}

bool CameraView::event(QEvent* event)
{
    // The number is part of a line that readers of the log look for.
    if (event->type() == QEvent::WindowDeactivate)
        qDebug() << Q_FUNC_INFO << 419 << "QEvent::WindowDeactivate";
    return QWidget::event(event);
}

void CameraView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    FrameDelivery* source = FrameDelivery::m_pInstance;
    qDebug() << "showEvent" << (source != nullptr && source->getAutoTriggeringMode());
}

void CameraView::hideEvent(QHideEvent* event)
{
    qDebug() << "hideEvent";
    QWidget::hideEvent(event);
}

void CameraView::paintEvent(QPaintEvent*)
{
    FrameDelivery* source = FrameDelivery::m_pInstance;
    if (source == nullptr || !source->isRunning())
        return;
    // Without a new frame the last one is shown again.
    source->pushQImage(m_image);

    QPainter painter(this);
    if (m_bFitMode) {
        painter.drawImage(QRectF(0, 0, width(), height()), m_image, QRectF(0, 0, kFrameWidth, kFrameHeight));
    } else {
        painter.save();
        painter.scale(m_scale, m_scale);
        painter.drawImage(0, 0, m_image, m_offsetX, m_offsetY, width(), height());
        painter.restore();
        if (m_bShowNavigation)
            m_navigation.draw(painter);
    }
    if (m_bCrossLine)
        drawReticle(painter);
}

void CameraView::mousePressEvent(QMouseEvent* event)
{
    m_pressPos = event->pos();
}

void CameraView::mouseReleaseEvent(QMouseEvent*) { }

void CameraView::mouseMoveEvent(QMouseEvent* event)
{
    m_movePos = event->pos();
    m_offsetX -= m_movePos.x() - m_pressPos.x();
    m_offsetY -= m_movePos.y() - m_pressPos.y();
    limitOffsets();
    m_pressPos = m_movePos;
    // No repaint of its own: the running video brings one with the next frame.
    m_navigation.setNavigationPosition(m_offsetX, m_offsetY);
}

void CameraView::wheelEvent(QWheelEvent* event)
{
    if (!m_bFitMode)
        setScale(zoom::nextScale(m_scale, zoom::wheelStep(event)));
    update();
}

void CameraView::limitOffsets()
{
    m_offsetX = zoom::limitedOffset(m_offsetX, kFrameWidth, width(), m_scale);
    m_offsetY = zoom::limitedOffset(m_offsetY, kFrameHeight, height(), m_scale);
}
