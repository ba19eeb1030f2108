#include "simulator/optics/Defocus.h"

#include "tst_optics_samples.h"

#include <QtTest>

using namespace qr9::optics;
using namespace qr9::optics::samples;

namespace {

/// Walks a grid of Z positions downwards as the autofocus does and returns the one of the sharpest frame.
class Walker {
public:
    Walker(const UnitConstants& unit, const OpticalState& state)
        : m_renderer(unit)
        , m_state(state)
    {
    }

    int best(int middle, int step, int frames)
    {
        double most = -1.0;
        int at = 0;
        for (int i = 0; i < frames; ++i) {
            m_state.zSteps = middle + step * (frames / 2 - i);
            m_renderer.render(m_state, ++m_frameNumber, m_frame);
            const double value
                = m_state.filter == 1 ? varianceOfLaplacian(m_frame) : meanSquaredGradient(m_frame);
            if (value > most) {
                most = value;
                at = m_state.zSteps;
            }
        }
        return at;
    }

private:
    Renderer m_renderer;
    OpticalState m_state;
    std::uint64_t m_frameNumber = 0;
    cv::Mat m_frame;
};

} // namespace

/// Blur grows with the distance from focus, so that the coarse and the fine walk both find it.
class tst_optics_focus : public QObject {
    Q_OBJECT
private slots:
    void sharpness_fallsWithTheDistanceFromFocus_data()
    {
        QTest::addColumn<int>("channel");
        QTest::newRow("bright field") << 0;
        QTest::newRow("GFP") << 1;
        QTest::newRow("RFP") << 2;
    }

    void sharpness_fallsWithTheDistanceFromFocus()
    {
        QFETCH(int, channel);
        const UnitConstants unit = withoutNoise(UnitConstants());
        Renderer renderer(unit);
        OpticalState state = inFocus(unit, static_cast<Channel>(channel), kNominalA1);
        const int focus = state.zSteps;
        double before = 1e9;
        cv::Mat frame;
        for (const int distance : { 0, 30, 57, 115, 230, 345, 460, 575, 690, 920, 1380, 1840, 2300, 3220 }) {
            state.zSteps = focus + distance;
            renderer.render(state, 1, frame);
            const double value = meanSquaredGradient(frame);
            QVERIFY2(value < before, qPrintable(QString::number(distance)));
            before = value;
        }
    }

    void blur_isTheSameOnBothSidesOfFocus()
    {
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = inFocus(unit, Channel::BrightField, kNominalA1);
        const int focus = state.zSteps;
        QCOMPARE(static_cast<double>(focus), bestFocus(unit, Channel::BrightField, kNominalA1));
        for (const int distance : { 1, 115, 460, 1000, 3220 }) {
            state.zSteps = focus + distance;
            const cv::Mat above = frameOf(unit, state);
            state.zSteps = focus - distance;
            QCOMPARE(cv::norm(above, frameOf(unit, state), cv::NORM_INF), 0.0);
        }
    }

    void blur_growsAsTheOpticsHaveIt_data()
    {
        QTest::addColumn<double>("steps");
        QTest::addColumn<double>("expected");
        QTest::addColumn<double>("allowed");
        QTest::newRow("in focus") << 0.0 << 0.7 << 0.001;
        QTest::newRow("a fine step") << 115.0 << 0.9 << 0.05;
        QTest::newRow("a coarse step") << 460.0 << 2.4 << 0.1;
        QTest::newRow("the end of the coarse walk") << 3220.0 << 16.5 << 1.0;
        QTest::newRow("below focus") << -460.0 << 2.4 << 0.1;
        QTest::newRow("beyond all detail") << 1e6 << 32.0 << 0.001;
    }

    void blur_growsAsTheOpticsHaveIt()
    {
        QFETCH(double, steps);
        QFETCH(double, expected);
        QFETCH(double, allowed);
        QVERIFY2(std::abs(blurOf(steps) - expected) <= allowed, qPrintable(QString::number(blurOf(steps))));
    }

