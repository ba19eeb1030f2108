#include "tests/workflows/Desk.h"

#include <QSpinBox>

/// An answer without a text while the unit comes up: what was done before it stands, nothing behind it is
/// done.
class tst_emptyanswers : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void emptyAnswerDuringBringUp_failsInitialize_data();
    void emptyAnswerDuringBringUp_failsInitialize();
    void failedInitialize_canBeRepeatedByTheButton();
    void emptyAnswerToAZSetting_leavesTheStoredValuesUnread_data();
    void emptyAnswerToAZSetting_leavesTheStoredValuesUnread();
    void ejectButton_isBlueBeforeTheTrayMoves_data();
    void ejectButton_isBlueBeforeTheTrayMoves();
    void emptyAnswerToTheReferenceMove_leavesThePositionOnShow();

private:
    std::unique_ptr<Desk> m_desk;
};

namespace {

/// What a unit's panels take from the file while the stage is set up, and what they show without it.
struct Field {
    const char* name;
    const char* before;
    const char* stored;
};
constexpr Field kFields[] = {
    { "lineEdit_REFERENCE_AUTOFOCUS", "as it was", "31500" },
    { "lineEdit_OFFSET_Z", "as it was", "4" },
    { "spinBox_REUSABLE_OFFSET", "77", "5000" },
    { "spinBox_VALIDATION_OFFSET", "77", "1300" },
    { "spinBox_PRISMA_OFFSET", "77", "600" },
    { "lineEdit_REFERENCE_Z", "as it was", "33420" },
    { "lineEdit_SHIFT_GFP_X", "as it was", "1.50" },
    { "lineEdit_SHIFT_GFP_Y", "as it was", "-2.25" },
    { "lineEdit_SHIFT_RFP_X", "as it was", "0.50" },
    { "lineEdit_SHIFT_RFP_Y", "as it was", "12.00" },
};
const char kStored[]
    = "[Calibration]\nZ reference=31500\nZ offset=4\nReusable offset=5000\nValidation offset=1300\n"
      "Prisma offset=600\nZ ref 2ch=33420\n"
      "[Miscellaneous]\nPixel shift GFP X=1.5\nPixel shift GFP Y=-2.25\nPixel shift RFP X=0.5\n"
      "Pixel shift RFP Y=12\n";

const QString kReady = "font: 11pt 'Sans Serif'; color : black; background-color : rgb(0, 170, 255)";

void put(QWidget* field, const char* text)
{
    if (auto* box = qobject_cast<QSpinBox*>(field))
        box->setValue(QString(text).toInt());
    else
        field->setProperty("text", text);
}

} // namespace

void tst_emptyanswers::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_emptyanswers::cleanup()
{
    m_desk.reset();
}

void tst_emptyanswers::emptyAnswerDuringBringUp_failsInitialize_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("sent"); // lines up to the one that is answered by nothing
    const QStringList lines = linesOfConnection();
    // The light has no test of its answers: the first eight lines behind the search count.
    for (int i = 1; i <= 7; ++i)
        QTest::newRow(qPrintable(lines[i])) << lines[i] << i + 1;
}

void tst_emptyanswers::emptyAnswerDuringBringUp_failsInitialize()
{
    QFETCH(QString, line);
    QFETCH(int, sent);
    const int mark = m_desk->rig.mark();
    QVERIFY(m_desk->rig.fault("nul", line));
    QString textWhileOpen;
    QCursor cursorWhileOpen;
    m_desk->boxes.lookAtEach([&](QDialog&) {
        textWhileOpen = m_desk->text("pushButton_CONNECT");
        cursorWhileOpen = m_desk->window().cursor();
    });
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(), QStringList({ "Fail CONTROLLER initialize !" }));
    QCOMPARE(m_desk->boxes.boxes().first().title, QString("Error"));
    QCOMPARE(m_desk->boxes.boxes().first().buttons.size(), 1);
    QCOMPARE(m_desk->boxes.boxes().first().icon, QMessageBox::Information);
    QCOMPARE(textWhileOpen, QString("~~~"));
    QCOMPARE(cursorWhileOpen.shape(), Qt::WaitCursor);
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection().mid(0, sent));
    QCOMPARE(m_desk->text("pushButton_CONNECT"), QString("Connect"));
    QCOMPARE(m_desk->style("pushButton_CONNECT"),
        QString("font: 11pt 'Sans Serif'; color : black; background-color : none"));
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
}

