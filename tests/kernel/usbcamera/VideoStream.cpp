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
    m_choice = choice;
    m_payloadSize = payloadSize;
    VideoSize const& size = choice.videoSize();
    if (choice.videoFormat().kind == VideoFormat::Kind::Yuyv) {
        m_painter = std::make_unique<FramePainter>(size.width, size.height);
    } else if (m_jpegs[choice.size] == nullptr) {
        m_jpegs[choice.size] = std::make_unique<JpegFrames>(size.width, size.height);
    }
    m_isRunning = true;
    m_isOpen = false;
    m_number = 0;
    m_due = now;
}

void VideoStream::stop()
{
    m_isRunning = false;
    m_isOpen = false;
}

void VideoStream::submit(std::uint32_t sequence, std::size_t length)
{
    m_transfers.push_back({sequence, length});
}

bool VideoStream::unlink(std::uint32_t sequence)
{
    auto const found =
        std::find_if(m_transfers.begin(), m_transfers.end(), [sequence](Transfer const& transfer) {
            return transfer.sequence == sequence;
        });
    if (found == m_transfers.end()) {
        return false;
    }
    m_transfers.erase(found);
    return true;
}

bool VideoStream::isHeld() const
{
    return m_isRunning && !m_isOpen && m_faults.holdAtFrame.has_value() &&
           m_number >= *m_faults.holdAtFrame;
}

std::optional<Clock::time_point> VideoStream::nextDue() const
{
    if (!m_isRunning || m_transfers.empty() || isHeld()) {
        return std::nullopt;
    }
    return m_isOpen ? Clock::time_point{} : m_due;
}

Served VideoStream::serve(UsbIpConnection& connection, Clock::time_point now)
{
    while (m_isRunning && !m_transfers.empty()) {
        if (!m_isOpen) {
            if (isHeld() || now < m_due) {
                break;
            }
            openFrame();
        }
        if (m_faults.unplugAtFrame == m_number && m_offset >= m_frameSize / 2) {
            m_faults.unplugAtFrame.reset();
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
    if (m_choice.videoFormat().kind == VideoFormat::Kind::Yuyv) {
        return m_painter->paint(m_number);
    }
    return m_jpegs[m_choice.size]->frame(m_number);
}

void VideoStream::openFrame()
{
    Bytes const& frame = currentFrame();
    m_frame = frame.data();
    m_frameSize = frame.size();
    m_offset = 0;
    m_isOpen = true;
    m_isCorrupted = m_faults.corruptedFrames.erase(m_number) > 0;
    auto const cut = m_faults.cutFrames.find(m_number);
    if (cut != m_faults.cutFrames.end()) {
        m_frameSize = std::min(m_frameSize, cut->second);
        m_faults.cutFrames.erase(cut);
    }
}

Served VideoStream::sendPayload(UsbIpConnection& connection, Clock::time_point now)
{
    Transfer const transfer = m_transfers.front();
    m_transfers.pop_front();
    // A payload ends with its largest size or with a transfer that isn't full.
    std::size_t const room = transfer.length >= m_payloadSize
                                 ? m_payloadSize
                                 : std::max(transfer.length, headerSize + 1) - 1;
    std::size_t const size = std::min(room - headerSize, m_frameSize - m_offset);
    bool const isLast = m_offset + size == m_frameSize;
    Bytes const header{headerSize, static_cast<std::uint8_t>(endOfHeader | (m_toggle ? 1 : 0) |
                                                             (isLast ? endOfFrame : 0) |
                                                             (m_isCorrupted ? errorBit : 0))};
    if (!connection.complete(transfer.sequence, header, m_frame + m_offset, size)) {
        return Served::HostIsGone;
    }
    m_offset += size;
    if (isLast) {
        closeFrame(now);
    }
    return Served::Well;
}

void VideoStream::closeFrame(Clock::time_point now)
{
    m_isOpen = false;
    m_toggle = !m_toggle;
    ++m_number;
    m_due = std::max(m_due + std::chrono::nanoseconds(std::int64_t{100} * m_choice.interval), now);
}

} // namespace UsbCamera
