#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace qr9::sim {

class Instrument;

/// Changes the world as only the test bench can. The keys are the table in Settings.cpp.
/// \returns an empty text, or what is wrong with key or value; nothing has changed then
QString applySetting(Instrument& instrument, const QString& key, const QJsonValue& value);

/// The world as it stands now, under the same keys, with the counters of the board.
QJsonObject stateOf(Instrument& instrument);

} // namespace qr9::sim
