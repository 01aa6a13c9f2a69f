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
    : _camera(camera), _controls(controls), _faults(faults), _log(log)
{
}

bool SerialPort::receive(Bytes const& bytes, Clock::time_point now)
{
    append(_received, bytes);
    while (auto const packet = takePacket()) {
        ++_packets;
        if (countDown(_faults.unplugInSerial)) {
            return false;
        }
        execute(*packet, now);
    }
    return true;
}

std::optional<Bytes> SerialPort::takePacket()
{
    if (_received.empty()) {
        return std::nullopt;
    }
    std::size_t size = headerSize;
    bool isPacket = _received[0] == setType || _received[0] == getType;
    if (isPacket && _received.size() >= headerSize && _received[0] == setType) {
        auto const dataSize = static_cast<std::size_t>(readLittle(_received, 6, 2));
        size += dataSize;
        isPacket = dataSize <= largestData;
    }
    if (!isPacket) {
        // Nothing in the stream marks where a packet begins: start over with what comes next.
        _log.event(_camera, "serial-garbage", toHex(_received));
        _received.clear();
        return std::nullopt;
    }
    if (_received.size() < size) {
        return std::nullopt;
    }
    auto const end = _received.begin() + static_cast<std::ptrdiff_t>(size);
    Bytes packet(_received.begin(), end);
    _received.erase(_received.begin(), end);
    return packet;
}

void SerialPort::execute(Bytes const& packet, Clock::time_point now)
{
    UnitRequest const request = parse(packet);
    UnitReply reply = _controls.execute(request);
    Bytes bytes;
    if (!reply.isRefused()) {
        reply.data.resize(std::min(reply.data.size(), request.length));
        bytes.assign(packet.begin(), packet.begin() + headerSize);
        append(bytes, reply.data);
    }
    _log.serial(_camera, request, packet, reply, bytes);
    if (!bytes.empty()) {
        answer(bytes, now);
    }
}

void SerialPort::answer(Bytes const& reply, Clock::time_point now)
{
    auto const middle = reply.begin() + static_cast<std::ptrdiff_t>(reply.size() / 2);
    switch (_faults.serialMode) {
    case SerialMode::Normal:
        _pieces.push_back({now, reply});
        break;
    case SerialMode::Silent:
        break;
    case SerialMode::Slow:
        _pieces.push_back({now + _faults.serialDelay, reply});
        break;
    case SerialMode::Split:
        _pieces.push_back({now, Bytes(reply.begin(), middle)});
        _pieces.push_back({now + _faults.serialDelay, Bytes(middle, reply.end())});
        break;
    case SerialMode::Short: {
        std::size_t const size = std::min(_faults.serialSize, reply.size());
        if (size > 0) {
            _pieces.push_back(
                {now, Bytes(reply.begin(), reply.begin() + static_cast<std::ptrdiff_t>(size))});
        }
        break;
    }
    }
}

void SerialPort::submit(std::uint32_t sequence, std::size_t length)
{
    _transfers.emplace_back(sequence, length);
}

bool SerialPort::unlink(std::uint32_t sequence)
{
    auto const found =
        std::find_if(_transfers.begin(), _transfers.end(),
                     [sequence](auto const& entry) { return entry.first == sequence; });
    if (found == _transfers.end()) {
        return false;
    }
    _transfers.erase(found);
    return true;
}

void SerialPort::reset()
{
    _transfers.clear();
    _pieces.clear();
    _received.clear();
}

Served SerialPort::serve(UsbIpConnection& connection, Clock::time_point now)
{
    while (!_transfers.empty() && !_pieces.empty() && _pieces.front().due <= now) {
        auto const transfer = _transfers.front();
        Bytes const bytes = _pieces.front().bytes;
        _transfers.pop_front();
        _pieces.pop_front();
        if (!connection.complete(transfer.first, bytes)) {
            return Served::HostIsGone;
        }
    }
    return Served::Well;
}

std::optional<Clock::time_point> SerialPort::nextDue() const
{
    if (_transfers.empty() || _pieces.empty()) {
        return std::nullopt;
    }
    return _pieces.front().due;
}

} // namespace UsbCamera
