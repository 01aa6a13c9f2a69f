// SPDX-License-Identifier: MIT
#pragma once

#include "EmulatedCameras.h"
#include "LibraryCamera.h"

#include <string>
#include <vector>

namespace KernelTest
{

/// Within this time, in seconds, every call on a camera that is unplugged has to return.
constexpr double patience = 2.5;

/// One emulated camera that is unplugged and plugged in again, and the library's camera on it.
class Victim
{
public:
    explicit Victim(const std::string& model);

    /// Opens the camera from a new list, selects 160x120 and sees that a frame comes.
    void open();
    /// setup() and startCapture(), with so many buffers.
    void close() { _camera.reset(); }
    void startCapture(int bufferCount);
    /// What a camera that is gone answers, then the end of the library's camera.
    void expectDead(bool isStreaming);
    /// Plugs it in again once the kernel has taken note.
    void replug();

    ImageAcquisition::IBlockingCamera& camera() { return *_camera; }
    const EmulatedCameras& device() const { return _device; }

private:
    EmulatedCameras _device;
    CameraPointer _camera;
};

/// At its end the process must have as many descriptors open, threads and children as at its
/// beginning.
class RemainsCheck
{
public:
    RemainsCheck();
    ~RemainsCheck();
    RemainsCheck(const RemainsCheck&) = delete;
    RemainsCheck& operator=(const RemainsCheck&) = delete;

private:
    std::vector<std::string> _descriptors;
    int _threads;
    int _children;
};

} // namespace KernelTest
