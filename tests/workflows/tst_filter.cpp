#include "tests/workflows/PageTest.h"

#include <QJsonArray>
#include <QSpinBox>

/// The service panel of the filter wheel.
class tst_filter : public PageTest {
    Q_OBJECT

public:
    tst_filter()
        : PageTest("TAB_LIGHT")
    {
    }

protected slots:
    void initTestCase() override;
    void cleanup() override;

private slots:
    void afterTheStart_theBoxesShowTheFile();
    void go_turnsTheWheelAndTouchesNothingElse_data();
    void go_turnsTheWheelAndTouchesNothingElse();
    void read_showsWhatTheBoardHolds_data();
    void read_showsWhatTheBoardHolds();
    void correction_goesToTheBoardAndNotToTheFile_data();
    void correction_goesToTheBoardAndNotToTheFile();
    void emptyBox_sends0();
    void changeOfChannel_bringsTheFilesValuesBack();
    void unusableFileValues_areReadAs0();
    void lateReply_setsTheBoxWhenItComes();
    void lostAndDoubledReplies_doNoHarm();

private:
    QString name(const char* pattern, int position) { return QString(pattern).arg(position); }
    QSpinBox* box(int position)
    {
        return m_desk->window().findChild<QSpinBox*>(name("spinBox_FILTER%1_CORR", position));
    }
    int atBoard(int position)
    {
        return m_desk->rig.state().value("corrections").toArray().at(position - 1).toInt();
    }
    QVector<int> shown() { return { box(1)->value(), box(2)->value(), box(3)->value() }; }
};

namespace {

const char kToolFile[] = "/root/TAVO_QR9/VerifierQR9.ini";

void putToolFile(const QByteArray& text)
{
    QFile::remove(kToolFile);
    QFile file(kToolFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write the tool's file");
}

void addPositions()
{
    QTest::addColumn<int>("position");
    for (int position = 1; position <= 3; ++position)
        QTest::addRow("%d", position) << position;
}

} // namespace

void tst_filter::initTestCase()
{
    putToolFile("[Correction]\nFilter 1=21\nFilter 3=23\n");
    PageTest::initTestCase();
}

void tst_filter::cleanup()
{
    QCOMPARE(Desk::settings(), QByteArray());
    PageTest::cleanup();
}

void tst_filter::afterTheStart_theBoxesShowTheFile()
{
    // The connection lights bright field; what the file lacks is 10.
    QCOMPARE(shown(), QVector<int>({ 21, 10, 23 }));
}

void tst_filter::go_turnsTheWheelAndTouchesNothingElse_data()
{
    addPositions();
}

void tst_filter::go_turnsTheWheelAndTouchesNothingElse()
{
    QFETCH(int, position);
    const auto lit = [this] {
        QJsonObject state = m_desk->rig.state();
        const QJsonObject camera = state.value("camera").toObject();
        return QList<QVariant>(
            { state.value("leds").toObject().toVariantMap(), camera.value("gainDb").toDouble(),
                camera.value("exposureUs").toDouble(), m_desk->style("pushButton_ILLUMINATION_BF") });
    };
    const auto before = lit();
    const int mark = m_desk->mark();
    QVERIFY(click(name("pushButton_FILTER%1_GO", position)));
    QVERIFY(patience::waitFor([&] { return m_desk->rig.state().value("filter").toInt() == position; }));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ name("$A#FILTER GO %1", position) }));
    QCOMPARE(lit(), before);
    QCOMPARE(shown(), QVector<int>({ 21, 10, 23 }));
    // The channel in use is still bright field.
    const int behind = m_desk->mark();
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QVERIFY(click("pushButton_LED_TOGGLE"));
    QCOMPARE(m_desk->linesSince(behind), QStringList({ "$A#LED OFF1", "$A#LED BRT1 7 6" }));
}

void tst_filter::read_showsWhatTheBoardHolds_data()
{
    addPositions();
}

