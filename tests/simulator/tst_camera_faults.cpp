#include "tests/simulator/CameraTest.h"
#include "tests/simulator/descriptors.h"

#include <QJsonArray>
#include <QTest>

using namespace qr9;
using wire::Error;
using wire::Kind;

// What can be made to go wrong between the camera and the SDK.
class tst_CameraFaults : public CameraTest {
    Q_OBJECT

private slots:
    void grabFails_sendsAFailedFrameWithItsText()
    {
        QVERIFY(m_client->openBasler());
        QVERIFY(m_instrument->fault("grabFails", {}, "The cable is loose."));
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        const auto failed = m_client->nextEvent();
        QCOMPARE(failed->head.kind, Kind::FrameEvent);
        QVERIFY(failed->head.code != 0);
        QCOMPARE(QString(failed->head.name), QString("The cable is loose."));
        QCOMPARE(failed->payload.size(), 0);
        QCOMPARE(m_client->picture().size(), kPixels);
    }

    void grabFails_canCarryTheCodeOfALibrary()
    {
        QVERIFY(m_client->openBasler());
        QVERIFY(m_instrument->fault("grabFails", {}, 65316));
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        QCOMPARE(m_client->nextEvent()->head.value, 65316.0);
    }

    void lateFrame_comesLater()
    {
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler(1000.0));
        QVERIFY(m_instrument->fault("lateFrame", {}, 2000));
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(2001);
        QVERIFY(m_client->isQuiet());
        QCOMPARE(m_client->code(Kind::Trigger), 1);
        m_instrument->advance(1);
        QCOMPARE(m_client->nextEvent()->payload.size(), kPixels);
    }

    void loseFrame_neverComes_andTheNextDoes()
    {
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler(1000.0));
        QVERIFY(m_instrument->fault("loseFrame"));
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(2);
        QTRY_VERIFY_WITH_TIMEOUT(!isExposing(), kPatienceMs);
        QVERIFY(m_client->isQuiet());
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        m_instrument->advance(2);
        const auto frame = m_client->nextEvent();
        QCOMPARE(frame->payload.size(), kPixels);
        QCOMPARE(static_cast<int>(frame->head.ticket), 2);
    }

    void unplug_isToldAtOnceAndEveryLaterRequestFails()
    {
        QVERIFY(m_client->openBasler());
        QVERIFY(m_instrument->fault("unplug"));
        QCOMPARE(m_client->nextEvent()->head.kind, Kind::RemovedEvent);
        for (const Kind kind :
            { Kind::Trigger, Kind::GetFeature, Kind::StopStream, Kind::Close, Kind::Devices }) {
            QCOMPARE(m_client->code(kind), errorCode(Error::Removed));
        }
        QCOMPARE(newClient()->code(Kind::Devices, wire::kClassPylon), 0);
        QCOMPARE(newClient()->code(Kind::Open, wire::kClassPylon), errorCode(Error::NoSuchDevice));
    }

    void unplugDuringAnExposure_leavesNoFrame()
    {
        m_instrument->holdClock();
        QVERIFY(m_client->openBasler());
        QCOMPARE(m_client->code(Kind::Trigger), 0);
        QVERIFY(m_instrument->fault("unplug"));
        m_instrument->advance(1000);
        QCOMPARE(m_client->nextEvent()->head.kind, Kind::RemovedEvent);
        QVERIFY(m_client->isQuiet());
    }

    void unplugAtARequest_strikesWhenItComes()
    {
        QVERIFY(m_client->openBasler());
        QVERIFY(m_instrument->fault("unplug", "Trigger"));
        QCOMPARE(m_client->code(Kind::GetFeature, "Gain"), 0);
        QCOMPARE(m_client->code(Kind::Trigger), errorCode(Error::Removed));
        QCOMPARE(m_client->nextEvent()->head.kind, Kind::RemovedEvent);
    }

    void cameraPluggedInAgain_canBeOpenedAnew()
    {
        QVERIFY(m_client->openBasler());
        QVERIFY(m_instrument->set("plugged", false));
        QCOMPARE(m_client->nextEvent()->head.kind, Kind::RemovedEvent);
        QVERIFY(m_instrument->set("plugged", true));
        QCOMPARE(m_client->code(Kind::Trigger), errorCode(Error::Removed));
        const auto second = newClient();
        QVERIFY(second->openBasler());
        QCOMPARE(second->picture().size(), kPixels);
    }

    void clearingTheFaults_plugsTheCameraIn()
    {
        QVERIFY(m_instrument->fault("unplug"));
        QCOMPARE(m_client->code(Kind::Devices, wire::kClassPylon), 0);
        QVERIFY(m_instrument->ask("clearFaults").value("ok").toBool());
        QCOMPARE(m_client->code(Kind::Devices, wire::kClassPylon), 1);
    }

    void missingFeature_isNeitherListedNorFound()
    {
        QVERIFY(m_instrument->fault("missingFeature", {}, "OverlapMode"));
        for (const wire::Feature& feature : m_client->open(wire::kClassPylon)) {
            QVERIFY(QString(feature.name) != "OverlapMode");
        }
        QCOMPARE(m_client->code(Kind::SetFeature, "OverlapMode", 1.0), errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::GetFeature, "OverlapMode"), errorCode(Error::NoSuchFeature));
        QCOMPARE(m_client->code(Kind::GetFeature, "Gain"), 0);
    }

    void missingFeature_canBeAskedForAtStart()
    {
        start({ "--seed", "2", "--missing-feature", "Gain" });
        m_client->open(wire::kClassPylon);
        QCOMPARE(m_client->code(Kind::GetFeature, "Gain"), errorCode(Error::NoSuchFeature));
    }

    void openFails_thenSucceeds()
    {
        QVERIFY(m_instrument->fault("openFails"));
        QCOMPARE(m_client->code(Kind::Open, wire::kClassPylon), errorCode(Error::Refused));
        QVERIFY(m_client->openBasler());
    }

    void cameraError_failsTheRequestThatItMatches()
    {
        QVERIFY(m_client->openBasler());
        QVERIFY(m_instrument->fault("cameraError", "SetFeature Gain", errorCode(Error::Bus)));
        QCOMPARE(m_client->code(Kind::SetFeature, "Gamma", 1.0), 0);
        QCOMPARE(m_client->code(Kind::SetFeature, "Gain", 1.0), errorCode(Error::Bus));
        QCOMPARE(m_client->request(Kind::GetFeature, "Gain").head.value, 0.0);
        QCOMPARE(m_client->code(Kind::SetFeature, "Gain", 1.0), 0);
    }

    void cameraError_canCarryTheCodeOfALibrary()
    {
        start({ "--seed", "2", "--camera", "arducam" });
        m_client->open(wire::kClassArduCam);
        QVERIFY(m_instrument->fault("cameraError", "WriteRegister 0x305E", 0xFF0B));
        const auto reply = m_client->request(Kind::WriteRegister, "", 32.0, 0x305E);
        QVERIFY(reply.head.code < 0);
        QCOMPARE(reply.head.value, 65291.0);
        QVERIFY(m_instrument->fault("cameraError", "SetFeature Mode", errorCode(Error::OldFirmware)));
        QCOMPARE(m_client->code(Kind::SetFeature, "Mode", 1.0), errorCode(Error::OldFirmware));
    }

    void wrongFault_isRefused()
    {
        QVERIFY(!m_instrument->fault("lateFrame", {}, "soon"));
        QVERIFY(!m_instrument->fault("missingFeature"));
        QVERIFY(!m_instrument->fault("missingFeature", {}, ""));
        QVERIFY(!m_instrument->fault("cameraError", {}, 0));
        QVERIFY(!m_instrument->fault("grabFails", {}, QJsonArray()));
    }
};

QTEST_GUILESS_MAIN(tst_CameraFaults)
#include "tst_camera_faults.moc"
