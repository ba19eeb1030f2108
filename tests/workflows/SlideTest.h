#pragma once

#include "tests/workflows/PageTest.h"
#include "tests/workflows/SlidePanel.h"

/// A test of the slide controls; each test finds a panel that can be worked on.
class SlideTest : public PageTest {
    Q_OBJECT

protected:
    SlideTest()
        : PageTest("TAB_STAGE")
    {
    }

    /// What a hand can use with the stage at the X home of a channel whose fields rise with NEXT, and with no
    /// slide in.
    static QString enabledAtHome() { return "Insert Eject Combo Next Map"; }
    static QString enabledWithoutSlide() { return "Insert Eject"; }
    static QString idleStyle() { return "font: 11pt 'Sans Serif'; color : black; background-color : none"; }
    static QString activeStyle()
    {
        return "font: 11pt 'Sans Serif'; color : black; background-color : rgb(0, 170, 255)";
    }

    std::unique_ptr<SlidePanel> m_panel;

protected slots:
    void initTestCase() override;
    void cleanup() override;
    void cleanupTestCase() override;
};
