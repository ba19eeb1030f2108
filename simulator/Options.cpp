#include "simulator/Options.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace qr9::sim {

namespace {

constexpr int kMostSilentPorts = 8;

QString readUnitOption(const QCommandLineParser& parser, Unit& unit)
{
    if (parser.isSet("seed") == parser.isSet("unit")) {
        return "one of --seed and --unit is needed";
    }
    if (parser.isSet("unit")) {
        return readUnit(parser.value("unit"), unit);
    }
    bool good = false;
    const uint seed = parser.value("seed").toUInt(&good);
    if (!good) {
        return QStringLiteral("--seed %1 is not a number").arg(parser.value("seed"));
    }
    unit = makeUnit(seed);
    return {};
}

QString readCameraOptions(const QCommandLineParser& parser, Unit& unit)
{
    if (parser.isSet("camera")) {
        CameraKind kind = CameraKind::None;
        if (!parseCameraKind(parser.value("camera"), kind)) {
            return QStringLiteral("--camera %1 is not basler, arducam or none").arg(parser.value("camera"));
        }
        if (kind != unit.camera) {
            setCamera(unit, kind);
        }
    }
    if (parser.isSet("camera-model")) {
        unit.cameraModel = parser.value("camera-model");
    }
    return {};
}

QString readPlaceOptions(const QCommandLineParser& parser, Options& options)
{
    bool good = true;
    options.silentPorts = parser.value("silent-ports").toInt(&good);
    if (!good || options.silentPorts < 0 || options.silentPorts > kMostSilentPorts) {
        return QStringLiteral("--silent-ports takes 0 to %1").arg(kMostSilentPorts);
    }
    options.folder = parser.value("rig");
    if (!options.bTruth && !QFileInfo(options.folder).isDir()) {
        return QStringLiteral("--rig %1 is not a folder").arg(options.folder);
    }
    return {};
}

} // namespace

QString parseOptions(const QStringList& arguments, Options& options)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "The virtual instrument: controller board, camera and optics of one unit.");
    parser.addHelpOption();
    parser.addOptions({
        { "rig", "Folder of the sockets and logs.", "DIR" },
        { "seed", "The unit of this seed, the same one on every machine.", "N" },
        { "unit", "The unit of this file, in the form that --truth prints.", "FILE" },
        { "camera", "basler, arducam or none; default: the unit's own.", "KIND" },
        { "camera-model", "Model name that the camera reports.", "NAME" },
        { "missing-feature", "A node that the camera lacks.", "NAME" },
        { "silent-ports", "So many serial ports that never answer stand before the board's.", "N", "0" },
        { "quick", "Motions take no noticeable time." },
        { "truth", "Print the unit's true constants as JSON and end." },
        { "until-eof", "End with standard input, too." },
    });
    parser.process(arguments);
    if (!parser.positionalArguments().isEmpty()) {
        return QStringLiteral("%1: no such option").arg(parser.positionalArguments().first());
    }
    options.bQuick = parser.isSet("quick");
    options.bTruth = parser.isSet("truth");
    options.bUntilEof = parser.isSet("until-eof");
    options.missingFeature = parser.value("missing-feature");
    QString error = readUnitOption(parser, options.unit);
    if (error.isEmpty()) {
        error = readCameraOptions(parser, options.unit);
    }
    if (error.isEmpty()) {
        error = readPlaceOptions(parser, options);
    }
    return error;
}

} // namespace qr9::sim
