#include "algorithms/alg_autoFocus.h"
#include "tests/workflows/ShiftRun.h"

#include "app/slide_geometry.h"

#include <QCheckBox>
#include <QTimer>

/// Runs that begin or go on in other ways than the usual one.
class tst_pixelshift_circumstances : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();

    void runStartedInGfp_focusesTheFirstFieldByTheFluorescenceMeasure();
    void offsetOf0_sendsBothMovesAndStaysPut();
    void focusRunAfterwards_showsItsBoxAndLeavesTheStoredFrames();
    void debugOutput_asksForAFolderOnAllTwelveFields();
    void offsetBeyondEveryAxis_endsAtTheEndsOfTheRange();
    void endOfTheChannel_waitsForAMoveByHand();

private:
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<ShiftRun> m_run;
};

namespace {

constexpr int kFramesOfFirstSearch = 15 + 7; // coarse and fine

QStringList movesX(const QStringList& sent)
{
    return sent.filter("$X#STAGE ABS ");
}

} // namespace

void tst_pixelshift_circumstances::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    m_run.reset(new ShiftRun(*m_desk));
    QVERIFY(m_run->prepare());
}

void tst_pixelshift_circumstances::cleanupTestCase()
{
    m_run.reset();
    m_desk.reset();
}

void tst_pixelshift_circumstances::cleanup()
{
    if (m_desk->text("pushButton_PIXEL_SHIFT") == "Live") {
        QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_QC2"));
        QVERIFY(hand::click(m_desk->window(), "pushButton_PIXEL_SHIFT"));
    }
}

void tst_pixelshift_circumstances::runStartedInGfp_focusesTheFirstFieldByTheFluorescenceMeasure()
{
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_LIGHT"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_ILLUMINATION_GFP"));
    m_desk->widget<QLineEdit>("lineEdit_OFFSET_Z")->setText("0");
    QVERIFY(m_run->run());
    QCOMPARE(m_run->boxes().size(), 1);
    QCOMPARE(m_run->boxes()[0].text, QString("finish calculate pixel shift !"));

    const QStringList values = m_run->logged().filter(" val: ");
    const auto logged = [&values](int frame) { return values.value(frame).section(" val: ", 1); };
    const auto measured = [](ALG_focus measure, const ShiftRun::Frame& frame) {
        return QString::number(alg_autoFocus().get_focusValue(measure, frame.pixels.data, 1280, 960));
    };
    QCOMPARE(logged(0), measured(ALG_FOCUS_TENENGRAD, m_run->firstOn(1)));
    QCOMPARE(logged(kFramesOfFirstSearch), measured(ALG_FOCUS_LAPLACIAN, m_run->firstOn(2)));

    // And so the first field is focused on the fluorescence, all others on bright field.
    const auto bestFocus = [this](int field, const char* channel) {
        const QJsonObject truth
            = m_desk->rig.request({ { "cmd", "bestFocus" }, { "x", ShiftRun::fieldX(field) } });
        return truth.value(channel).toDouble();
    };
    QVERIFY(std::abs(m_run->bestOf("[2]", 0) - bestFocus(1, "gfp")) <= 115.0);
    for (int field = 2; field <= ShiftRun::kFields; ++field)
        QVERIFY(std::abs(m_run->bestOf("[2]", field - 1) - bestFocus(field, "bf")) <= 115.0);
}

void tst_pixelshift_circumstances::offsetOf0_sendsBothMovesAndStaysPut()
{
    // The run before was made with it.
    const QStringList moves = m_run->sent().filter("$Z#STAGE ABS ");
    QCOMPARE(moves.size(), 3 * ShiftRun::kFields + 1); // with the search's own one, and the insert
    for (int field = 1; field <= ShiftRun::kFields; ++field) {
        const int focus = m_run->lastThrough(1, field).z;
        QCOMPARE(moves[3 * field - 2], QString("$Z#STAGE ABS %1").arg(focus));
        QCOMPARE(moves[3 * field - 1], QString("$Z#STAGE ABS %1").arg(focus));
        QCOMPARE(m_run->lastThrough(2, field).z, focus);
        QCOMPARE(m_run->lastThrough(3, field).z, focus);
    }
    m_desk->widget<QLineEdit>("lineEdit_OFFSET_Z")->setText("3");
}

