// SPDX-License-Identifier: MIT
#pragma once

#include "EmulatedCameras.h"
#include "LibraryCamera.h"
#include "RemainsCheck.h"

#include <gtest/gtest.h>

#include <string>

namespace KernelTest
{

/// Within this time, in seconds, every call on a camera that is unplugged has to return.
constexpr double patience = 2.5;

/// One emulated camera that is unplugged and plugged in again, and the library's camera on it.
class Victim
{
public:
    explicit Victim(std::string const& model);

    /// Opens the camera from a new list, selects 160x120 and sees that a frame comes.
    void open();
    void close() { m_camera.reset(); }
    /// setup() and startCapture(), with so many buffers.
    void startCapture(int bufferCount);
    /// Closes the library's camera, and opens one from a list that was made before the unplugging.
    CameraPointer openFromStaleList();
    /// What a camera that is gone answers, then the end of the library's camera.
    void expectDead(bool isStreaming);
    /// Plugs it in again once the kernel has taken note.
    void replug();

    /// Runs a round as often as is asked for, each on a camera that a new list has, and looks for
    /// what it left behind. Ends with the camera open.
    template <typename Round>
    void repeat(int rounds, Round round)
    {
        // The first opening sets up some things of the process once.
        open();
        for (int i = 0; i < rounds && !testing::Test::HasFailure(); ++i) {
            SCOPED_TRACE(i);
            close();
            RemainsCheck const remains;
            open();
            round();
            replug();
        }
        open();
    }

    ImageAcquisition::IBlockingCamera& camera() { return *m_camera; }
    EmulatedCameras const& device() const { return m_device; }

private:
    EmulatedCameras m_device;
    CameraPointer m_camera;
};

} // namespace KernelTest
