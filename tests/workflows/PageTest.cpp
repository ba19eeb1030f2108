#include "tests/workflows/PageTest.h"

#include <utility>

PageTest::PageTest(QString page)
    : m_page(std::move(page))
{
}

bool PageTest::becomesEnabled(const QString& button)
{
    const auto* widget = m_desk->window().findChild<QWidget*>(button);
    return patience::waitFor([widget] { return widget->isEnabled(); });
}

bool PageTest::comesToShow(const char* field, const QString& text)
{
    return patience::waitFor([&] { return m_desk->text(field) == text; });
}

void PageTest::initTestCase()
{
    Desk::removeSettings();
    m_desk.reset(new Desk);
    QVERIFY(m_desk->connectUnit());
    QVERIFY(hand::selectTab(m_desk->window(), "tabWidget_CONTROLLER", m_page));
}

void PageTest::init()
{
    Desk::removeSettings();
}

void PageTest::cleanup()
{
    m_desk->rig.clearFaults();
    QCOMPARE(m_desk->boxes.boxes().size(), m_boxesAskedFor);
}

void PageTest::cleanupTestCase()
{
    m_desk.reset();
}
