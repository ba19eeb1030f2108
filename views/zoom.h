#pragma once

class QWheelEvent;

/// What the live view and the still image have in common when they are enlarged and panned.
namespace zoom {

/// Direction of a turn of the wheel: 1 up, -1 down, 0 for an event without a turn. A wheel that tilts
/// sideways counts like one that is turned.
int wheelStep(const QWheelEvent* event);

/// Zoom factor after one step of the wheel (1 or -1): 1, 2, 4 and back. Whatever has no row in the table of
/// steps keeps its scale.
double nextScale(double scale, int step);

/// Limits the first frame pixel on show along one axis, so that the window into the frame stays inside it:
/// `offset` and `image` in frame pixels, `widget` in widget pixels. Never below 0.
int limitedOffset(int offset, int image, int widget, double scale);

} // namespace zoom
