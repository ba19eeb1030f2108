#include "app/reply_walk.h"

#include <QtTest>

/// The replies of one text, in their order, and what each asks for.
class tst_reply_walk : public QObject {
    Q_OBJECT

private slots:
    void init();

    void textBeforeTheFirstDollar_isNoFrame();
    void twoReplies_actInOrder();
    void recognisedThenUnknown_actsTwice();
    void repetition_takesTheDeviceOfTheUnknownFrame();
    void unknownFirstFrame_hasNoEffect();
    void versionReply_isShownAndRepeatsTheActionBeforeIt();
    void recordWrittenByAnAction_isWhatTheRepetitionSees();
    void emptyText_hasNoEffect();

private:
    void walk(const QString& text)
    {
        walkReplies(
            text, m_info, [this](const QString& version) { m_seen << "version " + version; },
            [this] {
                m_seen << QString("%1 %2 %3").arg(m_info.device).arg(m_info.function).arg(m_info.value);
            });
    }

    protocol_Controller_info m_info;
    QStringList m_seen;
};

void tst_reply_walk::init()
{
    m_info = {};
    m_seen.clear();
}

void tst_reply_walk::textBeforeTheFirstDollar_isNoFrame()
{
    walk("OK#Z#STAGE POS#1\r\n$OK#Z#STAGE POS#2\r\n");
    QCOMPARE(m_seen, QStringList { "2 11 2" });
}

void tst_reply_walk::twoReplies_actInOrder()
{
    walk("$OK#X#STAGE POS#7\r\n$OK#Z#STAGE RUN#8\r\n");
    QCOMPARE(m_seen, (QStringList { "1 11 7", "2 8 8" }));
}

void tst_reply_walk::recognisedThenUnknown_actsTwice()
{
    walk("$OK#Z#STAGE RUN#500\r\n$OK#Z#STAGE STEP 115\r\n");
    QCOMPARE(m_seen, (QStringList { "2 8 500", "2 8 500" }));
}

void tst_reply_walk::repetition_takesTheDeviceOfTheUnknownFrame()
{
    walk("$OK#Z#STAGE RUN#500\r\n$OK#X#STAGE STEP 4\r\n");
    QCOMPARE(m_seen, (QStringList { "2 8 500", "1 8 500" }));
}

void tst_reply_walk::unknownFirstFrame_hasNoEffect()
{
    walk("$OK#Z#STAGE STEP 115\r\n$NO#Z#STAGE\r\n");
    QCOMPARE(m_seen, QStringList());
}

void tst_reply_walk::versionReply_isShownAndRepeatsTheActionBeforeIt()
{
    walk("$OK#A#VER#1.2\r\n");
    QCOMPARE(m_seen, QStringList { "version 1.2" });
    m_seen.clear();
    walk("$OK#Z#STAGE POS#3\r\n$OK#A#VER#1.2\r\n");
    QCOMPARE(m_seen, (QStringList { "2 11 3", "version 1.2", "0 11 3" }));
}

void tst_reply_walk::recordWrittenByAnAction_isWhatTheRepetitionSees()
{
    const auto another = [this] {
        m_seen << QString::number(m_info.value);
        m_info.value = 900;
    };
    walkReplies(
        "$OK#Z#STAGE RUN#500\r\n$unknown\r\n", m_info, [](const QString&) {}, another);
    QCOMPARE(m_seen, (QStringList { "500", "900" }));
}

void tst_reply_walk::emptyText_hasNoEffect()
{
    walk("");
    walk("\r\n");
    QCOMPARE(m_seen, QStringList());
}

QTEST_APPLESS_MAIN(tst_reply_walk)
#include "tst_reply_walk.moc"
