#include "camera/framedelivery.h"

#include "tests/camera/FakeSource.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

#include <cstddef>
#include <cstring>
#include <ctime>
#include <optional>
#include <vector>

namespace {

/// What the module's clock shows, where a test has set it.
std::optional<timespec> g_clock;

constexpr qint64 kBillion = 1000000000;

void setClock(qint64 seconds, qint64 nanoseconds)
{
    g_clock = timespec { static_cast<time_t>(seconds), static_cast<long>(nanoseconds) };
}

/// Place of a virtual operation in the table of its class, in bytes, as the compiler's pointers to members
/// carry it.
template <typename Operation> std::ptrdiff_t placeOf(Operation operation)
{
    std::ptrdiff_t place = 0;
    static_assert(sizeof(operation) >= sizeof(place));
    std::memcpy(&place, &operation, sizeof(place));
    return place;
}

/// Lets the module's clock show so many ms.
void setTick(qint64 milliseconds)
{
    setClock(milliseconds / 1000, milliseconds % 1000 * 1000000);
}

} // namespace

// The linker sends the module's own readings of the clock here; everybody else has the real one.
extern "C" int __real_clock_gettime(clockid_t id, timespec* now);
extern "C" int __wrap_clock_gettime(clockid_t id, timespec* now)
{
    if (id == CLOCK_MONOTONIC && g_clock.has_value()) {
        *now = *g_clock;
        return 0;
    }
    return __real_clock_gettime(id, now);
}

