// SPDX-License-Identifier: MIT
#include "VideoStream.h"

#include <algorithm>

namespace UsbCamera
{

namespace
{

constexpr std::size_t headerSize = 2;
constexpr std::uint8_t endOfHeader = 0x80;
constexpr std::uint8_t errorBit = 0x40;
constexpr std::uint8_t endOfFrame = 0x02;

} // namespace

void VideoStream::start(StreamChoice const& choice, std::size_t payloadSize, Clock::time_point now)
{
    _choice = choice;
    _payloadSize = payloadSize;
    VideoSize const& size = choice.videoSize();
    if (choice.videoFormat().kind == VideoFormat::Kind::Yuyv) {
        _painter = std::make_unique<FramePainter>(size.width, size.height);
    } else if (_jpegs[choice.size] == nullptr) {
        _jpegs[choice.size] = std::make_unique<JpegFrames>(size.width, size.height);
    }
    _isRunning = true;
    _isOpen = false;
    _number = 0;
    _due = now;
}

void VideoStream::stop()
{
    _isRunning = false;
    _isOpen = false;
}

void VideoStream::submit(std::uint32_t sequence, std::size_t length)
{
    _transfers.push_back({sequence, length});
}

bool VideoStream::unlink(std::uint32_t sequence)
{
    auto const found =
        std::find_if(_transfers.begin(), _transfers.end(), [sequence](Transfer const& transfer) {
            return transfer.sequence == sequence;
        });
    if (found == _transfers.end()) {
        return false;
    }
    _transfers.erase(found);
    return true;
}

bool VideoStream::isHeld() const
{
    return _isRunning && !_isOpen && _faults.holdAtFrame.has_value() &&
           _number >= *_faults.holdAtFrame;
}

std::optional<Clock::time_point> VideoStream::nextDue() const
{
    if (!_isRunning || _transfers.empty() || isHeld()) {
        return std::nullopt;
    }
    return _isOpen ? Clock::time_point{} : _due;
}

Served VideoStream::serve(UsbIpConnection& connection, Clock::time_point now)
{
    while (_isRunning && !_transfers.empty()) {
        if (!_isOpen) {
            if (isHeld() || now < _due) {
                break;
            }
            openFrame();
        }
        if (_faults.unplugAtFrame == _number && _offset >= _frameSize / 2) {
            _faults.unplugAtFrame.reset();
            return Served::MustUnplug;
        }
        Served const served = sendPayload(connection, now);
        if (served != Served::Well) {
            return served;
        }
    }
    return Served::Well;
}

Bytes const& VideoStream::currentFrame()
{
    if (_choice.videoFormat().kind == VideoFormat::Kind::Yuyv) {
        return _painter->paint(_number);
    }
    return _jpegs[_choice.size]->frame(_number);
}

void VideoStream::openFrame()
{
    Bytes const& frame = currentFrame();
    _frame = frame.data();
    _frameSize = frame.size();
    _offset = 0;
    _isOpen = true;
    _isCorrupted = _faults.corruptedFrames.erase(_number) > 0;
    auto const cut = _faults.cutFrames.find(_number);
    if (cut != _faults.cutFrames.end()) {
        _frameSize = std::min(_frameSize, cut->second);
        _faults.cutFrames.erase(cut);
    }
}

Served VideoStream::sendPayload(UsbIpConnection& connection, Clock::time_point now)
{
    Transfer const transfer = _transfers.front();
    _transfers.pop_front();
    // A payload ends with its largest size or with a transfer that isn't full.
    std::size_t const room = transfer.length >= _payloadSize
                                 ? _payloadSize
                                 : std::max(transfer.length, headerSize + 1) - 1;
    std::size_t const size = std::min(room - headerSize, _frameSize - _offset);
    bool const isLast = _offset + size == _frameSize;
    Bytes const header{headerSize, static_cast<std::uint8_t>(endOfHeader | (_toggle ? 1 : 0) |
                                                             (isLast ? endOfFrame : 0) |
                                                             (_isCorrupted ? errorBit : 0))};
    if (!connection.complete(transfer.sequence, header, _frame + _offset, size)) {
        return Served::HostIsGone;
    }
    _offset += size;
    if (isLast) {
        closeFrame(now);
    }
    return Served::Well;
}

void VideoStream::closeFrame(Clock::time_point now)
{
    _isOpen = false;
    _toggle = !_toggle;
    ++_number;
    _due = std::max(_due + std::chrono::nanoseconds(std::int64_t{100} * _choice.interval), now);
}

} // namespace UsbCamera
