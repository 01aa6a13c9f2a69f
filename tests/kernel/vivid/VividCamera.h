// SPDX-License-Identifier: MIT
#pragma once

#include "LibraryCamera.h"

#include <string>

namespace KernelTest
{

constexpr char const* firstNode = "/dev/video0";
constexpr char const* secondNode = "/dev/video1";

/// A camera made by the factory from a record of the test's own, since nothing of USB stands behind
/// a vivid node, which the library's own records ask for.
CameraPointer openCamera(std::string const& node = firstNode);

/// vivid's picture without movement and text, so that all frames are alike, and frames stamped when
/// they begin: stamps of their end lie nine tenths of an interval in the future.
void showStillPicture(std::string const& node = firstNode);

/// 320x180 at 25 frames a second in a format.
bool selectSmall(ImageAcquisition::IBlockingCamera& camera, char const* format = "YUYV");

/// Bytes of such a frame with two bytes a pixel.
constexpr unsigned smallSize = 320 * 180 * 2;

/// Frames that `v4l2-ctl --stream-mmap --stream-to` writes in the format that is set.
Bytes capturedByV4l2Ctl(std::string const& node, unsigned count = 1);

} // namespace KernelTest
