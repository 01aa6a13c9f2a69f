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

    unsigned packets() const { return _packets; }
    /// Replies, or parts of them, that the host has not been given yet.
    std::size_t pending() const { return _pieces.size(); }

private:
    struct Piece
    {
        Clock::time_point due;
        Bytes bytes;
    };

    std::optional<Bytes> takePacket();
    void execute(Bytes const& packet, Clock::time_point now);
    void answer(Bytes const& reply, Clock::time_point now);

    unsigned _camera;
    ControlSet& _controls;
    Faults& _faults;
    RequestLog& _log;
    Bytes _received;
    std::deque<Piece> _pieces;
    std::deque<std::pair<std::uint32_t, std::size_t>> _transfers; ///< sequence and length
    unsigned _packets = 0;
};

} // namespace UsbCamera
