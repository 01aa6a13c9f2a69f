// SPDX-License-Identifier: MIT
#pragma once

#include "EmulatedCameras.h"
#include "FramePainter.h"
#include "JpegFrames.h"

#include <Session.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace ia = ImageAcquisition::Session;

namespace KernelTest
{

using namespace std::chrono_literals;

/// A stream with half a second's worth of buffers, so that the driver drops no frame on a busy
/// machine.
ia::StreamOptions unhurried(ia::Delivery delivery = ia::everyFrame);

/// The session's camera at an emulated one's node.
ia::Camera openEmulated(EmulatedCameras const& cameras, unsigned camera = 1);

/// The session's camera at a node of vivid, opened with a record of the test's own, since nothing
/// of USB stands behind it.
ia::Camera openVivid(std::string const& node);

/// vivid's node that captures video; empty when the module is not there.
std::string vividNode();

/// The pictures that the emulated camera sends, by their numbers.
class Pictures
{
public:
    explicit Pictures(ia::Selection const& selection);

    /// Whether a frame has every byte of the picture with its number, and no other.
    bool areIn(ia::Frame const& frame);

private:
    UsbCamera::FramePainter m_painter;
    std::optional<UsbCamera::JpegFrames> m_images; ///< Of a stream in this format only.
};

/// Takes frames until none comes within the time.
/// @return the numbers of those whose bytes are right.
std::vector<unsigned long long> takeAll(ia::Stream& stream, Pictures& pictures);

/// What v4l2-ctl says is selected, as Selection::text() writes it: "YUYV 640x480@30".
std::string selectedByV4l2Ctl(std::string const& node);

} // namespace KernelTest
