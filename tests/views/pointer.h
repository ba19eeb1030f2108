#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

/// The operator's mouse on a single widget, with places between the pixels and outside of the widget.
namespace pointer {

inline void mouse(QWidget& widget, QEvent::Type type, QPointF place)
{
    QMouseEvent event(type, place, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

inline void drag(QWidget& widget, QPointF from, QPointF to)
{
    mouse(widget, QEvent::MouseButtonPress, from);
    mouse(widget, QEvent::MouseMove, to);
    mouse(widget, QEvent::MouseButtonRelease, to);
}

/// Turns the wheel; an angle of 120 is one notch, in y up, in x tilted.
inline void turn(QWidget& widget, QPoint angle)
{
    QWheelEvent event(QPointF(200, 200), QPointF(200, 200), QPoint(), angle, Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

/// Rows of a test of the wheel: the zoom before, the turn and the zoom after it, alike for both pictures.
inline void addZoomSteps()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<int>("to");
    QTest::newRow("up at 1") << 1 << QPoint(0, 120) << 2;
    QTest::newRow("up at 2") << 2 << QPoint(0, 120) << 4;
    QTest::newRow("up at 4 stays") << 4 << QPoint(0, 120) << 4;
    QTest::newRow("down at 1 stays") << 1 << QPoint(0, -120) << 1;
    QTest::newRow("down at 2") << 2 << QPoint(0, -120) << 1;
    QTest::newRow("down at 4") << 4 << QPoint(0, -120) << 2;
    QTest::newRow("three notches count once") << 1 << QPoint(0, 360) << 2;
    QTest::newRow("the smallest turn counts") << 1 << QPoint(0, 1) << 2;
    QTest::newRow("sideways up") << 1 << QPoint(120, 0) << 2;
    QTest::newRow("sideways down") << 4 << QPoint(-120, 0) << 2;
    QTest::newRow("no turn at 1") << 1 << QPoint(0, 0) << 1;
    QTest::newRow("no turn at 2") << 2 << QPoint(0, 0) << 2;
    QTest::newRow("no turn at 4") << 4 << QPoint(0, 0) << 4;
    QTest::newRow("up at 3") << 3 << QPoint(0, 120) << 3;
    QTest::newRow("down at 3") << 3 << QPoint(0, -120) << 3;
}

} // namespace pointer
