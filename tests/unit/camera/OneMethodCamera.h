// SPDX-License-Identifier: MIT
#pragma once

#include "DescriptorLimit.h"
#include "DeviceStub.h"
#include "ICameraControlNumeric.h"
#include "IFrame.h"
#include "VirtualCamera.h"
#include "camera/Camera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

// What no call of a camera fails with, and what only a scripted one does.
constexpr int earlierErrno = ENOTBLK;
constexpr int scriptedErrno = ELIBBAD;

/// A camera that offers the method, and of the better ones none.
inline VirtualCamera::CameraBuilder cameraFor(ImageAcquisition::InputMethod::Type method)
{
    return VirtualCamera::aCamera()
        .withFormat("YUYV")
        .withSize(64, 48)
        .withInterval(1, 30)
        .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
        .paced(VirtualCamera::Pace::Immediate)
        .offeringMmap(method == ImageAcquisition::InputMethod::MemoryMapping)
        .offeringUserPointers(method == ImageAcquisition::InputMethod::UserPointers);
}

/// What a call answered, and the errno that it left behind.
struct Outcome
{
    bool good;
    int error;
};

template <typename Action>
Outcome outcomeOf(Action const& action)
{
    errno = earlierErrno;
    bool const good = action();
    return {good, errno};
}

/// An opened camera of one input method.
struct OneMethodCamera
{
    explicit OneMethodCamera(ImageAcquisition::InputMethod::Type inputMethod)
        : OneMethodCamera(cameraFor(inputMethod))
    {
    }
    explicit OneMethodCamera(VirtualCamera::CameraBuilder const& builder) : node(builder.install())
    {
        if (!camera.init()) {
            throw std::runtime_error("the camera could not be initialised");
        }
        node.clearLog();
    }
    OneMethodCamera(OneMethodCamera const&) = delete;
    OneMethodCamera& operator=(OneMethodCamera const&) = delete;
    ~OneMethodCamera()
    {
        // The read method gives its frames away.
        if (method() == ImageAcquisition::InputMethod::Read && frame != nullptr) {
            camera.releaseFrame(frame);
        }
    }

    ImageAcquisition::InputMethod::Type method() const { return camera.inputMethod()->type(); }

    /// Two methods only get ready where no pipe can be made.
    bool setup(int buffers = 2)
    {
        std::optional<DescriptorLimit> none;
        if (method() != ImageAcquisition::InputMethod::MemoryMapping) {
            none.emplace();
        }
        return camera.setup(buffers) == 0;
    }
    bool acquire() { return !(frame = camera.acquireFrame())->isInvalid(); }
    bool release() { return camera.releaseFrame(std::exchange(frame, nullptr)) == 0; }
    ImageAcquisition::ICameraControlNumeric<int>& gain()
    {
        return dynamic_cast<ImageAcquisition::ICameraControlNumeric<int>&>(*camera.gainControl());
    }

    VirtualCamera::InstalledCamera node;
    ImageAcquisition::Camera camera{std::make_unique<DeviceStub>().get()};
    ImageAcquisition::IFrame* frame = nullptr;
};

/// For INSTANTIATE_TEST_SUITE_P.
inline std::string
nameOfMethod(testing::TestParamInfo<ImageAcquisition::InputMethod::Type> const& info)
{
    static char const* const names[] = {"Read", "MemoryMapping", "UserPointers"};
    return names[info.param];
}