/// The frame source contract: clock, frame rate, and what the meta-object tells.
class tst_framedelivery : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { g_clock.reset(); }

    void getTick_isWholeMilliseconds_data()
    {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<qint64>("nanoseconds");
        QTest::addColumn<double>("tick");
        QTest::newRow("zero") << qint64(0) << qint64(0) << 0.0;
        QTest::newRow("one below a millisecond") << qint64(0) << qint64(999999) << 0.0;
        QTest::newRow("cut, not rounded") << qint64(12) << qint64(345999999) << 12345.0;
        QTest::newRow("end of a second") << qint64(1) << qint64(kBillion - 1) << 1999.0;
        QTest::newRow("last before the wrap") << qint64(4294967) << qint64(295 * 1000000) << 4294967295.0;
        QTest::newRow("wrapped") << qint64(4294967) << qint64(296 * 1000000) << 0.0;
        QTest::newRow("wrapped twice") << qint64(8589934) << qint64(592 * 1000000 + 7 * 1000000) << 7.0;
    }
    void getTick_isWholeMilliseconds()
    {
        QFETCH(qint64, seconds);
        QFETCH(qint64, nanoseconds);
        setClock(seconds, nanoseconds);
        QTEST(getTick(), "tick");
    }

    void getTick_followsTheMonotonicClock()
    {
        timespec now {};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const double before = static_cast<double>(now.tv_sec) * 1000.0;
        const double tick = getTick();
        QVERIFY(tick >= before);
        QVERIFY(tick < before + 60000.0);
    }

    // The counters belong to the process, so that one function tells their whole story.
    void fpsUpdate_isPublishedAfterMoreThanASecond()
    {
        FakeSource first;
        FakeSource second;
        QSignalSpy ofFirst(&first, &FrameDelivery::sig_FpsUpdate);
        QSignalSpy ofSecond(&second, &FrameDelivery::sig_FpsUpdate);

        // The first call of the process sets the time and counts one frame.
        setTick(5000);
        first.FpsUpdate();
        QCOMPARE(ofFirst.count(), 0);

        // All sources count into one counter: 4 frames by now.
        setTick(5500);
        second.FpsUpdate();
        first.FpsUpdate();
        second.FpsUpdate();

        // Exactly 1000.0 ms publish nothing: 5 frames.
        setTick(6000);
        first.FpsUpdate();
        QCOMPARE(ofFirst.count() + ofSecond.count(), 0);

        // One more does, by the source that was called: 5 frames in 1001 ms.
        setTick(6001);
        second.FpsUpdate();
        QCOMPARE(ofFirst.count(), 0);
        QCOMPARE(ofSecond.count(), 1);
        QCOMPARE(ofSecond.takeFirst().first().toFloat(), static_cast<float>(5 / 1001.0 * 1000.0));

        // The frame that published counts into the next interval: 1, and 9 more.
        for (int i = 0; i < 9; ++i)
            first.FpsUpdate();
        setTick(7002);
        first.FpsUpdate();
        QCOMPARE(ofFirst.takeFirst().first().toFloat(), static_cast<float>(10 / 1001.0 * 1000.0));

        // A long gap reports a low rate once and counts from 1 again.
        setTick(17002);
        first.FpsUpdate();
        QCOMPARE(ofFirst.takeFirst().first().toFloat(), static_cast<float>(1 / 10000.0 * 1000.0));
        setTick(18003);
        first.FpsUpdate();
        QCOMPARE(ofFirst.takeFirst().first().toFloat(), static_cast<float>(1 / 1001.0 * 1000.0));
    }

    void operations_standInTheirOrderBehindThoseOfQObject()
    {
        const std::vector<std::ptrdiff_t> places { placeOf(&FrameDelivery::isRunning),
            placeOf(&FrameDelivery::getCurrentExposure), placeOf(&FrameDelivery::getCurrentGain),
            placeOf(&FrameDelivery::setCurrentGain), placeOf(&FrameDelivery::setCurrentExposure),
            placeOf(&FrameDelivery::getIntensity), placeOf(&FrameDelivery::getAutoTriggeringMode),
            placeOf(&FrameDelivery::start), placeOf(&FrameDelivery::stop),
            placeOf(&FrameDelivery::pushMatImage), placeOf(&FrameDelivery::pushQImage),
            placeOf(&FrameDelivery::triggerAndWaitForFrame), placeOf(&FrameDelivery::setCameraReverse),
            placeOf(&FrameDelivery::setAutoTriggeringMode) };
        // The last one of QObject is protected; here it has a name.
        struct Last : QObject {
            static std::ptrdiff_t place() { return placeOf(&Last::disconnectNotify); }
        };
        std::ptrdiff_t expected = Last::place();
        for (const std::ptrdiff_t place : places) {
            expected += static_cast<std::ptrdiff_t>(sizeof(void*));
            QCOMPARE(place, expected);
        }
    }

    void instance_isNullUntilASourceHasSetIt() { QVERIFY(FrameDelivery::m_pInstance == nullptr); }

    void scratchPicture_isEmptyUntilAnIntensityIsMeasured()
    {
        // Protected in the contract; here it has a name.
        struct Source : FakeSource {
            using FrameDelivery::m_frameMat;
        };
        Source source;
        QVERIFY(source.m_frameMat.empty());
        QVERIFY(source.m_frameMat.data == nullptr);
        source.current = cv::Mat(FrameDelivery::kFrameHeight, FrameDelivery::kFrameWidth, CV_8UC1, 90);
        QVERIFY(source.m_frameMat.empty());
        source.IntensityUpdate();
        QCOMPARE(cv::norm(source.m_frameMat, source.current, cv::NORM_INF), 0.0);
        QVERIFY(source.m_frameMat.data != source.current.data);
    }

    void metaObject_hasTheSignalsAndTheOneSlotInOrder()
    {
        const QMetaObject& meta = FrameDelivery::staticMetaObject;
        QStringList signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            signatures << QString::fromLatin1(meta.method(i).methodSignature());
        const QStringList expected { "sig_setAutoTriggeringMode(bool)", "sig_ExecuteSoftwareTrigger()",
            "sig_imgReady()", "sig_IntensityUpdate(double,double,double)", "sig_FpsUpdate(float)",
            "setAutoTriggeringMode(bool)" };
        QCOMPARE(signatures, expected);
        QCOMPARE(meta.method(meta.methodCount() - 1).methodType(), QMetaMethod::Slot);
    }
};

QTEST_GUILESS_MAIN(tst_framedelivery)
#include "tst_framedelivery.moc"
