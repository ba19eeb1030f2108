#include "simulator/Instrument.h"
#include "simulator/Options.h"
#include "simulator/StopRequest.h"
#include "simulator/Truth.h"
#include "simulator/control/ControlServer.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

namespace {

int fail(const QString& why)
{
    std::fprintf(stderr, "VirtualInstrument: %s\n", qPrintable(why));
    return 1;
}

void printLine(const QJsonObject& json)
{
    std::printf("%s\n", QJsonDocument(json).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char* argv[])
{
    using namespace qr9::sim;
    StopRequest stop; // before anything starts a thread, which would take the signals otherwise
    QCoreApplication app(argc, argv);
    Options options;
    if (const QString error = parseOptions(app.arguments(), options); !error.isEmpty()) {
        return fail(error);
    }
    if (options.bTruth) {
        printLine(truthOf(options.unit));
        return 0;
    }

    Instrument instrument(options.unit);
    instrument.world().setQuick(options.bQuick);
    if (!options.missingFeature.isEmpty()) {
        instrument.armFault({ { "name", "missingFeature" }, { "value", options.missingFeature } });
    }
    ControlServer control(instrument);
    QString error = instrument.open(options.folder, options.silentPorts);
    if (error.isEmpty()) {
        error = control.listen(options.folder + "/control.sock");
    }
    if (!error.isEmpty()) {
        return fail(error);
    }
    stop.watch(options.bUntilEof);
    const QStringList ports = instrument.board().portNames();
    printLine({ { "ports", QJsonArray::fromStringList(ports) }, { "board", ports.last() } });
    return QCoreApplication::exec();
}
