// SPDX-License-Identifier: MIT
#pragma once

#include <IBlockingCamera.h>
#include <IFrame.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KernelTest
{

using CameraPointer = std::unique_ptr<ImageAcquisition::IBlockingCamera>;
using Bytes = std::vector<std::uint8_t>;

constexpr const char* firstNode = "/dev/video0";
constexpr const char* secondNode = "/dev/video1";

/// A camera made by the factory from a record of the test's own, since nothing of USB stands behind
/// a vivid node, which the library's own records ask for.
CameraPointer openCamera(const std::string& node = firstNode);

/// vivid's picture without movement and text, so that all frames are alike, and frames stamped when
/// they begin: stamps of their end lie nine tenths of an interval in the future.
void showStillPicture(const std::string& node = firstNode);

/// 320x180 at 25 frames a second in a format.
bool selectSmall(ImageAcquisition::IBlockingCamera& camera, const char* format = "YUYV");

/// Bytes of such a frame with two bytes a pixel.
constexpr unsigned smallSize = 320 * 180 * 2;

Bytes bytesOf(const ImageAcquisition::IFrame& frame);

/// Frames that `v4l2-ctl --stream-mmap --stream-to` writes in the format that is set.
Bytes capturedByV4l2Ctl(const std::string& node, unsigned count = 1);

/// Seconds of the clock that stamps frames.
double monotonicSeconds();
double stampSeconds(const ImageAcquisition::IFrame& frame);

/// A capture that is stopped and cleaned up at the end; throws std::runtime_error when it does not
/// start.
class Stream
{
public:
    Stream(ImageAcquisition::IBlockingCamera& camera, int bufferCount);
    ~Stream();
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// Takes frames without giving any back, until none comes.
    std::vector<ImageAcquisition::IFrame*> takeAll() const;

private:
    ImageAcquisition::IBlockingCamera& _camera;
};

} // namespace KernelTest
