#include "views/zoom.h"

#include <QWheelEvent>

#include <algorithm>

namespace {

struct ZoomStep {
    int step;
    int level; ///< integer part of the scale before the step
    double scale; ///< after it
};

constexpr ZoomStep kZoomSteps[] = {
    { 1, 1, 2.0 },
    { 1, 2, 4.0 },
    { -1, 2, 1.0 },
    { -1, 4, 2.0 },
};

} // namespace

int zoom::wheelStep(const QWheelEvent* event)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    // The one turn of an event, whichever axis it came on: angleDelta() is empty in the second of the two
    // events that a diagonal turn is delivered as.
    const int delta = event->delta();
    QT_WARNING_POP
    return (delta > 0) - (delta < 0);
}

double zoom::nextScale(double scale, int step)
{
    const int level = static_cast<int>(scale);
    for (const ZoomStep& row : kZoomSteps)
        if (row.step == step && row.level == level)
            return row.scale;
    return scale;
}

int zoom::limitedOffset(int offset, int image, int widget, double scale)
{
    const double limit = scale >= 1.0 ? image - widget / scale : image * scale - widget;
    if (offset > limit)
        offset = static_cast<int>(limit);
    return std::max(offset, 0);
}
