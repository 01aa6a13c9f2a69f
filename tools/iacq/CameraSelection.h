// SPDX-License-Identifier: MIT
#pragma once

#include <IBlockingCamera.h>
#include <IDevice.h>
#include <IDeviceList.h>

#include <memory>
#include <string>

namespace Iacq
{

using DeviceListPtr = std::unique_ptr<ImageAcquisition::IDeviceList>;
using CameraPtr = std::unique_ptr<ImageAcquisition::IBlockingCamera>;

/// All cameras.
/// @throws Failure that names the node when one of them has no USB device behind it.
DeviceListPtr listDevices();

/// A record, and the list that owns it if it came out of one.
class SelectedDevice
{
public:
    explicit SelectedDevice(std::unique_ptr<ImageAcquisition::IDevice> device)
        : m_own(std::move(device)), m_device(m_own.get())
    {
    }
    SelectedDevice(DeviceListPtr list, ImageAcquisition::IDevice const* device)
        : m_list(std::move(list)), m_device(device)
    {
    }

    ImageAcquisition::IDevice const& operator*() const { return *m_device; }
    ImageAcquisition::IDevice const* operator->() const { return m_device; }

private:
    DeviceListPtr m_list;
    std::unique_ptr<ImageAcquisition::IDevice> m_own;
    ImageAcquisition::IDevice const* m_device;
};

/// The short name of a node given as video0 or /dev/video0; empty for other texts.
std::string nodeName(std::string const& camera);

/// Chooses among the cameras of a list: by position, or by serial number. Null when none fits.
/// @throws Failure when a serial number fits several.
ImageAcquisition::IDevice const* chooseDevice(ImageAcquisition::IDeviceList const& list,
                                              std::string const& camera);

/// The camera that the user means.
/// @throws Failure when there is none, or several.
SelectedDevice selectDevice(std::string const& camera);

/// Opens the camera that the user means; shows progress on a terminal while it takes long.
/// @throws Failure when it cannot be opened.
CameraPtr openCamera(std::string const& camera);

} // namespace Iacq
