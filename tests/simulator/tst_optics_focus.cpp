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

    /// The edge of a large dark object is the integral of the blur: the distance between its 16 % and 84 %
    /// levels is twice the standard deviation.
    void blur_isAsWideAsTheOpticsMakeIt_data()
    {
        QTest::addColumn<int>("distance");
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::newRow("115 steps") << 115 << 0.8 << 1.05;
        QTest::newRow("460 steps") << 460 << 2.2 << 2.7;
        QTest::newRow("1000 steps") << 1000 << 4.5 << 5.6;
        QTest::newRow("3220 steps") << 3220 << 14.5 << 18.5;
    }

    void blur_isAsWideAsTheOpticsMakeIt()
    {
        QFETCH(int, distance);
        QFETCH(double, low);
        QFETCH(double, high);
        // The second moment of a line across the tray's mark, less that of the mark in focus, is the blur's.
        const UnitConstants unit = withoutNoise(UnitConstants());
        OpticalState state = inFocus(unit, Channel::BrightField, 12000);
        state.slide = Slide::Empty;
        state.leds.brightField1 = 8;
        const int focus = state.zSteps;
        const auto variance = [&](int zSteps) {
            state.zSteps = zSteps;
            OpticalState beside = state;
            beside.xSteps = 25000;
            beside.zSteps = static_cast<int>(bestFocus(unit, Channel::BrightField, 25000));
            cv::Mat dark;
            cv::subtract(frameOf(unit, beside), frameOf(unit, state), dark, cv::noArray(), CV_64F);
            // By column, over the whole height: the cross as a whole is narrower than its surroundings.
            cv::Mat column;
            cv::reduce(dark, column, 0, cv::REDUCE_SUM);
            double sum = 0.0;
            double square = 0.0;
            for (int x = 0; x < column.cols; ++x) {
                const double value = column.at<double>(0, x);
                sum += value;
                square += value * (x - 639.5) * (x - 639.5);
            }
            return square / sum;
        };
        const double sigma = std::sqrt(variance(focus + distance) - variance(focus) + 0.7 * 0.7);
        QVERIFY2(sigma > low && sigma < high, qPrintable(QString::number(sigma)));
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
