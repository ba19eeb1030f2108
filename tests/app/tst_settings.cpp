#include "app/settings.h"

#include <QtTest>

#include <limits>

/// Number texts as the settings file holds them.
class tst_settings : public QObject {
    Q_OBJECT

private slots:
    void realNumbers_areRoundedAsTheCLibraryRounds_data();
    void realNumbers_areRoundedAsTheCLibraryRounds();
    void truncation_cutsTowardsZeroWithinTheRange_data();
    void truncation_cutsTowardsZeroWithinTheRange();
};

void tst_settings::realNumbers_areRoundedAsTheCLibraryRounds_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("tie to even, down") << QByteArray("%.2f") << 0.125 << "0.12";
    QTest::newRow("tie to even, up") << QByteArray("%.2f") << 0.375 << "0.38";
    QTest::newRow("single precision") << QByteArray("%.2f") << double(0.045F) << "0.05";
    QTest::newRow("double precision") << QByteArray("%.2f") << 0.045 << "0.04";
    QTest::newRow("negative zero stays") << QByteArray("%.2f") << -0.001 << "-0.00";
    QTest::newRow("five decimals") << QByteArray("%.5f") << 197.005517 << "197.00552";
    QTest::newRow("huge") << QByteArray("%.0f") << 1e30 << "1000000000000000019884624838656";
    QTest::newRow("infinite") << QByteArray("%.2f") << std::numeric_limits<double>::infinity() << "inf";
}

void tst_settings::realNumbers_areRoundedAsTheCLibraryRounds()
{
    QFETCH(QByteArray, format);
    QFETCH(double, value);
    QTEST(settings::formatReal(format.constData(), value), "text");
}

void tst_settings::truncation_cutsTowardsZeroWithinTheRange_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("number");
    QTest::newRow("positive") << 7.9 << 7;
    QTest::newRow("negative") << -7.9 << -7;
    QTest::newRow("too large") << 1e12 << std::numeric_limits<int>::max();
    QTest::newRow("too small") << -1e12 << std::numeric_limits<int>::min();
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0;
}

void tst_settings::truncation_cutsTowardsZeroWithinTheRange()
{
    QFETCH(double, value);
    QTEST(settings::truncated(value), "number");
}

QTEST_APPLESS_MAIN(tst_settings)
#include "tst_settings.moc"
