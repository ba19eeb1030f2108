#include "tests/camera/Ar0134Tests.h"
#include "tests/camera/FakeSource.h"
#include "tests/support/LogCapture.h"

#include <QMetaMethod>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <cmath>

using qr9::wire::Kind;
using Shot = ScriptedBoard::Shot;

namespace {

std::atomic<QThread*> g_criticalThread { nullptr };

/// Keeps the thread on which the latest critical line was logged.
void keepCriticalThread(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
    if (type == QtCriticalMsg) {
        g_criticalThread = QThread::currentThread();
    }
}

QStringList ownMethods(const QMetaObject& meta, QMetaMethod::MethodType type)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == type) {
            signatures << QString::fromLatin1(meta.method(i).methodSignature());
        }
    }
    return signatures;
}

} // namespace

// The frame source on the driver: opening, units, frames before and after a one-shot trigger, and its end.
class tst_ar0134_framedelivery : public SourceTest {
    Q_OBJECT

private slots:
    void attachedBoard_isFound()
    {
        QVERIFY(Ar0134FrameDelivery::isCameraAttached());
        m_board->setBoards(0);
        QVERIFY(!Ar0134FrameDelivery::isCameraAttached());
    }

    void openBoard_becomesTheSourceOfTheProcess()
    {
        const LogCapture log;
        open();
        QCOMPARE(FrameDelivery::m_pInstance, static_cast<FrameDelivery*>(m_source.get()));
        QVERIFY(m_source->isRunning());
        QVERIFY(!m_source->getAutoTriggeringMode());
        QVERIFY(log.contains("!!! Arducam is ON !!!"));
        QVERIFY(!log.contains("!!! The second atempt to open Arducam !!!"));
        QCOMPARE(m_board->count(Kind::Open), 1);
    }

    void boardAbsentAtBothAttempts_leavesNoSource()
    {
        m_board->setBoards(0);
        const LogCapture log;
        m_source = std::make_unique<Ar0134FrameDelivery>();
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QVERIFY(!m_source->isRunning());
        QVERIFY(log.contains("!!! The second atempt to open Arducam !!!"));
        QVERIFY(!log.contains("!!! Arducam is ON !!!"));
    }

    void constructorWithoutBoard_leavesNoSourceOfBefore()
    {
        const auto before = std::make_unique<FakeSource>();
        FrameDelivery::m_pInstance = before.get();
        m_board->setBoards(0);
        m_source = std::make_unique<Ar0134FrameDelivery>();
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
    }

    void metaObject_hasItsOwnSignalsAndOneSlotInOrder()
    {
        const QMetaObject& meta = Ar0134FrameDelivery::staticMetaObject;
        QCOMPARE(ownMethods(meta, QMetaMethod::Signal),
            (QStringList { "sig_setExposure(uint)", "sig_setGain(double)", "sig_ExecuteSoftwareTrigger()",
                "sig_setLiveViewState(bool)", "sig_update()" }));
        QCOMPARE(ownMethods(meta, QMetaMethod::Slot), QStringList { "slot_updateImg()" });
    }

    void trigger_isWorkedThroughOnAnotherThreadWhileTheCallerStands()
    {
        open();
        m_board->script({ { Shot::Refused, 0xFF26, {} } });
        g_criticalThread = nullptr;
        const QtMessageHandler before = qInstallMessageHandler(keepCriticalThread);
        emit m_source->sig_ExecuteSoftwareTrigger();
        qInstallMessageHandler(before);
        QVERIFY(g_criticalThread != nullptr); // the failure stands in the log when the call returns
        QVERIFY(g_criticalThread != QThread::currentThread());
    }

    void gainAndExposure_areSetOnTheCallersThread()
    {
        open();
        m_board->failWrites(0x3012, 0xFF0B);
        g_criticalThread = nullptr;
        const QtMessageHandler before = qInstallMessageHandler(keepCriticalThread);
        m_source->setCurrentExposure(20.0);
        qInstallMessageHandler(before);
        QCOMPARE(g_criticalThread.load(), QThread::currentThread());
        m_board->failReads(0x30B0, 0xFF0B);
        g_criticalThread = nullptr;
        qInstallMessageHandler(keepCriticalThread);
        m_source->setCurrentGain(3.0F);
        qInstallMessageHandler(before);
        QCOMPARE(g_criticalThread.load(), QThread::currentThread());
    }

    void frames_areCountedOnTheThreadOfTheSource()
    {
        open();
        std::atomic<QThread*> counted { nullptr };
        connect(
            m_source.get(), &FrameDelivery::sig_FpsUpdate, m_source.get(),
            [&counted](float) { counted = QThread::currentThread(); }, Qt::DirectConnection);
        QVERIFY(m_source->start());
        QTRY_VERIFY_WITH_TIMEOUT(counted != nullptr, 20000);
        QCOMPARE(counted.load(), QThread::currentThread());
    }

