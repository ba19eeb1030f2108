#pragma once

#include "views/Navigation.h"

#include <QImage>
#include <QPoint>
#include <QVector>
#include <QWidget>

#include <array>

/// The live picture of the main window. Its constructor finds out which camera is on the bus and creates the
/// frame source as a child of this widget; from then on each new frame is copied and painted once, tinted by
/// the colour table of the channel, fitted into the widget or as a window that the operator drags over the
/// enlarged frame. GUI thread only; frames arrive by the queued slot_update(). Created by the form, owned by
/// the main window.
class CameraView : public QWidget {
    Q_OBJECT

public:
    /// Searches the cameras, which blocks for as long as the bus takes; without a camera it blocks until the
    /// operator has closed a message box. `pseudoColorTableIndex` as in setPseudoColorTable().
    explicit CameraView(QWidget* parent = nullptr, int pseudoColorTableIndex = 0);
    ~CameraView() override;

    /// The one live view, known before its frame source is created, since the source connects to it.
    static CameraView* Instance();

    /// Puts overview, offsets and zoom into their first state.
    void initialize();

    /// Zoom factor of the picture when it is not fitted: 1, 2 or 4. Below 1.0 nothing but the limits is
    /// applied.
    void setScale(double scale);

    /// True fits the whole frame into the widget and forgets zoom and offsets; false shows it 1:1 from there
    /// on.
    void setFitMode(bool on);

    /// The measuring reticle over the picture.
    void setCrossLine(bool on);

    /// Tints the picture from the next frame on: 0 grey, 1 red, 2 green, 3 blue, 4 yellow, 5 cyan, 6 magenta.
    /// The caller keeps to this range; it is not checked.
    void setPseudoColorTable(int index);
    int pseudoColorTable() const;

    /// Appends 256 opaque entries to each of the seven tables; called once, by the constructor.
    void initializePseudoColorTable();

    /// Which camera the constructor found, a CameraType.
    int cameraType() const { return m_cameraType; }

public slots:
    void slot_update();

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// False when the camera on the bus cannot be set up (another program has it, or it lacks a feature): it
    /// then counts as none, so that the window comes up and says so.
    bool createBaslerSource();
    void limitOffsets();

    static CameraView* m_instance;

    int m_pseudoColorTableIndex = 0;
    QImage m_image;
    std::array<QVector<QRgb>, 7> m_colorTables;
    bool m_bFitMode = true;
    bool m_bCrossLine = false;
    double m_scale = 1.0;
    int m_offsetX = 0;
    int m_offsetY = 0;
    QPoint m_pressPos;
    QPoint m_movePos;
    Navigation m_navigation;
    bool m_bShowNavigation = false;
    int m_cameraType = 0;
};
