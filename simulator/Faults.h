#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace qr9::sim {

/// What can be made to go wrong. The names on the control socket are those of the table in Faults.cpp.
enum class FaultKind : std::uint8_t {
    Cut, ///< board: the reply comes in pieces; value = size of a piece, or the list of sizes
    Merge, ///< board: the reply is held and sent with the next one in one write
    Late, ///< board: the reply comes `value` ms late
    Lose, ///< board: the command is carried out, the reply is lost
    Nul, ///< board: the reply begins with a NUL byte
    Noise, ///< board: the bytes of the text `value` come before the reply
    Silent, ///< board: no reply from this one on, until the faults are cleared
    Double, ///< board: the reply is sent twice
    GrabFails, ///< camera: the grab of a frame fails; value = its text, or the code that the library gives
    LateFrame, ///< camera: the frame comes `value` ms late
    LoseFrame, ///< camera: the frame never comes
    Unplug, ///< camera: the plug is pulled when the request comes
    MissingFeature, ///< camera: the node `value` does not exist
    OpenFails, ///< camera: the device cannot be opened
    CameraError, ///< camera: the request fails; value = an error of the wire, or the code that the library
                 ///< gives
};

/// The faults that wait for their moment. A fault strikes when a subject (a line of the board, a request of
/// the camera) begins with its match text, `count` times (0: until cleared); the one armed first strikes
/// first. Thread: main. Owner: Instrument.
class Faults {
public:
    /// Takes {"name", "match", "count", "value"} in.
    /// \returns an empty text, or what is wrong with it (nothing is armed then)
    QString arm(const QJsonObject& request);

    void clear() { m_armed.clear(); }

    /// Does this fault strike here? Each call uses one of its times up.
    /// \returns its value, or nothing
    std::optional<QJsonValue> take(FaultKind kind, const QString& subject);

    /// Is the node of this name taken away from the camera? It stays so until cleared.
    bool isMissing(const QString& feature) const;

private:
    struct Armed {
        FaultKind kind;
        QString match;
        int left; ///< times; 0 = until cleared
        QJsonValue value;
    };

    std::vector<Armed> m_armed;
};

} // namespace qr9::sim
