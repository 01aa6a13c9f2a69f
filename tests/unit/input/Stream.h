// SPDX-License-Identifier: MIT
#pragma once

#include "DescriptorLimit.h"
#include "OpenNode.h"
#include "SmallCamera.h"
#include "input/InputMethodMemoryMapping.h"
#include "input/InputMethodUserPointers.h"

#include <gtest/gtest.h>

#include <optional>
#include <type_traits>

template <typename Method>
constexpr bool isMapped = std::is_same_v<Method, ImageAcquisition::InputMethodMemoryMapping>;

/// A camera that offers the method; for user pointers it offers no mapping.
template <typename Method>
VirtualCamera::CameraBuilder cameraFor()
{
    return isMapped<Method> ? smallCamera()
                            : smallCamera().offeringMmap(false).offeringUserPointers();
}

/// Sets a method up; that of user pointers only gets ready where no pipe can be made.
template <typename Method>
int setUp(Method& method, int buffers)
{
    std::optional<DescriptorLimit> none;
    if (!isMapped<Method>) {
        none.emplace();
    }
    return method.setup(buffers, smallImageSize);
}

/// A camera with a method that streams from it.
template <typename Method>
class Stream
{
public:
    explicit Stream(VirtualCamera::CameraBuilder const& builder, int buffers = 3)
        : camera(builder.install()), method(node.fd())
    {
        m_setUp = setUp(method, buffers) == 0 && method.startCapture() == 0;
    }
    Stream(Stream const&) = delete;
    Stream& operator=(Stream const&) = delete;
    ~Stream()
    {
        EXPECT_TRUE(m_setUp);
        if (!isMapped<Method>) {
            method.stopCapture();
        }
        method.cleanup();
        EXPECT_EQ(camera.accounting().liveMappings, 0);
        if (!isMapped<Method>) {
            EXPECT_EQ(camera.accounting().allocatedBuffers, 0);
        }
    }

    VirtualCamera::InstalledCamera camera;
    OpenNode const node;
    Method method;

private:
    bool m_setUp = false;
};
