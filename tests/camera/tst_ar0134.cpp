#include "tests/camera/Ar0134Tests.h"
#include "tests/support/LogCapture.h"

#include <QtTest>

#include <algorithm>

using qr9::wire::Kind;
using Request = ScriptedBoard::Request;
using Requests = std::vector<Request>;

namespace {

/// Everything that a driver can be asked, of one that is closed: it does nothing, which is no error.
void callEverything(AR0134& camera)
{
    const QSignalSpy errors(&camera, &AR0134::signal_cameraError);
    camera.slot_setGain(3.0);
    camera.slot_setGain(-3.0);
    camera.slot_setExposure(1000);
    camera.setReverse(true, true);
    camera.setPedestal(5);
    camera.slot_setLiveViewState(true);
    camera.slot_executeSoftwareTrigger();
    camera.getSingleFrame();
    QCoreApplication::processEvents();
    cv::Mat mat;
    QImage image(1280, 960, QImage::Format_Indexed8);
    QVERIFY(!camera.getMatImg(mat));
    QVERIFY(!camera.getQImg(image));
    QCOMPARE(camera.getIntensity(), -1.0);
    QCOMPARE(camera.getGain(), -1.0);
    QCOMPARE(camera.getExposure(), -1);
    QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
    QVERIFY(errors.isEmpty());
}

} // namespace

// How the board is found, opened, set up and given back.
class tst_ar0134 : public BoardTest {
    Q_OBJECT

private slots:
    void attachedBoards_areListed()
    {
        m_board->setBoards(2);
        StandardOutput out;
        QCOMPARE(AR0134::is_AR0134Attached(), 1);
        QCOMPARE(out.text(),
            QByteArray("device num:2\n"
                       "index:   0\tSerial:QR9A-0000-0012\n"
                       "index:   1\tSerial:QR9A-0000-0012\n"
                       "Found 2 devices.\n"));
    }

    void noBoard_isNotAttached()
    {
        m_board->setBoards(0);
        StandardOutput out;
        QCOMPARE(AR0134::is_AR0134Attached(), 0);
        QCOMPARE(out.text(), QByteArray("device num:0\nFound 0 devices.\n"));
    }

    void open_sendsTheWholeSetUpInOrder()
    {
        m_bench->setConfiguration(
            "[board parameter]\nVRCMD = 0x90, 0x4600, 2, 1, 0x85\n"
            "[register parameter]\nREG = 0x301A, 0x00D9\nDELAY = 1\nREG = 0x30B0, 0x00B0\n");
        AR0134 camera(m_bench->file());
        QCOMPARE(camera.state(), int(AR0134::STATE_OPEN));
        const Requests expected {
            { Kind::Open, 0, 0, "ArduCam", {} },
            { Kind::SetFeature, 0x90, 0x46000002, "BoardConfig", { 0x85 } },
            ScriptedBoard::write(0x301A, 0x00D9), ScriptedBoard::write(0x30B0, 0x00B0),
            ScriptedBoard::write(0x3040, 0), // no mirror without a settings file
            { Kind::SetFeature, 0, 1, "Mode", {} }, ScriptedBoard::write(0x301E, 0), // pedestal
            ScriptedBoard::read(0x30B0), // gain 0 dB
            ScriptedBoard::write(0x30B0, 0x0080), ScriptedBoard::write(0x305E, 32),
            ScriptedBoard::write(0x3012, 815), // 20 ms
        };
        QVERIFY(m_board->requests() == expected);
    }

    void open_printsTheSerial()
    {
        StandardOutput out;
        AR0134 camera(m_bench->file());
        QVERIFY(out.text().contains("Serial: QR9A-0000-0012\n"));
    }

    void delayEntry_isWaitedFor()
    {
        m_bench->setConfiguration("[register parameter]\nDELAY = 200\n");
        QElapsedTimer timer;
        timer.start();
        AR0134 camera(m_bench->file());
        QVERIFY(timer.elapsed() >= 200);
    }

    void entriesForAnotherUsbKind_arePassedOver_data()
    {
        QTest::addColumn<int>("usbType");
        QTest::addColumn<int>("written");
        QTest::newRow("USB 2 board") << 2 << 0x22;
        QTest::newRow("USB 3 board") << 3 << 0x33;
        QTest::newRow("USB 3 board on USB 2") << 4 << 0x32;
    }
    void entriesForAnotherUsbKind_arePassedOver()
    {
        QFETCH(int, usbType);
        QFETCH(int, written);
        m_board->setUsbType(usbType);
        m_bench->setConfiguration("[register parameter]\nREG = 0x3100, 0x11\n"
                                  "[register parameter][dev2]\nREG = 0x3102, 0x22\n"
                                  "[register parameter][dev3][inf3]\nREG = 0x3102, 0x33\n"
                                  "[register parameter][dev3][inf2]\nREG = 0x3102, 0x32\n");
        AR0134 camera(m_bench->file());
        QCOMPARE(int(m_board->reg(0x3100)), 0x11);
        QCOMPARE(int(m_board->reg(0x3102)), written);
        const Requests requests = m_board->requests();
        const auto writes = std::count_if(
            requests.begin(), requests.end(), [](const Request& request) { return request.code == 0x3102; });
        QCOMPARE(int(writes), 1);
    }