void tst_pixelshift_circumstances::focusRunAfterwards_showsItsBoxAndLeavesTheStoredFrames()
{
    std::vector<cv::Mat> before;
    for (int field = 1; field <= ShiftRun::kFields; ++field)
        before.push_back(m_desk->window().make_overlayImage(field, false));
    const int logMark = m_desk->log.mark();
    const int boxes = m_desk->boxes.boxes().size();
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(hand::click(m_desk->window(), "pushButton_AUTOFOCUS"));
    QVERIFY(m_desk->boxes.waitForBoxes(boxes + 1, 60000));
    QCOMPARE(m_desk->log.lines(logMark).filter(" val: ").size(), 15 + 7);
    QCOMPARE(m_desk->log.lines(logMark).filter("slot_ImageGrabbed_pixelshift"), QStringList());
    for (int field = 1; field <= ShiftRun::kFields; ++field)
        QCOMPARE(cv::norm(m_desk->window().make_overlayImage(field, false),
                     before[static_cast<std::size_t>(field - 1)], cv::NORM_INF),
            0.0);
}

void tst_pixelshift_circumstances::debugOutput_asksForAFolderOnAllTwelveFields()
{
    QVERIFY(m_run->goToFirstField());
    auto* debug = m_desk->widget<QCheckBox>("checkBox_AUTOFOCUS_DEBUG");
    debug->setChecked(true);
    m_desk->widget<QLineEdit>("lineEdit_OFFSET_Z")->setText("30000000"); // the next test looks at its moves
    for (int field = 1; field <= ShiftRun::kFields; ++field)
        m_desk->boxes.handleNext([](QDialog& dialog) { dialog.reject(); });
    QVERIFY(m_run->run());
    debug->setChecked(false);
    const QVector<ShownBox> boxes = m_run->boxes();
    QCOMPARE(boxes.size(), ShiftRun::kFields + 1);
    for (int field = 1; field <= ShiftRun::kFields; ++field)
        QCOMPARE(boxes[field - 1].className, QString("QFileDialog"));
    QCOMPARE(boxes.last().text, QString("finish calculate pixel shift !"));
}

void tst_pixelshift_circumstances::offsetBeyondEveryAxis_endsAtTheEndsOfTheRange()
{
    // The run before was made with it: 115 times the offset is more than 32 bits hold.
    const QStringList moves = m_run->sent().filter("$Z#STAGE ABS ");
    QCOMPARE(moves.size(), 3 * ShiftRun::kFields + 1);
    for (int field = 1; field <= ShiftRun::kFields; ++field) {
        QCOMPARE(moves[3 * field - 2], QString("$Z#STAGE ABS 2147483647"));
        QCOMPARE(moves[3 * field - 1], QString("$Z#STAGE ABS -2147483648"));
    }
    m_desk->widget<QLineEdit>("lineEdit_OFFSET_Z")->setText("3");
}

void tst_pixelshift_circumstances::endOfTheChannel_waitsForAMoveByHand()
{
    // The channel of an 8-channel slide has 5 fields: the fifth has none behind it.
    SlidePanel slide(*m_desk);
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
    QVERIFY(slide.insert(SLIDE_8CH));
    QVERIFY(slide.move("pushButton_FIELD_NEXT"));
    int waits = 0;
    const int logMark = m_desk->log.mark();
    QTimer look;
    connect(&look, &QTimer::timeout, this, [&] {
        if (m_desk->log.lines(logMark).filter("waiting for a move of X by hand").size() == waits)
            return;
        ++waits;
        const int mark = m_desk->rig.mark();
        patience::later(300, this, [this, mark] {
            QCOMPARE(m_desk->rig.sentSince(mark), QStringList());
            // The other pages can be used; one field back goes the hand.
            QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_STAGE"));
            QVERIFY(hand::click(m_desk->window(), "pushButton_FIELD_PREV"));
        });
    });
    look.start(20);
    QVERIFY(m_run->run());
    QCOMPARE(waits, 4);
    QCOMPARE(m_run->boxes().size(), 1);
    QStringList expected;
    for (const int field : { 1, 2, 3, 4, 3, 4, 3, 4, 3, 4, 3 })
        expected << QString("$X#STAGE ABS %1").arg(38291 - 480 * field);
    QCOMPARE(movesX(m_run->sent()), expected << "$X#STAGE ABS 0");
}

WORKFLOW_MAIN(tst_pixelshift_circumstances)
#include "tst_pixelshift_circumstances.moc"
