#pragma once

#include "FeatureSource.h"
#include "GrabBufferPool.h"
#include "GrabQueue.h"

#include "platform/wire_client.h"

#include <pylon/Device.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Pylon {

/// A camera of the virtual instrument, reached through one connection for as long as it is open. Pictures are
/// read from the connection straight into the buffers of a pool. Threads: one at a time opens and closes;
/// everything else may come from any thread.
class UsbDevice : public IPylonDevice, public FeatureSource {
public:
    /// `index` is the device's place among those of its class.
    UsbDevice(CDeviceInfo info, int index);
    ~UsbDevice() override;

    /// All devices of a class that are on the bus; none without a server.
    static std::vector<CDeviceInfo> onBus(const char* deviceClass);

    const CDeviceInfo& GetDeviceInfo() const override { return m_info; }

    /// `removed` is called on a thread of the device's when the plug is pulled. Throws.
    void open(std::function<void()> removed);
    void close();
    bool isOpen() const { return m_bOpen; }
    bool isRemoved() const { return m_bRemoved; }

    /// Frames go into `queue` from now on. Throws.
    void startStream(std::shared_ptr<GrabQueue> queue);
    void stopStream();

    const qr9::wire::Feature* find(const std::string& name) const override;
    double read(const std::string& name) override;
    void write(const std::string& name, double value) override;
    void execute(const std::string& name) override;

private:
    // On the connection's reader thread:
    std::uint8_t* bufferFor(const qr9::wire::Message& frame);
    void takeEvent(const qr9::wire::Message& event);
    void frameArrived();
    void plugPulled();

    qr9::wire::Packet request(const qr9::wire::Message& message, const std::string& what);
    std::optional<qr9::wire::Packet> ask(const qr9::wire::Message& message);
    void disconnect();
    std::shared_ptr<GrabQueue> queue();

    const CDeviceInfo m_info;
    const int m_index;
    const std::shared_ptr<GrabBufferPool> m_pool = std::make_shared<GrabBufferPool>();
    std::function<void()> m_removed;
    std::vector<qr9::wire::Feature> m_features; ///< as they were told when the device was opened
    std::atomic<bool> m_bOpen { false };
    std::atomic<bool> m_bClosing { false }; ///< the connection ends by our own will
    std::atomic<bool> m_bRemoved { false };
    CGrabResultPtr m_incoming; ///< of the reader thread alone
    std::mutex m_mutex; ///< guards the two below
    std::shared_ptr<GrabQueue> m_queue;
    std::shared_ptr<qr9::wire::Client> m_client;
};

/// Destroys a device that the factory made. Works without the library being initialised, since cameras may
/// outlive that.
void destroyMadeDevice(const IPylonDevice* device);

} // namespace Pylon
