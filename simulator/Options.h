#pragma once

#include "simulator/Unit.h"

#include <QString>
#include <QStringList>

namespace qr9::sim {

/// What the command line asks for.
struct Options {
    Unit unit;
    QString folder; ///< of sockets and log
    int silentPorts = 0;
    QString missingFeature; ///< a node that the camera lacks; empty for none
    bool bQuick = false; ///< motions take no time
    bool bTruth = false; ///< print the unit's constants and end
    bool bUntilEof = false; ///< end with standard input
};

/// Reads the command line, with the unit that it names. `--help` prints it and ends the process.
/// \returns an empty text, or what is wrong
QString parseOptions(const QStringList& arguments, Options& options);

} // namespace qr9::sim
