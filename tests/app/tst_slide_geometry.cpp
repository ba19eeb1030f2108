#include "app/slide_geometry.h"

#include <QtTest>

#include <limits>

Q_DECLARE_METATYPE(SlideStart)

/// Slide types and field moves, case by case.
class tst_slide_geometry : public QObject {
    Q_OBJECT

private slots:
    void eachSlideType_hasItsMapAndPitches_data();
    void eachSlideType_hasItsMapAndPitches();
    void eachSlideType_hasItsStartAndHeight_data();
    void eachSlideType_hasItsStartAndHeight();
    void numberThatIsNoSlideType_hasNoGeometry();
    void eachFieldMove_goesWhereItMust_data();
    void eachFieldMove_goesWhereItMust();
    void eachChannel_beginsAtItsPitch();
    void absurdStart_staysWithinTheRangeOfANumber();
    void nextOn3Channel_lowersTheFieldIndex();
    void prevThatRaisesTheFieldIndex_disablesNext_data();
    void prevThatRaisesTheFieldIndex_disablesNext();
    void reversedRuns_are3ChannelAndTheWayBackOf2Channel();
};

void tst_slide_geometry::eachSlideType_hasItsMapAndPitches_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("columnWidth");
    QTest::addColumn<int>("channelPitchX");
    QTest::addColumn<double>("channelPitchZ");
    QTest::addColumn<int>("lastField");
    QTest::newRow("1 channel") << 0 << 1 << 400 << 0 << 0.0 << 46;
    QTest::newRow("2 channels") << 1 << 2 << 200 << 20799 << 39.0 << 11;
    QTest::newRow("3 channels") << 2 << 3 << 133 << 12346 << 23.15 << 11;
    QTest::newRow("8 channels") << 3 << 8 << 50 << 4800 << 9.0 << 4;
    QTest::newRow("reusable") << 4 << 1 << 200 << 0 << 0.0 << 11;
    QTest::newRow("validation") << 5 << 1 << 200 << 0 << 0.0 << 11;
    QTest::newRow("prisma max") << 6 << 1 << 200 << 0 << 0.0 << 4;
}

void tst_slide_geometry::eachSlideType_hasItsMapAndPitches()
{
    QFETCH(int, type);
    const SlideGeometry* slide = slideGeometry(type);
    QVERIFY(slide != nullptr);
    QTEST(slide->columns, "columns");
    QTEST(slide->columnWidth, "columnWidth");
    QTEST(slide->channelPitchX, "channelPitchX");
    QTEST(slide->channelPitchZ, "channelPitchZ");
    QTEST(slide->lastField, "lastField");
}

void tst_slide_geometry::eachSlideType_hasItsStartAndHeight_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<SlideStart>("start");
    QTest::addColumn<QString>("reference");
    QTest::addColumn<bool>("slope");
    QTest::addColumn<QString>("offset"); // key, sign and default
    const auto row = [](const char* name, int type, SlideStart start, const char* reference, bool slope,
                         const char* offset = "") {
        QTest::newRow(name) << type << start << QString(reference) << slope << QString(offset);
    };
    row("1 channel", 0, SlideStart::Channel1, "Z ref 1ch", false);
    row("2 channels", 1, SlideStart::Channel2, "Z ref 2ch", true);
    row("3 channels", 2, SlideStart::Channel3, "Z ref 3ch", true);
    row("8 channels", 3, SlideStart::Channel8, "Z ref 8ch", true);
    row("reusable", 4, SlideStart::Channel2, "Z ref 2ch", true, "Reusable offset +1 5676");
    row("validation", 5, SlideStart::Channel2, "Z reference", true, "Validation offset -1 1280");
    row("prisma max", 6, SlideStart::Prisma, "Z ref 2ch", true, "Prisma offset -1 0");
}

