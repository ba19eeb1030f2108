#include "tests/camera/BaslerTests.h"
#include "tests/camera/CameraBench.h"
#include "tests/support/LogCapture.h"

#include <QTest>

#include <cmath>
#include <limits>

using Requests = std::vector<std::string>;

/// The layer over the camera library: what a camera is told once.
class tst_baslercamera_setup : public BaslerTests {
    Q_OBJECT

private slots:
    void initalize_writesInOrder_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<uint>("bits");
        QTest::addColumn<int>("family");
        QTest::addColumn<bool>("centred");
        QTest::addColumn<int>("pixelFormat");
        QTest::newRow("dart") << "daA1280-54um" << 8U << 2 << false << 0;
        QTest::newRow("dart, 16 bits") << "daA1280-54um" << 16U << 2 << false << 3;
        QTest::newRow("dart, 12 bits count as 8") << "daA1280-54um" << 12U << 2 << false << 0;
        QTest::newRow("ace") << "acA1300-200um" << 8U << 0 << true << 0;
        QTest::newRow("ace in capitals") << "ACA1300-200UM" << 8U << 0 << true << 0;
        QTest::newRow("pulse") << "puA1280-54um" << 8U << 1 << false << 0;
    }
    void initalize_writesInOrder()
    {
        QFETCH(QString, model);
        QFETCH(uint, bits);
        QFETCH(bool, centred);
        QFETCH(int, pixelFormat);
        CameraBench bench;
        bench.server.setModel(model.toStdString());
        bench.server.setFeature("CenterX", 0, 0, 1);
        bench.server.setFeature("CenterY", 0, 0, 1);
        bench.open();
        bench.camera.initalize(1280, 960, bits, bench.map);

        Requests expected { "Set ExposureAuto 0", "Set GainAuto 0", "Set Width 1280", "Set Height 960" };
        if (centred)
            expected.insert(expected.end(), { "Set CenterX 1", "Set CenterY 1" });
        const std::string format = "Set PixelFormat " + std::to_string(pixelFormat);
        expected.insert(expected.end(), { format, "Set ReverseX 1", "Set ReverseY 0", "Set OverlapMode 1" });
        QCOMPARE(bench.server.requests(), expected);
        QTEST(bench.map.family, "family");
        QCOMPARE(bench.map.modelName, model);
    }

    void initalize_readsTheFacts()
    {
        CameraBench bench;
        bench.setUp();
        QCOMPARE(bench.map.widthMin, 16);
        QCOMPARE(bench.map.widthMax, 1280);
        QCOMPARE(bench.map.width, 1280);
        QCOMPARE(bench.map.heightMin, 16);
        QCOMPARE(bench.map.heightMax, 960);
        QCOMPARE(bench.map.height, 960);
        QCOMPARE(bench.map.exposureMin, 20.0);
        QCOMPARE(bench.map.exposureMax, 1000000.0);
        QCOMPARE(bench.map.gainMin, 0.0);
        QCOMPARE(bench.map.gainMax, 24.0);
        const DeviceNodeMap copy = bench.camera.device_node_map();
        QCOMPARE(copy.modelName, QString("daA1280-54um"));
        QCOMPARE(copy.exposureMax, 1000000.0);
    }

    void initalize_readsInOrder_data()
    {
        QTest::addColumn<QString>("missing");
        QTest::addColumn<int>("widthMax"); // of the facts as they stand when the node is missed
        QTest::addColumn<int>("heightMax");
        QTest::addColumn<QString>("model");
        QTest::addColumn<int>("family");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<double>("exposureMax");
        constexpr double kNotRead = -1.0;
        const QString dart = "daA1280-54um";
        QTest::newRow("Width") << "Width" << 0 << 0 << QString() << 0 << 0 << 0 << kNotRead;
        QTest::newRow("Height") << "Height" << 1280 << 0 << QString() << 0 << 0 << 0 << kNotRead;
        QTest::newRow("ExposureTime")
            << "ExposureTime" << 1280 << 960 << dart << 2 << 1280 << 960 << kNotRead;
        QTest::newRow("Gain") << "Gain" << 1280 << 960 << dart << 2 << 1280 << 960 << 1000000.0;
    }
    void initalize_readsInOrder()
    {
        // Each node that is missed ends the reading where it stands: nothing behind it has been read, nothing
        // is handed out, and nothing has been written.
        QFETCH(QString, missing);
        CameraBench bench;
        bench.server.removeFeature(missing.toStdString());
        bench.open();
        bench.map.modelName = "untouched";
        QVERIFY(throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
        const DeviceNodeMap facts = bench.camera.device_node_map();
        QTEST(facts.widthMax, "widthMax");
        QTEST(facts.heightMax, "heightMax");
        QTEST(facts.modelName, "model");
        QTEST(facts.family, "family");
        QTEST(facts.width, "width");
        QTEST(facts.height, "height");
        QTEST(std::isnan(facts.exposureMax) ? -1.0 : facts.exposureMax, "exposureMax");
        QVERIFY(std::isnan(facts.gainMax));
        QCOMPARE(bench.map.modelName, QString("untouched"));
        QCOMPARE(bench.server.requests(), Requests());
    }

    void unknownModelWithoutGainAndExposure_isLeftAloneToo()
    {
        // What would have been read behind the model's name is not missed.
        CameraBench bench;
        bench.server.setModel("boA4096-93cm");
        bench.server.removeFeature("Gain");
        bench.server.removeFeature("ExposureTime");
        bench.open();
        QVERIFY(!throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
        QCOMPARE(bench.camera.device_node_map().widthMax, 1280);
    }

    void initalize_clampsTheSize()
    {
        CameraBench bench;
        bench.server.setFeature("Width", 1000, 16, 1024);
        bench.server.setFeature("Height", 1000, 1000, 2000);
        bench.setUp();
        QCOMPARE(bench.map.width, 1024);
        QCOMPARE(bench.map.height, 1000);
        QCOMPARE(bench.server.feature("Width"), 1024.0);
        QCOMPARE(bench.server.feature("Height"), 1000.0);
    }

    void initalize_hugeRequest_isClamped()
    {
        CameraBench bench;
        bench.open();
        bench.camera.initalize(std::numeric_limits<uint>::max(), 0, 8, bench.map);
        QCOMPARE(bench.map.width, 1280);
        QCOMPARE(bench.map.height, 16);
    }

    void initalize_unknownModel_leavesTheCameraAlone_data()
    {
        QTest::addColumn<QString>("model");
        QTest::newRow("another family") << "boA4096-93cm";
        QTest::newRow("one letter") << "d";
        QTest::newRow("no name") << "";
    }
    void initalize_unknownModel_leavesTheCameraAlone()
    {
        QFETCH(QString, model);
        CameraBench bench;
        bench.server.setModel(model.toStdString());
        bench.open();
        bench.map.width = -7;
        bench.map.modelName = "untouched";
        bench.camera.initalize(1280, 960, 8, bench.map);
        QCOMPARE(bench.server.requests(), Requests());
        QCOMPARE(bench.map.width, -7);
        QCOMPARE(bench.map.modelName, QString("untouched"));
        QCOMPARE(bench.camera.device_node_map().family, 1);
        QCOMPARE(bench.camera.device_node_map().modelName, model);
    }

    void unknownModel_exposureAndGainAreNotClamped()
    {
        CameraBench bench;
        bench.server.setModel("boA4096-93cm");
        bench.setUp();
        LogCapture log;
        bench.camera.setExposure(5000000.0F);
        QCOMPARE(bench.server.feature("ExposureTime"), 10000.0);
        QVERIFY(log.contains("Exception: BaslerCamera SetExposure failed"));
        bench.camera.setExposure(500.0F);
        QCOMPARE(bench.server.feature("ExposureTime"), 500.0);
        bench.camera.setGain(7.5F);
        QCOMPARE(bench.server.feature("Gain"), 7.5);
    }

    void initalize_missingNode_throws_data()
    {
        QTest::addColumn<QString>("node");
        for (const char* const node : { "Width", "Height", "Gain", "ExposureTime", "OverlapMode" })
            QTest::newRow(node) << node;
    }
    void initalize_missingNode_throws()
    {
        QFETCH(QString, node);
        CameraBench bench;
        bench.server.removeFeature(node.toStdString());
        bench.open();
        QVERIFY(throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
    }

    void overlapMode_isWrittenForEveryFamily()
    {
        // An ace without it is refused as any other.
        CameraBench bench;
        bench.server.setModel("acA1300-200um");
        bench.server.setFeature("CenterX", 0, 0, 1);
        bench.server.setFeature("CenterY", 0, 0, 1);
        bench.server.removeFeature("OverlapMode");
        bench.open();
        QVERIFY(throws([&] { bench.camera.initalize(1280, 960, 8, bench.map); }));
        QCOMPARE(bench.server.requests().back(), std::string("Set ReverseY 0"));
    }
};

QTEST_GUILESS_MAIN(tst_baslercamera_setup)
#include "tst_baslercamera_setup.moc"
