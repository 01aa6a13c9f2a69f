// SPDX-License-Identifier: MIT
#pragma once

#include "Failure.h"
#include "LossCount.h"

#include <IBlockingCamera.h>

#include <functional>
#include <string>

namespace Iacq
{

/// A stream of frames, stopped and cleaned up when it goes. Of the camera's thread only.
class CaptureStream
{
public:
    /// @param losses learns of what the driver loses.
    /// @throws Failure when the camera does not stream.
    CaptureStream(ImageAcquisition::IBlockingCamera& camera, int buffers, LossCount& losses);
    ~CaptureStream();
    CaptureStream(CaptureStream const&) = delete;
    CaptureStream& operator=(CaptureStream const&) = delete;

    /// Waits for the next good frame and lends it: it goes back to the camera when @p use returns.
    /// @throws Failure when none comes.
    void nextFrame(std::function<void(ImageAcquisition::IFrame const&)> const& use);

private:
    /// Returns 0, or the driver's reason not to.
    int stop();
    [[noreturn]] void failWithoutFrame();

    ImageAcquisition::IBlockingCamera& m_camera;
    LossCount& m_losses;
    bool m_streaming = false;
};

/// Tells what the camera would not do, or that it is gone, where that is why.
[[noreturn]] void failWithCamera(ImageAcquisition::IBlockingCamera const& camera, ExitStatus status,
                                 std::string const& message);

} // namespace Iacq
