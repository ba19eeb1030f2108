#pragma once

#include <QColor>
#include <QRect>
#include <QSize>

class QPainter;

/// The overview rectangle of an enlarged picture: a small outline of the whole frame in the top left corner
/// of a view, and in it the part of the frame that is on show. A plain value, owned by the view that draws
/// it.
class Navigation {
public:
    /// Pen of both rectangles; red, green, blue from 0 to 255.
    void setNavigationColor(int red, int green, int blue);

    /// Size of the overview in widget pixels; its top left corner stays.
    void setNavigationSize(int width, int height);

    /// Size of the window into the frame, in frame pixels.
    void setDisplaySize(int width, int height);

    /// Size of the whole frame, in frame pixels.
    void setImageSize(int width, int height);

    /// Scales the window whose top left frame pixel is (x, y) into the overview, with truncating integer
    /// division at every step. Colour and sizes are taken as they are set at this moment. A frame size with a
    /// zero in it leaves the rectangle as it is.
    void setNavigationPosition(int x, int y);

    /// Overview of the whole frame, in widget coordinates.
    const QRect& frameRect() const { return m_frameRect; }

    /// Part of the overview that is on show, in widget coordinates.
    const QRect& viewRect() const { return m_viewRect; }

    /// Draws frame and view rectangle in the navigation colour; the pen stays set in the painter.
    void draw(QPainter& painter) const;

private:
    QColor m_color;
    QRect m_frameRect;
    QRect m_viewRect;
    QSize m_imageSize;
    QSize m_displaySize;
};
