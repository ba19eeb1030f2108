#include "app/MainWindow.h"
#include "app/version_text.h"
#include "app/zr_meta.h"

#include <pylon/PylonIncludes.h>

#include <QApplication>
#include <QDebug>
#include <QLocale>
#include <QProcess>

#include <clocale>

namespace {

constexpr int kResetLimitMs = 30000;

int runWindow(int& argc, char** argv)
{
    QApplication application(argc, argv);
    // The settings file and the board speak numbers with a decimal point, whatever the unit's language is.
    std::setlocale(LC_NUMERIC, "C");
    QLocale::setDefault(QLocale::c());

    QCoreApplication::setApplicationVersion(version_text::applicationVersion());
    qDebug() << zr_meta::VERSION;
    qDebug() << zr_meta::BASE_VERSION;
    qDebug() << zr_meta::BUILD_DATE;
    qDebug() << zr_meta::BASE_SVN_REV;

    MainWindow window;
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    // Power-cycles the camera. A missing or hanging program costs at most its limit.
    QProcess reset;
    reset.start("/root/TAVO_QR9/Reset_BaslerCamera", QStringList(), QIODevice::ReadWrite);
    reset.waitForFinished(kResetLimitMs);
    reset.close();

    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    // Before any application object, and ended after the last one: no camera object may outlive the library.
    Pylon::PylonInitialize();
    const int exitCode = runWindow(argc, argv);
    Pylon::PylonTerminate(true);
    return exitCode;
}
