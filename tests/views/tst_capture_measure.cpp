#include "tests/support/LogCapture.h"
#include "tests/views/StillView.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>

namespace {

measure_info resultOf(const QSignalSpy& spy)
{
    return spy.last().front().value<measure_info>();
}

} // namespace

/// From two points to magnification and volume, bit by bit. The expected values were worked out apart from
/// this program, with each operation rounded to single precision.
class tst_CaptureMeasure : public QObject {
    Q_OBJECT

private slots:
    void diameter_isTheDistanceInPixels()
    {
        QCOMPARE(CAPTURE_ImageWidget::diameter({ 0, 0 }, { 0, 0 }), 0.0F);
        QCOMPARE(CAPTURE_ImageWidget::diameter({ 10, 20 }, { 13, 24 }), 5.0F);
        QCOMPARE(CAPTURE_ImageWidget::diameter({ 13, 24 }, { 10, 20 }), 5.0F);
        QVERIFY(CAPTURE_ImageWidget::diameter({ 0, 0 }, { 777, 333 }) == 0x1.a6ace8p+9F);
    }

    void round2_roundsHalvesAwayFromZero_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<float>("scale");
        QTest::addColumn<float>("rounded");
        QTest::newRow("0") << 0.0F << 10.0F << 0.0F;
        QTest::newRow("0.04") << 0.04F << 10.0F << 0.0F;
        QTest::newRow("0.05") << 0.05F << 10.0F << 0x1.99999ap-4F;
        QTest::newRow("0.15") << 0.15F << 10.0F << 0x1.99999ap-3F;
        QTest::newRow("0.25") << 0.25F << 10.0F << 0x1.333334p-2F;
        QTest::newRow("0.35") << 0.35F << 10.0F << 0x1.99999ap-2F;
        QTest::newRow("0.65") << 0.65F << 10.0F << 0x1.666666p-1F;
        QTest::newRow("1.0003125") << 1.0003125F << 10.0F << 1.0F;
        QTest::newRow("1.05") << 1.05F << 10.0F << 0x1.19999ap+0F;
        QTest::newRow("2.5") << 2.5F << 1.0F << 3.0F;
        QTest::newRow("0.45") << 0.45F << 1.0F << 0.0F;
        // A little below 1.005, but the single product is 100.5.
        QTest::newRow("1.005") << 1.005F << 100.0F << 0x1.028f5cp+0F;
        QTest::newRow("3.14159") << 3.14159F << 100.0F << 0x1.91eb86p+1F;
        QTest::newRow("-0.04") << -0.04F << 10.0F << 0.0F;
        QTest::newRow("-0.05") << -0.05F << 10.0F << -0x1.99999ap-4F;
        QTest::newRow("-1.05") << -1.05F << 10.0F << -0x1.19999ap+0F;
        QTest::newRow("-1.25") << -1.25F << 10.0F << -0x1.4cccccp+0F;
        QTest::newRow("-2.5") << -2.5F << 1.0F << -3.0F;
        QTest::newRow("-3.14159") << -3.14159F << 100.0F << -0x1.91eb86p+1F;
        // In single precision the half would be rounded up to the next whole number.
        QTest::newRow("8388609") << 8388609.0F << 1.0F << 8388609.0F;
        QTest::newRow("beyond 32 bits") << 1e12F << 10.0F << 0x1.d1a94ap+39F;
    }
    void round2_roundsHalvesAwayFromZero()
    {
        QFETCH(float, value);
        QFETCH(float, scale);
        QFETCH(float, rounded);
        const float result = CAPTURE_ImageWidget::round2(value, scale);
        QVERIFY2(result == rounded, qPrintable(QString::number(static_cast<double>(result), 'g', 12)));
        QVERIFY(std::signbit(result) == std::signbit(rounded));
    }

    void measure_isSinglePrecisionBitForBit_data()
    {
        QTest::addColumn<int>("dx");
        QTest::addColumn<int>("dy");
        QTest::addColumn<QVector<float>>("expected");
        const auto row = [](const char* name, int dx, int dy, const QVector<float>& expected) {
            QTest::newRow(name) << dx << dy << expected;
        };
        row("1067 pixels, fourfold", 1067, 0,
            { 1067.0F, 1.0F, 0x1.dfd99cp-1F, 4.0F, 0x1.147ae2p+0F, 0x1.ba5e36p-4F });
        row("533 pixels, half a millimetre", 533, 0,
            { 533.0F, 0.5F, 0x1.e04cdap-1F, 4.0F, 0x1.147ae2p+0F, 0x1.ba5e36p-4F });
        row("3.90", 1040, 0,
            { 1040.0F, 1.0F, 0x1.ec4ec4p-1F, 0x1.f33334p+1F, 0x1.22d718p+0F, 0x1.d158b8p-4F });
        row("4.10", 1093, 0,
            { 1093.0F, 1.0F, 0x1.d46f7cp-1F, 0x1.066666p+2F, 0x1.07285cp+0F, 0x1.a5119cp-4F });
        row("upright", 0, 500, { 500.0F, 0.5F, 1.0F, 3.75F, 0x1.3a92a4p+0F, 0x1.f75104p-4F });
        row("diagonal", 1000, 750,
            { 1250.0F, 0x1.333334p+0F, 0x1.eb851ep-1F, 0x1.f47ae2p+1F, 0x1.215abcp+0F, 0x1.cef88cp-4F });
        row("odd diagonal", 777, 333,
            { 0x1.a6ace8p+9F, 0x1.99999ap-1F, 0x1.e48856p-1F, 0x1.fae148p+1F, 0x1.1a17fap+0F,
                0x1.c35696p-4F });
        row("flat diagonal", 900, 61,
            { 0x1.c3084ep+9F, 0x1.99999ap-1F, 0x1.c611c0p-1F, 0x1.0eb852p+2F, 0x1.ee7646p-1F,
                0x1.8b8cfcp-4F });
        row("slightly slanted", 1000, 2,
            { 0x1.f40042p+9F, 0x1.ccccccp-1F, 0x1.cccc90p-1F, 0x1.0ae148p+2F, 0x1.fccb24p-1F,
                0x1.970500p-4F });
        row("shortest with a length", 54, 0,
            { 54.0F, 0x1.99999ap-4F, 0x1.da12f6p+0F, 0x1.03d70ap+1F, 0x1.0c5e5ap+2F, 0x1.ad64d8p-2F });
        row("rounds to 0.0 mm", 53, 0,
            { 53.0F, 0.0F, 0.0F, std::numeric_limits<float>::infinity(), 0.0F, 0.0F });
    }
    void measure_isSinglePrecisionBitForBit()
    {
        QFETCH(int, dx);
        QFETCH(int, dy);
        QFETCH(QVector<float>, expected);
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(100, 110, 12).mark(100 + dx, 110 + dy, 12));
        still.target(107, 113);
        still.widget.setPoint(0);
        still.target(103 + dx, 118 + dy);
        still.widget.setPoint(1);

        const QSignalSpy spy(&still.widget, &CAPTURE_ImageWidget::sig_measure_result);
        still.widget.measure2Point();
        QCOMPARE(spy.size(), 1);
        const measure_info info = resultOf(spy);
        QVERIFY(info.length_pixel == expected[0]);
        QVERIFY(info.length_mm == expected[1]);
        QVERIFY(info.pixel_size == expected[2]);
        QVERIFY(info.magnification == expected[3]);
        QVERIFY(info.area_mm == expected[4]);
        QVERIFY(info.volume_factor == expected[5]);
        // The counting volumes of the slides are not this widget's.
        QVERIFY(info.volume_factor_1ch == 0.0F && info.volume_factor_prisma_max == 0.0F);
    }

    void measureWithoutPoints_givesUndefinedValues()
    {
        StillView still;
        const QSignalSpy spy(&still.widget, &CAPTURE_ImageWidget::sig_measure_result);
        still.widget.measure2Point();
        QCOMPARE(spy.size(), 1);
        const measure_info info = resultOf(spy);
        QVERIFY(info.length_pixel == 0.0F && info.length_mm == 0.0F);
        QVERIFY(std::isnan(info.pixel_size) && std::isnan(info.magnification));
        QVERIFY(std::isnan(info.area_mm) && std::isnan(info.volume_factor));
    }

    void measureWithEqualPoints_givesUndefinedValues()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(600, 400, 12));
        still.target(606, 406);
        still.widget.setPoint(0);
        still.widget.setPoint(1);
        const QSignalSpy spy(&still.widget, &CAPTURE_ImageWidget::sig_measure_result);
        still.widget.measure2Point();
        QVERIFY(resultOf(spy).length_pixel == 0.0F);
        QVERIFY(std::isnan(resultOf(spy).magnification));
    }

    void measureWithOnePoint_countsFromTheOrigin()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(294, 394, 12)); // centre (299.5, 399.5)
        still.target(300, 400);
        still.widget.setPoint(1);
        const QSignalSpy spy(&still.widget, &CAPTURE_ImageWidget::sig_measure_result);
        still.widget.measure2Point();
        QVERIFY(resultOf(spy).length_pixel == CAPTURE_ImageWidget::diameter({ 0, 0 }, { 299, 399 }));
    }

    void area_followsTheSizeOfTheFrame()
    {
        StillView still;
        TargetFrame frame(640, 480);
        still.widget.resize(640, 480);
        still.show(frame.mark(44, 244, 12).mark(577, 244, 12));
        still.targetAt({ 50, 250 });
        still.widget.setPoint(0);
        still.targetAt({ 583, 250 });
        still.widget.setPoint(1);
        const QSignalSpy spy(&still.widget, &CAPTURE_ImageWidget::sig_measure_result);
        still.widget.measure2Point();
        QVERIFY(resultOf(spy).magnification == 4.0F);
        QVERIFY(resultOf(spy).area_mm == 0.27F);
        QVERIFY(resultOf(spy).volume_factor == 0.027F);
    }

    void results_areLogged()
    {
        StillView still;
        TargetFrame frame(1280, 960);
        still.show(frame.mark(100, 110, 12).mark(1167, 110, 12));
        still.target(106, 116);
        still.widget.setPoint(0);
        still.target(1173, 116);
        still.widget.setPoint(1);
        const LogCapture log;
        still.widget.measure2Point();
        QCOMPARE(log.lines(),
            QStringList({ "m_measure_info.length_pixel: 1067", "m_measure_info.length_mm: 1",
                "m_measure_info.pixel_size: 0.937207", "m_measure_info.magnification: 4",
                "m_measure_info.area_mm: 1.08", "m_measure_info.volume_factor: 0.108" }));
    }
};

QTEST_MAIN(tst_CaptureMeasure)
#include "tst_capture_measure.moc"
