// SPDX-License-Identifier: MIT
#pragma once

#include "ControlScript.h"
#include "ExtensionUnitScript.h"
#include "FaultScript.h"
#include "FormatScript.h"

#include <optional>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// When the next frame is due.
enum class Pace : std::uint8_t {
    Interval,  ///< One frame per frame interval, as a camera.
    Immediate, ///< As soon as a buffer is queued: for tests that count frames, not time.
    OnDemand   ///< When `InstalledCamera::deliverFrames` says so.
};

/// Everything that makes up a virtual camera. Filled by `CameraBuilder` or from JSON.
struct CameraScript
{
    std::string node = "/dev/video0";
    std::string card = "Virtual Camera";
    std::string driver = "uvcvideo";
    std::string busInfo = "usb-virtual-1";
    std::uint32_t driverVersion = 0x060100;
    std::optional<std::uint32_t> capabilities;       ///< Absent: from the memory kinds below.
    std::optional<std::uint32_t> deviceCapabilities; ///< Absent: the same.

    std::vector<FormatScript> formats;
    std::uint32_t currentPixelFormat = 0; ///< 0: the first format.
    std::uint32_t currentWidth = 0;       ///< 0: the format's first size.
    std::uint32_t currentHeight = 0;
    std::optional<Interval> currentInterval; ///< Absent: the size's first interval.

    std::vector<ControlScript> controls;
    std::optional<ExtensionUnitScript> extensionUnit;
    bool nextControlSupported = true;            ///< False: V4L2_CTRL_FLAG_NEXT_CTRL is EINVAL.
    std::optional<std::uint32_t> stuckControlId; ///< The control after this one is itself again.
    bool privateControlsPlain = false; ///< True: G_CTRL and S_CTRL reach private controls.

    bool mmapOffered = true;
    bool userPointersOffered = false;
    bool readOffered = true;
    std::optional<std::uint32_t> mostBuffers; ///< Grants no more than so many (0 included).
    std::uint32_t fewestBuffers = 0;          ///< Grants no fewer than so many.

    Pace pace = Pace::Interval;
    bool stillPattern = false; ///< True: the test pattern neither moves nor counts.
    std::vector<Fault> faults;
    std::vector<FrameFault> frameFaults;
    std::optional<std::uint32_t> vanishingFrame; ///< The device is gone when this frame is due.
    /// When not empty: the camera is there as long as this file is. It is looked for at each call,
    /// so that another process can unplug the camera.
    std::string presenceFile;
    bool callsLogged = true; ///< False: calls are counted but not recorded.
};

} // namespace VirtualCamera
