#pragma once

#include "app/MainWindow.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/RigClient.h"
#include "tests/support/hand.h"
#include "tests/support/patience.h"

#include <pylon/PylonIncludes.h>

#include <QApplication>
#include <QLineEdit>
#include <QtTest>

#include <memory>

/// The technician's desk in a room: the real window in front of the virtual instrument, with the settings
/// file as the test wants it. One desk a test; GUI thread.
class Desk {
public:
    Desk();
    ~Desk();

    /// Replaces the instrument's settings file, before the window is opened. Null: no file.
    static void putSettings(const QByteArray& text);
    static void removeSettings();
    /// The file as it stands now; empty when it is missing.
    static QByteArray settings();

    /// Opens the window; the connection begins by itself half a second later.
    void open();
    /// Runs the event loop until the connection sequence is over.
    bool waitForConnection();
    /// Both, with evidence that the camera runs and the tabs are open.
    bool connectUnit();
    /// Ends the window as `main` does behind the exit button.
    void close();
    /// Ends the window while the camera's live loop runs on.
    void closeInLiveMode();

    /// The unit has the AR0134 camera, and not the Basler one.
    bool isArduCam();

    /// A mark of the transcript behind all that the window has sent so far, on the wire or not yet.
    int mark();
    /// All that the board was sent from a mark on, with nothing still under way.
    QStringList linesSince(int mark);

    MainWindow& window() { return *m_window; }

    template <typename T = QWidget> T* widget(const char* name) { return hand::find<T>(*m_window, name); }
    QString text(const char* name)
    {
        return m_window->findChild<QWidget*>(name)->property("text").toString();
    }
    QString style(const char* name) { return m_window->findChild<QWidget*>(name)->styleSheet(); }
    bool isEnabled(const char* name) { return m_window->findChild<QWidget*>(name)->isEnabled(); }
    /// Not hidden by the program; it may still stand on a page that is not in front.
    bool isShown(const char* name) { return !m_window->findChild<QWidget*>(name)->isHidden(); }

    RigClient rig;
    LogCapture log;
    MessageBoxWatcher boxes;

private:
    bool flush();

    std::unique_ptr<MainWindow> m_window;
};

/// The lines of a settings file, in an order of their own: that of the file is up to the settings format.
QStringList sortedLines(const QByteArray& file);

/// What the board is sent while a unit comes up with the settings that a missing file gives.
QStringList linesOfConnection();

/// `main` of a workflow test: the camera library lives longer than the application, as in the program.
#define WORKFLOW_MAIN(TestClass)                                                                             \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        Pylon::PylonInitialize();                                                                            \
        int result = 0;                                                                                      \
        {                                                                                                    \
            QApplication application(argc, argv);                                                            \
            TestClass test;                                                                                  \
            result = QTest::qExec(&test, argc, argv);                                                        \
        }                                                                                                    \
        Pylon::PylonTerminate(true);                                                                         \
        return result;                                                                                       \
    }
