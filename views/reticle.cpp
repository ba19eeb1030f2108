#include "views/reticle.h"

#include <QPainter>

namespace {

constexpr int WIDTH = 540;
constexpr int HEIGHT = 405;
constexpr int CENTER_X = 270;
constexpr int CENTER_Y = 202;

constexpr int PITCH = 10;
constexpr int TICKS_UP_OR_DOWN = 20;
constexpr int TICKS_LEFT_OR_RIGHT = 26;

/// Half the length of the k-th tick from the middle.
constexpr int reach(int k)
{
    return k % 5 == 0 ? 30 : 15;
}

void drawTicksAcrossVertical(QPainter& painter, int direction)
{
    for (int k = 1; k <= TICKS_UP_OR_DOWN; ++k) {
        const int y = CENTER_Y + direction * PITCH * k;
        painter.drawLine(CENTER_X - reach(k), y, CENTER_X + reach(k), y);
    }
}

void drawTicksAcrossHorizontal(QPainter& painter, int direction)
{
    for (int k = 1; k <= TICKS_LEFT_OR_RIGHT; ++k) {
        const int x = CENTER_X + direction * PITCH * k;
        painter.drawLine(x, CENTER_Y - reach(k), x, CENTER_Y + reach(k));
    }
}

} // namespace

void drawReticle(QPainter& painter)
{
    painter.setPen(Qt::magenta);
    painter.drawLine(0, CENTER_Y, WIDTH, CENTER_Y);
    painter.drawLine(CENTER_X, 0, CENTER_X, HEIGHT);

    painter.setPen(Qt::red);
    drawTicksAcrossVertical(painter, -1);
    drawTicksAcrossVertical(painter, 1);
    drawTicksAcrossHorizontal(painter, -1);
    drawTicksAcrossHorizontal(painter, 1);
}
