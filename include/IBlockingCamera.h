// SPDX-License-Identifier: MIT
#pragma once

#include "ICamera.h"

namespace ImageAcquisition
{

class IFrame;

/**
 * @brief A camera whose frames are waited for.
 *
 * The order of calls: setup(), startCapture(), then acquireFrame() and releaseFrame() as often as
 * needed, stopCapture(), cleanup(); then again from setup(), or delete the camera. cleanup() must
 * have run before the camera is deleted. Calls out of order fail with the result that each names.
 *
 * A call that gives -1 or an invalid frame because a call of the system failed leaves that call's
 * errno, whatever was cleaned up after it. Where nothing failed (success, a time-out, a stop, a
 * refusal of the library's own) errno stays as it was: docs/behaviour.md, Why a call failed.
 *
 * Threads: the camera's thread, except releaseFrame() and stopCapture().
 */
class IMAGEACQUISITION_EXPORT IBlockingCamera : public virtual ICamera
{
public:
    ~IBlockingCamera() override;

    /**
     * @brief Prepares buffers for the format that is set now; so select the format first.
     *
     * Only a camera whose driver maps memory can be set up, as those of all USB cameras do. Where
     * frames would come by `read` or into user pointers, the result is always -1.
     * @param bufferCount how many frames may be in flight; the driver may grant more or fewer, of
     * which up to 1024 are used. A negative number is passed on to the driver, which then grants as
     * many as it can or refuses.
     * @return 0, or -1 when the camera has no way to transfer frames or only one of those two, or
     * the driver refused.
     */
    virtual int setup(int bufferCount) = 0;

    /// Starts streaming. 0, or -1 when the driver refused; setup() must have succeeded before.
    virtual int startCapture() = 0;

    /**
     * @brief Waits for the next frame, normally up to 2 seconds.
     * @return the frame, or an invalid frame when none came in time, capture was stopped, or the
     * driver failed. Never null. Give it back with releaseFrame(), invalid or not.
     */
    virtual IFrame* acquireFrame() = 0;

    /**
     * @brief Gives a frame back, so that the driver can fill its buffer again.
     * @return 0, also for an invalid frame; -1 when @p frame is null or not this camera's (0 where
     * frames would come by `read`), when the driver refused, or when the camera has no way to
     * transfer frames.
     *
     * Threads: any, also several at once with a frame each, while another is in acquireFrame() or
     * stopCapture(); but not during setup(), startCapture() and cleanup().
     */
    virtual int releaseFrame(IFrame* frame) = 0;

    /**
     * @brief Stops streaming; takes at least 10 ms.
     *
     * May be called from another thread to end an acquireFrame() that waits; that one returns a
     * frame if one has just been filled, or else an invalid one. Join the thread, and have all
     * frames given back or given up, before calling cleanup(). To stream again, call cleanup() and
     * setup() first.
     * @return 0, or -1 when the driver refused or there is nothing to stop.
     */
    virtual int stopCapture() = 0;

    /// Releases the buffers: all frames become invalid pointers. 0, or -1 when the camera has no
    /// way to transfer frames. May be called after a failed setup() and more than once.
    virtual int cleanup() = 0;
};

} // namespace ImageAcquisition
