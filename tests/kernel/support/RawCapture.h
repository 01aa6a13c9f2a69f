// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <linux/videodev2.h>
#include <string>
#include <vector>

namespace KernelTest
{

/// A capture loop by hand, on plain system calls: what a library under test is compared with.
class RawCapture
{
public:
    struct Frame
    {
        int error = 0; ///< errno of the call that failed, ETIMEDOUT when no frame came
        std::uint32_t sequence = 0;
        bool isCorrupted = false;
        std::vector<std::uint8_t> bytes;
    };

    /// Opens the node, selects the format and starts to stream; throws std::system_error. The
    /// driver drops frames while no buffer is free: with half a second's worth of them no frame is
    /// lost to a busy machine.
    RawCapture(std::string const& node, std::uint32_t pixelFormat, unsigned width, unsigned height,
               unsigned framesPerSecond = 30, unsigned bufferCount = 16);
    ~RawCapture();
    RawCapture(RawCapture const&) = delete;
    RawCapture& operator=(RawCapture const&) = delete;

    /// Waits for a frame, copies it and gives its buffer back.
    Frame next(int timeoutMilliseconds = 20000);

private:
    struct Mapping
    {
        void* address;
        std::size_t size;
    };

    void call(unsigned long request, void* argument, char const* what) const;
    void setFormat(std::uint32_t pixelFormat, unsigned width, unsigned height) const;
    void setRate(unsigned framesPerSecond) const;
    void mapBuffers(unsigned count);
    void release();

    int m_descriptor;
    std::vector<Mapping> m_mappings;
};

} // namespace KernelTest
