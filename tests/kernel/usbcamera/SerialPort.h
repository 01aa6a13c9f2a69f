// SPDX-License-Identifier: MIT
#pragma once

#include "ControlSet.h"
#include "RequestLog.h"
#include "VideoStream.h"

#include <deque>

namespace UsbCamera
{

/// The far end of the camera's terminal: executes UVC requests that arrive as packets of their
/// setup bytes and data, and answers with the setup bytes and the control's data. A request that
/// the camera can't execute gets no answer.
class SerialPort
{
public:
    SerialPort(unsigned camera, ControlSet& controls, Faults& faults, RequestLog& log);

    /// Takes bytes as they come; false when the camera is to be unplugged now.
    bool receive(Bytes const& bytes, Clock::time_point now);

    void submit(std::uint32_t sequence, std::size_t length);
    bool unlink(std::uint32_t sequence);
    void reset();

    Served serve(UsbIpConnection& connection, Clock::time_point now);
    std::optional<Clock::time_point> nextDue() const;

    unsigned packets() const { return m_packets; }
    /// Replies, or parts of them, that the host has not been given yet.
    std::size_t pending() const { return m_pieces.size(); }

private:
    struct Piece
    {
        Clock::time_point due;
        Bytes bytes;
    };

    std::optional<Bytes> takePacket();
    void execute(Bytes const& packet, Clock::time_point now);
    void answer(Bytes const& reply, Clock::time_point now);

    unsigned m_camera;
    ControlSet& m_controls;
    Faults& m_faults;
    RequestLog& m_log;
    Bytes m_received;
    std::deque<Piece> m_pieces;
    std::deque<std::pair<std::uint32_t, std::size_t>> m_transfers; ///< sequence and length
    unsigned m_packets = 0;
};

} // namespace UsbCamera
