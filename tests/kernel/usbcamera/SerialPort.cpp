// SPDX-License-Identifier: MIT
#include "SerialPort.h"

#include <algorithm>

namespace UsbCamera
{

namespace
{

constexpr std::size_t headerSize = 8;
constexpr std::size_t largestData = 64;
constexpr std::uint8_t setType = 0x21;
constexpr std::uint8_t getType = 0xa1;

UnitRequest parse(Bytes const& packet)
{
    UnitRequest request;
    request.code = packet[1];
    request.selector = packet[3];
    request.unit = packet[5];
    request.length = static_cast<std::size_t>(readLittle(packet, 6, 2));
    request.data.assign(packet.begin() + headerSize, packet.end());
    return request;
}

} // namespace

SerialPort::SerialPort(unsigned camera, ControlSet& controls, Faults& faults, RequestLog& log)
    : m_camera(camera), m_controls(controls), m_faults(faults), m_log(log)
{
}

bool SerialPort::receive(Bytes const& bytes, Clock::time_point now)
{
    append(m_received, bytes);
    while (auto const packet = takePacket()) {
        ++m_packets;
        if (countDown(m_faults.unplugInSerial)) {
            return false;
        }
        execute(*packet, now);
    }
    return true;
}

std::optional<Bytes> SerialPort::takePacket()
{
    if (m_received.empty()) {
        return std::nullopt;
    }
    std::size_t size = headerSize;
    bool isPacket = m_received[0] == setType || m_received[0] == getType;
    if (isPacket && m_received.size() >= headerSize && m_received[0] == setType) {
        auto const dataSize = static_cast<std::size_t>(readLittle(m_received, 6, 2));
        size += dataSize;
        isPacket = dataSize <= largestData;
    }
    if (!isPacket) {
        // Nothing in the stream marks where a packet begins: start over with what comes next.
        m_log.event(m_camera, "serial-garbage", toHex(m_received));
        m_received.clear();
        return std::nullopt;
    }
    if (m_received.size() < size) {
        return std::nullopt;
    }
    auto const end = m_received.begin() + static_cast<std::ptrdiff_t>(size);
    Bytes packet(m_received.begin(), end);
    m_received.erase(m_received.begin(), end);
    return packet;
}

void SerialPort::execute(Bytes const& packet, Clock::time_point now)
{
    UnitRequest const request = parse(packet);
    UnitReply reply = m_controls.execute(request);
    Bytes bytes;
    if (!reply.isRefused()) {
        reply.data.resize(std::min(reply.data.size(), request.length));
        bytes.assign(packet.begin(), packet.begin() + headerSize);
        append(bytes, reply.data);
    }
    m_log.serial(m_camera, request, packet, reply, bytes);
    if (!bytes.empty()) {
        answer(bytes, now);
    }
}

void SerialPort::answer(Bytes const& reply, Clock::time_point now)
{
    auto const middle = reply.begin() + static_cast<std::ptrdiff_t>(reply.size() / 2);
    switch (m_faults.serialMode) {
    case SerialMode::Normal:
        m_pieces.push_back({now, reply});
        break;
    case SerialMode::Silent:
        break;
    case SerialMode::Slow:
        m_pieces.push_back({now + m_faults.serialDelay, reply});
        break;
    case SerialMode::Split:
        m_pieces.push_back({now, Bytes(reply.begin(), middle)});
        m_pieces.push_back({now + m_faults.serialDelay, Bytes(middle, reply.end())});
        break;
    case SerialMode::Short: {
        std::size_t const size = std::min(m_faults.serialSize, reply.size());
        if (size > 0) {
            m_pieces.push_back(
                {now, Bytes(reply.begin(), reply.begin() + static_cast<std::ptrdiff_t>(size))});
        }
        break;
    }
    }
}

void SerialPort::submit(std::uint32_t sequence, std::size_t length)
{
    m_transfers.emplace_back(sequence, length);
}

bool SerialPort::unlink(std::uint32_t sequence)
{
    auto const found =
        std::find_if(m_transfers.begin(), m_transfers.end(),
                     [sequence](auto const& entry) { return entry.first == sequence; });
    if (found == m_transfers.end()) {
        return false;
    }
    m_transfers.erase(found);
    return true;
}

void SerialPort::reset()
{
    m_transfers.clear();
    m_pieces.clear();
    m_received.clear();
}

Served SerialPort::serve(UsbIpConnection& connection, Clock::time_point now)
{
    while (!m_transfers.empty() && !m_pieces.empty() && m_pieces.front().due <= now) {
        auto const transfer = m_transfers.front();
        Bytes const bytes = m_pieces.front().bytes;
        m_transfers.pop_front();
        m_pieces.pop_front();
        if (!connection.complete(transfer.first, bytes)) {
            return Served::HostIsGone;
        }
    }
    return Served::Well;
}

std::optional<Clock::time_point> SerialPort::nextDue() const
{
    if (m_transfers.empty() || m_pieces.empty()) {
        return std::nullopt;
    }
    return m_pieces.front().due;
}

} // namespace UsbCamera