void tst_emptyanswers::failedInitialize_canBeRepeatedByTheButton()
{
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE ORIGIN"));
    m_desk->open();
    QVERIFY(m_desk->waitForConnection());
    QVERIFY(!m_desk->isEnabled("tabWidget_CONTROLLER"));
    const int mark = m_desk->rig.mark();
    QVERIFY(hand::click(m_desk->window(), "pushButton_CONNECT"));
    QVERIFY(m_desk->isEnabled("tabWidget_CONTROLLER"));
    QCOMPARE(m_desk->rig.sentSince(mark), linesOfConnection());
}

void tst_emptyanswers::emptyAnswerToAZSetting_leavesTheStoredValuesUnread_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("unread");
    QTest::newRow("step") << "$Z#STAGE STEP 115" << true;
    QTest::newRow("speed") << "$Z#STAGE SPEED 100" << true;
    QTest::newRow("none") << QString() << false;
}

void tst_emptyanswers::emptyAnswerToAZSetting_leavesTheStoredValuesUnread()
{
    QFETCH(QString, line);
    QFETCH(bool, unread);
    QVERIFY(m_desk->connectUnit());
    for (const Field& field : kFields)
        put(m_desk->widget(field.name), field.before);
    Desk::putSettings(kStored); // the boxes have stored what was put into them
    if (!line.isEmpty())
        QVERIFY(m_desk->rig.fault("nul", line));
    QCOMPARE(m_desk->window().setup_STAGE(), !unread);
    for (const Field& field : kFields)
        QCOMPARE(m_desk->text(field.name), QString(unread ? field.before : field.stored));
}

void tst_emptyanswers::ejectButton_isBlueBeforeTheTrayMoves_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("style");
    QTest::newRow("the axis does not home") << "$X#STAGE ORIGIN"
                                            << "as it was" << QString();
    QTest::newRow("the speed is not set") << "$Z#STAGE SPEED 100"
                                          << "as it was" << QString();
    QTest::newRow("the tray does not come out") << "$X#STAGE EJECT"
                                                << "Eject" << kReady;
}

void tst_emptyanswers::ejectButton_isBlueBeforeTheTrayMoves()
{
    QFETCH(QString, line);
    m_desk->open();
    auto* const button = m_desk->widget("pushButton_EJECT");
    button->setProperty("text", "as it was");
    button->setStyleSheet({});
    QVERIFY(m_desk->rig.fault("nul", line));
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(m_desk->boxes.texts(), QStringList { "Fail CONTROLLER initialize !" });
    QTEST(m_desk->text("pushButton_EJECT"), "text");
    QTEST(m_desk->style("pushButton_EJECT"), "style");
}

void tst_emptyanswers::emptyAnswerToTheReferenceMove_leavesThePositionOnShow()
{
    QVERIFY(m_desk->connectUnit());
    m_desk->widget<QLineEdit>("lineEdit_REFERENCE_Z")->setText("31000");
    m_desk->widget<QLineEdit>("lineEdit_POSITION_Z")->setText("as it was");
    QVERIFY(m_desk->rig.fault("nul", "$Z#STAGE ABS 31000"));
    QVERIFY(!m_desk->window().standby_STAGE());
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("as it was"));
    QVERIFY(m_desk->window().standby_STAGE());
    QCOMPARE(m_desk->text("lineEdit_POSITION_Z"), QString("31000"));
}

WORKFLOW_MAIN(tst_emptyanswers)
#include "tst_emptyanswers.moc"