void tst_slide_geometry::eachSlideType_hasItsStartAndHeight()
{
    QFETCH(int, type);
    const SlideGeometry* slide = slideGeometry(type);
    QVERIFY(slide != nullptr);
    QTEST(slide->start, "start");
    const SlideHeight& height = slide->height;
    QTEST(QString(height.referenceKey), "reference");
    QTEST(height.slope, "slope");
    const QString offset
        = QString::asprintf("%s %+d %s", height.offsetKey, height.offsetSign, height.offsetDefault);
    QTEST(height.offsetKey != nullptr ? offset : QString(""), "offset");
}

void tst_slide_geometry::numberThatIsNoSlideType_hasNoGeometry()
{
    QVERIFY(slideGeometry(7) == nullptr);
    QVERIFY(slideGeometry(-1) == nullptr);
    QVERIFY(fieldMoveNext(7, 0) == nullptr);
    QVERIFY(fieldMovePrev(7, 0) == nullptr);
}

void tst_slide_geometry::eachFieldMove_goesWhereItMust_data()
{
    QTest::addColumn<bool>("next");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("channel");
    QTest::addColumn<int>("before"); // field index
    QTest::addColumn<bool>("blocked");
    QTest::addColumn<int>("x"); // with a start position of 100000
    const auto moves = [](const char* name, bool next, int type, int channel, int before, int x) {
        QTest::newRow(name) << next << type << channel << before << false << x;
    };
    const auto blocked = [](const char* name, bool next, int type, int channel, int before) {
        QTest::newRow(name) << next << type << channel << before << true << 0;
    };
    moves("1ch next from home", true, 0, 0, -1, 100000);
    moves("1ch next", true, 0, 0, 45, 100000 + 480 * 46);
    blocked("1ch next at the end", true, 0, 0, 46);
    moves("2ch back next", true, 1, 1, 11, 100000 - 20799 + 480 * 10);
    moves("2ch back next to the first", true, 1, 1, 1, 100000 - 20799);
    blocked("2ch back next at the first", true, 1, 1, 0);
    moves("2ch out next from home", true, 1, 0, -1, 100000);
    moves("2ch out next", true, 1, 0, 10, 100000 - 480 * 11);
    blocked("2ch out next at the end", true, 1, 0, 11);
    moves("3ch further next", true, 2, 2, 5, 100000 - 2 * 12346 + 480 * 4);
    blocked("3ch further next at the first", true, 2, 1, 0);
    moves("3ch first next", true, 2, 0, 5, 100000 + 480 * 4);
    moves("3ch first next to home", true, 2, 0, 0, 0);
    blocked("3ch first next at home", true, 2, 0, -1);
    moves("8ch next", true, 3, 7, 3, 100000 - 7 * 4800 - 480 * 4);
    blocked("8ch next at the end", true, 3, 0, 4);
    moves("reusable next", true, 4, 0, 10, 100000 - 480 * 11);
    blocked("reusable next at the end", true, 4, 0, 11);
    moves("validation next", true, 5, 0, 0, 100000 - 480);
    blocked("validation next at the end", true, 5, 0, 11);
    moves("prisma next", true, 6, 0, 3, 100000 - 480 * 4);
    blocked("prisma next at the end", true, 6, 0, 4);

    moves("1ch prev", false, 0, 0, 46, 100000 + 480 * 45);
    moves("1ch prev to home", false, 0, 0, 0, 0);
    blocked("1ch prev at home", false, 0, 0, -1);
    moves("2ch back prev", false, 1, 1, 0, 100000 - 20799 + 480);
    blocked("2ch back prev at the end", false, 1, 1, 11);
    moves("2ch out prev", false, 1, 0, 5, 100000 - 480 * 4);
    moves("2ch out prev to home", false, 1, 0, 0, 0);
    blocked("2ch out prev at home", false, 1, 0, -1);
    moves("3ch first prev from home", false, 2, 0, -1, 100000);
    moves("3ch prev", false, 2, 2, 10, 100000 - 2 * 12346 + 480 * 11);
    blocked("3ch prev at the end", false, 2, 1, 11);
    moves("8ch further prev", false, 3, 3, 4, 100000 - 3 * 4800 - 480 * 3);
    blocked("8ch further prev at the first", false, 3, 3, 0);
    moves("8ch first prev to home", false, 3, 0, 0, 0);
    blocked("8ch first prev at home", false, 3, 0, -1);
    moves("reusable prev to home", false, 4, 0, 0, 0);
    moves("reusable prev", false, 4, 0, 2, 100000 - 480);
    moves("validation prev", false, 5, 0, 11, 100000 - 480 * 10);
    blocked("validation prev at home", false, 5, 0, -1);
    moves("prisma prev", false, 6, 0, 4, 100000 - 480 * 3);
    moves("prisma prev to home", false, 6, 0, 0, 0);
}

