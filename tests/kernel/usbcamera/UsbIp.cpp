// SPDX-License-Identifier: MIT
#include "UsbIp.h"

#include <cerrno>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace UsbCamera
{

namespace
{

constexpr std::uint32_t submitCommand = 1;
constexpr std::uint32_t unlinkCommand = 2;
constexpr std::uint32_t submitReply = 3;
constexpr std::uint32_t unlinkReply = 4;
constexpr std::size_t headerSize = 48;
/// No host asks for more at once; a larger number means that the stream is out of step.
constexpr std::size_t largestTransfer = 16U << 20U;

using Header = std::array<std::uint8_t, headerSize>;

std::uint32_t readBig(Header const& header, std::size_t offset)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = value << 8 | header[offset + i];
    }
    return value;
}

void writeBig(Header& header, std::size_t offset, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i) {
        header[offset + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }
}

SetupPacket readSetup(Header const& header)
{
    Bytes const bytes(header.begin() + 40, header.end());
    SetupPacket setup;
    setup.requestType = bytes[0];
    setup.request = bytes[1];
    setup.value = static_cast<std::uint16_t>(readLittle(bytes, 2, 2));
    setup.index = static_cast<std::uint16_t>(readLittle(bytes, 4, 2));
    setup.length = static_cast<std::uint16_t>(readLittle(bytes, 6, 2));
    return setup;
}

Header makeReply(std::uint32_t command, std::uint32_t sequence, int status, std::size_t transferred)
{
    Header header{};
    writeBig(header, 0, command);
    writeBig(header, 4, sequence);
    writeBig(header, 20, static_cast<std::uint32_t>(status));
    writeBig(header, 24, static_cast<std::uint32_t>(transferred));
    return header;
}

bool sendAll(int socket, iovec* pieces, std::size_t count)
{
    while (count > 0) {
        msghdr message{};
        message.msg_iov = pieces;
        message.msg_iovlen = count;
        ssize_t const result = ::sendmsg(socket, &message, MSG_NOSIGNAL);
        if (result < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        auto sent = static_cast<std::size_t>(result);
        while (count > 0 && sent >= pieces->iov_len) {
            sent -= pieces->iov_len;
            ++pieces;
            --count;
        }
        if (count > 0) {
            pieces->iov_base = static_cast<std::uint8_t*>(pieces->iov_base) + sent;
            pieces->iov_len -= sent;
        }
    }
    return true;
}

} // namespace

UsbIpConnection::~UsbIpConnection()
{
    ::close(m_socket);
}

bool UsbIpConnection::readExactly(std::uint8_t* bytes, std::size_t size) const
{
    while (size > 0) {
        ssize_t const result = ::recv(m_socket, bytes, size, 0);
        if (result < 0 && errno == EINTR) {
            continue;
        }
        if (result <= 0) {
            return false;
        }
        bytes += result;
        size -= static_cast<std::size_t>(result);
    }
    return true;
}

std::optional<UsbIpCommand> UsbIpConnection::receive()
{
    Header header{};
    if (!readExactly(header.data(), header.size())) {
        return std::nullopt;
    }
    UsbIpCommand command;
    command.sequence = readBig(header, 4);
    if (readBig(header, 0) == unlinkCommand) {
        command.kind = UsbIpCommand::Kind::Unlink;
        command.unlinked = readBig(header, 20);
        return command;
    }
    command.isIn = readBig(header, 12) != 0;
    command.endpoint = readBig(header, 16);
    command.length = readBig(header, 24);
    command.setup = readSetup(header);
    if (readBig(header, 0) != submitCommand || command.length > largestTransfer) {
        return std::nullopt;
    }
    if (!command.isIn) {
        command.data.resize(command.length);
        if (!readExactly(command.data.data(), command.data.size())) {
            return std::nullopt;
        }
    }
    return command;
}

bool UsbIpConnection::complete(std::uint32_t sequence, int status, std::size_t transferred)
{
    Header header = makeReply(submitReply, sequence, status, transferred);
    iovec piece{header.data(), header.size()};
    return sendAll(m_socket, &piece, 1);
}

bool UsbIpConnection::complete(std::uint32_t sequence, Bytes const& head, std::uint8_t const* tail,
                               std::size_t tailSize)
{
    Header header = makeReply(submitReply, sequence, 0, head.size() + tailSize);
    // sendmsg only reads what an iovec points to, whose type can't say so.
    iovec pieces[3] = {{header.data(), header.size()},
                       {const_cast<std::uint8_t*>(head.data()), head.size()},
                       {const_cast<std::uint8_t*>(tail), tailSize}};
    return sendAll(m_socket, pieces, tailSize > 0 ? 3 : 2);
}

bool UsbIpConnection::confirmUnlink(std::uint32_t sequence, bool wasPending)
{
    Header header = makeReply(unlinkReply, sequence, wasPending ? -ECONNRESET : 0, 0);
    iovec piece{header.data(), header.size()};
    return sendAll(m_socket, &piece, 1);
}

} // namespace UsbCamera
