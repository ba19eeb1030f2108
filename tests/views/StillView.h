#pragma once

#include "tests/views/TargetFrame.h"
#include "tests/views/picture.h"
#include "views/CAPTURE_ImageWidget.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

// A still image widget of 540 by 432 pixels and the hand that works on it.
struct StillView {
    StillView() { widget.resize(540, 432); }

    void show(TargetFrame& frame)
    {
        widget.setImageData(frame.data(), frame.width(), frame.height(), frame.bits());
    }

    void mouse(QEvent::Type type, QPointF place)
    {
        QMouseEvent event(type, place, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }

    void drag(QPointF from, QPointF to)
    {
        mouse(QEvent::MouseButtonPress, from);
        mouse(QEvent::MouseMove, to);
        mouse(QEvent::MouseButtonRelease, to);
    }

    void turn(QPoint angle)
    {
        QWheelEvent event(QPointF(200, 200), QPointF(200, 200), QPoint(), angle, Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &event);
    }

    // Puts the search position to a frame pixel, wherever it lies: the view is panned so that the click can
    // hit the widget, and targeting mode stays on.
    void target(int x, int y)
    {
        widget.setTargetingMode(false);
        drag({ 0, 0 }, { 5000, 5000 });
        const QPoint view(std::max(0, std::min(x - 270, 740)), std::max(0, std::min(y - 216, 528)));
        drag({ 0, 0 }, -view);
        widget.setTargetingMode(true);
        const QPointF click = QPoint(x, y) - view;
        mouse(QEvent::MouseButtonPress, click);
        mouse(QEvent::MouseButtonRelease, click);
    }

    QImage painted() { return picture::of(widget); }

    CAPTURE_ImageWidget widget;
};
