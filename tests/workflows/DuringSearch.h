#pragma once

#include "tests/workflows/Desk.h"

#include <QTimer>

#include <functional>

/// Acts once, from inside the search's own event loop, as soon as the button tells that it is under way.
class DuringSearch {
public:
    DuringSearch(Desk& desk, std::function<void()> action)
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this, &desk, action] {
            if (desk.text("pushButton_CONNECT") != "~~~")
                return;
            m_timer.stop();
            action();
        });
        m_timer.start(10);
    }

private:
    QTimer m_timer;
};