void tst_filter::read_showsWhatTheBoardHolds()
{
    QFETCH(int, position);
    QVERIFY(hand::type(m_desk->window(), name("spinBox_FILTER%1_CORR", position), "7777")); // not sent
    const int held = atBoard(position);
    QVERIFY(held != 7777);
    const int mark = m_desk->mark();
    QVERIFY(click(name("pushButton_FILTER%1_READ", position)));
    QVERIFY(patience::waitFor([&] { return box(position)->value() == held; }));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ name("$A#FILTER READ%1", position) }));
}

void tst_filter::correction_goesToTheBoardAndNotToTheFile_data()
{
    addPositions();
}

void tst_filter::correction_goesToTheBoardAndNotToTheFile()
{
    QFETCH(int, position);
    const QString value = QString::number(9990 + position);
    QVERIFY(hand::type(m_desk->window(), name("spinBox_FILTER%1_CORR", position), value));
    const int mark = m_desk->mark();
    QVERIFY(click(name("pushButton_FILTER%1_CORR", position)));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ name("$A#FILTER COR%1 ", position) + value }));
    QCOMPARE(atBoard(position), value.toInt());
    // The board keeps it: it is read back into a box that shows something else.
    box(position)->setValue(1);
    QVERIFY(click(name("pushButton_FILTER%1_READ", position)));
    QVERIFY(patience::waitFor([&] { return box(position)->value() == value.toInt(); }));
    QFile file(kToolFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("[Correction]\nFilter 1=21\nFilter 3=23\n"));
}

void tst_filter::emptyBox_sends0()
{
    QVERIFY(hand::type(m_desk->window(), "spinBox_FILTER2_CORR", ""));
    const int mark = m_desk->mark();
    QVERIFY(click("pushButton_FILTER2_CORR"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#FILTER COR2 0" }));
}

void tst_filter::changeOfChannel_bringsTheFilesValuesBack()
{
    for (const char* channel : { "GFP", "RFP", "BF" }) {
        QVERIFY(hand::type(m_desk->window(), "spinBox_FILTER1_CORR", "500")); // typed and not sent
        QVERIFY(click("pushButton_FILTER3_READ"));
        QVERIFY(patience::waitFor([this] { return box(3)->value() == atBoard(3); }));
        QVERIFY(atBoard(3) != 23);
        QVERIFY(click(QString("pushButton_ILLUMINATION_") + channel));
        QCOMPARE(shown(), QVector<int>({ 21, 10, 23 }));
    }
}

void tst_filter::unusableFileValues_areReadAs0()
{
    putToolFile("[Correction]\nFilter 1=abc\nFilter 2=\nFilter 3=123456\n");
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
    QCOMPARE(shown(), QVector<int>({ 0, 10, 9999 })); // the box ends at 9999
    putToolFile("[Correction]\nFilter 1=21\nFilter 3=23\n");
    QVERIFY(click("pushButton_ILLUMINATION_BF"));
}

void tst_filter::lateReply_setsTheBoxWhenItComes()
{
    QVERIFY(m_desk->rig.fault("late", "$A#FILTER READ1", 1, 150));
    const int held = atBoard(1);
    QVERIFY(click("pushButton_FILTER1_READ"));
    QVERIFY(click("pushButton_FILTER1_READ")); // a second press meanwhile is a second question
    QVERIFY(patience::waitFor([&] { return box(1)->value() == held; }));
    box(1)->setValue(5);
    QVERIFY(patience::waitFor([&] { return box(1)->value() == held; }));
}

void tst_filter::lostAndDoubledReplies_doNoHarm()
{
    QVERIFY(m_desk->rig.fault("lose", "$A#FILTER READ2"));
    box(2)->setValue(4);
    int mark = m_desk->mark();
    QVERIFY(click("pushButton_FILTER2_READ"));
    QCOMPARE(m_desk->linesSince(mark), QStringList({ "$A#FILTER READ2" }));
    QCOMPARE(box(2)->value(), 4);
    QVERIFY(m_desk->isEnabled("pushButton_FILTER2_READ"));
    QVERIFY(m_desk->rig.fault("double", "$A#FILTER READ2"));
    QVERIFY(click("pushButton_FILTER2_READ"));
    QVERIFY(patience::waitFor([this] { return box(2)->value() == atBoard(2); }));
}

WORKFLOW_MAIN(tst_filter)
#include "tst_filter.moc"
