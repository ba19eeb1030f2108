#include "simulator/Unit.h"

#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <array>

namespace qr9::sim {

namespace {

using optics::UnitConstants;

struct NumberRow {
    const char* name;
    double UnitConstants::*pMember;
};

constexpr std::array kNumbers {
    NumberRow { "markX", &UnitConstants::markX },
    NumberRow { "bestFocusA1", &UnitConstants::bestFocusA1 },
    NumberRow { "slope", &UnitConstants::slope },
    NumberRow { "curvature", &UnitConstants::curvature },
    NumberRow { "fluorescenceFocusOffset", &UnitConstants::fluorescenceFocusOffset },
    NumberRow { "magnification", &UnitConstants::magnification },
    NumberRow { "gfpShiftX", &UnitConstants::gfpShiftX },
    NumberRow { "gfpShiftY", &UnitConstants::gfpShiftY },
    NumberRow { "rfpShiftX", &UnitConstants::rfpShiftX },
    NumberRow { "rfpShiftY", &UnitConstants::rfpShiftY },
    NumberRow { "ledResponseBrightField1", &UnitConstants::ledResponseBrightField1 },
    NumberRow { "ledResponseBrightField2", &UnitConstants::ledResponseBrightField2 },
    NumberRow { "ledResponseGfp", &UnitConstants::ledResponseGfp },
    NumberRow { "ledResponseRfp", &UnitConstants::ledResponseRfp },
    NumberRow { "blackLevel", &UnitConstants::blackLevel },
    NumberRow { "readNoise", &UnitConstants::readNoise },
    NumberRow { "shotNoise", &UnitConstants::shotNoise },
};

struct TextRow {
    const char* name;
    QString Unit::*pMember;
};

constexpr std::array kTexts {
    TextRow { "firmware", &Unit::firmware },
    TextRow { "cameraModel", &Unit::cameraModel },
    TextRow { "cameraSerial", &Unit::cameraSerial },
};

struct KindRow {
    const char* name;
    CameraKind kind;
    const char* model;
};

constexpr std::array kKinds {
    KindRow { "basler", CameraKind::Basler, kBaslerModel },
    KindRow { "arducam", CameraKind::ArduCam, kArduCamModel },
    KindRow { "none", CameraKind::None, "" },
};

const KindRow& rowOf(CameraKind kind)
{
    return *std::find_if(
        kKinds.begin(), kKinds.end(), [kind](const KindRow& row) { return row.kind == kind; });
}

/// Takes one value of the file over.
/// \returns false when no unit has such a constant or its value has the wrong type
bool takeValue(const QString& name, const QJsonValue& value, Unit& unit)
{
    for (const NumberRow& row : kNumbers) {
        if (name == QLatin1String(row.name)) {
            unit.constants.*row.pMember = value.toDouble();
            return value.isDouble();
        }
    }
    for (const TextRow& row : kTexts) {
        if (name == QLatin1String(row.name)) {
            unit.*row.pMember = value.toString();
            return value.isString();
        }
    }
    if (name == QLatin1String("seed")) {
        const double seed = value.toDouble(-1.0);
        unit.constants.seed = seed >= 0.0 && seed < 4294967296.0 ? static_cast<std::uint32_t>(seed) : 0;
        return unit.constants.seed == seed;
    }
    return name == QLatin1String("camera") && parseCameraKind(value.toString(), unit.camera);
}

} // namespace

Unit makeUnit(std::uint32_t seed)
{
    Unit unit;
    unit.constants = optics::unitFromSeed(seed);
    // Firmware and serial texts only have to differ from unit to unit.
    unit.firmware = QStringLiteral("2.%1.%2").arg(seed % 10).arg(seed / 10 % 100, 2, 10, QLatin1Char('0'));
    unit.cameraSerial = QStringLiteral("QR9C%1").arg(seed % 100000000U, 8, 10, QLatin1Char('0'));
    setCamera(unit, CameraKind::Basler);
    return unit;
}

void setCamera(Unit& unit, CameraKind kind)
{
    unit.camera = kind;
    unit.cameraModel = QLatin1String(rowOf(kind).model);
}

bool parseCameraKind(const QString& text, CameraKind& kind)
{
    const auto row = std::find_if(kKinds.begin(), kKinds.end(),
        [&text](const KindRow& candidate) { return text == QLatin1String(candidate.name); });
    if (row == kKinds.end()) {
        return false;
    }
    kind = row->kind;
    return true;
}

QString cameraKindName(CameraKind kind)
{
    return QLatin1String(rowOf(kind).name);
}

QJsonObject toJson(const Unit& unit)
{
    QJsonObject json;
    json["seed"] = static_cast<qint64>(unit.constants.seed);
    for (const NumberRow& row : kNumbers) {
        json[QLatin1String(row.name)] = unit.constants.*row.pMember;
    }
    for (const TextRow& row : kTexts) {
        json[QLatin1String(row.name)] = unit.*row.pMember;
    }
    json["camera"] = cameraKindName(unit.camera);
    return json;
}

QString readUnit(const QString& file, Unit& unit)
{
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly)) {
        return QStringLiteral("%1: %2").arg(file, input.errorString());
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(input.readAll(), &error);
    if (!document.isObject()) {
        return QStringLiteral("%1: %2").arg(file,
            error.error == QJsonParseError::NoError ? QStringLiteral("not a JSON object")
                                                    : error.errorString());
    }
    const QJsonObject json = document.object();
    Unit read = makeUnit(1);
    read.constants = UnitConstants();
    // The kind brings its model name along; a model of the file's own comes after it.
    if (json.contains("camera") && parseCameraKind(json["camera"].toString(), read.camera)) {
        setCamera(read, read.camera);
    }
    for (auto value = json.begin(); value != json.end(); ++value) {
        if (value.key() != QLatin1String("derived") && !takeValue(value.key(), value.value(), read)) {
            return QStringLiteral("%1: \"%2\" is not a constant of a unit, or its value is of the wrong type")
                .arg(file, value.key());
        }
    }
    if (const char* name = optics::impossibleConstant(read.constants)) {
        return QStringLiteral("%1: \"%2\" is beyond what any unit can have").arg(file, QLatin1String(name));
    }
    unit = read;
    return {};
}

} // namespace qr9::sim
