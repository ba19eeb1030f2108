#pragma once

#include "tests/workflows/PageTest.h"

/// A test of an axis by hand, with what is the same for the step buttons of either one.
class StepTest : public PageTest {
    Q_OBJECT

protected:
    /// The axis is "X" or "Z" as in the names of its widgets; each test begins at `start`, in motor steps.
    StepTest(const QString& page, QString axis, int start, int stepSize);

    /// The position shown, and the true one.
    QString position() { return m_desk->text(qPrintable("lineEdit_POSITION_" + m_axis)); }
    int truePosition() { return m_desk->rig.state().value(m_axis.toLower()).toInt(); }

protected slots:
    void init() override;

private slots:
    void stepButton_setsTheDirectionAndRuns_data();
    void stepButton_setsTheDirectionAndRuns();
    void secondClickWhileTheStageSteps_sendsNothing();
    void lostReplyOfAStep_leavesTheButtonUntilTheNextStep();

private:
    QString line(const char* rest) const { return "$" + m_axis + "#STAGE " + rest; }

    QString m_axis;
    QString m_down; ///< object names of the buttons
    QString m_up;
    int m_start;
    int m_stepSize;
};
