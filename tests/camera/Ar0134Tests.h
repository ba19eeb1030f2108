#pragma once

#include "camera/ar0134.h"
#include "camera/ar0134_framedelivery.h"
#include "tests/camera/Ar0134Bench.h"
#include "tests/platform/ScriptedBoard.h"

#include <QObject>
#include <QSignalSpy>
#include <QVector>

#include <memory>

/// What the test classes of the AR0134 driver and its source have in common: each test function has a
/// scripted board of its own, and a folder with the sensor configuration.
class BoardTest : public QObject {
    Q_OBJECT

protected slots:
    virtual void init();
    virtual void cleanup();

protected:
    std::unique_ptr<ScriptedBoard> m_board;
    std::unique_ptr<Ar0134Bench> m_bench;
};

/// Tests of an opened driver, which lives on the test's own thread.
class DriverTest : public BoardTest {
    Q_OBJECT

protected slots:
    void cleanup() override;

protected:
    /// Opens the driver with the configuration as it stands.
    void open();

    /// The next line of the critical log, to the letter; the test fails when it does not come.
    static void expect(const char* line);

    /// Numbers of the errors that the driver has told.
    QVector<int> errors() const;

    std::unique_ptr<AR0134> m_camera;
    std::unique_ptr<QSignalSpy> m_errors;
    std::unique_ptr<QSignalSpy> m_ready; ///< frames that the driver has told
};

/// Tests of the frame source, whose driver lives on the source's thread.
class SourceTest : public BoardTest {
    Q_OBJECT

protected slots:
    void cleanup() override;

protected:
    void open();

    std::unique_ptr<Ar0134FrameDelivery> m_source;
};
