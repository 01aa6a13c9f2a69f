// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"

#include <array>
#include <optional>

namespace UsbCamera
{

/// The eight bytes that open every control transfer.
struct SetupPacket
{
    std::uint8_t requestType = 0;
    std::uint8_t request = 0;
    std::uint16_t value = 0;
    std::uint16_t index = 0;
    std::uint16_t length = 0;

    bool isIn() const { return (requestType & 0x80) != 0; }
};

/// What the host's controller asks for: a transfer, or that a pending one be given back.
struct UsbIpCommand
{
    enum class Kind { Submit, Unlink };
    Kind kind = Kind::Submit;
    std::uint32_t sequence = 0;
    std::uint32_t unlinked = 0; ///< sequence of the transfer to give back
    bool isIn = false;
    unsigned endpoint = 0;
    std::size_t length = 0;
    SetupPacket setup;
    Bytes data; ///< of a transfer to the device
};

/// The device's end of a USB/IP connection, on a stream socket that it owns.
class UsbIpConnection
{
public:
    explicit UsbIpConnection(int socket) : m_socket(socket) {}
    ~UsbIpConnection();
    UsbIpConnection(UsbIpConnection const&) = delete;
    UsbIpConnection& operator=(UsbIpConnection const&) = delete;

    int descriptor() const { return m_socket; }

    /// Reads one whole command; nothing when the host has gone or speaks something else.
    std::optional<UsbIpCommand> receive();

    /// Answers a transfer to the device, or without data. `status` is 0 or a negative errno.
    bool complete(std::uint32_t sequence, int status, std::size_t transferred);

    /// Answers a transfer from the device with two pieces, of which the second is not copied.
    bool complete(std::uint32_t sequence, Bytes const& head, std::uint8_t const* tail = nullptr,
                  std::size_t tailSize = 0);

    bool confirmUnlink(std::uint32_t sequence, bool wasPending);

private:
    bool readExactly(std::uint8_t* bytes, std::size_t size) const;

    int m_socket;
};

} // namespace UsbCamera
