#pragma once

#include "simulator/Clock.h"

namespace qr9::sim {

/// What is fixed about one axis of the stage.
struct AxisMechanics {
    int lowEnd = 0; ///< motor steps; the end switches stop every motion
    int highEnd = 0; ///< motor steps
    int powerOn = 0; ///< motor steps; where the axis happens to stand when the power comes on
    int speedUnit = 0; ///< steps per second for each unit of the SPEED command
};

/// One motorised axis: where it stands at any time, and how long it takes to get elsewhere. It moves at
/// constant speed; acceleration is shorter than anything that the program can tell. Positions are motor
/// steps, 0 is the origin. Owner: World. Knows no clock: the time is an argument.
class Axis {
public:
    /// Homing takes no longer than this, from wherever the axis stands.
    static constexpr Time kLongestHoming = std::chrono::milliseconds(400);
    static constexpr int kDefaultSpeed = 100; ///< of the SPEED command
    static constexpr int kLargestSpeed = 10000;

    explicit Axis(const AxisMechanics& mechanics);

    /// Position at `now`, in motor steps.
    int position(Time now) const;
    bool isMoving(Time now) const { return now < m_arrival; }

    /// Starts a motion and returns how long it takes; 0 when the axis stands there already. A target beyond
    /// an end switch ends at the switch. A motion under way is replaced.
    Time moveTo(int target, Time now);
    /// One relative move of the step in the direction that were set.
    Time run(Time now);
    Time runToLowEnd(Time now) { return moveTo(m_mechanics.lowEnd, now); }
    Time runToHighEnd(Time now) { return moveTo(m_mechanics.highEnd, now); }
    Time home(Time now);
    /// Ends a motion where the axis stands now.
    void stop(Time now);
    /// Puts the axis at a position without a motion, as nobody but the test bench can.
    void place(int position, Time now);

    void setPlus(bool plus) { m_bPlus = plus; }
    bool isPlus() const { return m_bPlus; }
    /// The step of `run`, in motor steps; false, and nothing changes, below 0.
    bool setStep(int steps);
    int step() const { return m_step; }
    /// In units of the SPEED command; false, and nothing changes, outside 1 to kLargestSpeed.
    bool setSpeed(int speed);
    int speed() const { return m_speed; }
    /// Test bench: all motions take no time.
    void setQuick(bool quick) { m_bQuick = quick; }
    /// Test bench: factor on the speed of all motions, above 0.
    void setHaste(double factor) { m_haste = factor; }

private:
    Time start(int target, Time duration, Time now);

    AxisMechanics m_mechanics;
    int m_from;
    int m_target;
    Time m_departure { 0 };
    Time m_arrival { 0 };
    int m_step = 0;
    int m_speed = kDefaultSpeed;
    bool m_bPlus = true;
    bool m_bQuick = false;
    double m_haste = 1.0;
};

} // namespace qr9::sim
