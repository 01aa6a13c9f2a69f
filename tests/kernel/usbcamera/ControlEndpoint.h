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
    ControlEndpoint(CameraModel const& model, ControlSet& controls, Faults& faults);

    ControlReply handle(SetupPacket const& setup, Bytes const& data);

    StreamNegotiation const& negotiation() const { return m_negotiation; }

    /// The entity that a request is for, when it is a video class request to one.
    static bool isUnitRequest(SetupPacket const& setup);

private:
    ControlReply handleStandard(SetupPacket const& setup);
    ControlReply handleClass(SetupPacket const& setup, Bytes const& data);
    ControlReply handleUnit(SetupPacket const& setup, Bytes const& data);
    ControlReply handleStreaming(SetupPacket const& setup, Bytes const& data);
    ControlReply handleSerial(SetupPacket const& setup, Bytes const& data);
    ControlReply handleVendor(SetupPacket const& setup);

    CameraModel const& m_model;
    ControlSet& m_controls;
    Faults& m_faults;
    StreamNegotiation m_negotiation;
    std::uint8_t m_configuration = 0;
    Bytes m_lineCoding{0x80, 0x25, 0, 0, 0, 0, 8}; ///< 9600 baud, 8 data bits, 1 stop bit
};

} // namespace UsbCamera
