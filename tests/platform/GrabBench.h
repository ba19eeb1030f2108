#pragma once

#include "tests/platform/ScriptedCamera.h"
#include "tests/platform/failure_text.h"

#include <pylon/PylonIncludes.h>
#include <pylon/usb/BaslerUsbInstantCamera.h>

#include <QString>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/// What a handler saw of one grab.
struct Seen {
    bool succeeded = false;
    QString error;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    size_t size = 0;
    int firstPixel = -1;
    std::int64_t number = 0;
    size_t skipped = 0;
};

/// Keeps what it is given, on whatever thread.
class Recorder : public Pylon::CImageEventHandler {
public:
    void OnImagesSkipped(Pylon::CInstantCamera& /*camera*/, size_t count) override { skipped += count; }

    void OnImageGrabbed(Pylon::CInstantCamera& /*camera*/, const Pylon::CGrabResultPtr& result) override
    {
        thread = std::this_thread::get_id();
        if (onImage)
            onImage(result);
        const std::lock_guard<std::mutex> lock(m_mutex);
        Seen seen;
        seen.succeeded = result->GrabSucceeded();
        seen.error = result->GetErrorDescription().c_str();
        seen.width = result->GetWidth();
        seen.height = result->GetHeight();
        seen.size = result->GetImageSize();
        if (result->GetBuffer() != nullptr)
            seen.firstPixel = *static_cast<const unsigned char*>(result->GetBuffer());
        seen.number = result->GetBlockID();
        seen.skipped = result->GetNumberOfSkippedImages();
        m_seen.push_back(seen);
    }

    std::vector<Seen> seen() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_seen;
    }
    size_t count() const { return seen().size(); }

    std::function<void(const Pylon::CGrabResultPtr&)> onImage;
    std::atomic<size_t> skipped { 0 };
    std::atomic<std::thread::id> thread {};

private:
    mutable std::mutex m_mutex;
    std::vector<Seen> m_seen;
};

/// Holds the grab thread in its handler until it is opened.
class Gate {
public:
    void pass()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_bReached = true;
        m_changed.wait(lock, [this] { return m_bOpen; });
    }
    void open()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bOpen = true;
        m_changed.notify_all();
    }
    bool isReached()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_bReached;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_bReached = false;
    bool m_bOpen = false;
};

/// Tells what happens to the camera, in order.
class Diary : public Pylon::CConfigurationEventHandler {
public:
    void OnGrabError(Pylon::CInstantCamera& /*camera*/, const char* message) override { add(message); }
    void OnCameraDeviceRemoved(Pylon::CInstantCamera& /*camera*/) override { add("removed"); }
    void OnGrabStarted(Pylon::CInstantCamera& /*camera*/) override { add("started"); }
    void OnGrabStopped(Pylon::CInstantCamera& /*camera*/) override { add("stopped"); }

    std::vector<QString> entries() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_entries;
    }

private:
    void add(const QString& entry)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_entries.push_back(entry);
    }
    mutable std::mutex m_mutex;
    std::vector<QString> m_entries;
};

/// A camera that is open and has a handler.
struct GrabBench {
    GrabBench()
    {
        camera.RegisterImageEventHandler(&recorder, Pylon::RegistrationMode_ReplaceAll, Pylon::Cleanup_None);
        camera.RegisterConfiguration(&diary, Pylon::RegistrationMode_Append, Pylon::Cleanup_None);
        camera.Attach(Pylon::CTlFactory::GetInstance().CreateFirstDevice());
        camera.Open();
    }
    void start(Pylon::EGrabStrategy strategy = Pylon::GrabStrategy_LatestImageOnly)
    {
        camera.StartGrabbing(strategy, Pylon::GrabLoop_ProvidedByInstantCamera);
    }

    ScriptedCamera server;
    Recorder recorder;
    Diary diary;
    Pylon::CBaslerUsbInstantCamera camera; ///< goes first
};
