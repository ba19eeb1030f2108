#pragma once

#include "tests/workflows/Desk.h"

/// A test that works on one page of a connected unit's window, with one desk for the whole program. The test
/// functions are those of the derived class; Qt Test calls the slots below around and between them.
class PageTest : public QObject {
    Q_OBJECT

protected:
    /// `page` is the object name of the page that lies in front.
    explicit PageTest(QString page);

    bool click(const QString& button) { return hand::click(m_desk->window(), button); }
    bool becomesEnabled(const QString& button);
    /// Runs the event loop until the field shows this text.
    bool comesToShow(const char* field, const QString& text);

    std::unique_ptr<Desk> m_desk;
    int m_boxesAskedFor = 0; ///< message boxes that belong to what the tests so far have done

protected slots:
    /// Connects the unit, without a settings file, and opens the page.
    virtual void initTestCase();
    /// No settings file before each test.
    virtual void init();
    /// No fault is left behind, and no message box has come up unasked.
    virtual void cleanup();
    virtual void cleanupTestCase();

private:
    QString m_page;
};
