#include "tests/camera/BaslerTests.h"
#include "tests/camera/CameraBench.h"
#include "tests/support/LogCapture.h"

#include <QTest>

#include <limits>

using Requests = std::vector<std::string>;

/// The layer over the camera library: exposure, gain, gamma and mirror.
class tst_baslercamera_values : public BaslerTests {
    Q_OBJECT

private slots:
    void setExposure_keepsToTheLimits_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<double>("written");
        QTest::newRow("inside") << 1234.5F << 1234.5;
        QTest::newRow("above") << 2000000.0F << 1000000.0;
        QTest::newRow("below") << 1.0F << 20.0;
        QTest::newRow("negative") << -1.0F << 20.0;
    }
    void setExposure_keepsToTheLimits()
    {
        QFETCH(float, value);
        CameraBench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.setExposure(value);
        QTEST(bench.server.feature("ExposureTime"), "written");
        QVERIFY(log.contains("void BaslerCamera::setExposure(float)"));
        QVERIFY(!log.contains("failed"));
    }

    void setGain_keepsToTheLimits_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<double>("written");
        QTest::newRow("inside") << 12.5F << 12.5;
        QTest::newRow("above") << 99.0F << 24.0;
        QTest::newRow("below") << -3.0F << 0.0;
    }
    void setGain_keepsToTheLimits()
    {
        QFETCH(float, value);
        CameraBench bench;
        bench.setUp();
        bench.camera.setGain(value);
        QTEST(bench.server.feature("Gain"), "written");
    }

    void sameValue_writesNothing()
    {
        CameraBench bench;
        bench.setUp();
        bench.camera.setExposure(10000.0F);
        bench.camera.setGain(3.0F);
        QCOMPARE(bench.server.requests(), (Requests { "Get ExposureTime", "Get Gain" }));
    }

    void valueThatDiffersInDoublePrecision_isWritten()
    {
        // 10000.1 is no float: what the node holds and what is asked for differ beyond the seventh digit.
        CameraBench bench;
        bench.server.setFeature("ExposureTime", 10000.1, 20.0, 1000000.0);
        bench.setUp();
        bench.camera.setExposure(10000.1F);
        QCOMPARE(bench.server.count("Get ExposureTime"), 1);
        QCOMPARE(bench.server.requests().size(), std::size_t(2));
        QVERIFY(bench.server.feature("ExposureTime") == static_cast<double>(10000.1F));
    }

    void limitRoundedAboveTheRealOne_isRefusedAndLogged()
    {
        // 23.79 is no float: the nearest one lies above it.
        QVERIFY(static_cast<double>(static_cast<float>(23.79)) > 23.79);
        CameraBench bench;
        bench.server.setFeature("Gain", 3.0, 0.0, 23.79);
        bench.setUp();
        LogCapture log;
        bench.camera.setGain(30.0F);
        QCOMPARE(bench.server.feature("Gain"), 3.0);
        QVERIFY(log.contains("Exception: BaslerCamera SetGain failed"));
    }

    void notANumber_isRefusedAndLogged()
    {
        CameraBench bench;
        bench.setUp();
        LogCapture log;
        bench.camera.setExposure(std::numeric_limits<float>::quiet_NaN());
        QCOMPARE(bench.server.feature("ExposureTime"), 10000.0);
        QVERIFY(log.contains("Exception: BaslerCamera SetExposure failed"));
    }

    void refusedValue_isLoggedAndTheOldOneStays()
    {
        CameraBench bench;
        bench.setUp();
        bench.server.refuse("ExposureTime", "locked");
        LogCapture log;
        bench.camera.setExposure(500.0F);
        QCOMPARE(bench.server.feature("ExposureTime"), 10000.0);
        const int line = log.indexOf("Exception: BaslerCamera SetExposure failed");
        QVERIFY(line >= 0);
        QVERIFY(log.lines()[line].contains("locked"));
    }

    void getters_readFromTheCamera()
    {
        CameraBench bench;
        bench.setUp();
        LogCapture log;
        QCOMPARE(bench.camera.getGain(), 3.0F);
        QVERIFY(log.lines().isEmpty());
        QCOMPARE(bench.camera.getExposure(), 10000.0F);
        QCOMPARE(log.lines(), QStringList { "float BaslerCamera::getExposure()" });
    }

    void calls_logTheirSignature()
    {
        CameraBench bench;
        LogCapture log;
        const auto logged = [&log](auto&& call) {
            log.clear();
            call();
            return log.lines();
        };
        const QStringList connected = logged([&] { bench.camera.connect(nullptr, nullptr); });
        QCOMPARE(connected.size(), 1);
        QVERIFY(connected[0].startsWith("bool BaslerCamera::connect("));
        QCOMPARE(logged([&] { bench.camera.open(); }), QStringList { "void BaslerCamera::open()" });
        const QStringList setUp = logged([&] { bench.camera.initalize(1280, 960, 8, bench.map); });
        QCOMPARE(setUp.size(), 1);
        QVERIFY(setUp[0].startsWith("void BaslerCamera::initalize(uint, uint, uint, DeviceNodeMap&)"));
        QCOMPARE(logged([&] { bench.camera.SetSoftwareTriggerMode(true); }),
            (QStringList { "void BaslerCamera::SetSoftwareTriggerMode(bool)",
                "SetSoftwareTriggerMode SW Trigger mode is ON" }));
        QCOMPARE(logged([&] { bench.camera.setExposure(500.0F); }),
            QStringList { "void BaslerCamera::setExposure(float)" });
        QCOMPARE(
            logged([&] { bench.camera.setGain(1.0F); }), QStringList { "void BaslerCamera::setGain(float)" });
        QCOMPARE(logged([&] { bench.camera.setGamma(1.0); }),
            QStringList { "void BaslerCamera::setGamma(double)" });
        QCOMPARE(logged([&] { bench.camera.setReverse(true, true); }),
            QStringList { "void BaslerCamera::setReverse(bool, bool)" });
        QCOMPARE(logged([&] { bench.camera.device_node_map(); }),
            QStringList { "DeviceNodeMap BaslerCamera::device_node_map()" });
        QCOMPARE(logged([&] { bench.camera.start(); }), QStringList { "void BaslerCamera::start()" });
        QCOMPARE(logged([&] { bench.camera.isRunning(); }), QStringList());
        const QStringList released = logged([&] { bench.camera.release(nullptr, nullptr); });
        QCOMPARE(released.size(), 2);
        QVERIFY(released[0].startsWith("void BaslerCamera::release("));
        QCOMPARE(released[1], QString("void BaslerCamera::stop()"));
    }

    void setReverse_writesXThenY()
    {
        CameraBench bench;
        bench.setUp();
        bench.camera.setReverse(false, true);
        QCOMPARE(bench.server.requests(), (Requests { "Set ReverseX 0", "Set ReverseY 1" }));
    }

    void gammaAndReverse_doNotCatch()
    {
        CameraBench bench;
        bench.setUp();
        bench.server.refuse("ReverseX", "locked");
        QVERIFY(throws([&] { bench.camera.setReverse(true, true); }));
        QVERIFY(throws([&] { bench.camera.setGamma(4.5); }));
        bench.camera.setGamma(0.45);
        QCOMPARE(bench.server.feature("Gamma"), 0.45);
    }
};

QTEST_GUILESS_MAIN(tst_baslercamera_values)
#include "tst_baslercamera_values.moc"
