#pragma once

#include "tests/workflows/Desk.h"

/// A desk for the slope calibration, on a unit whose carrier is exactly level: best focus is 30000
/// everywhere. A slope is made by another reference for the second run: all positions of a run lie whole fine
/// steps from it.
class SlopeDesk : public Desk {
public:
    static constexpr int kFocus = 30000; ///< best focus of the unit, in bright field

    /// Settings with a reference that is best focus itself.
    static const QByteArray kReferenceInFocus;

    /// Opens the window with these settings and turns to the Stage page.
    bool connectWith(const QByteArray& settings);

    /// Presses the button and waits for the box at the end to have been answered.
    bool calibrate();

    /// The panel is not locked during a calibration, so that another reference can come in between the runs.
    void useReferenceOfSecondRun(int reference);

    /// Value of a key in the settings file as it stands now; null when it is missing.
    static QByteArray stored(const QByteArray& key);
};
