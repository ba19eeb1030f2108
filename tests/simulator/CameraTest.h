#pragma once

#include "tests/simulator/RunningInstrument.h"
#include "tests/simulator/WireClient.h"

#include <QObject>

#include <memory>

/// What the test classes of the camera socket have in common: each test function has an instrument of its
/// own, with a Basler camera if nothing else is asked for, and one client.
class CameraTest : public QObject {
    Q_OBJECT

protected slots:
    virtual void init();
    virtual void cleanup();

protected:
    static constexpr int kPixels = 1280 * 960;

    static int errorCode(qr9::wire::Error error) { return static_cast<int>(error); }

    /// Another instrument, and a client of it.
    void start(const QStringList& options);
    std::unique_ptr<WireClient> newClient() const;

    QJsonValue cameraState(const QString& key);
    bool isOpen() { return cameraState("open").toBool(); }
    bool isExposing() { return cameraState("exposing").toBool(); }

    /// A bright field slide in focus, of the unit of seed 2.
    void lightBrightField();

    std::unique_ptr<RunningInstrument> m_instrument;
    std::unique_ptr<WireClient> m_client;
};
