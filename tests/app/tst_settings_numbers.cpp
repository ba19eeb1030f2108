#include "app/settings.h"

#include <QFile>
#include <QtTest>

#include <limits>

/// Numbers of the instrument's settings file. In a room, which has a /root of its own.
class tst_settings_numbers : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void integer_isReadInBaseTen_data();
    void integer_isReadInBaseTen();
    void realNumber_isReadWithADecimalPoint_data();
    void realNumber_isReadWithADecimalPoint();
    void writtenNumbers_areReadAgain();
};

void tst_settings_numbers::initTestCase()
{
    QFile file("/root/TAVO_QR9/TAVO_QR9.ini");
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Numbers]\nplain=-480\nblanks=\"  12  \"\nunit=12 steps\ntext=none\nhex=0x10\nempty=\n"
               "large=99999999999\nsmall=-99999999999\nreal=-0.25\ncomma=\"1,5\"\n");
}

void tst_settings_numbers::integer_isReadInBaseTen_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("plain") << -480;
    QTest::newRow("blanks") << 12;
    QTest::newRow("unit") << 12;
    QTest::newRow("text") << 0;
    QTest::newRow("hex") << 0;
    QTest::newRow("empty") << 7;
    QTest::newRow("missing") << 7;
    QTest::newRow("large") << std::numeric_limits<int>::max();
    QTest::newRow("small") << std::numeric_limits<int>::min();
}

void tst_settings_numbers::integer_isReadInBaseTen()
{
    QFETCH(int, number);
    QCOMPARE(settings::readInt("Numbers", QTest::currentDataTag(), "7"), number);
}

void tst_settings_numbers::realNumber_isReadWithADecimalPoint_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("plain") << -480.0;
    QTest::newRow("real") << -0.25;
    QTest::newRow("comma") << 1.0;
    QTest::newRow("text") << 0.0;
    QTest::newRow("missing") << 7.5;
}

void tst_settings_numbers::realNumber_isReadWithADecimalPoint()
{
    QFETCH(double, number);
    QCOMPARE(settings::readReal("Numbers", QTest::currentDataTag(), "7.5"), number);
}

void tst_settings_numbers::writtenNumbers_areReadAgain()
{
    settings::writeInt("Numbers", "written", -31540);
    QCOMPARE(settings::readInt("Numbers", "written", "7"), -31540);
    settings::writeReal("Numbers", "written real", "%.2f", -3.756);
    QCOMPARE(settings::readReal("Numbers", "written real", "7"), -3.76);
}

QTEST_GUILESS_MAIN(tst_settings_numbers)
#include "tst_settings_numbers.moc"
