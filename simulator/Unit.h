#pragma once

#include "simulator/optics/UnitConstants.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <cstdint>

namespace qr9::sim {

/// What hangs on the unit's USB.
enum class CameraKind {
    None,
    Basler,
    ArduCam,
};

/// Everything that makes one virtual instrument itself and that a measurement should find out.
struct Unit {
    optics::UnitConstants constants;
    QString firmware; ///< text of the board's version reply
    CameraKind camera = CameraKind::Basler;
    QString cameraModel; ///< as the camera names itself
    QString cameraSerial; ///< 12 characters
};

/// The camera that a unit has when nothing else is asked for.
constexpr char kBaslerModel[] = "daA1280-54um";
constexpr char kArduCamModel[] = "AR0134";

/// The unit of that seed, with a Basler camera: the same one on every machine.
Unit makeUnit(std::uint32_t seed);

/// Puts another camera on the unit, with the model name that this kind has.
void setCamera(Unit& unit, CameraKind kind);

/// "basler", "arducam" or "none"; false for another text.
bool parseCameraKind(const QString& text, CameraKind& kind);
QString cameraKindName(CameraKind kind);

/// All constants of the unit under their names.
QJsonObject toJson(const Unit& unit);

/// Reads a unit from a file in the form of toJson, such as `--truth` prints. A constant that the file lacks
/// has its nominal value; one that no unit has is an error, as is a value of the wrong type. \returns an
/// empty text, or what is wrong; `unit` is untouched then
QString readUnit(const QString& file, Unit& unit);

} // namespace qr9::sim
