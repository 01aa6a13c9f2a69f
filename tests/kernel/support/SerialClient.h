// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"

#include <string>

namespace KernelTest
{

/// A terminal opened by hand, for packets to and from an emulated camera.
class SerialClient
{
public:
    /// Throws std::system_error.
    explicit SerialClient(std::string const& node);
    ~SerialClient();
    SerialClient(SerialClient const&) = delete;
    SerialClient& operator=(SerialClient const&) = delete;

    void write(UsbCamera::Bytes const& packet) const;

    /// Reads until so many bytes have come or nothing came for the time.
    UsbCamera::Bytes read(std::size_t size, int timeoutMilliseconds = 5000) const;

    /// A packet and its answer.
    UsbCamera::Bytes exchange(std::string const& hexPacket, std::size_t answerSize) const;

private:
    int m_descriptor;
};

} // namespace KernelTest
