// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"
#include "Machine.h"
#include "SmallCamera.h"
#include "session/Camera.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

using namespace std::chrono_literals;

/// A simulated machine with one camera, which has a serial number, and is plugged in and out.
class StreamedCamera
{
public:
    explicit StreamedCamera(VirtualCamera::CameraBuilder builder = smallCamera(),
                            VirtualCamera::UsbDeviceScript usb = numbered())
        : m_builder(std::move(builder)), m_usb(std::move(usb))
    {
        plug();
    }

    static VirtualCamera::UsbDeviceScript numbered()
    {
        return VirtualCamera::aUsbDevice("1-2").withIds("046d", "0825").withSerial("VC1001");
    }
    /// One that delivers what deliverFrames() says.
    static VirtualCamera::CameraBuilder onDemand()
    {
        return smallCamera().paced(VirtualCamera::Pace::OnDemand);
    }

    ImageAcquisition::Session::Camera open() const
    {
        return ImageAcquisition::Session::Camera::open("/dev/video0");
    }

    void plug()
    {
        m_device = m_machine.plug(m_usb);
        m_camera.emplace(m_builder.install());
        m_machine.addVideoNode("video0", *m_device);
    }
    /// As a kernel does it: the driver first, then the node.
    void unplug()
    {
        m_camera->unplug();
        m_machine.unplug(*m_device);
    }

    VirtualCamera::InstalledCamera& operator*() { return *m_camera; }
    VirtualCamera::InstalledCamera* operator->() { return &*m_camera; }
    VirtualCamera::Testbed& machine() { return m_machine; }

    /// The next time that it is plugged in, it is another.
    void become(VirtualCamera::CameraBuilder builder, VirtualCamera::UsbDeviceScript usb)
    {
        m_builder = std::move(builder);
        m_usb = std::move(usb);
    }

private:
    VirtualCamera::Testbed m_machine;
    VirtualCamera::CameraBuilder m_builder;
    VirtualCamera::UsbDeviceScript m_usb;
    std::optional<VirtualCamera::UsbDevice> m_device;
    std::optional<VirtualCamera::InstalledCamera> m_camera;
};
