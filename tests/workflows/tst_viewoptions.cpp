#include "tests/workflows/Desk.h"

/// The two boxes beside the live picture, which stand outside of the tabs and can be clicked at any time.
class tst_viewoptions : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void box_isPassedToTheView_data();
    void box_isPassedToTheView();
    void beforeTheCameraRuns_clicksHaveNoEffect();

private:
    QStringList passed(const char* setter) const;

    std::unique_ptr<Desk> m_desk;
};

void tst_viewoptions::init()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
}

void tst_viewoptions::cleanup()
{
    m_desk.reset();
}

/// What a setter of the live view was called with, call by call.
QStringList tst_viewoptions::passed(const char* setter) const
{
    QStringList flags;
    const QString signature = QString("void CameraView::%1(bool) ").arg(setter);
    for (const QString& line : m_desk->log.lines()) {
        if (line.startsWith(signature))
            flags << line.mid(signature.size());
    }
    return flags;
}

void tst_viewoptions::box_isPassedToTheView_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QStringList>("crossLine");
    QTest::addColumn<QStringList>("fitMode");
    QTest::newRow("cross line") << "checkBox_CROSS_LINE" << QStringList { "true", "false" } << QStringList();
    QTest::newRow("scale to fit") << "checkBox_SCALE_TO_FIT" << QStringList()
                                  << QStringList { "false", "true" };
}

void tst_viewoptions::box_isPassedToTheView()
{
    QFETCH(QString, box);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::click(m_desk->window(), box));
    QVERIFY(hand::click(m_desk->window(), box));
    QTEST(passed("setCrossLine"), "crossLine");
    QTEST(passed("setFitMode"), "fitMode");
}

void tst_viewoptions::beforeTheCameraRuns_clicksHaveNoEffect()
{
    m_desk->open();
    QVERIFY(hand::click(m_desk->window(), "checkBox_CROSS_LINE"));
    QVERIFY(hand::click(m_desk->window(), "checkBox_SCALE_TO_FIT"));
    QVERIFY(m_desk->waitForConnection());
    QCOMPARE(passed("setCrossLine"), QStringList());
    QCOMPARE(passed("setFitMode"), QStringList());
}

WORKFLOW_MAIN(tst_viewoptions)
#include "tst_viewoptions.moc"