    void registerOfTheFileThatFails_isLoggedAndPassedOver()
    {
        m_bench->setConfiguration("[register parameter]\nREG = 0x3100, 7\nREG = 0x3102, 8\n");
        m_board->failWrites(0x3100, 0xFF0C);
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("Writing a camera registry error 12544 7"));
        AR0134 camera(m_bench->file());
        QCOMPARE(camera.state(), int(AR0134::STATE_OPEN));
        QCOMPARE(int(m_board->reg(0x3102)), 8);
    }

    void missingFile_leavesTheCameraClosed()
    {
        StandardOutput out;
        AR0134 camera("./no such file.cfg");
        QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
        QVERIFY(out.text().contains("Cannot find configuration file."));
        QVERIFY(m_board->requests().empty());
    }

    void badFile_leavesTheCameraClosedAndLogsTheLine()
    {
        m_bench->setConfiguration("[register parameter]\nREG = 1\n"); // behind the six lines of the camera
        StandardOutput out;
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("AR0134_Merel.cfg bad line 8"));
        AR0134 camera(m_bench->file());
        QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
        QVERIFY(out.text().contains("Cannot find configuration file."));
        QVERIFY(m_board->requests().empty());
    }

    void noBoard_leavesTheCameraClosed()
    {
        m_board->setBoards(0);
        StandardOutput out;
        AR0134 camera(m_bench->file());
        QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
        QVERIFY(out.text().contains("Cannot open camera.rtn_val = 65286"));
    }

    void failedOpen_reachesNoBoardAfterwards()
    {
        m_board->refuseOpens(1, 0xFF05);
        AR0134 camera(m_bench->file());
        QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
        m_board->forgetRequests();
        callEverything(camera);
        QVERIFY(m_board->requests().empty());
    }

    void oldFirmware_closesTheBoardSoThatASecondAttemptCanOpenIt()
    {
        m_board->setModeCode(65393);
        StandardOutput out;
        AR0134 first(m_bench->file());
        QCOMPARE(first.state(), int(AR0134::STATE_CLOSED));
        QVERIFY(out.text().contains("Usb board firmware version not support single mode."));
        QCOMPARE(m_board->count(Kind::Close), 1);
        m_board->setModeCode(0);
        AR0134 second(m_bench->file());
        QCOMPARE(second.state(), int(AR0134::STATE_OPEN));
    }

    void otherErrorOfTheMode_doesNotStopTheOpening()
    {
        m_board->setModeCode(0xFF03);
        AR0134 camera(m_bench->file());
        QCOMPARE(camera.state(), int(AR0134::STATE_OPEN));
        const Requests requests = m_board->requests();
        const Request pedestal = ScriptedBoard::write(0x301E, 0);
        QVERIFY(std::find(requests.begin(), requests.end(), pedestal) != requests.end());
    }

    void openingAndClosing_areLogged()
    {
        const LogCapture log;
        AR0134 camera(m_bench->file());
        for (const char* line :
            { "bool AR0134::camera_initFromFile(const char*, void*&)", "void AR0134::setPedestal(uint16_t)",
                "void AR0134::slot_setGain(double)", "void AR0134::slot_setExposure(unsigned int)" }) {
            QVERIFY2(log.contains(line), line);
        }
        const int mark = log.mark();
        camera.closeCamera();
        QCOMPARE(log.lines(mark).filter("void AR0134::closeCamera()").size(), 2); // before and after
    }

    void liveState_asksForATriggerWhereItChanges()
    {
        AR0134 camera(m_bench->file());
        QSignalSpy asked(&camera, &AR0134::sig_selfExecuteSoftwareTrigger);
        camera.slot_setLiveViewState(false); // as it is
        QCOMPARE(camera.state(), 1);
        QCOMPARE(asked.count(), 0);
        camera.slot_setLiveViewState(true);
        QCOMPARE(camera.state(), 2);
        QCOMPARE(asked.count(), 1);
        camera.slot_setLiveViewState(true);
        QCOMPARE(asked.count(), 1);
        QCOMPARE(m_board->count(Kind::Trigger), 0); // queued, though it is on this thread
        camera.slot_setLiveViewState(false);
        QCOMPARE(camera.state(), 1);
        QCOMPARE(asked.count(), 1);
    }

    void states_haveTheirNumbers()
    {
        QCOMPARE(int(AR0134::STATE_CLOSED), 0);
        QCOMPARE(int(AR0134::STATE_OPEN), 1);
        QCOMPARE(int(AR0134::STATE_LIVE), 2);
    }

    void closedCamera_givesTheBoardBackOnceAndAnswersNothing()
    {
        AR0134 camera(m_bench->file());
        camera.closeCamera();
        QCOMPARE(camera.state(), int(AR0134::STATE_CLOSED));
        camera.closeCamera();
        QCOMPARE(m_board->count(Kind::Close), 1);
        m_board->forgetRequests();
        callEverything(camera);
        QVERIFY(m_board->requests().empty());
    }
};

QTEST_GUILESS_MAIN(tst_ar0134)
#include "tst_ar0134.moc"
