// SPDX-License-Identifier: MIT
#include "ControlEndpoint.h"

#include "Descriptors.h"

namespace UsbCamera
{

namespace
{

constexpr std::uint8_t firmwareRequest = 0xb0;
constexpr std::uint8_t resetRequest = 0xe0;

// Standard requests.
constexpr std::uint8_t getStatus = 0;
constexpr std::uint8_t clearFeature = 1;
constexpr std::uint8_t setFeature = 3;
constexpr std::uint8_t getDescriptor = 6;
constexpr std::uint8_t getConfiguration = 8;
constexpr std::uint8_t setConfiguration = 9;
constexpr std::uint8_t getInterface = 10;
constexpr std::uint8_t setInterface = 11;
constexpr std::uint8_t setSystemExitLatency = 48;
constexpr std::uint8_t setIsochronousDelay = 49;

// Requests of the communication class.
constexpr std::uint8_t setLineCoding = 0x20;
constexpr std::uint8_t getLineCoding = 0x21;
constexpr std::uint8_t setControlLineState = 0x22;
constexpr std::uint8_t sendBreak = 0x23;

constexpr std::uint8_t typeMask = 0x60;
constexpr std::uint8_t classType = 0x20;
constexpr std::uint8_t vendorType = 0x40;

std::uint8_t lowByte(std::uint16_t value)
{
    return static_cast<std::uint8_t>(value & 0xffU);
}

std::uint8_t highByte(std::uint16_t value)
{
    return static_cast<std::uint8_t>(value >> 8U);
}

ControlReply answer(Bytes data)
{
    return {false, std::move(data), ControlReply::Effect::None};
}

} // namespace

ControlEndpoint::ControlEndpoint(CameraModel const& model, ControlSet& controls, Faults& faults)
    : m_model(model), m_controls(controls), m_faults(faults),
      m_negotiation(model.speed, model.hasIntervalRanges)
{
}

ControlReply ControlEndpoint::handle(SetupPacket const& setup, Bytes const& data)
{
    ControlReply reply;
    switch (setup.requestType & typeMask) {
    case 0:
        reply = handleStandard(setup);
        break;
    case classType:
        reply = handleClass(setup, data);
        break;
    case vendorType:
        reply = handleVendor(setup);
        break;
    default:
        return ControlReply::stall();
    }
    if (!setup.isIn()) {
        reply.data.clear();
    } else if (reply.data.size() > setup.length) {
        reply.data.resize(setup.length);
    }
    return reply;
}

ControlReply ControlEndpoint::handleStandard(SetupPacket const& setup)
{
    constexpr std::uint8_t endpointRecipient = 2;
    switch (setup.request) {
    case getDescriptor: {
        auto descriptor = makeDescriptor(m_model, highByte(setup.value), lowByte(setup.value));
        return descriptor ? answer(*descriptor) : ControlReply::stall();
    }
    case getStatus:
        return answer({0, 0});
    case getConfiguration:
        return answer({m_configuration});
    case setConfiguration:
        m_configuration = lowByte(setup.value);
        return answer({});
    case getInterface:
        return answer({0});
    case setInterface:
        return setup.value == 0 ? answer({}) : ControlReply::stall();
    case clearFeature:
        // The host's driver ends a bulk stream by clearing its endpoint.
        if (setup.requestType == endpointRecipient &&
            lowByte(setup.index) == (0x80 | videoEndpoint)) {
            return {false, {}, ControlReply::Effect::StopStream};
        }
        return answer({});
    case setFeature:
    case setSystemExitLatency:
    case setIsochronousDelay:
        return answer({});
    default:
        return ControlReply::stall();
    }
}

ControlReply ControlEndpoint::handleClass(SetupPacket const& setup, Bytes const& data)
{
    switch (lowByte(setup.index)) {
    case videoControlInterface:
        return handleUnit(setup, data);
    case videoStreamingInterface:
        return handleStreaming(setup, data);
    case serialControlInterface:
        return m_model.hasSerialPort ? handleSerial(setup, data) : ControlReply::stall();
    default:
        return ControlReply::stall();
    }
}

bool ControlEndpoint::isUnitRequest(SetupPacket const& setup)
{
    return (setup.requestType & typeMask) == classType &&
           lowByte(setup.index) == videoControlInterface && highByte(setup.index) != 0;
}

ControlReply ControlEndpoint::handleUnit(SetupPacket const& setup, Bytes const& data)
{
    UnitRequest const request{setup.request, highByte(setup.index), highByte(setup.value),
                              setup.length, data};
    UnitReply const reply = m_controls.execute(request);
    return reply.isRefused() ? ControlReply::stall() : answer(reply.data);
}

ControlReply ControlEndpoint::handleStreaming(SetupPacket const& setup, Bytes const& data)
{
    std::uint8_t const selector = highByte(setup.value);
    if (setup.isIn()) {
        auto reply = m_negotiation.read(selector, setup.request);
        return reply ? answer(*reply) : ControlReply::stall();
    }
    if (!m_negotiation.write(selector, data)) {
        return ControlReply::stall();
    }
    return {false,
            {},
            selector == commitSelector ? ControlReply::Effect::StartStream
                                       : ControlReply::Effect::None};
}

ControlReply ControlEndpoint::handleSerial(SetupPacket const& setup, Bytes const& data)
{
    switch (setup.request) {
    case setLineCoding:
        m_lineCoding = data;
        return answer({});
    case getLineCoding:
        return answer(m_lineCoding);
    case setControlLineState:
    case sendBreak:
        return answer({});
    default:
        return ControlReply::stall();
    }
}

ControlReply ControlEndpoint::handleVendor(SetupPacket const& setup)
{
    if (!m_model.answersVendorRequests || !setup.isIn()) {
        return ControlReply::stall();
    }
    if (m_faults.vendorStalls > 0) {
        --m_faults.vendorStalls;
        return ControlReply::stall();
    }
    if (setup.request == firmwareRequest) {
        return answer(m_model.firmware);
    }
    if (setup.request == resetRequest) {
        return {false, {}, ControlReply::Effect::Reset};
    }
    return ControlReply::stall();
}

} // namespace UsbCamera
