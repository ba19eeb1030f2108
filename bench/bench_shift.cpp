// The adaptive search for the shift of both fluorescence channels of one field.

#include "bench/comparison.h"
#include "bench/shift_rounds.h"

#include <QtGlobal>

int main(int argc, char** argv)
{
    // The log lines of a search are part of its work, but not of this program's output.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});

    ShiftField field;
    const auto literal = [&field] { searchLiterally(field); };
    const auto built = [&field] { searchBuilt(field); };
    comparison::add({ "shift of two channels, on one core", comparison::Cores::one, 2.0, literal, built });
    comparison::add({ "shift of two channels, on two cores", comparison::Cores::all, 3.5, literal, built });
    return comparison::run(argc, argv);
}
