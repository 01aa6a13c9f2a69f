// SPDX-License-Identifier: MIT
#pragma once

#include "UsbEndpointZero.h"

#include <umockdev.h>

namespace VirtualCamera
{

/// Serves the ioctls of one /dev/bus/usb node, through which libusb reaches the device.
class UsbdevfsNode
{
public:
    UsbdevfsNode(UMockdevTestbed* testbed, std::string node,
                 std::shared_ptr<UsbEndpointZero> endpoint);
    ~UsbdevfsNode();
    UsbdevfsNode(UsbdevfsNode const&) = delete;
    UsbdevfsNode& operator=(UsbdevfsNode const&) = delete;

private:
    class Server;

    UMockdevTestbed* m_testbed;
    std::string m_node;
    UMockdevIoctlBase* m_handler;
};

} // namespace VirtualCamera
