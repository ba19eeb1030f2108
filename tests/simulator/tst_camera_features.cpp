#include "tests/simulator/CameraTest.h"

#include <QTest>

using namespace qr9;
using wire::Error;
using wire::Kind;

// The nodes of a Basler camera: which there are, their limits, and what they keep.
class tst_CameraFeatures : public CameraTest {
    Q_OBJECT

private slots:
    void open_tellsEveryNodeWithItsLimits()
    {
        const auto features = m_client->open(wire::kClassPylon);
        QStringList names;
        for (const wire::Feature& feature : features) {
            names << feature.name;
        }
        QCOMPARE(names,
            QStringList({ "DeviceModelName", "Width", "Height", "ExposureTime", "Gain", "Gamma", "ReverseX",
                "ReverseY", "ExposureAuto", "GainAuto", "PixelFormat", "OverlapMode", "TriggerSelector",
                "TriggerMode", "TriggerSource" }));
        QCOMPARE(QString(features[0].text), QString("daA1280-54um"));
        QCOMPARE(features[1].min, 16.0);
        QCOMPARE(features[1].max, 1280.0);
        QCOMPARE(features[2].max, 960.0);
        QCOMPARE(features[3].min, 20.0);
        QCOMPARE(features[3].max, 1000000.0);
        QCOMPARE(features[4].min, 0.0);
        QVERIFY(features[4].max > 18.0);
        QVERIFY(static_cast<double>(static_cast<float>(features[4].max)) != features[4].max);
    }

    void onlyTheAcFamily_hasTheCentringNodes_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("centring");
        QTest::newRow("ac") << "acA1280-60um" << true;
        QTest::newRow("pu") << "puA1280-54um" << false;
        QTest::newRow("da") << "daA1280-54um" << false;
        QTest::newRow("unknown") << "xyz" << false;
    }
    void onlyTheAcFamily_hasTheCentringNodes()
    {
        QFETCH(QString, model);
        QFETCH(bool, centring);
        start({ "--seed", "2", "--camera-model", model });
        m_client->open(wire::kClassPylon);
        QCOMPARE(QString(m_client->request(Kind::GetFeature, "DeviceModelName").head.name), model);
        QCOMPARE(
            m_client->code(Kind::SetFeature, "CenterX", 1.0), centring ? 0 : errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::GetFeature, "CenterY"), centring ? 0 : errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::SetFeature, "OverlapMode", 1.0), 0);
    }

    void feature_keepsWhatWasSet()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "ExposureTime", 12345.5), 0);
        QCOMPARE(m_client->request(Kind::GetFeature, "ExposureTime").head.value, 12345.5);
    }

    void features_outliveTheConnection()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "Gain", 3.5), 0);
        m_client = newClient();
        for (const wire::Feature& feature : m_client->open(wire::kClassPylon)) {
            if (QString(feature.name) == "Gain") {
                QCOMPARE(feature.value, 3.5);
            }
        }
        QCOMPARE(m_client->request(Kind::GetFeature, "Gain").head.value, 3.5);
    }

    void valueOutOfRange_isRefusedAndTheOldOneStays_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("value");
        QTest::newRow("exposure above") << "ExposureTime" << 1000000.5;
        QTest::newRow("exposure below") << "ExposureTime" << 19.9;
        QTest::newRow("gain rounded to float") << "Gain" << static_cast<double>(23.79F);
        QTest::newRow("gain below") << "Gain" << -0.1;
        QTest::newRow("width of no whole pixel") << "Width" << 100.5;
        QTest::newRow("flag of 2") << "ReverseX" << 2.0;
        QTest::newRow("no number") << "Gain" << qQNaN();
    }
    void valueOutOfRange_isRefusedAndTheOldOneStays()
    {
        QFETCH(QString, name);
        QFETCH(double, value);
        const QByteArray node = name.toLatin1();
        m_client->open(wire::kClassPylon);
        const double before = m_client->request(Kind::GetFeature, node).head.value;
        const auto reply = m_client->request(Kind::SetFeature, node, value);
        QCOMPARE(reply.head.code, errorCode(Error::OutOfRange));
        QVERIFY(QString(reply.head.name).contains("out of range"));
        QCOMPARE(m_client->request(Kind::GetFeature, node).head.value, before);
    }

    void unknownFeature_isRefused()
    {
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::SetFeature, "Sharpness", 1.0), errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::GetFeature, "Sharpness"), errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::SetFeature, "DeviceModelName", 1.0), errorCode(Error::Refused));
    }

    void sizeAndFormat_areLockedWhileTheStreamRuns()
    {
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->code(Kind::SetFeature, "Width", 640.0), errorCode(Error::Refused));
        QCOMPARE(m_client->code(Kind::SetFeature, "PixelFormat", 3.0), errorCode(Error::Refused));
        QCOMPARE(m_client->code(Kind::SetFeature, "ReverseX", 1.0), 0);
        QCOMPARE(m_client->code(Kind::StopStream), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "Width", 640.0), 0);
    }
};

QTEST_GUILESS_MAIN(tst_CameraFeatures)
#include "tst_camera_features.moc"
