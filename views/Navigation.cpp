#include "views/Navigation.h"

#include <QPainter>

namespace {

/// First cell of the overview that the window covers along one axis.
int overviewBegin(int position, int overview, int image)
{
    return position * overview / image;
}

/// Last cell of the overview that the window covers along one axis.
int overviewEnd(int begin, int overview, int image, int display)
{
    return begin + overview - ((image - display) * overview / image) - 1;
}

} // namespace

void Navigation::setNavigationColor(int red, int green, int blue)
{
    m_color.setRgb(red, green, blue);
}

void Navigation::setNavigationSize(int width, int height)
{
    m_frameRect.setSize(QSize(width, height));
}

void Navigation::setDisplaySize(int width, int height)
{
    m_displaySize = QSize(width, height);
}

void Navigation::setImageSize(int width, int height)
{
    m_imageSize = QSize(width, height);
}

void Navigation::setNavigationPosition(int x, int y)
{
    if (m_imageSize.width() == 0 || m_imageSize.height() == 0)
        return;

    const int left = overviewBegin(x, m_frameRect.width(), m_imageSize.width());
    const int top = overviewBegin(y, m_frameRect.height(), m_imageSize.height());
    const int right = overviewEnd(left, m_frameRect.width(), m_imageSize.width(), m_displaySize.width());
    const int bottom = overviewEnd(top, m_frameRect.height(), m_imageSize.height(), m_displaySize.height());
    m_viewRect.setCoords(left, top, right, bottom);
}

void Navigation::draw(QPainter& painter) const
{
    painter.setPen(m_color);
    painter.drawRect(m_frameRect);
    painter.drawRect(m_viewRect);
}
