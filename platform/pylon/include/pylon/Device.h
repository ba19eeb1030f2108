#pragma once

#include <pylon/GenICam.h>

#include <cstddef>
#include <string>
#include <vector>

/// The library's life, and the devices on its bus.
namespace Pylon {

using String_t = GenICam::gcstring;

/// Counted: the library can be used between the first PylonInitialize and the last PylonTerminate.
void PylonInitialize();
void PylonTerminate(bool ShutDownLogging = true);

/// Facts about a device, or what is wanted of one; an empty text matches every device.
class CDeviceInfo {
public:
    CDeviceInfo& SetDeviceClass(const String_t& value);
    CDeviceInfo& SetModelName(const String_t& value);
    CDeviceInfo& SetSerialNumber(const String_t& value);
    String_t GetDeviceClass() const { return m_deviceClass; }
    String_t GetModelName() const { return m_modelName; }
    String_t GetSerialNumber() const { return m_serialNumber; }

private:
    std::string m_deviceClass;
    std::string m_modelName;
    std::string m_serialNumber;
};

/// A list of devices.
class DeviceInfoList {
public:
    using const_iterator = std::vector<CDeviceInfo>::const_iterator;

    void push_back(const CDeviceInfo& info) { m_infos.push_back(info); }
    void clear() noexcept { m_infos.clear(); }
    size_t size() const noexcept { return m_infos.size(); }
    bool empty() const noexcept { return m_infos.empty(); }
    const CDeviceInfo& operator[](size_t index) const { return m_infos[index]; }
    const_iterator begin() const noexcept { return m_infos.begin(); }
    const_iterator end() const noexcept { return m_infos.end(); }

private:
    std::vector<CDeviceInfo> m_infos;
};
using DeviceInfoList_t = DeviceInfoList;

/// A device that was made by the factory, which keeps it until it is destroyed there.
class IPylonDevice {
public:
    IPylonDevice() = default;
    IPylonDevice(const IPylonDevice&) = delete;
    IPylonDevice& operator=(const IPylonDevice&) = delete;
    virtual ~IPylonDevice() = default;
    virtual const CDeviceInfo& GetDeviceInfo() const = 0;
};

/// The way to the bus. Any thread.
class CTlFactory {
public:
    /// Throws when the library is not initialised.
    static CTlFactory& GetInstance();

    /// Lists the devices on the bus that match one entry of `filter` (all of them when it is empty) and
    /// returns how many they are. Without a virtual instrument there are none. May block for some seconds
    /// when the instrument does not answer.
    int EnumerateDevices(DeviceInfoList_t& list, const DeviceInfoList_t& filter, bool addToList = false);
    int EnumerateDevices(DeviceInfoList_t& list, bool addToList = false);

    /// Throws when there is no such device.
    IPylonDevice* CreateFirstDevice(const CDeviceInfo& info = CDeviceInfo());

    void DestroyDevice(IPylonDevice* device);

private:
    CTlFactory() = default;
};

} // namespace Pylon
