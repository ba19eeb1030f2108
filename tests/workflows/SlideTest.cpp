#include "tests/workflows/SlideTest.h"

void SlideTest::initTestCase()
{
    PageTest::initTestCase();
    m_panel.reset(new SlidePanel(*m_desk));
}

void SlideTest::cleanup()
{
    m_desk->rig.clearFaults();
    // A test that ended with the panel locked leaves it open to the next one.
    if (!m_desk->isEnabled("pushButton_EJECT"))
        m_desk->rig.say("$OK#X#STAGE EJECT\r\n");
    QVERIFY(patience::waitFor([this] { return m_desk->isEnabled("pushButton_EJECT"); }));
    PageTest::cleanup();
}

void SlideTest::cleanupTestCase()
{
    m_panel.reset();
    PageTest::cleanupTestCase();
}
