// SPDX-License-Identifier: MIT
#pragma once

#include "EmulatedCameras.h"
#include "LibraryCamera.h"

#include <gtest/gtest.h>

#include <memory>

namespace KernelTest
{

/// An ordinary emulated camera for all tests of a suite, and the library's camera on it.
class OrdinaryCamera : public testing::Test
{
public:
    static void SetUpTestSuite()
    {
        shared = std::make_unique<EmulatedCameras>(EmulatedCameras::Texts{"ordinary"});
    }
    static void TearDownTestSuite() { shared.reset(); }

protected:
    void SetUp() override { ASSERT_NE(m_camera, nullptr); }

    static inline std::unique_ptr<EmulatedCameras> shared;
    EmulatedCameras const& m_cameras = *shared;
    std::string const m_node = m_cameras.videoNode();
    CameraPointer m_camera = openListed(m_node);
};

/// The same with an emulated camera for each test, whose values are those that it begins with.
class FreshOrdinaryCamera : public testing::Test
{
protected:
    void SetUp() override { ASSERT_NE(m_camera, nullptr); }

    EmulatedCameras const m_cameras{{"ordinary"}};
    std::string const m_node = m_cameras.videoNode();
    CameraPointer m_camera = openListed(m_node);
};

} // namespace KernelTest
