#include "camera/BaslerCamera.h"
#include "camera/baslerframedelivery.h"
#include "tests/camera/BaslerTests.h"
#include "tests/camera/FakeSource.h"
#include "tests/camera/LiveSource.h"
#include "tests/platform/ScriptedCamera.h"
#include "tests/support/LogCapture.h"
#include "views/CameraView.h"

#include <QTest>

#include <memory>

using Milliseconds = ScriptedCamera::Milliseconds;

namespace {

/// Counts the queued calls that reach an object, on the thread on which it lives.
class QueuedCalls : public QObject {
public:
    explicit QueuedCalls(QObject& receiver) { receiver.installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override
    {
        count += event->type() == QEvent::MetaCall ? 1 : 0;
        return false;
    }
};

} // namespace

/// What the source promises to those around it: when it is the source of the process, what it logs, and on
/// which thread it is heard.
class tst_baslerframedelivery_contract : public BaslerTests {
    Q_OBJECT

private slots:
    void init() { BaslerCamera::m_bFrameIsGrabbing = false; }
    void cleanup() { FrameDelivery::m_pInstance = nullptr; }

    void constructorThatFails_leavesNoSourceOfBefore()
    {
        const auto before = std::make_unique<FakeSource>();
        FrameDelivery::m_pInstance = before.get();
        ScriptedCamera server;
        server.refuseOpens(true);
        QVERIFY_EXCEPTION_THROWN(BaslerFrameDelivery(), GenICam::GenericException);
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
    }

    void withoutCamera_theTriggerModeIsTriedAllTheSame()
    {
        ScriptedCamera server;
        server.setCameras(0);
        const LogCapture log;
        const BaslerFrameDelivery source;
        const int begin = log.indexOf("void BaslerFrameDelivery::initialize()");
        const int mode = log.indexOf("void BaslerCamera::SetSoftwareTriggerMode(bool)");
        QVERIFY(begin >= 0 && begin < mode);
        QCOMPARE(log.lines().value(mode + 1),
            QString("SetSoftwareTriggerMode !!! Cannot open the camera and init SW Trigger mode !!!"));
        QVERIFY(!log.contains("BASLER CAM Width :"));
    }

    void calls_logTheirSignature()
    {
        const LiveSource bench;
        LogCapture log;
        const auto logged = [&log](auto&& call) {
            log.clear();
            call();
            return log.lines();
        };
        cv::Mat matrix;
        QImage image(1280, 960, QImage::Format_Indexed8);
        QCOMPARE(logged([&] { bench.source->pushMatImage(matrix); }),
            QStringList { "virtual bool BaslerFrameDelivery::pushMatImage(cv::Mat&)" });
        QCOMPARE(logged([&] { bench.source->pushQImage(image); }), QStringList());
        QCOMPARE(logged([&] { bench.source->getIntensity(); }),
            QStringList { "virtual double BaslerFrameDelivery::getIntensity()" });
        QCOMPARE(logged([&] { bench.source->isRunning(); }), QStringList());
        QCOMPARE(logged([&] { bench.source->getAutoTriggeringMode(); }), QStringList());
        QCOMPARE(logged([&] { bench.source->setGamma(0.5); }).first(),
            QString("void BaslerFrameDelivery::setGamma(double) gamma: 0.5"));
        QCOMPARE(bench.server.feature("Gamma"), 0.5);
        const QStringList stopped = logged([&] { bench.source->stop(); });
        QCOMPARE(stopped.size(), 3);
        QCOMPARE(stopped[0], QString("virtual void BaslerFrameDelivery::stop()"));
        QVERIFY(QRegExp("setAutoTriggeringMode \\d+ false").exactMatch(stopped[1]));
        QCOMPARE(stopped[2], QString("void BaslerCamera::stop()"));
        QCOMPARE(logged([&] { bench.source->stop(); }),
            QStringList { "virtual void BaslerFrameDelivery::stop()" });
        QCOMPARE(logged([&] { bench.source->start(); }),
            (QStringList { "virtual bool BaslerFrameDelivery::start()", "void BaslerCamera::start()" }));
    }

    void gainBelow0_hasNoLimitHere()
    {
        // The camera layer keeps to what the device can do.
        ScriptedCamera server;
        server.setFeature("Gain", 3.0, -6.0, 24.0);
        BaslerFrameDelivery source;
        source.setCurrentGain(-5.0F);
        QCOMPARE(server.feature("Gain"), -5.0);
        QCOMPARE(source.getCurrentGain(), -5.0);
    }

    void liveModeOnWhileAFrameIsUnderWay_waitsForThatOne()
    {
        LiveSource bench;
        bench.server.script({ { ScriptedCamera::Shot::Good, Milliseconds(300), {} } });
        bench.server.setDelay(Milliseconds(60000)); // the frames behind it stay under way
        bench.source->slot_ExecuteSoftwareTrigger();
        const LogCapture log;
        bench.source->setAutoTriggeringMode(true);
        QCOMPARE(bench.ready.load(), 1);
        const int begin = log.indexOf("! wait up to 10 seconds to trigger camera !");
        QVERIFY(begin >= 0);
        QVERIFY(log.indexOf("! waiting finished !") > begin);
        QCOMPARE(bench.triggers(), 2); // the one of the call itself, at once
        QVERIFY(BaslerCamera::m_bFrameIsGrabbing);
        BaslerCamera::m_bFrameIsGrabbing = false; // nothing will land that one could wait for
    }

    void frame_reachesTheViewAsAQueuedCall()
    {
        ScriptedCamera server;
        CameraView view;
        QVERIFY(FrameDelivery::m_pInstance != nullptr);
        QueuedCalls calls(view);
        std::atomic<int> told { 0 };
        QObject::connect(
            FrameDelivery::m_pInstance, &FrameDelivery::sig_imgReady, FrameDelivery::m_pInstance,
            [&told] { ++told; }, Qt::DirectConnection);
        FrameDelivery::m_pInstance->start();
        FrameDelivery::m_pInstance->triggerAndWaitForFrame(true);
        QVERIFY(QTest::qWaitFor([&told] { return told == 1; }));
        QTRY_COMPARE(calls.count, 1);
    }
};

QTEST_MAIN(tst_baslerframedelivery_contract)
#include "tst_baslerframedelivery_contract.moc"
