// SPDX-License-Identifier: MIT
#pragma once

#include "ControlSet.h"
#include "StreamNegotiation.h"
#include "UsbIp.h"

namespace UsbCamera
{

/// The answer to a control transfer, and what the camera has to do because of it.
struct ControlReply
{
    enum class Effect { None, StartStream, StopStream, Reset };

    bool isStalled = false;
    Bytes data;
    Effect effect = Effect::None;

    static ControlReply stall() { return {true, {}, Effect::None}; }
};

/// Answers the control transfers: standard, video class, communication class and vendor requests.
class ControlEndpoint
{
public:
    ControlEndpoint(const CameraModel& model, ControlSet& controls, Faults& faults);

    ControlReply handle(const SetupPacket& setup, const Bytes& data);

    const StreamNegotiation& negotiation() const { return _negotiation; }

    /// The entity that a request is for, when it is a video class request to one.
    static bool isUnitRequest(const SetupPacket& setup);

private:
    ControlReply handleStandard(const SetupPacket& setup);
    ControlReply handleClass(const SetupPacket& setup, const Bytes& data);
    ControlReply handleUnit(const SetupPacket& setup, const Bytes& data);
    ControlReply handleStreaming(const SetupPacket& setup, const Bytes& data);
    ControlReply handleSerial(const SetupPacket& setup, const Bytes& data);
    ControlReply handleVendor(const SetupPacket& setup);

    const CameraModel& _model;
    ControlSet& _controls;
    Faults& _faults;
    StreamNegotiation _negotiation;
    std::uint8_t _configuration = 0;
    Bytes _lineCoding{0x80, 0x25, 0, 0, 0, 0, 8}; ///< 9600 baud, 8 data bits, 1 stop bit
};

} // namespace UsbCamera