    /// Reduced copies must not widen, narrow or move the blur.
    void blurredPoint_isARoundGaussianInItsPlace_data()
    {
        QTest::addColumn<double>("sigma");
        for (const double sigma : { 0.7, 0.9, 2.4, 2.99, 3.01, 5.0, 6.01, 10.0, 12.01, 16.1, 32.0 }) {
            QTest::addRow("%.2f px", sigma) << sigma;
        }
    }

    void blurredPoint_isARoundGaussianInItsPlace()
    {
        QFETCH(double, sigma);
        // A block of 8 by 8 pixels has a variance of 63/12 of its own.
        constexpr double kBlockVariance = 63.0 / 12.0;
        constexpr int kSize = 512;
        constexpr int kCorner = 203;
        cv::Mat scene(kSize, kSize, CV_16UC1, cv::Scalar(0));
        scene(cv::Rect(kCorner, kCorner + 30, 8, 8)).setTo(60000);
        cv::Mat blurred;
        blurScene(scene, sigma, blurred);
        const cv::Moments moments = cv::moments(blurred);
        QVERIFY(std::abs(moments.m10 / moments.m00 - (kCorner + 3.5)) < 0.02);
        QVERIFY(std::abs(moments.m01 / moments.m00 - (kCorner + 30 + 3.5)) < 0.02);
        const double x = std::sqrt(moments.mu20 / moments.m00 - kBlockVariance);
        const double y = std::sqrt(moments.mu02 / moments.m00 - kBlockVariance);
        QVERIFY2(std::abs(x / sigma - 1.0) < 0.03, qPrintable(QString::number(x)));
        QVERIFY2(std::abs(y / sigma - 1.0) < 0.03, qPrintable(QString::number(y)));
        QVERIFY(std::abs(cv::sum(blurred)[0] / cv::sum(scene)[0] - 1.0) < 0.01);
    }

    void walk_findsTheGridPositionNearestToFocus_data()
    {
        QTest::addColumn<int>("seed");
        QTest::addColumn<int>("slide");
        QTest::addColumn<int>("channel");
        QTest::addColumn<int>("x");
        for (int seed = 1; seed <= 12; ++seed) {
            const int a = kNominalA1 - kFieldPitch * (seed - 1);
            const int b = kNominalA1 - 20799 + kFieldPitch * (seed - 1);
            QTest::addRow("unit %d, A%d", seed, seed) << seed << 1 << 0 << a;
            QTest::addRow("unit %d, B%d", seed, seed) << seed << 1 << 0 << b;
            QTest::addRow("unit %d, GFP", seed) << seed << 1 << 1 << a;
        }
        for (int slide = 0; slide <= static_cast<int>(Slide::Target); ++slide) {
            QTest::addRow("slide %d at X home", slide) << 20 + slide << slide << 0 << 0;
        }
        QTest::addRow("RFP at X home") << 13 << 1 << 2 << 0;
        QTest::addRow("few cells, A4") << 3 << 1 << 0 << kNominalA1 - 3 * kFieldPitch;
    }

    void walk_findsTheGridPositionNearestToFocus()
    {
        QFETCH(int, seed);
        QFETCH(int, slide);
        QFETCH(int, channel);
        QFETCH(int, x);
        const UnitConstants unit = unitFromSeed(static_cast<std::uint32_t>(seed));
        OpticalState state = inFocus(unit, static_cast<Channel>(channel), x);
        state.slide = static_cast<Slide>(slide);
        const double focus = bestFocus(unit, static_cast<Channel>(channel), x);

        Walker walker(unit, state);
        const int coarse = walker.best(32000, 460, 15);
        QVERIFY2(std::abs(coarse - focus) <= 230.0 + 10.0, qPrintable(QString::number(coarse - focus)));
        const int fine = walker.best(coarse, 115, 7);
        // Where focus lies within a few steps of the middle between two positions, noise decides between the
        // two.
        QVERIFY2(std::abs(fine - focus) <= 57.5 + 5.0, qPrintable(QString::number(fine - focus)));
    }
};

QTEST_APPLESS_MAIN(tst_optics_focus)
#include "tst_optics_focus.moc"
