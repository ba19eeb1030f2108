#pragma once

#include "tests/workflows/QcPage.h"

/// A test of the QC page: each has a desk of its own, with the page in front.
class QcTest : public QObject {
    Q_OBJECT

protected:
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<QcPage> m_page;

protected slots:
    void init();
    void cleanup();
};
