#include "Runtime.h"
#include "UsbDevice.h"

#include <pylon/Device.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace Pylon {

namespace {

bool matches(const CDeviceInfo& device, const CDeviceInfo& wanted)
{
    const auto agrees
        = [](const String_t& has, const String_t& wants) { return wants.empty() || has == wants; };
    return agrees(device.GetDeviceClass(), wanted.GetDeviceClass())
        && agrees(device.GetModelName(), wanted.GetModelName())
        && agrees(device.GetSerialNumber(), wanted.GetSerialNumber());
}

bool matchesOne(const CDeviceInfo& device, const DeviceInfoList_t& filter)
{
    return filter.empty() || std::any_of(filter.begin(), filter.end(), [&device](const CDeviceInfo& wanted) {
        return matches(device, wanted);
    });
}

/// Every device that was made and not destroyed. A device that someone detached and forgot stays here until
/// the process ends; the record itself is never destroyed, since cameras may outlive all other globals.
struct DeviceRecord {
    std::mutex mutex;
    std::vector<std::unique_ptr<UsbDevice>> devices;
};
DeviceRecord& madeDevices()
{
    static auto* const record = new DeviceRecord;
    return *record;
}

} // namespace

CDeviceInfo& CDeviceInfo::SetDeviceClass(const String_t& value)
{
    m_deviceClass = value.c_str();
    return *this;
}

CDeviceInfo& CDeviceInfo::SetModelName(const String_t& value)
{
    m_modelName = value.c_str();
    return *this;
}

CDeviceInfo& CDeviceInfo::SetSerialNumber(const String_t& value)
{
    m_serialNumber = value.c_str();
    return *this;
}

CTlFactory& CTlFactory::GetInstance()
{
    requireRuntime();
    static CTlFactory factory;
    return factory;
}

int CTlFactory::EnumerateDevices(DeviceInfoList_t& list, const DeviceInfoList_t& filter, bool addToList)
{
    requireRuntime();
    if (!addToList)
        list.clear();
    int found = 0;
    for (const CDeviceInfo& device : UsbDevice::onBus(qr9::wire::kClassPylon)) {
        if (matchesOne(device, filter)) {
            list.push_back(device);
            ++found;
        }
    }
    return found;
}

int CTlFactory::EnumerateDevices(DeviceInfoList_t& list, bool addToList)
{
    return EnumerateDevices(list, DeviceInfoList_t(), addToList);
}

IPylonDevice* CTlFactory::CreateFirstDevice(const CDeviceInfo& info)
{
    requireRuntime();
    const std::vector<CDeviceInfo> onBus = UsbDevice::onBus(qr9::wire::kClassPylon);
    const auto found = std::find_if(
        onBus.begin(), onBus.end(), [&info](const CDeviceInfo& device) { return matches(device, info); });
    if (found == onBus.end())
        throw GenICam::RuntimeException("No device is available or no device matches.");
    DeviceRecord& record = madeDevices();
    const std::lock_guard<std::mutex> lock(record.mutex);
    record.devices.push_back(
        std::make_unique<UsbDevice>(*found, static_cast<int>(std::distance(onBus.begin(), found))));
    return record.devices.back().get();
}

void CTlFactory::DestroyDevice(IPylonDevice* device)
{
    destroyMadeDevice(device);
}

void destroyMadeDevice(const IPylonDevice* device)
{
    DeviceRecord& record = madeDevices();
    std::unique_ptr<UsbDevice> last; // destroyed outside of the lock
    const std::lock_guard<std::mutex> lock(record.mutex);
    const auto found = std::find_if(record.devices.begin(), record.devices.end(),
        [device](const std::unique_ptr<UsbDevice>& made) { return made.get() == device; });
    if (found == record.devices.end())
        return;
    last = std::move(*found);
    record.devices.erase(found);
}

} // namespace Pylon
