#pragma once

#include <QJsonObject>

namespace qr9::sim {

class Instrument;

/// Carries one request of the control socket out.
/// \returns {"ok":true, ...} or {"ok":false, "error": why}; nothing has changed in the second case
QJsonObject runControlCommand(Instrument& instrument, const QJsonObject& request);

} // namespace qr9::sim
