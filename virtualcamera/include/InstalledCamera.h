// SPDX-License-Identifier: MIT
#pragma once

#include "CallRecord.h"
#include "CameraScript.h"

#include <linux/uvcvideo.h>
#include <memory>

namespace VirtualCamera
{

class CameraDriver;

/// What a client holds of a camera at present, and what it held in total.
struct Accounting
{
    int openDescriptors = 0;
    int liveMappings = 0;
    int allocatedBuffers = 0;
    int queuedBuffers = 0; ///< In the driver's hands, filled ones that wait included.
    bool streaming = false;
    unsigned totalOpens = 0;
    unsigned totalMappings = 0;
    unsigned totalFrames = 0;   ///< Handed out by VIDIOC_DQBUF or read.
    unsigned droppedFrames = 0; ///< Lost for lack of a queued buffer.

    /// True when nothing is held any more.
    bool nothingHeld() const
    {
        return openDescriptors == 0 && liveMappings == 0 && allocatedBuffers == 0 && !streaming;
    }
};

/// A UVCIOC_CTRL_MAP call, with the menu that its `menu_info` pointed to.
struct ControlMapping
{
    uvc_xu_control_mapping mapping{}; ///< `menu_info` is null here.
    std::vector<uvc_menu_info> menu;
    int error = 0; ///< 0 when it was accepted.
};

/// A camera that is plugged in. Movable; unplugs the camera when destroyed. Every member may be
/// called from any thread, also while another one waits for a frame.
class VIRTUALCAMERA_EXPORT InstalledCamera
{
public:
    explicit InstalledCamera(std::shared_ptr<CameraDriver> device);
    InstalledCamera(InstalledCamera&&) noexcept;
    InstalledCamera& operator=(InstalledCamera&&) noexcept;
    ~InstalledCamera();

    std::string const& node() const;
    /// Takes the device away at once: waits end, and every call but close and munmap is ENODEV.
    void unplug();
    Accounting accounting() const;

    /// All recorded calls, or those that `call` covers, oldest first.
    std::vector<CallRecord> calls() const;
    std::vector<CallRecord> calls(CallId call) const;
    /// How often it was called, failures included, since installation or `clearLog`.
    unsigned countOf(CallId call) const;
    /// The value of the last control write, plain or extended, that a client attempted.
    std::optional<std::int64_t> lastControlValueSent() const;
    std::optional<std::int64_t> lastControlValueSent(std::uint32_t controlId) const;
    /// How many writes of the control a client attempted.
    unsigned controlWrites(std::uint32_t controlId) const;
    void clearLog();

    /// Fails as in `CameraBuilder`, uses counted from now on.
    void fail(CallId call, int error, unsigned nthUse = 1);
    void failFrom(CallId call, int error, unsigned nthUse = 1);
    void stopFailing();
    /// For `Pace::OnDemand`: frames arrive now; without a queued buffer they are lost.
    void deliverFrames(unsigned count = 1);

    /// State behind the client's back. Unknown ids throw `std::out_of_range`.
    std::int64_t controlValue(std::uint32_t controlId) const;
    std::string controlText(std::uint32_t controlId) const;
    std::uint32_t controlFlags(std::uint32_t controlId) const;
    void setControlValue(std::uint32_t controlId, std::int64_t value);
    void setControlText(std::uint32_t controlId, std::string const& text);
    void setControlFlags(std::uint32_t controlId, std::uint32_t flags);
    void setCurrentFormat(std::string const& pixelFormat, std::uint32_t width,
                          std::uint32_t height);
    void setCurrentInterval(std::uint32_t numerator, std::uint32_t denominator);

    std::vector<ControlMapping> mappings() const;
    /// The bytes of an extension unit's control, shared by all that are mapped onto it.
    std::vector<std::uint8_t> selectorBytes(std::uint8_t selector) const;
    void setSelectorBytes(std::uint8_t selector, std::vector<std::uint8_t> const& bytes);

private:
    std::shared_ptr<CameraDriver> m_device;
};

} // namespace VirtualCamera
