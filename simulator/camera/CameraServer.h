#pragma once

#include "simulator/Faults.h"
#include "simulator/Unit.h"
#include "simulator/World.h"
#include "simulator/camera/CameraClient.h"
#include "simulator/camera/CameraLog.h"
#include "simulator/camera/CameraModel.h"
#include "simulator/camera/Shutter.h"
#include "simulator/io/UnixListener.h"

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace qr9::sim {

/// The camera socket: any number of clients may look for devices, one may have the camera open. Its pictures
/// show the world; requests and pictures pass the faults. Thread: main (pictures are rendered on another, see
/// FrameMaker). Owner: Instrument.
class CameraServer : public QObject {
    Q_OBJECT

public:
    CameraServer(World& world, Faults& faults, CameraLog& log, const Unit& unit, QObject* parent = nullptr);
    ~CameraServer() override;

    /// \returns an empty text, or why the socket could not be made
    QString listen(const QString& path);

    /// Pulls the plug: the picture under way is lost and whoever has the camera open is told.
    void unplug();
    void plugIn() { m_bPlugged = true; }
    bool isPlugged() const { return m_bPlugged && m_pModel; }

    /// A fault was armed: one that asks for nothing to happen first strikes now.
    void checkFaults();

    /// What the camera is set to and does.
    QJsonObject state() const;

    /// The settings of the pictures; nothing where the unit has no camera.
    std::optional<CaptureSettings> settings() const;

private:
    /// What will become of the exposure under way.
    struct Fate {
        bool bLost = false;
        std::optional<QJsonValue> failure;
    };

    void accept(int fd);
    void drop(CameraClient* pClient);
    void serve(CameraClient* pClient, const wire::Message& request);
    void serveDevices(CameraClient* pClient, const wire::Message& request);
    void serveOpen(CameraClient* pClient, const wire::Message& request);
    /// A request that needs the open camera.
    CameraAnswer serveOpened(const wire::Message& request, int& code);
    void closeDevice();
    void setStreaming(bool streaming);
    bool trigger();
    void expose();
    void deliver(const Picture& picture);

    Faults& m_faults;
    CameraLog& m_log;
    Unit m_unit;
    std::unique_ptr<CameraModel> m_pModel; ///< null: the unit has no camera
    Shutter m_shutter;
    UnixListener m_listener;
    CameraClient* m_pOwner = nullptr; ///< the client that has the camera open
    bool m_bPlugged = true;
    bool m_bStreaming = false;
    quint64 m_frame = 0; ///< number of the exposure since the camera was opened
    Fate m_fate;
};

} // namespace qr9::sim
