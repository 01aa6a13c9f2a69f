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
    explicit SerialClient(const std::string& node);
    ~SerialClient();
    SerialClient(const SerialClient&) = delete;
    SerialClient& operator=(const SerialClient&) = delete;

    void write(const UsbCamera::Bytes& packet) const;

    /// Reads until so many bytes have come or nothing came for the time.
    UsbCamera::Bytes read(std::size_t size, int timeoutMilliseconds = 5000) const;

    /// A packet and its answer.
    UsbCamera::Bytes exchange(const std::string& hexPacket, std::size_t answerSize) const;

private:
    int _descriptor;
};

} // namespace KernelTest
