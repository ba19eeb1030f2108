#include "tests/platform/ScriptedCamera.h"
#include "tests/platform/wire_text.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

using namespace qr9;
using wiretext::copyText;

namespace {

struct FeatureRow {
    const char* name;
    double value;
    double min;
    double max;
};

// What a dart has; enumerations by their numbers.
constexpr FeatureRow kDartFeatures[] = {
    { "Width", 640.0, 16.0, 1280.0 },
    { "Height", 480.0, 16.0, 960.0 },
    { "ExposureTime", 10000.0, 20.0, 1000000.0 },
    { "Gain", 3.0, 0.0, 24.0 },
    { "Gamma", 1.0, 0.0, 4.0 },
    { "ReverseX", 0.0, 0.0, 1.0 },
    { "ReverseY", 1.0, 0.0, 1.0 },
    { "ExposureAuto", 2.0, 0.0, 2.0 },
    { "GainAuto", 2.0, 0.0, 2.0 },
    { "PixelFormat", 3.0, 0.0, 3.0 },
    { "OverlapMode", 0.0, 0.0, 1.0 },
    { "TriggerSelector", 0.0, 0.0, 1.0 },
    { "TriggerMode", 0.0, 0.0, 1.0 },
    { "TriggerSource", 1.0, 0.0, 3.0 },
};

} // namespace

ScriptedCamera::ScriptedCamera()
{
    for (const FeatureRow& row : kDartFeatures)
        setFeature(row.name, row.value, row.min, row.max);
    setModel(kDart);
    m_picture = [](int) { return greyPicture(100); };

    if (::pipe2(m_wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::runtime_error("no pipe for the scripted camera");
    m_thread = std::thread(&ScriptedCamera::serve, this);
}

ScriptedCamera::~ScriptedCamera()
{
    m_socket.hide();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bEnding = true;
    }
    wake();
    m_thread.join();
    for (const int client : m_clients)
        ::close(client);
    ::close(m_wakePipe[0]);
    ::close(m_wakePipe[1]);
}

void ScriptedCamera::wake()
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(m_wakePipe[1], &byte, 1); // a full pipe wakes as well
}

void ScriptedCamera::setCameras(int count)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_cameras = count;
}

void ScriptedCamera::setModel(const std::string& model)
{
    setFeature("DeviceModelName", 0.0, 0.0, 0.0);
    const std::lock_guard<std::mutex> lock(m_mutex);
    copyText(find("DeviceModelName")->text, model);
}

wire::Feature* ScriptedCamera::find(const std::string& name)
{
    const auto found = std::find_if(m_features.begin(), m_features.end(),
        [&name](const wire::Feature& feature) { return name == feature.name; });
    return found == m_features.end() ? nullptr : &*found;
}

const wire::Feature* ScriptedCamera::find(const std::string& name) const
{
    return const_cast<ScriptedCamera*>(this)->find(name);
}

void ScriptedCamera::setFeature(const std::string& name, double value, double min, double max)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (find(name) == nullptr) {
        m_features.emplace_back();
        copyText(m_features.back().name, name);
    }
    wire::Feature& feature = *find(name);
    feature.value = value;
    feature.min = min;
    feature.max = max;
}

void ScriptedCamera::removeFeature(const std::string& name)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_features.erase(std::remove_if(m_features.begin(), m_features.end(),
                         [&name](const wire::Feature& feature) { return name == feature.name; }),
        m_features.end());
}

double ScriptedCamera::feature(const std::string& name) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return find(name)->value;
}

void ScriptedCamera::refuse(const std::string& feature, const std::string& text)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_refusals.emplace_back(feature, text);
}

void ScriptedCamera::refuseOpens(bool refused)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bOpensRefused = refused;
}

void ScriptedCamera::setPicture(std::function<Picture(int)> picture)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_picture = std::move(picture);
}

void ScriptedCamera::script(std::vector<Shot> shots)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_shots.assign(shots.begin(), shots.end());
}

void ScriptedCamera::setDelay(Milliseconds delay)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_delay = delay;
}

void ScriptedCamera::deliver(int count)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (int i = 0; i < count; ++i)
            addFrame(m_opened, Clock::now(), false);
    }
    wake();
}

void ScriptedCamera::unplug()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bUnplugged = true;
        m_pending.clear();
        wire::Message removed;
        removed.kind = wire::Kind::RemovedEvent;
        m_pending.push_back({ Clock::now(), m_opened, removed, {}, false });
    }
    wake();
}

void ScriptedCamera::hangUp()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bHungUp = true;
    }
    wake();
}

void ScriptedCamera::fallSilent()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bSilent = true;
}

std::vector<std::string> ScriptedCamera::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

int ScriptedCamera::count(const std::string& request) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(std::count(m_requests.begin(), m_requests.end(), request));
}

void ScriptedCamera::forgetRequests()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.clear();
}

int ScriptedCamera::ignoredTriggers() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_ignoredTriggers;
}
