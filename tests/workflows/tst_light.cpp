#include "tests/workflows/Desk.h"

#include <QDoubleSpinBox>

/// The Light page of a unit with the AR0134 sensor, for which the fluorescence channels have a gain of its
/// own.
class tst_light : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void fluorescence_takesItsOwnGain_data();
    void fluorescence_takesItsOwnGain();
    void set_storesTheGainUnderItsOwnKey_data();
    void set_storesTheGainUnderItsOwnKey();

private:
    bool click(const QString& name) { return hand::click(m_desk->window(), name); }
    double gainShown() { return m_desk->widget<QDoubleSpinBox>("doubleSpinBox_GAIN")->value(); }

    std::unique_ptr<Desk> m_desk;
};

namespace {

QStringList sortedLines(const QByteArray& file)
{
    QStringList lines = QString::fromLatin1(file).split('\n', Qt::SkipEmptyParts);
    lines.sort();
    return lines;
}

} // namespace

void tst_light::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", "TAB_LIGHT"));
}

void tst_light::init()
{
    Desk::removeSettings();
}

void tst_light::cleanupTestCase()
{
    m_desk.reset();
}

void tst_light::fluorescence_takesItsOwnGain_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<double>("gain");
    QTest::newRow("GFP, default") << "GFP" << QByteArray() << 2.0;
    QTest::newRow("RFP, default") << "RFP" << QByteArray() << 2.0;
    QTest::newRow("BF, default") << "BF" << QByteArray() << 0.0;
    QTest::newRow("GFP") << "GFP" << QByteArray("[Ch. GFP]\nGain=7\nGain AR=3\n") << 3.0;
    QTest::newRow("RFP") << "RFP" << QByteArray("[Ch. RFP]\nGain=7\nGain AR=4\n") << 4.0;
    QTest::newRow("BF has one gain for both cameras")
        << "BF" << QByteArray("[Ch. BF]\nGain=6\nGain AR=3\n") << 6.0;
}

void tst_light::fluorescence_takesItsOwnGain()
{
    QFETCH(QString, channel);
    QFETCH(QByteArray, file);
    if (!file.isEmpty())
        Desk::putSettings(file);
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QTEST(gainShown(), "gain");
}

void tst_light::set_storesTheGainUnderItsOwnKey_data()
{
    QTest::addColumn<QString>("channel");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("BF") << "BF" << QStringList({ "[Ch. BF]", "Gain=3", "Exposure=35", "LED1=7", "LED2=6" });
    QTest::newRow("GFP") << "GFP" << QStringList({ "[Ch. GFP]", "Gain AR=3", "Exposure=80", "LED=300" });
    QTest::newRow("RFP") << "RFP" << QStringList({ "[Ch. RFP]", "Gain AR=3", "Exposure=80", "LED=350" });
}

void tst_light::set_storesTheGainUnderItsOwnKey()
{
    QFETCH(QString, channel);
    QFETCH(QStringList, lines);
    QVERIFY(click("pushButton_ILLUMINATION_" + channel));
    QVERIFY(hand::type(m_desk->window(), "doubleSpinBox_GAIN", "3.9"));
    QVERIFY(hand::press(m_desk->window(), "doubleSpinBox_GAIN", Qt::Key_Return));
    QVERIFY(click("pushButton_ILLUMINATION_SET"));
    lines.sort();
    QCOMPARE(sortedLines(Desk::settings()), lines);
}

WORKFLOW_MAIN(tst_light)
#include "tst_light.moc"
