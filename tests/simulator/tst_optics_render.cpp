#include "simulator/optics/GroundTruth.h"
#include "simulator/optics/Renderer.h"

#include <opencv2/core.hpp>

#include <QtTest>

using namespace qr9::optics;

namespace {

/// The state in which the instrument stands in bright field, in focus, with the settings that it comes with.
OpticalState brightFieldInFocus(const UnitConstants& unit, int xSteps)
{
    OpticalState state;
    state.xSteps = xSteps;
    state.zSteps = qRound(bestFocus(unit, Channel::BrightField, xSteps));
    state.leds = { 7, 6, 0, 0 };
    return state;
}

} // namespace

class tst_optics_render : public QObject {
    Q_OBJECT
private slots:
    void frame_isGreyAndOfTheCamerasSize()
    {
        const UnitConstants unit = unitFromSeed(1);
        cv::Mat frame;
        Renderer(unit).render(brightFieldInFocus(unit, 30931), 1, frame);
        QCOMPARE(frame.type(), CV_8UC1);
        QCOMPARE(frame.rows, 960);
        QCOMPARE(frame.cols, 1280);
    }

    void sameFrameNumber_givesSameBytes()
    {
        const UnitConstants unit = unitFromSeed(2);
        const OpticalState state = brightFieldInFocus(unit, 30931);
        cv::Mat one;
        cv::Mat two;
        Renderer(unit).render(state, 7, one);
        Renderer(unit).render(state, 7, two);
        QCOMPARE(cv::norm(one, two, cv::NORM_L1), 0.0);
    }
};

QTEST_APPLESS_MAIN(tst_optics_render)
#include "tst_optics_render.moc"
