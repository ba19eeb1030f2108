#pragma once

#include "simulator/Unit.h"

#include <QJsonObject>

namespace qr9::sim {

/// All constants of the unit, and under "derived" what follows from them and a calibration should find: best
/// focus over the fields A1 and B1 of the two-channel slide, and the scale of the picture.
QJsonObject truthOf(const Unit& unit);

/// Best focus of each channel with the stage at X motor steps, in Z motor steps (not rounded).
QJsonObject focusAt(const Unit& unit, int x);

} // namespace qr9::sim
