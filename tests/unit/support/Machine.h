// SPDX-License-Identifier: MIT
#pragma once

#include "Testbed.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

/// A simulated machine whose video nodes are virtual cameras.
class Machine
{
public:
    VirtualCamera::UsbDevice plug(VirtualCamera::UsbDeviceScript const& script)
    {
        return testbed.plug(script);
    }

    /// Adds the node of a camera below a USB device.
    VirtualCamera::InstalledCamera& add(int number, VirtualCamera::UsbDevice const& parent)
    {
        return add(number, parent, VirtualCamera::aCamera(nodeOf(number)));
    }
    VirtualCamera::InstalledCamera& add(int number, VirtualCamera::UsbDevice const& parent,
                                        VirtualCamera::CameraBuilder const& builder)
    {
        testbed.addVideoNode("video" + std::to_string(number), parent);
        return m_cameras.emplace_back(builder.install());
    }
    /// Adds the node of a camera that is no USB device.
    VirtualCamera::InstalledCamera& addWithoutUsb(int number)
    {
        testbed.addVideoNode("video" + std::to_string(number));
        return m_cameras.emplace_back(VirtualCamera::aCamera(nodeOf(number)).install());
    }

    static std::string nodeOf(int number) { return "/dev/video" + std::to_string(number); }

    VirtualCamera::Testbed testbed;

private:
    std::list<VirtualCamera::InstalledCamera> m_cameras;
};

/// One of the vendor's cameras.
inline VirtualCamera::UsbDeviceScript vendorUsbDevice(std::string const& port = "1-1")
{
    return VirtualCamera::aUsbDevice(port).withIds(IMAGEACQUISITION_VENDOR_ID,
                                                   IMAGEACQUISITION_PRODUCT_ID);
}

/// The device has had one request in all: the vendor's, which asks for so many bytes.
inline void expectOneRequest(VirtualCamera::UsbDevice const& device, int number, int length)
{
    auto const requests = device.requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].requestType, 0xC0);
    EXPECT_EQ(requests[0].request, number);
    EXPECT_EQ(requests[0].value, 0);
    EXPECT_EQ(requests[0].index, 0);
    EXPECT_EQ(requests[0].length, length);
}
