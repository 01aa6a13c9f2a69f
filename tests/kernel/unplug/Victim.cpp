// SPDX-License-Identifier: MIT
#include "Victim.h"

#include "Shell.h"

#include <ICameraControl.h>
#include <ICameraControlNumeric.h>
#include <ICameraFactory.h>

#include <gtest/gtest.h>

#include <stdexcept>

using namespace ImageAcquisition;

namespace KernelTest
{

Victim::Victim(std::string const& model) : m_device({model}) {}

void Victim::open()
{
    m_camera = openListed(m_device.videoNode());
    if (!m_camera || !m_camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30)) {
        throw std::runtime_error("the camera does not open");
    }
    Stream const stream(*m_camera, 4);
    IFrame* const frame = m_camera->acquireFrame();
    EXPECT_EQ(frame->bytesUsed(), 160U * 120 * 2);
    EXPECT_EQ(m_camera->releaseFrame(frame), 0);
}

void Victim::startCapture(int bufferCount)
{
    ASSERT_EQ(m_camera->setup(bufferCount), 0);
    ASSERT_EQ(m_camera->startCapture(), 0);
}

CameraPointer Victim::openFromStaleList()
{
    ListPointer const list = listDevices();
    IDevice const* const record = recordOf(*list, m_device.videoNode());
    if (record == nullptr) {
        throw std::runtime_error("the camera is not listed");
    }
    close();
    m_device.command("unplug");
    EXPECT_TRUE(m_device.waitUntilGone());
    double const begin = monotonicSeconds();
    CameraPointer camera(ICameraFactory::getUniqueInstance().createBlockingCamera(record));
    EXPECT_LT(monotonicSeconds() - begin, patience);
    return camera;
}

void Victim::expectDead(bool isStreaming)
{
    double const begin = monotonicSeconds();
    // Nothing is streaming for a camera that never started, which libv4l2 calls a success.
    EXPECT_EQ(m_camera->stopCapture(), isStreaming ? -1 : 0);
    EXPECT_EQ(m_camera->cleanup(), 0);
    EXPECT_EQ(m_camera->setup(4), -1);
    EXPECT_TRUE(m_camera->acquireFrame()->isInvalid());
    EXPECT_EQ(m_camera->cleanup(), 0);
    EXPECT_FALSE(m_camera->setCurrentImageFormat("YUYV", 320, 240, 1, 30));
    EXPECT_LT(monotonicSeconds() - begin, patience);
    // A node that is closed in the very moment in which uvcvideo gives its device up can bring this
    // kernel down, in ida_free below v4l2_device_release.
    EXPECT_TRUE(m_device.waitUntilGone());
    m_camera.reset();
}

void Victim::replug()
{
    EXPECT_TRUE(m_device.waitUntilGone());
    m_device.plug();
}

} // namespace KernelTest
