#include "views/reticle.h"

#include <QPainter>

namespace {

constexpr int kWidth = 540;
constexpr int kHeight = 405;
constexpr int kCenterX = 270;
constexpr int kCenterY = 202;

constexpr int kPitch = 10;
constexpr int kTicksUpOrDown = 20;
constexpr int kTicksLeftOrRight = 26;

/// Half the length of the k-th tick from the middle.
constexpr int reach(int k)
{
    return k % 5 == 0 ? 30 : 15;
}

void drawTicksAcrossVertical(QPainter& painter, int direction)
{
    for (int k = 1; k <= kTicksUpOrDown; ++k) {
        const int y = kCenterY + direction * kPitch * k;
        painter.drawLine(kCenterX - reach(k), y, kCenterX + reach(k), y);
    }
}

void drawTicksAcrossHorizontal(QPainter& painter, int direction)
{
    for (int k = 1; k <= kTicksLeftOrRight; ++k) {
        const int x = kCenterX + direction * kPitch * k;
        painter.drawLine(x, kCenterY - reach(k), x, kCenterY + reach(k));
    }
}

} // namespace

void drawReticle(QPainter& painter)
{
    painter.setPen(Qt::magenta);
    painter.drawLine(0, kCenterY, kWidth, kCenterY);
    painter.drawLine(kCenterX, 0, kCenterX, kHeight);

    painter.setPen(Qt::red);
    drawTicksAcrossVertical(painter, -1);
    drawTicksAcrossVertical(painter, 1);
    drawTicksAcrossHorizontal(painter, -1);
    drawTicksAcrossHorizontal(painter, 1);
}
