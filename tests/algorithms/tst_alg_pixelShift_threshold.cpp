#include "algorithms/alg_pixelShift.h"

#include "tests/algorithms/pictures.h"
#include "tests/support/LogCapture.h"

#include <QtTest>

using namespace pictures;

/// The threshold of a fluorescence picture by its mean and standard deviation.
class tst_alg_pixelShift_threshold : public QObject {
    Q_OBJECT

private slots:
    void statisticalThreshold_data();
    void statisticalThreshold();
    void statisticalThreshold_isRoundedWithHalvesAwayFromZero();
    void statisticalThreshold_logsItsTerms();
};

void tst_alg_pixelShift_threshold::statisticalThreshold_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("index");
    QTest::addColumn<double>("threshold");
    // The picture below has a mean of 60 and a standard deviation of 20.
    QTest::newRow("mode 1, index 0: one deviation") << 1 << 0 << 80.0;
    QTest::newRow("mode 1, index 3") << 1 << 3 << 110.0;
    QTest::newRow("mode 2, index 0: one deviation") << 2 << 0 << 80.0;
    QTest::newRow("mode 2, index 3") << 2 << 3 << 95.0;
    QTest::newRow("mode 2, index -8") << 2 << -8 << 40.0;
    QTest::newRow("mode 0: two deviations") << 0 << 7 << 100.0;
    QTest::newRow("mode 3, index 0: two deviations") << 3 << 0 << 100.0;
    QTest::newRow("mode 3, index 9: two deviations") << 3 << 9 << 100.0;
}

void tst_alg_pixelShift_threshold::statisticalThreshold()
{
    QFETCH(int, mode);
    QFETCH(int, index);
    QFETCH(double, threshold);
    cv::Mat picture = uniform(8, 8, 40);
    picture.rowRange(0, 4).setTo(80);
    QCOMPARE(alg_pixelShift().setFluorescenceThreshold(picture, mode, index), threshold);
}

void tst_alg_pixelShift_threshold::statisticalThreshold_isRoundedWithHalvesAwayFromZero()
{
    // A mean of 40.5 and a standard deviation of 0.5.
    cv::Mat picture = uniform(8, 8, 40);
    picture.rowRange(0, 4).setTo(41);
    alg_pixelShift shift;
    QCOMPARE(shift.setFluorescenceThreshold(picture, 2, 1), 41.0); // 41.125
    QCOMPARE(shift.setFluorescenceThreshold(picture, 2, 3), 41.0); // 41.375
    QCOMPARE(shift.setFluorescenceThreshold(picture, 1, -2), 41.0); // 40.5
    QCOMPARE(shift.setFluorescenceThreshold(picture, 0, 0), 42.0); // 41.5
}

void tst_alg_pixelShift_threshold::statisticalThreshold_logsItsTerms()
{
    cv::Mat picture = uniform(8, 8, 40);
    picture.rowRange(0, 4).setTo(80);
    const LogCapture log;
    alg_pixelShift().setFluorescenceThreshold(picture, 1, 3);
    QCOMPARE(log.lines(),
        QStringList { QStringLiteral(
            "setFluorescenceThreshold mean, stddev, th_idx, step 60 20 3 1.5 threshold 110") });
}

QTEST_APPLESS_MAIN(tst_alg_pixelShift_threshold)
#include "tst_alg_pixelShift_threshold.moc"
