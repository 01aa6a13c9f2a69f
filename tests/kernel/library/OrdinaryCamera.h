// SPDX-License-Identifier: MIT
#pragma once

#include "EmulatedCameras.h"
#include "LibraryCamera.h"

#include <gtest/gtest.h>

namespace KernelTest
{

/// An ordinary emulated camera and the library's on it.
class OrdinaryCamera : public testing::Test
{
protected:
    void SetUp() override { ASSERT_NE(camera, nullptr); }

    EmulatedCameras cameras{{"ordinary"}};
    std::string node = cameras.videoNode();
    CameraPointer camera = openListed(node);
};

} // namespace KernelTest
