#include "tests/workflows/QcTest.h"

void QcTest::init()
{
    m_desk.reset(new Desk);
    QVERIFY(QcPage::open(*m_desk));
    m_page.reset(new QcPage(*m_desk));
}

void QcTest::cleanup()
{
    m_page.reset();
    m_desk.reset();
}
