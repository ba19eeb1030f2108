#include "simulator/control/Settings.h"

#include "simulator/Instrument.h"

#include <QJsonArray>

#include <algorithm>
#include <array>

namespace qr9::sim {

namespace {

/// Names of the slides, in the order of optics::Slide.
constexpr std::array kSlides { "1ch", "2ch", "3ch", "8ch", "reusable", "validation", "prisma", "target",
    "empty" };
static_assert(kSlides.size() == optics::kSlideCount, "each slide has its name");

/// Each setter returns false when the value is not for it.
bool setX(Instrument& instrument, const QJsonValue& value)
{
    instrument.world().x().place(value.toInt(), instrument.clock().now());
    return true;
}

bool setZ(Instrument& instrument, const QJsonValue& value)
{
    instrument.world().z().place(value.toInt(), instrument.clock().now());
    return true;
}

bool setSlide(Instrument& instrument, const QJsonValue& value)
{
    const auto slide = std::find(kSlides.begin(), kSlides.end(), value.toString());
    if (slide == kSlides.end()) {
        return false;
    }
    instrument.world().setSlide(static_cast<optics::Slide>(slide - kSlides.begin()));
    return true;
}

bool setQuick(Instrument& instrument, const QJsonValue& value)
{
    instrument.world().setQuick(value.toBool());
    return true;
}

bool setSpeed(Instrument& instrument, const QJsonValue& value)
{
    if (value.toDouble() <= 0.0) {
        return false;
    }
    instrument.world().setHaste(value.toDouble());
    return true;
}

bool setPlugged(Instrument& instrument, const QJsonValue& value)
{
    if (value.toBool()) {
        instrument.camera().plugIn();
    } else {
        instrument.camera().unplug();
    }
    return true;
}

struct Row {
    const char* key;
    QJsonValue::Type type;
    bool (*set)(Instrument&, const QJsonValue&);
};

constexpr std::array kRows {
    Row { "x", QJsonValue::Double, setX }, // motor steps
    Row { "z", QJsonValue::Double, setZ }, // motor steps
    Row { "slide", QJsonValue::String, setSlide }, Row { "quick", QJsonValue::Bool, setQuick },
    Row { "plugged", QJsonValue::Bool, setPlugged }, // the camera's plug
    Row { "speed", QJsonValue::Double, setSpeed }, // factor on the speed of both axes
};

} // namespace

QString applySetting(Instrument& instrument, const QString& key, const QJsonValue& value)
{
    const auto row = std::find_if(kRows.begin(), kRows.end(),
        [&key](const Row& candidate) { return key == QLatin1String(candidate.key); });
    if (row == kRows.end()) {
        return QStringLiteral("no setting is called \"%1\"").arg(key);
    }
    if (value.type() != row->type || !row->set(instrument, value)) {
        return QStringLiteral("\"%1\" cannot have this value").arg(key);
    }
    return {};
}

QJsonObject stateOf(Instrument& instrument)
{
    World& world = instrument.world();
    const Time now = instrument.clock().now();
    const optics::LedLevels& leds = world.leds();
    QJsonArray corrections;
    for (int position = 1; position <= World::kFilters; ++position) {
        corrections.append(world.correction(position));
    }
    const Board& board = instrument.board().board();
    return {
        { "ms", static_cast<double>(now.count()) / 1000.0 },
        { "x", world.x().position(now) },
        { "z", world.z().position(now) },
        { "xMoving", world.x().isMoving(now) },
        { "zMoving", world.z().isMoving(now) },
        { "zStep", world.z().step() },
        { "zSpeed", world.z().speed() },
        { "zDir", world.z().isPlus() ? "PLUS" : "MINUS" },
        { "xStep", world.x().step() },
        { "xDir", world.x().isPlus() ? "PLUS" : "MINUS" },
        { "filter", world.filter() },
        { "corrections", corrections },
        { "leds",
            QJsonObject { { "bf1", leds.brightField1 }, { "bf2", leds.brightField2 }, { "gfp", leds.gfp },
                { "rfp", leds.rfp } } },
        { "slide", kSlides.at(static_cast<std::size_t>(world.slide())) },
        { "quick", world.isQuick() },
        { "camera", instrument.camera().state() },
        { "ignoredLines", board.ignoredLines() },
        { "unusableNumbers", board.unusableNumbers() },
    };
}

} // namespace qr9::sim
