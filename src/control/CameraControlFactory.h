// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"
#include "system/VideoNode.h"

#include <linux/videodev2.h>

namespace ImageAcquisition
{

/// Makes the control object that fits a driver's control record. Has no state.
class CameraControlFactory
{
public:
    /// A new control, which the caller owns and the node must outlive; null for records that are no
    /// control of ours, such as class headings.
    static ICameraControl* createControl(NodeReference node, v4l2_queryctrl const& qc);

    /// A new stand-in for controls that do not exist, which the caller owns.
    static ICameraControl* createInvalidControl(NodeReference node);
};

} // namespace ImageAcquisition
