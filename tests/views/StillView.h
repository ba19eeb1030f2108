#pragma once

#include "tests/views/TargetFrame.h"
#include "tests/views/picture.h"
#include "tests/views/pointer.h"
#include "views/CAPTURE_ImageWidget.h"

#include <algorithm>

/// A still image widget of 540 by 432 pixels and the hand that works on it.
struct StillView {
    static constexpr QSize kSize { 540, 432 };

    StillView() { widget.resize(kSize); }

    void show(TargetFrame& frame)
    {
        widget.setImageData(frame.data(), frame.width(), frame.height(), frame.bits());
    }

    /// Shows picture::frame() of these sides. The bytes of the caller are gone after it.
    void showFrame(int width = 1280, int height = 960)
    {
        std::vector<unsigned char> frame = picture::frame(width, height);
        widget.setImageData(frame.data(), width, height, 8);
    }

    void mouse(QEvent::Type type, QPointF place) { pointer::mouse(widget, type, place); }
    void drag(QPointF from, QPointF to) { pointer::drag(widget, from, to); }
    void turn(QPoint angle) { pointer::turn(widget, angle); }

    /// Sets the search position by a click at this pixel of the widget; targeting mode stays on.
    void targetAt(QPointF place)
    {
        widget.setTargetingMode(true);
        mouse(QEvent::MouseButtonPress, place);
        mouse(QEvent::MouseButtonRelease, place);
    }

    /// Sets the search position to a frame pixel, wherever it lies: the view is panned so that the click can
    /// hit the widget.
    void target(int x, int y)
    {
        widget.setTargetingMode(false);
        drag({ 0, 0 }, { 5000, 5000 });
        const QPoint view(std::clamp(x - 270, 0, 740), std::clamp(y - 216, 0, 528));
        drag({ 0, 0 }, -view);
        targetAt(QPoint(x, y) - view);
    }

    QImage painted() { return picture::of(widget); }

    /// Where the painted widget differs first from this picture; empty when it does not.
    QString differenceFrom(const QImage& expected) { return picture::difference(painted(), expected); }

    CAPTURE_ImageWidget widget;
};
