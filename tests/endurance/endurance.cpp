// The long day of one process: the unit is connected again and again, the live picture runs, the focus is
// searched; what the process holds must not grow with it. Prints the figures; fails when something grows or
// cannot be done.
#include "tests/endurance/Footprint.h"
#include "tests/workflows/Desk.h"

#include <QCommandLineParser>
#include <QPixmapCache>

#include <cstdio>

namespace {

/// Before the first measurement: what is made once and kept, such as fonts, pools and pages of the form.
constexpr int kWarmUpConnections = 3;
constexpr int kWarmUpFrames = 50;
constexpr int kWarmUpRuns = 1;

/// The allocator keeps room for a frame or two of 1.2 MiB after they are gone, now here, now there; what is
/// lost with each piece of work is soon far above that. Of what was asked for far less may stay: the widgets
/// keep texts whose length changes. Handles have no such play.
constexpr Allowance kAllowance { 2.5, 32.0, 0 };

constexpr int kLooks = 20;
constexpr int kLookEveryMs = 7;

/// A field of cells under the objective.
constexpr int kCells = 30931;

/// Counts the frames that reach the screen.
class ShownFrames : public QObject {
public:
    explicit ShownFrames(QWidget& view) { view.installEventFilter(this); }
    int count() const { return m_count; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        m_count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

private:
    int m_count = 0;
};

bool repeated(int times, const std::function<bool()>& work)
{
    for (int i = 0; i < times; ++i) {
        if (!work())
            return false;
    }
    return true;
}

/// A unit from its connection to its end, with much work between. GUI thread.
class LongDay {
public:
    bool begin();
    bool connections(int count);
    bool frames(int count);
    bool focusRuns(int count);
    void end() { m_desk.close(); }
    bool isFlat() const { return m_isFlat; }

private:
    bool connectAgain();
    bool waitForFrames(int count);
    bool focus();
    /// Does the work `warmUp` times and then `count` times, with a look at the process before, half-way and
    /// behind.
    bool measured(const QString& what, int warmUp, int count, const std::function<bool(int)>& work);
    Footprint footprint();

    Desk m_desk;
    bool m_isFlat = true;
};

bool LongDay::begin()
{
    Desk::putSettings("[Ch.%20BF]\nExposure=10\nGain=0\nLED1=20\nLED2=20\n");
    return m_desk.connectUnit() && m_desk.rig.set("x", kCells);
}

bool LongDay::connections(int count)
{
    return measured("connections", kWarmUpConnections, count,
        [this](int times) { return repeated(times, [this] { return connectAgain(); }); });
}

bool LongDay::frames(int count)
{
    return m_desk.rig.set("x", kCells)
        && measured("live frames", kWarmUpFrames, count, [this](int times) { return waitForFrames(times); });
}

bool LongDay::focusRuns(int count)
{
    return m_desk.rig.set("x", kCells)
        && hand::selectTab(m_desk.window(), "tabWidget_CONTROLLER", "TAB_STAGE")
        && measured("focus runs", kWarmUpRuns, count,
            [this](int times) { return repeated(times, [this] { return focus(); }); });
}

bool LongDay::connectAgain()
{
    return hand::click(m_desk.window(), "pushButton_CONNECT") && m_desk.isEnabled("tabWidget_CONTROLLER")
        && m_desk.boxes.boxes().isEmpty();
}

bool LongDay::waitForFrames(int count)
{
    ShownFrames shown(*m_desk.widget("BASLER_VIDEO_WIDGET"));
    return patience::waitFor([&shown, count] { return shown.count() >= count; }, 10000 + 200 * count);
}

bool LongDay::focus()
{
    const int before = m_desk.boxes.boxes().size();
    return hand::click(m_desk.window(), "pushButton_AUTOFOCUS")
        && m_desk.boxes.waitForBoxes(before + 1, 120000)
        && m_desk.boxes.boxes().last().text == "finish auto focusing !";
}

bool LongDay::measured(const QString& what, int warmUp, int count, const std::function<bool(int)>& work)
{
    if (!work(warmUp))
        return false;
    Endurance endurance { QString("%1 %2").arg(count).arg(what), { footprint() } };
    for (const int part : { count / 2, count - count / 2 }) {
        if (!work(part))
            return false;
        endurance.footprints.push_back(footprint());
    }
    m_isFlat = m_isFlat && endurance.isFlat(kAllowance);
    std::printf("%s", qPrintable(endurance.text(kAllowance)));
    std::fflush(stdout);
    return true;
}

/// Without what grows on purpose: the log that the test keeps, the replies on the console, and the buttons'
/// faces, of which Qt keeps up to 10 MiB. The smallest of several looks: a frame that is under way is not
/// kept.
Footprint LongDay::footprint()
{
    m_desk.log.clear();
    m_desk.window().on_pushButton_CLEAR_CMD_RECEIVED_clicked();
    QPixmapCache::clear();
    Footprint smallest = Footprint::now();
    for (int look = 1; look < kLooks; ++look) {
        QTest::qWait(kLookEveryMs);
        smallest = smallest.lower(Footprint::now());
    }
    return smallest;
}

int count(const QCommandLineParser& words, const char* option)
{
    return words.value(option).toInt();
}

int run(QApplication& application)
{
    QCommandLineParser words;
    words.addOptions({ { "connections", "Further connections.", "N", "200" },
        { "frames", "Live frames.", "N", "2000" }, { "runs", "Focus runs.", "N", "20" },
        { "judge", "Whether growth is a failure: yes or no.", "WORD", "yes" } });
    words.process(application);

    LongDay day;
    const bool done = day.begin() && day.connections(count(words, "connections"))
        && day.frames(count(words, "frames")) && day.focusRuns(count(words, "runs"));
    day.end();
    if (!done)
        std::printf("The day could not be brought to its end.\n");
    return done && (day.isFlat() || words.value("judge") != "yes") ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    Pylon::PylonInitialize();
    int result = 0;
    {
        QApplication application(argc, argv);
        result = run(application);
    }
    Pylon::PylonTerminate(true);
    return result;
}
