#pragma once

#include "platform/camera_wire.h"
#include "tests/platform/CameraSocket.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A Basler camera at the far end of the camera socket that does what a test tells it, and keeps what it was
/// asked. It has no optics: pictures come from a function. Serves a socket of its own on its own thread, and
/// puts the path into the environment of the process while it lives. All functions may be called from any
/// thread at any time.
class ScriptedCamera {
public:
    using Bytes = std::vector<std::uint8_t>;
    using Milliseconds = std::chrono::milliseconds;

    /// What becomes of one trigger.
    struct Shot {
        enum What {
            Good, ///< a picture comes after `delay`
            Failed, ///< a failed grab with `text` comes after `delay`
            Lost, ///< none comes, and the camera waits for the next trigger
            Refused, ///< the trigger itself fails with `text`
        };
        What what = Good;
        Milliseconds delay { 0 };
        std::string text;
    };

    /// A picture of some size; `pixels` need not be as many as the size says.
    struct Picture {
        int width = 1280;
        int height = 960;
        int bytesPerPixel = 1;
        Bytes pixels;
    };

    static constexpr std::size_t kFrameBytes = 1228800;
    static constexpr char kDart[] = "daA1280-54um";

    /// A whole frame of one grey value, from 0 to 255.
    static Picture greyPicture(int grey)
    {
        return { 1280, 960, 1, Bytes(kFrameBytes, static_cast<std::uint8_t>(grey)) };
    }

    /// A dart with a picture of 1280 by 960 grey values of 100.
    ScriptedCamera();
    ScriptedCamera(const ScriptedCamera&) = delete;
    ScriptedCamera& operator=(const ScriptedCamera&) = delete;
    ~ScriptedCamera();

    void setCameras(int count);
    void setModel(const std::string& model);

    /// Changes a feature or adds it.
    void setFeature(const std::string& name, double value, double min, double max);
    void removeFeature(const std::string& name);
    double feature(const std::string& name) const;

    /// Writes of this feature are refused with `text`; an empty one lets them again.
    void refuse(const std::string& feature, const std::string& text);
    void refuseOpens(bool refused);

    /// The picture of frame number `frame`, from 1.
    void setPicture(std::function<Picture(int frame)> picture);

    /// What becomes of the next triggers, one each; after them all are good, with `delay`.
    void script(std::vector<Shot> shots);
    void setDelay(Milliseconds delay);

    /// Sends so many pictures in a row that nobody asked for.
    void deliver(int count);

    /// Pulls the plug: the client is told, and every later request fails.
    void unplug();

    /// Ends the connection without a word, as a server that dies.
    void hangUp();

    /// From now on requests are taken but not answered.
    void fallSilent();

    /// All requests so far but Devices, as "Open 0", "Set Width 1280", "Get Gain", "Trigger".
    std::vector<std::string> requests() const;
    int count(const std::string& request) const;
    void forgetRequests();

    /// Triggers that came while a frame was under way.
    int ignoredTriggers() const;

private:
    using Clock = std::chrono::steady_clock;
    struct Pending {
        Clock::time_point due;
        int socket = -1;
        qr9::wire::Message head;
        Bytes payload;
        bool ofTrigger = false;
    };

    void serve();
    bool take(int socket);
    void answer(int socket, const qr9::wire::Message& request);
    void trigger(int socket, qr9::wire::Message& reply);
    void setFeature(qr9::wire::Message& reply);
    void getFeature(qr9::wire::Message& reply) const;
    void addFrame(int socket, Clock::time_point due, bool ofTrigger);
    void sendDueFrames();
    int pollTimeout() const;
    void wake();
    const qr9::wire::Feature* find(const std::string& name) const;
    qr9::wire::Feature* find(const std::string& name);

    CameraSocket m_socket;
    int m_wakePipe[2] = { -1, -1 };
    std::vector<int> m_clients; ///< of the serving thread alone

    mutable std::mutex m_mutex; ///< guards what follows
    int m_cameras = 1;
    std::vector<qr9::wire::Feature> m_features;
    std::vector<std::pair<std::string, std::string>> m_refusals;
    bool m_bOpensRefused = false;
    bool m_bUnplugged = false;
    bool m_bHungUp = false;
    bool m_bSilent = false;
    bool m_bEnding = false;
    bool m_bUnderWay = false; ///< a triggered frame is
    std::function<Picture(int)> m_picture;
    std::deque<Shot> m_shots;
    Milliseconds m_delay { 0 };
    std::vector<std::string> m_requests;
    std::vector<Pending> m_pending;
    int m_opened = -1; ///< socket of the client that has the camera open
    int m_frames = 0;
    int m_ignoredTriggers = 0;
    std::thread m_thread;
};
