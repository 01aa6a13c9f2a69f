// SPDX-License-Identifier: MIT
#pragma once

#include <IBlockingCamera.h>
#include <IDevice.h>
#include <IDeviceList.h>
#include <IFrame.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KernelTest
{

using CameraPointer = std::unique_ptr<ImageAcquisition::IBlockingCamera>;
using ListPointer = std::unique_ptr<ImageAcquisition::IDeviceList>;
using Bytes = std::vector<std::uint8_t>;

ListPointer listDevices();

/// A list's record of a node; null when it has none.
ImageAcquisition::IDevice const* recordOf(ImageAcquisition::IDeviceList const& list,
                                          std::string const& node);

/// The camera that a fresh list has at a node; null when the list lacks it or it does not open.
CameraPointer openListed(std::string const& node);

Bytes bytesOf(ImageAcquisition::IFrame const& frame);

/// All bytes of a file; none when it cannot be read.
Bytes fileBytes(std::string const& name);

/// Seconds of the clock that stamps frames.
double stampSeconds(ImageAcquisition::IFrame const& frame);

/// A capture that is stopped and cleaned up at the end; throws std::runtime_error when it does not
/// start.
class Stream
{
public:
    Stream(ImageAcquisition::IBlockingCamera& camera, int bufferCount);
    ~Stream();
    Stream(Stream const&) = delete;
    Stream& operator=(Stream const&) = delete;

    /// Takes frames without giving any back, until none comes.
    std::vector<ImageAcquisition::IFrame*> takeAll() const;

private:
    ImageAcquisition::IBlockingCamera& m_camera;
};

} // namespace KernelTest
