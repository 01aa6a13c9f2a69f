// SPDX-License-Identifier: MIT
#pragma once

#include "DeviceStub.h"
#include "V4l2Hook.h"
#include "VirtualCamera.h"
#include "session/Camera.h"

/// A virtual camera, and the session's camera that is opened on it.
struct OpenedCamera
{
    explicit OpenedCamera(VirtualCamera::CameraBuilder const& builder,
                          DeviceStub const& record = DeviceStub())
        : video(builder.install()),
          camera(ImageAcquisition::Session::Camera::open(ImageAcquisition::Session::Found(record)))
    {
    }

    VirtualCamera::InstalledCamera video;
    ImageAcquisition::Session::Camera camera;
};
