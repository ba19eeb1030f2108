#include "tests/workflows/Desk.h"

#include "camera/framedelivery.h"

/// Days on which the camera is bad, with either kind: frames that fail, come late or never, the plug pulled
/// in the middle of a calibration. What the technician sees, and what the settings file holds afterwards.
class tst_badday_camera : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void failedFrames_liveViewGoesOn();
    void lateFrameFarFromFocus_doesNotMoveTheResult();
    void failedFrameFarFromFocus_doesNotMoveTheResult();
    void lostFrame_stopsThePictureAndNoWorkflow();
    void plugPulledDuringFocus_endsTheRunAndLeavesTheFile();
    void plugPulledBeforeTheSlope_givesTheSameImpossibleHeightTwice();
    void plugPulledDuringThePixelShift_storesNothing();

private:
    bool connectUnit();
    bool press(const char* page, const char* button);
    int exposures();
    int stageZ() { return m_desk->rig.state().value("z").toInt(); }

    std::unique_ptr<Desk> m_desk;
};

namespace {

constexpr int kCellsX = 30931; ///< a field of cells under the objective
/// Best focus of the unit everywhere, on the grid of a run around this reference.
constexpr int kFocus = 30000;
const QByteArray kReferenceInFocus = "[Calibration]\nZ reference=30000\n";
const QString kRun = "$Z#STAGE RUN";

} // namespace

void tst_badday_camera::init()
{
    Desk::putSettings(kReferenceInFocus);
    m_desk.reset(new Desk);
}

void tst_badday_camera::cleanup()
{
    m_desk.reset();
}

bool tst_badday_camera::connectUnit()
{
    return m_desk->connectUnit() && m_desk->rig.set("x", kCellsX)
        && patience::waitFor([this] { return exposures() > 3; });
}

bool tst_badday_camera::press(const char* page, const char* button)
{
    return hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", page)
        && hand::click(m_desk->window(), button);
}

int tst_badday_camera::exposures()
{
    return m_desk->rig.state().value("camera").toObject().value("exposures").toInt();
}

void tst_badday_camera::failedFrames_liveViewGoesOn()
{
    QVERIFY(connectUnit());
    QVERIFY(m_desk->rig.fault("grabFails", {}, 3));
    const int before = exposures();
    QVERIFY(patience::waitFor([&] { return exposures() >= before + 20; }, 10000));
    QVERIFY(FrameDelivery::m_pInstance->getAutoTriggeringMode());
    QVERIFY(m_desk->boxes.boxes().isEmpty());
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_badday_camera::lateFrameFarFromFocus_doesNotMoveTheResult()
{
    QVERIFY(connectUnit());
    const int mark = m_desk->rig.mark();
    QVERIFY(press("TAB_STAGE", "pushButton_AUTOFOCUS"));
    // The first frames of the coarse scan, 3000 steps above focus.
    QVERIFY(patience::waitFor([&] { return m_desk->rig.sentSince(mark).count(kRun) >= 2; }));
    QVERIFY(m_desk->rig.fault("lateFrame", {}, 1, 400));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
    QCOMPARE(stageZ(), kFocus - 115);
}

void tst_badday_camera::failedFrameFarFromFocus_doesNotMoveTheResult()
{
    QVERIFY(connectUnit());
    const int mark = m_desk->rig.mark();
    QVERIFY(press("TAB_STAGE", "pushButton_AUTOFOCUS"));
    QVERIFY(patience::waitFor([&] { return m_desk->rig.sentSince(mark).count(kRun) >= 2; }));
    QVERIFY(m_desk->rig.fault("grabFails", {}, 2));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QCOMPARE(stageZ(), kFocus - 115);
}

void tst_badday_camera::lostFrame_stopsThePictureAndNoWorkflow()
{
    QVERIFY(connectUnit());
    const QByteArray file = Desk::settings();
    QVERIFY(m_desk->rig.fault("loseFrame"));
    int seen = exposures();
    // No frame comes back to ask for the next one.
    QVERIFY(patience::waitFor([&] {
        const int before = seen;
        QTest::qWait(300);
        seen = exposures();
        return seen == before;
    }));
    QVERIFY(press("TAB_STAGE", "pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
    QCOMPARE(Desk::settings(), file);
    // A change to still pictures and back sets the loop going again.
    FrameDelivery::m_pInstance->setAutoTriggeringMode(false);
    FrameDelivery::m_pInstance->setAutoTriggeringMode(true);
    QVERIFY(patience::waitFor([&] { return exposures() > seen + 5; }, 20000));
}

void tst_badday_camera::plugPulledDuringFocus_endsTheRunAndLeavesTheFile()
{
    QVERIFY(connectUnit());
    const QByteArray file = Desk::settings();
    const int mark = m_desk->rig.mark();
    QVERIFY(press("TAB_STAGE", "pushButton_AUTOFOCUS"));
    QVERIFY(patience::waitFor([&] { return m_desk->rig.sentSince(mark).count(kRun) >= 5; }));
    QVERIFY(m_desk->rig.fault("unplug"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish auto focusing !" }));
    QCOMPARE(Desk::settings(), file);
    QCOMPARE(m_desk->text("pushButton_AUTOFOCUS"), QString("AF"));
}

/// The calibration asks nobody whether its frames are new: with a dead picture every sample is the same, the
/// first one wins in either step, and the figures of the box give it away.
void tst_badday_camera::plugPulledBeforeTheSlope_givesTheSameImpossibleHeightTwice()
{
    QVERIFY(connectUnit());
    QVERIFY(m_desk->rig.fault("unplug"));
    QVERIFY(press("TAB_STAGE", "pushButton_REFERENCE_Z_SLOPE"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 60000));
    // 3680 - 460 above the reference wins the coarse step, 460 - 115 above that the fine one.
    QVERIFY2(m_desk->boxes.texts().first().contains(
                 "\nZ ref A1 : 33565 \nZ ref B1 : 33565 \nZ ref slope : 0.000 \n"),
        qPrintable(m_desk->boxes.texts().first()));
}

void tst_badday_camera::plugPulledDuringThePixelShift_storesNothing()
{
    QVERIFY(connectUnit());
    QVERIFY(press("TAB_STAGE", "pushButton_INSERT"));
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("tableWidget_SLIDE"); }));
    const QByteArray file = Desk::settings();
    const int mark = m_desk->rig.mark();
    QVERIFY(press("TAB_QC2", "pushButton_PIXEL_SHIFT"));
    QVERIFY(patience::waitFor([&] { return m_desk->rig.sentSince(mark).count(kRun) >= 30; }, 60000));
    QVERIFY(m_desk->rig.fault("unplug"));
    QVERIFY(m_desk->boxes.waitForBoxes(1, 200000));
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "finish calculate pixel shift !" }));
    QCOMPARE(Desk::settings(), file);
}

WORKFLOW_MAIN(tst_badday_camera)
#include "tst_badday_camera.moc"
