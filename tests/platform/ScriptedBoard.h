#pragma once

#include "platform/camera_wire.h"
#include "tests/platform/CameraSocket.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// An ArduCam board at the far end of the camera socket that does what a test tells it, and keeps what it was
/// asked. It has no optics: registers are a plain map, pictures come from a function. Serves a socket of its
/// own on its own thread, and puts the path into the environment of the process while it lives. All functions
/// may be called from the test's thread at any time.
class ScriptedBoard {
public:
    using Bytes = std::vector<std::uint8_t>;

    /// A request as it came in.
    struct Request {
        qr9::wire::Kind kind;
        std::int32_t code;
        std::int64_t value;
        std::string name;
        Bytes payload;
        bool operator==(const Request& other) const;
    };

    /// What becomes of one trigger.
    struct Shot {
        enum What {
            Good, ///< a picture comes after `delay`
            Lost, ///< none comes
            Broken, ///< a failed transfer with the library's code `code`
            Refused, ///< the trigger itself fails with `code`
        };
        What what = Good;
        std::uint32_t code = 0;
        std::chrono::milliseconds delay { 0 };
    };

    ScriptedBoard();
    ScriptedBoard(const ScriptedBoard&) = delete;
    ScriptedBoard& operator=(const ScriptedBoard&) = delete;
    ~ScriptedBoard();

    void setBoards(int count);
    void setUsbType(int usbType);
    /// The next `count` opens fail with `code`.
    void refuseOpens(int count, std::uint32_t code);
    /// What setMode answers; old firmware says 65393.
    void setModeCode(std::uint32_t code);
    /// The picture of frame number `frame`, from 1. Without a function: 1280 by 964 grey values of 100.
    void setPicture(std::function<Bytes(int frame)> picture);
    /// What becomes of the next triggers, one each; after them all are good, with `delay`.
    void script(std::vector<Shot> shots);
    void setDelay(std::chrono::milliseconds delay);
    /// Accesses to a register fail with `code` until they are let again with 0.
    void failReads(std::uint32_t address, std::uint32_t code);
    void failWrites(std::uint32_t address, std::uint32_t code);
    void setRegister(std::uint32_t address, std::uint16_t value);
    /// Every later request fails with this error of the wire, without a code of the library.
    void failAll(qr9::wire::Error error);
    /// Pulls the plug.
    void unplug() { failAll(qr9::wire::Error::Removed); }

    std::uint16_t reg(std::uint32_t address) const;
    /// All requests so far but Devices.
    std::vector<Request> requests() const;
    int count(qr9::wire::Kind kind) const;
    void forgetRequests();

    static Request write(std::uint32_t address, std::uint16_t value);
    static Request read(std::uint32_t address);

private:
    using Clock = std::chrono::steady_clock;
    struct Pending {
        Clock::time_point due;
        int socket;
        qr9::wire::Message head;
        Bytes payload;
    };

    void serve();
    bool take(int socket);
    void answer(int socket, qr9::wire::Message request, const Bytes& payload);
    std::int32_t registerAnswer(qr9::wire::Message& reply);
    void openAnswer(qr9::wire::Message& reply, Bytes& payload);
    void trigger(int socket, qr9::wire::Message& reply);
    void sendDueFrames();
    int pollTimeout() const;

    CameraSocket m_socket;
    int m_stopPipe[2] = { -1, -1 };
    std::vector<int> m_clients; ///< of the serving thread alone

    mutable std::mutex m_mutex; ///< guards what follows
    int m_boards = 1;
    int m_usbType = 3;
    int m_refusals = 0;
    std::uint32_t m_refusalCode = 0;
    std::uint32_t m_modeCode = 0;
    qr9::wire::Error m_failure = qr9::wire::Error::None; ///< of every request
    std::function<Bytes(int)> m_picture;
    std::deque<Shot> m_shots;
    std::chrono::milliseconds m_delay { 0 };
    std::map<std::uint32_t, std::uint32_t> m_failingReads;
    std::map<std::uint32_t, std::uint32_t> m_failingWrites;
    std::map<std::uint32_t, std::uint16_t> m_registers;
    std::vector<Request> m_requests;
    std::vector<Pending> m_pending;
    int m_frames = 0;
    std::thread m_thread;
};