    void closedSource_startsNothingAndAnswers()
    {
        m_board->setBoards(0);
        m_source = std::make_unique<Ar0134FrameDelivery>();
        const LogCapture log;
        QVERIFY(!m_source->start());
        QVERIFY(log.contains("Arducam is closed"));
        m_source->stop();
        m_source->setAutoTriggeringMode(true);
        m_source->triggerAndWaitForFrame(true);
        m_source->setCurrentGain(1.0F);
        m_source->setCurrentExposure(1.0);
        m_source->setCameraReverse(true, true);
        QVERIFY(!m_source->getAutoTriggeringMode());
        QCOMPARE(m_source->getIntensity(), -1.0 / 1228800.0);
    }

    void firstOpenFails_theSecondSucceeds()
    {
        m_board->refuseOpens(1, 0xFF01);
        const LogCapture log;
        open();
        QVERIFY(FrameDelivery::m_pInstance != nullptr);
        QCOMPARE(m_board->count(Kind::Open), 2);
        QVERIFY(log.contains("!!! The second atempt to open Arducam !!!"));
        QVERIFY(log.contains("!!! Arducam is ON !!!"));
    }

    void oldFirmware_isClosedAfterBothAttempts()
    {
        m_board->setModeCode(65393);
        m_source = std::make_unique<Ar0134FrameDelivery>();
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QCOMPARE(m_board->count(Kind::Open), 2);
        QCOMPARE(m_board->count(Kind::Close), 2);
    }

    void goneSource_isNoInstanceAndGivesTheBoardBack()
    {
        open();
        m_source.reset();
        QVERIFY(FrameDelivery::m_pInstance == nullptr);
        QCOMPARE(m_board->count(Kind::Close), 1);
    }

    void exposure_isInMilliseconds()
    {
        open();
        m_source->setCurrentExposure(20.0);
        QCOMPARE(int(m_board->reg(0x3012)), 815);
        QCOMPARE(m_source->getCurrentExposure(), 19.999F);
        m_source->setCurrentExposure(0.0245); // 24.5 us and a half, truncated: 25 us
        QCOMPARE(int(m_board->reg(0x3012)), 1);
    }

    void exposureThatIsNoTime_isTheShortest_data()
    {
        QTest::addColumn<double>("exposure");
        QTest::newRow("negative") << -5.0;
        QTest::newRow("no number") << std::nan("");
    }
    void exposureThatIsNoTime_isTheShortest()
    {
        QFETCH(double, exposure);
        open();
        m_source->setCurrentExposure(exposure);
        QCOMPARE(int(m_board->reg(0x3012)), 0);
        QCOMPARE(m_board->requests().back(), ScriptedBoard::write(0x3012, 0));
    }

    void gain_isPassedOnInDecibel()
    {
        open();
        m_source->setCurrentGain(3.0F);
        QCOMPARE(int(m_board->reg(0x305E)), 32);
        QCOMPARE(int(m_board->reg(0x30B0)), 0x10);
        QVERIFY(std::abs(m_source->getCurrentGain() - 10.0 * std::log10(2.0)) < 1e-9);
    }

    void signalsForGainAndExposure_reachTheDriver()
    {
        open();
        emit m_source->sig_setGain(3.0);
        emit m_source->sig_setExposure(2454U);
        QTRY_COMPARE(int(m_board->reg(0x3012)), 100);
        QCOMPARE(int(m_board->reg(0x305E)), 32);
    }

    void reverse_isPassedOn()
    {
        open();
        m_source->setCameraReverse(true, false);
        QCOMPARE(int(m_board->reg(0x3040)), 0x4000);
        m_source->setCameraReverse(false, true);
        QCOMPARE(int(m_board->reg(0x3040)), 0x8000);
    }

    void intensityWithoutAFrame_isAVerySmallNegativeNumber()
    {
        open();
        QCOMPARE(m_source->getIntensity(), -1.0 / 1228800.0);
    }

    void intensity_isTheSumOf962RowsOverTheAreaOf960()
    {
        open();
        m_source->triggerAndWaitForFrame(true);
        const LogCapture log;
        QCOMPARE(m_source->getIntensity(), 100.0 * 962.0 / 960.0);
        QVERIFY(log.contains("virtual double Ar0134FrameDelivery::getIntensity()"));
    }

    void framesBeforeTheFirst_areFalse()
    {
        open();
        cv::Mat mat;
        QVERIFY(!m_source->pushMatImage(mat));
        QVERIFY(mat.empty());
        QImage image(1280, 960, QImage::Format_Indexed8);
        QVERIFY(!m_source->pushQImage(image));
    }

    void oneShotTrigger_hasTheFrameWhenItReturns()
    {
        open();
        m_board->setDelay(std::chrono::milliseconds(100));
        m_source->triggerAndWaitForFrame(true);
        cv::Mat mat;
        QVERIFY(m_source->pushMatImage(mat));
        QCOMPARE(cv::countNonZero(mat == 100), 1280 * 960);
        QImage image(1280, 960, QImage::Format_Indexed8);
        QVERIFY(m_source->pushQImage(image));
        QCOMPARE(int(image.constScanLine(959)[1279]), 100);
        QCOMPARE(m_board->count(Kind::Trigger), 1);
    }
};

QTEST_GUILESS_MAIN(tst_ar0134_framedelivery)
#include "tst_ar0134_framedelivery.moc"
