// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

#include <linux/videodev2.h>

namespace ImageAcquisition
{

class Camera;

/// Makes the control object that fits a driver's control record. Has no state.
class CameraControlFactory
{
public:
    /// A new control, which the caller owns; null for records that are no control of ours, such as
    /// class headings.
    static ICameraControl* createControl(Camera& camera, v4l2_queryctrl const& qc);

    /// A new stand-in for controls that do not exist, which the caller owns.
    static ICameraControl* createInvalidControl(Camera& camera);
};

} // namespace ImageAcquisition
