// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"
#include "InstalledCamera.h"

namespace VirtualCamera
{

/// Builds a camera in the order of a sentence; sizes belong to the format named last, intervals to
/// the size named last. Without any `withFormat` the camera offers no format at all.
class VIRTUALCAMERA_EXPORT CameraBuilder
{
public:
    explicit CameraBuilder(std::string node);
    explicit CameraBuilder(CameraScript script);

    CameraBuilder& named(std::string card);
    CameraBuilder& withDriver(std::string driver, std::uint32_t version = 0x060100);
    CameraBuilder& withBusInfo(std::string busInfo);
    /// V4L2_CAP_...: `capabilities` and `device_caps` of VIDIOC_QUERYCAP, word for word.
    CameraBuilder& withCapabilities(std::uint32_t capabilities, std::uint32_t deviceCapabilities);

    CameraBuilder& withFormat(std::string const& pixelFormat, std::string description = {},
                              std::uint32_t flags = 0);
    CameraBuilder& withSize(std::uint32_t width, std::uint32_t height);
    CameraBuilder& withSteppedSizes(SizeRangeScript const& range);
    CameraBuilder& withContinuousSizes(std::uint32_t minimumWidth, std::uint32_t maximumWidth,
                                       std::uint32_t minimumHeight, std::uint32_t maximumHeight);
    CameraBuilder& withInterval(std::uint32_t numerator, std::uint32_t denominator);
    CameraBuilder& withSteppedIntervals(Interval minimum, Interval maximum, Interval step);
    CameraBuilder& withContinuousIntervals(Interval minimum, Interval maximum);
    /// The format's `bytesperline` and `sizeimage`, 0 for the usual ones.
    CameraBuilder& withImageLayout(std::uint32_t bytesPerLine, std::uint32_t sizeImage);
    /// Delivered for the format instead of the test pattern.
    CameraBuilder& withFrameBytes(std::vector<std::uint8_t> bytes);
    /// The selection that an earlier program left behind; it may be one that is not offered.
    CameraBuilder& currently(std::string const& pixelFormat, std::uint32_t width,
                             std::uint32_t height);
    CameraBuilder& currentlyEvery(std::uint32_t numerator, std::uint32_t denominator);

    CameraBuilder& withControl(ControlScript control);
    /// Adds the heading of each control class that has a control so far.
    CameraBuilder& withClassHeadings();
    CameraBuilder& withExtensionUnit(Guid const& guid, std::vector<SelectorScript> selectors);
    CameraBuilder& withoutNextControl();
    CameraBuilder& withStuckControlEnumerationAt(std::uint32_t controlId);
    CameraBuilder& withPlainPrivateControls(bool plain = true);

    CameraBuilder& offeringMmap(bool offered = true);
    CameraBuilder& offeringUserPointers(bool offered = true);
    CameraBuilder& offeringRead(bool offered = true);
    CameraBuilder& grantingAtMost(std::uint32_t buffers);
    CameraBuilder& grantingAtLeast(std::uint32_t buffers);

    CameraBuilder& paced(Pace pace);
    CameraBuilder& withStillPattern();
    /// Fails on its nth use only; `failingFrom`: on each use from the nth.
    CameraBuilder& failing(CallId call, int error, unsigned nthUse = 1);
    CameraBuilder& failingFrom(CallId call, int error, unsigned nthUse = 1);
    CameraBuilder& withFrameFault(FrameFault const& fault);
    CameraBuilder& withLateFrame(std::uint32_t frame, std::uint32_t milliseconds);
    CameraBuilder& withCorruptedFrame(std::uint32_t frame);
    CameraBuilder& withShortFrame(std::uint32_t frame, std::uint32_t bytesUsed);
    CameraBuilder& withOverstatedFrame(std::uint32_t frame, std::uint32_t claimedBytes);
    CameraBuilder& withMissingFrame(std::uint32_t frame);
    CameraBuilder& withoutFrames(std::uint32_t fromFrame = 0);
    CameraBuilder& withWrongIndex(std::uint32_t frame, std::uint32_t index);
    CameraBuilder& withWrongUserPointer(std::uint32_t frame, std::uintptr_t userPointer);
    CameraBuilder& withWrongLength(std::uint32_t frame, std::uint32_t length);
    CameraBuilder& vanishingAtFrame(std::uint32_t frame);
    CameraBuilder& withoutCallLog();

    CameraScript const& script() const { return m_script; }
    /// Plugs the camera in for this process; it stays until the result is destroyed. A camera that
    /// is already there under the same node is replaced.
    [[nodiscard]] InstalledCamera install() const;

private:
    FormatScript& format();
    IntervalScript& intervals();

    CameraScript m_script;
};

VIRTUALCAMERA_EXPORT CameraBuilder aCamera(std::string node = "/dev/video0");

} // namespace VirtualCamera
