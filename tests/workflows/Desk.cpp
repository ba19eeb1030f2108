#include "tests/workflows/Desk.h"

#include "camera/framedelivery.h"
#include "link/Controller.h"

#include <QDir>
#include <QFile>
#include <QTabWidget>

namespace {

const QString kSettingsFile = "/root/TAVO_QR9/TAVO_QR9.ini";
/// No unit has a fourth LED: the board ignores the line.
const QString kNoEffect = "$A#LED OFF4";

} // namespace

Desk::Desk()
{
    if (!rig.connectToRig())
        qFatal("no virtual instrument: this test runs in a room");
    rig.clearFaults();
}

Desk::~Desk()
{
    close();
    rig.clearFaults();
}

void Desk::putSettings(const QByteArray& text)
{
    removeSettings();
    QFile file(kSettingsFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write the settings file");
}

void Desk::removeSettings()
{
    QFile::remove(kSettingsFile);
}

QByteArray Desk::settings()
{
    QFile file(kSettingsFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Desk::open()
{
    m_window.reset(new MainWindow);
    m_window->show();
}

bool Desk::waitForConnection()
{
    // The exit button comes back at the very end of the first sequence.
    return patience::waitFor([this] { return isShown("pushButton_EXIT"); }, 20000);
}

bool Desk::connectUnit()
{
    open();
    return waitForConnection() && isEnabled("tabWidget_CONTROLLER") && boxes.boxes().isEmpty();
}

/// A line of no effect goes out behind all others and is waited for.
bool Desk::flush()
{
    const int before = rig.mark();
    m_window->findChild<Controller*>()->write_command(kNoEffect + "\n");
    return rig.waitForSent(kNoEffect, before);
}

int Desk::mark()
{
    return flush() ? rig.mark() : -1;
}

QStringList Desk::linesSince(int mark)
{
    if (!flush())
        return { "the board is out of reach" };
    QStringList lines = rig.sentSince(mark);
    lines.removeAll(kNoEffect);
    return lines;
}

void Desk::close()
{
    // As the exit button does: a frame under way lands before its window goes.
    if (m_window && FrameDelivery::m_pInstance != nullptr)
        FrameDelivery::m_pInstance->stop();
    m_window.reset();
}

void Desk::closeInLiveMode()
{
    m_window.reset();
}

bool Desk::isArduCam()
{
    return rig.truth().value("camera") == "arducam";
}

QStringList sortedLines(const QByteArray& file)
{
    QStringList lines = QString::fromLatin1(file).split('\n', Qt::SkipEmptyParts);
    lines.sort();
    return lines;
}

QStringList linesOfConnection()
{
    return { "$A#VER", "$X#STAGE ORIGIN", "$Z#STAGE ORIGIN", "$A#FILTER ORIGIN", "$Z#STAGE STEP 115",
        "$Z#STAGE SPEED 100", "$X#STAGE EJECT", "$Z#STAGE ABS 32000", "$A#LED BRT1 7 6", "$A#FILTER GO 1" };
}