void tst_slide_geometry::eachFieldMove_goesWhereItMust()
{
    QFETCH(bool, next);
    QFETCH(int, type);
    QFETCH(int, channel);
    QFETCH(int, before);
    const FieldMove* move = next ? fieldMoveNext(type, channel) : fieldMovePrev(type, channel);
    QVERIFY(move != nullptr);
    QTEST(isFieldMoveBlocked(*move, before), "blocked");
    if (!isFieldMoveBlocked(*move, before))
        QTEST(fieldPositionX(*move, 100000, channel, before + move->step), "x");
}

void tst_slide_geometry::eachChannel_beginsAtItsPitch()
{
    QCOMPARE(channelPositionX(*slideGeometry(1), 30931, 1), 10132);
    QCOMPARE(channelPositionX(*slideGeometry(2), 30505, 2), 5813);
    QCOMPARE(channelPositionX(*slideGeometry(3), 38291, 7), 4691);
}

void tst_slide_geometry::absurdStart_staysWithinTheRangeOfANumber()
{
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    QCOMPARE(fieldPositionX(*fieldMoveNext(0, 0), kHighest, 0, 46), kHighest);
    QCOMPARE(fieldPositionX(*fieldMoveNext(3, 7), kLowest, 7, 4), kLowest);
    QCOMPARE(channelPositionX(*slideGeometry(3), kLowest, 7), kLowest);
}

void tst_slide_geometry::nextOn3Channel_lowersTheFieldIndex()
{
    for (int channel = 0; channel < 3; ++channel)
        QCOMPARE(fieldMoveNext(2, channel)->step, -1);
}

void tst_slide_geometry::prevThatRaisesTheFieldIndex_disablesNext_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("channel");
    QTest::addColumn<bool>("rises");
    QTest::newRow("1ch") << 0 << 0 << false;
    QTest::newRow("2ch, first channel") << 1 << 0 << false;
    QTest::newRow("2ch, second channel") << 1 << 1 << true;
    QTest::newRow("3ch, first channel") << 2 << 0 << true;
    QTest::newRow("3ch, third channel") << 2 << 2 << true;
    QTest::newRow("8ch, first channel") << 3 << 0 << false;
    QTest::newRow("8ch, last channel") << 3 << 7 << false;
    QTest::newRow("reusable") << 4 << 0 << false;
    QTest::newRow("validation") << 5 << 0 << false;
    QTest::newRow("prisma max") << 6 << 0 << false;
}

void tst_slide_geometry::prevThatRaisesTheFieldIndex_disablesNext()
{
    QFETCH(int, type);
    QFETCH(int, channel);
    QFETCH(bool, rises);
    const FieldMove* prev = fieldMovePrev(type, channel);
    QCOMPARE(prev->step, rises ? 1 : -1);
    QVERIFY(prev->disabled == (rises ? FieldButton::Next : FieldButton::Prev));
    QVERIFY(fieldMoveNext(type, channel)->disabled == FieldButton::Next);
}

void tst_slide_geometry::reversedRuns_are3ChannelAndTheWayBackOf2Channel()
{
    for (int type = 0; type <= 6; ++type) {
        for (int channel = 0; channel < 8; ++channel)
            QCOMPARE(isReversedRun(type, channel), type == 2 || (type == 1 && channel == 1));
    }
}

QTEST_APPLESS_MAIN(tst_slide_geometry)
#include "tst_slide_geometry.moc"
