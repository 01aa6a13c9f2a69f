// SPDX-License-Identifier: MIT
#pragma once

#include "UsbSpeed.h"

struct udev;

namespace ImageAcquisition
{

class Device;
class DeviceList;
class IDevice;

/// Finds the video-capture nodes of the machine and describes each from what its driver, udev and
/// libusb know. Has no state.
class DeviceEnumerator
{
public:
    /// Clears the list and fills it from /dev/video0 to /dev/video64.
    static void fillDeviceList(DeviceList* list);

    /// Describes the node of this short name; null when it is absent or does not capture.
    static IDevice* createDevice(char const* nodeName);

    static IDevice* createDevice(int index, char const* nodePath, char const* sysPath,
                                 udev* context);

    /// Fills USB revision and link speed.
    /// @throws std::invalid_argument or std::out_of_range when the device has no proper USB ids.
    static void getUsbDescriptor(Device* device);

    /// Fills the firmware revision; only the vendor's cameras know the request.
    static void getFirmwareRevision(Device* device);

    static UsbSpeed convertSpeed(int libusbSpeed);
};

} // namespace ImageAcquisition
