#include "tst_optics_samples.h"

#include <QCryptographicHash>
#include <QtTest>

using namespace qr9::optics;
using namespace qr9::optics::samples;

namespace {

bool same(const cv::Mat& one, const cv::Mat& two)
{
    return cv::norm(one, two, cv::NORM_INF) == 0.0;
}

QByteArray digest(const cv::Mat& frame)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(reinterpret_cast<const char*>(frame.data), static_cast<int>(frame.total()));
    return hash.result().toHex();
}

} // namespace

/// A picture depends on the unit, the state and the frame number, and on nothing else.
class tst_optics_render : public QObject {
    Q_OBJECT
private slots:
    void sameFrameNumber_givesSameBytes()
    {
        const UnitConstants unit = unitFromSeed(2);
        const OpticalState state = inFocus(unit, Channel::BrightField, kNominalA1);
        QVERIFY(same(frameOf(unit, state, 7), frameOf(unit, state, 7)));
    }

    void anotherFrameNumber_givesAnotherNoise()
    {
        const UnitConstants unit = unitFromSeed(2);
        const OpticalState state = inFocus(unit, Channel::BrightField, kNominalA1);
        const cv::Mat one = frameOf(unit, state, 7);
        const cv::Mat two = frameOf(unit, state, 8);
        QVERIFY(!same(one, two));
        QVERIFY(cv::norm(one, two, cv::NORM_INF) < 20.0);
    }

    void anotherSeed_givesAnotherScene()
    {
        UnitConstants one = withoutNoise(UnitConstants());
        UnitConstants two = one;
        two.seed = one.seed + 1;
        const OpticalState state = inFocus(one, Channel::BrightField, kNominalA1);
        QVERIFY(cv::norm(frameOf(one, state), frameOf(two, state), cv::NORM_INF) > 50.0);
    }

    /// What a renderer keeps from earlier calls must never show.
    void picture_doesNotDependOnWhatWasRenderedBefore()
    {
        const UnitConstants unit = unitFromSeed(6);
        std::vector<OpticalState> states;
        states.push_back(inFocus(unit, Channel::BrightField, kNominalA1));
        auto change = [&](auto edit) {
            states.push_back(states.back());
            edit(states.back());
        };
        change([](OpticalState& state) { state.zSteps += 700; });
        change([](OpticalState& state) { state.exposureMs = 20.0; });
        change([](OpticalState& state) { state.gainDb = 3.0; });
        change([](OpticalState& state) { state.mirrorX = true; });
        change([](OpticalState& state) { state.mirrorY = true; });
        change([](OpticalState& state) { state.xSteps -= 480; });
        change([](OpticalState& state) { state.leds.brightField2 = 20; });
        change([](OpticalState& state) { state.slide = Slide::ThreeChannel; });
        change([](OpticalState& state) { state.slide = Slide::Target; });
        change([](OpticalState& state) { state.slide = Slide::TwoChannel; });
        change([](OpticalState& state) { state.filter = 0; });
        change([](OpticalState& state) {
            state = { state.slide, state.xSteps, 32000, 2, { 0, 0, 300, 0 }, 80.0, 5.0 };
        });
        change([](OpticalState& state) { state.filter = 3; });
        change([](OpticalState& state) { state.leds.rfp = 350; });

        Renderer veteran(unit);
        cv::Mat frame;
        for (int round = 0; round < 2; ++round) {
            for (std::size_t i = 0; i < states.size(); ++i) {
                veteran.render(states[i], i, frame);
                QVERIFY2(same(frame, frameOf(unit, states[i], i)), qPrintable(QString::number(i)));
            }
        }
    }

    void givenFrame_isReused()
    {
        const UnitConstants unit = unitFromSeed(6);
        cv::Mat frame(kFrameHeight, kFrameWidth, CV_8UC1);
        const uchar* pixels = frame.data;
        Renderer(unit).render(inFocus(unit, Channel::BrightField, kNominalA1), 1, frame);
        QCOMPARE(frame.data, pixels);
    }

    void mirroredFrame_doesNotSpoilWhatIsKept()
    {
        const UnitConstants unit = unitFromSeed(8);
        Renderer renderer(unit);
        OpticalState state = inFocus(unit, Channel::BrightField, kNominalA1);
        cv::Mat before;
        cv::Mat after;
        renderer.render(state, 1, before);
        state.mirrorX = true;
        renderer.render(state, 1, after);
        state.mirrorX = false;
        renderer.render(state, 1, after);
        QVERIFY(same(before, after));
    }

    /// Pins the bytes of a few frames: a seed must mean the same pictures on every machine, for every
    /// compiler and at every optimisation level. Who changes the scenery on purpose takes the new digests
    /// over.
    void knownSeed_givesKnownBytes_data()
    {
        QTest::addColumn<int>("slide");
        QTest::addColumn<int>("channel");
        QTest::addColumn<int>("offset");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("cells in focus")
            << 1 << 0 << 0 << QByteArray("5651ae353d7969db89e59bcdb7a4da50ce44a570");
        QTest::newRow("cells 460 off")
            << 1 << 0 << 460 << QByteArray("24459e522299a444b53a11c94a59f14a2e893c90");
        QTest::newRow("cells 1000 off")
            << 1 << 0 << 1000 << QByteArray("550dab147d2f43033ac4e3747e3859b5c6bf34f7");
        QTest::newRow("cells 3220 off")
            << 1 << 0 << -3220 << QByteArray("35a86ddd4720b9b41d959553bb416e3b59dac05b");
        QTest::newRow("GFP") << 1 << 1 << 0 << QByteArray("a76faca3a4eb7d88332bef0f94a1e1c259fcd4b4");
        QTest::newRow("RFP") << 3 << 2 << 115 << QByteArray("6200251d73312fe45667a2ea539c71c677e1904c");
        QTest::newRow("target") << 7 << 0 << 0 << QByteArray("a3e80fdd3177b4f056cc935b49a56f990c60bd45");
    }

    void knownSeed_givesKnownBytes()
    {
        QFETCH(int, slide);
        QFETCH(int, channel);
        QFETCH(int, offset);
        QFETCH(QByteArray, expected);
        const UnitConstants unit = unitFromSeed(1);
        OpticalState state = inFocus(unit, static_cast<Channel>(channel), kNominalA1);
        state.slide = static_cast<Slide>(slide);
        state.zSteps += offset;
        QCOMPARE(digest(frameOf(unit, state, 1)), expected);
    }
};

QTEST_APPLESS_MAIN(tst_optics_render)
#include "tst_optics_render.moc"
