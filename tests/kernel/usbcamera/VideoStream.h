// SPDX-License-Identifier: MIT
#pragma once

#include "Faults.h"
#include "FramePainter.h"
#include "JpegFrames.h"
#include "StreamNegotiation.h"
#include "UsbIp.h"

#include <deque>
#include <map>
#include <memory>

namespace UsbCamera
{

using Clock = std::chrono::steady_clock;

/// What became of serving the host's transfers.
enum class Served { Well, HostIsGone, MustUnplug };

/// Sends the test pictures in the payloads of a bulk endpoint, one payload a transfer, at the
/// agreed pace. A camera that the host doesn't read from waits: no frame number is ever left out,
/// so a gap that a test sees was made by the host.
class VideoStream
{
public:
    explicit VideoStream(Faults& faults) : m_faults(faults) {}

    void start(StreamChoice const& choice, std::size_t payloadSize, Clock::time_point now);
    void stop();

    void submit(std::uint32_t sequence, std::size_t length);
    bool unlink(std::uint32_t sequence);
    void forgetTransfers() { m_transfers.clear(); }

    Served serve(UsbIpConnection& connection, Clock::time_point now);

    /// When serve() will have something to do; nothing while it waits for the host or is held.
    std::optional<Clock::time_point> nextDue() const;

    bool isRunning() const { return m_isRunning; }
    bool isHeld() const;
    std::uint32_t frameNumber() const { return m_number; }

private:
    struct Transfer
    {
        std::uint32_t sequence;
        std::size_t length;
    };

    void openFrame();
    void closeFrame(Clock::time_point now);
    Served sendPayload(UsbIpConnection& connection, Clock::time_point now);
    Bytes const& currentFrame();

    Faults& m_faults;
    std::deque<Transfer> m_transfers;
    StreamChoice m_choice;
    std::size_t m_payloadSize = 0;
    std::unique_ptr<FramePainter> m_painter;
    std::map<std::size_t, std::unique_ptr<JpegFrames>> m_jpegs; ///< by size, made when first wanted
    bool m_isRunning = false;
    bool m_isOpen = false;
    bool m_toggle = false;
    bool m_isCorrupted = false;
    std::uint32_t m_number = 0;
    std::uint8_t const* m_frame = nullptr;
    std::size_t m_frameSize = 0;
    std::size_t m_offset = 0;
    Clock::time_point m_due;
};

} // namespace UsbCamera
