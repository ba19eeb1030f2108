#pragma once

#include "simulator/Axis.h"
#include "simulator/Clock.h"
#include "simulator/optics/OpticalState.h"

#include <array>

namespace qr9::sim {

/// The mechanics and the light of the instrument. The board and the camera only read and drive it.
/// Thread: main; another thread gets its view by value. Owner: Instrument.
class World {
public:
    /// X position of the tray outside of the instrument, in motor steps: beyond every field of every slide.
    static constexpr int kTrayOut = 80000;
    static constexpr int kFilters = 3;
    static constexpr int kDefaultCorrection = 10;
    static constexpr Time kFilterStep = std::chrono::milliseconds(100); ///< from one position to the next
    static constexpr Time kFilterHoming = std::chrono::milliseconds(300);

    explicit World(Clock& clock);

    Clock& clock() { return m_clock; }
    /// What a picture taken at this moment depends on. The camera adds its own settings.
    optics::OpticalState view() const;

    Axis& x() { return m_x; }
    Axis& z() { return m_z; }

    /// Turns the wheel to position 1 to 3 and returns how long it takes. While it turns it lets no light
    /// through and its position reads 0.
    Time turnFilter(int position);
    /// Homes the wheel, to position 1.
    Time homeFilter();
    int filter() const { return m_clock.now() < m_filterArrival ? 0 : m_filter; }
    int correction(int position) const { return m_corrections.at(static_cast<std::size_t>(position - 1)); }
    void setCorrection(int position, int value)
    {
        m_corrections.at(static_cast<std::size_t>(position - 1)) = value;
    }

    /// Lights one channel and puts the others out: the LEDs share one driver.
    void lightBrightField(int level1, int level2);
    void lightGfp(int level);
    void lightRfp(int level);
    /// Puts channel 1 to 3 out; another channel stays as it is.
    void putOut(int channel);

    void setSlide(optics::Slide slide) { m_slide = slide; }
    const optics::LedLevels& leds() const { return m_leds; }
    optics::Slide slide() const { return m_slide; }
    /// Test bench: all motions take no time.
    void setQuick(bool quick);
    bool isQuick() const { return m_bQuick; }
    /// Test bench: factor on the speed of both axes, above 0.
    void setHaste(double factor);

private:
    Time startWheel(int position, Time duration);

    Clock& m_clock;
    Axis m_x;
    Axis m_z;
    int m_filter = 1;
    Time m_filterArrival { 0 };
    std::array<int, kFilters> m_corrections;
    optics::LedLevels m_leds;
    optics::Slide m_slide = optics::Slide::TwoChannel;
    bool m_bQuick = false;
};

} // namespace qr9::sim
