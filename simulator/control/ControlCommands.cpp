#include "simulator/control/ControlCommands.h"

#include "simulator/Instrument.h"
#include "simulator/Truth.h"
#include "simulator/control/Settings.h"
#include "simulator/optics/GroundTruth.h"

#include <QJsonArray>

#include <algorithm>
#include <array>
#include <cmath>

namespace qr9::sim {

namespace {

QJsonObject good(QJsonObject values = {})
{
    values["ok"] = true;
    return values;
}

QJsonObject bad(const QString& why)
{
    return { { "ok", false }, { "error", why } };
}

QJsonObject goodUnless(const QString& why)
{
    return why.isEmpty() ? good() : bad(why);
}

QJsonObject truth(Instrument& instrument, const QJsonObject&)
{
    return good({ { "truth", truthOf(instrument.unit()) } });
}

QJsonObject bestFocus(Instrument& instrument, const QJsonObject& request)
{
    if (!request["x"].isDouble()) {
        return bad("\"x\" is missing");
    }
    return good(focusAt(instrument.unit(), request["x"].toInt()));
}

QJsonArray toArray(const cv::Point2d& point)
{
    return { point.x, point.y };
}

/// Where a perfect eye finds things in the picture that the camera would deliver now, in pixels.
QJsonObject inPicture(Instrument& instrument, const QJsonObject&)
{
    const optics::UnitConstants& constants = instrument.unit().constants;
    optics::OpticalState view = instrument.world().view();
    if (const auto settings = instrument.camera().settings()) {
        view.mirrorX = settings->mirrorX;
        view.mirrorY = settings->mirrorY;
    }
    QJsonArray marks;
    for (const optics::TargetMark& mark : optics::targetMarks(constants, view)) {
        marks.append(QJsonObject { { "row", mark.row }, { "column", mark.column }, { "x", mark.centre.x },
            { "y", mark.centre.y }, { "radius", mark.radius } });
    }
    return good({
        { "targetMarks", marks },
        { "referenceMark", toArray(optics::referenceMark(constants, view)) },
        { "gfpShift", toArray(optics::pixelShift(constants, optics::Channel::Gfp, view)) },
        { "rfpShift", toArray(optics::pixelShift(constants, optics::Channel::Rfp, view)) },
    });
}

QJsonObject state(Instrument& instrument, const QJsonObject&)
{
    return good(stateOf(instrument));
}

QJsonObject transcript(Instrument& instrument, const QJsonObject& request)
{
    const auto& lines = instrument.log().lines();
    const int count = static_cast<int>(lines.size());
    QJsonArray out;
    for (int i = std::clamp(request["from"].toInt(), 0, count); i < count; ++i) {
        const BoardLog::Line& line = lines.at(static_cast<std::size_t>(i));
        out.append(QJsonObject { { "dir", QString(QLatin1Char(line.direction)) }, { "port", line.port },
            { "ms", static_cast<double>(line.time.count()) / 1000.0 },
            { "text", QString::fromLatin1(line.text) } });
    }
    return good({ { "lines", out }, { "next", count } });
}

QJsonObject set(Instrument& instrument, const QJsonObject& request)
{
    return goodUnless(applySetting(instrument, request["key"].toString(), request["value"]));
}

QJsonObject say(Instrument& instrument, const QJsonObject& request)
{
    if (!request["text"].isString()) {
        return bad("\"text\" is missing");
    }
    instrument.board().say(request["text"].toString().toLatin1());
    return good();
}

QJsonObject fault(Instrument& instrument, const QJsonObject& request)
{
    return goodUnless(instrument.armFault(request));
}

QJsonObject clearFaults(Instrument& instrument, const QJsonObject&)
{
    instrument.clearFaults();
    return good();
}

QJsonObject clock(Instrument& instrument, const QJsonObject& request)
{
    Clock& clock = instrument.clock();
    const QString action = request["action"].toString();
    if (action == QLatin1String("hold")) {
        clock.hold();
    } else if (action == QLatin1String("release")) {
        clock.release();
    } else if (action == QLatin1String("advance") && clock.isHeld() && request["ms"].toDouble(-1.0) >= 0.0) {
        clock.advance(Time(std::llround(request["ms"].toDouble() * 1000.0)));
    } else {
        return bad(R"("action" is "hold", "release" or, while held, "advance" by "ms" of 0 or more)");
    }
    return good({ { "ms", static_cast<double>(clock.now().count()) / 1000.0 } });
}

struct Row {
    const char* name;
    QJsonObject (*run)(Instrument&, const QJsonObject&);
};

constexpr std::array kRows {
    Row { "truth", truth },
    Row { "bestFocus", bestFocus },
    Row { "inPicture", inPicture },
    Row { "state", state },
    Row { "transcript", transcript },
    Row { "set", set },
    Row { "say", say },
    Row { "fault", fault },
    Row { "clearFaults", clearFaults },
    Row { "clock", clock },
};

} // namespace

QJsonObject runControlCommand(Instrument& instrument, const QJsonObject& request)
{
    const QString name = request["cmd"].toString();
    const auto row = std::find_if(kRows.begin(), kRows.end(),
        [&name](const Row& candidate) { return name == QLatin1String(candidate.name); });
    return row == kRows.end() ? bad(QStringLiteral("no command is called \"%1\"").arg(name))
                              : row->run(instrument, request);
}

} // namespace qr9::sim
