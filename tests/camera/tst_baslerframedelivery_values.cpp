#include "tests/camera/BaslerTests.h"
#include "tests/camera/SourceBench.h"
#include "tests/support/LogCapture.h"

#include <QTest>

using Requests = std::vector<std::string>;

/// The frame source on a Basler camera: gain, exposure and mirror.
class tst_baslerframedelivery_values : public BaslerTests {
    Q_OBJECT

private slots:
    void gain_isLimitedTo18_data()
    {
        QTest::addColumn<float>("gain");
        QTest::addColumn<double>("written");
        QTest::newRow("above") << 20.0F << 18.0;
        QTest::newRow("the limit") << 18.0F << 18.0;
        QTest::newRow("inside") << 2.5F << 2.5;
    }
    void gain_isLimitedTo18()
    {
        QFETCH(float, gain);
        SourceBench bench;
        LogCapture log;
        bench.source->setCurrentGain(gain);
        QTEST(bench.server.feature("Gain"), "written");
        QTEST(bench.source->getCurrentGain(), "written");
        QVERIFY(log.lines().first().startsWith(
            "virtual void BaslerFrameDelivery::setCurrentGain(float) again: "));
    }

    void exposure_isInMillisecondsUpToASecond_data()
    {
        QTest::addColumn<double>("exposure");
        QTest::addColumn<double>("written");
        QTest::newRow("above") << 1500.0 << 1000000.0;
        QTest::newRow("the limit") << 1000.0 << 1000000.0;
        QTest::newRow("inside") << 12.5 << 12500.0;
        QTest::newRow("converted to single precision first")
            << 0.1234567890123 << static_cast<double>(static_cast<float>(0.1234567890123) * 1000.0F);
    }
    void exposure_isInMillisecondsUpToASecond()
    {
        QFETCH(double, exposure);
        SourceBench bench;
        LogCapture log;
        bench.source->setCurrentExposure(exposure);
        QTEST(bench.server.feature("ExposureTime"), "written");
        QVERIFY(log.lines().first().startsWith(
            "virtual void BaslerFrameDelivery::setCurrentExposure(double) exposure: "));
    }

    void exposureReadBack_isTheCameras()
    {
        SourceBench bench;
        bench.source->setCurrentExposure(10.0);
        bench.server.setFeature("ExposureTime", 10003.5, 20.0, 1000000.0); // what the device made of it
        QCOMPARE(bench.source->getCurrentExposure(), static_cast<float>(10003.5 / 1000.0));
    }

    void reverse_isWrittenAndLogged()
    {
        SourceBench bench;
        LogCapture log;
        bench.source->setCameraReverse(false, true);
        QCOMPARE(bench.server.requests(), (Requests { "Set ReverseX 0", "Set ReverseY 1" }));
        QCOMPARE(log.lines().first(),
            QString(
                "virtual void BaslerFrameDelivery::setCameraReverse(bool, bool) reverse x , y false true"));
    }

    void pulledPlug_noSettingLeavesTheCallerWithAnException()
    {
        SourceBench bench;
        bench.server.unplug();
        QTRY_VERIFY(BaslerCamera::m_Instance->IsCameraDeviceRemoved());
        bench.source->setCurrentGain(3.0F);
        bench.source->setCurrentExposure(10.0);
        bench.source->setCameraReverse(true, true);
        bench.source->setGamma(1.0);
        QCOMPARE(bench.source->getCurrentGain(), 0.0);
        QCOMPARE(bench.source->getCurrentExposure(), 0.0F);
        QVERIFY(bench.source->start()); // a camera was found once
        QVERIFY(!bench.source->isRunning());
    }
};

QTEST_GUILESS_MAIN(tst_baslerframedelivery_values)
#include "tst_baslerframedelivery_values.moc"
