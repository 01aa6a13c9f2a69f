// SPDX-License-Identifier: MIT
#include "ControlSet.h"

#include <stdexcept>

namespace UsbCamera
{

namespace
{

/// Entity 0 is the video control interface itself; its selector 2 tells the last error.
constexpr std::uint8_t interfaceEntity = 0;
constexpr std::uint8_t errorCodeSelector = 2;

Bytes pack(ControlDefinition const& definition, std::int64_t ControlField::*member)
{
    Bytes bytes;
    for (ControlField const& field : definition.fields) {
        appendLittle(bytes, static_cast<std::uint64_t>(field.*member), field.size);
    }
    return bytes;
}

std::int64_t fieldValue(ControlField const& field, Bytes const& data, std::size_t offset)
{
    std::uint64_t const raw = readLittle(data, offset, field.size);
    std::uint64_t const sign = std::uint64_t{1} << (8 * field.size - 1);
    if (field.isSigned && (raw & sign) != 0) {
        return static_cast<std::int64_t>(raw | ~(sign - 1));
    }
    return static_cast<std::int64_t>(raw);
}

bool isInRange(ControlDefinition const& definition, Bytes const& data)
{
    std::size_t offset = 0;
    for (ControlField const& field : definition.fields) {
        std::int64_t const value = fieldValue(field, data, offset);
        if (value < field.minimum || value > field.maximum) {
            return false;
        }
        offset += field.size;
    }
    return true;
}

Bytes little(std::uint64_t value, std::size_t size)
{
    Bytes bytes;
    appendLittle(bytes, value, size);
    return bytes;
}

} // namespace

ControlSet::ControlSet(CameraModel const& model, Faults& faults) : m_faults(faults)
{
    for (ControlDefinition const& definition : controlTable(model)) {
        m_controls[{definition.unit, definition.selector}] =
            Control{definition, pack(definition, &ControlField::initial)};
    }
}

UnitReply ControlSet::execute(UnitRequest const& request)
{
    if (request.unit == interfaceEntity) {
        return readErrorCode(request);
    }
    UnitReply reply;
    auto const found = m_controls.find({request.unit, request.selector});
    if (auto const stall = m_faults.takeStall(request.unit, request.selector, request.code)) {
        reply.error = *stall;
    } else if (request.unit > extensionUnit) {
        reply.error = UvcError::InvalidUnit;
    } else if (found == m_controls.end()) {
        reply.error = UvcError::InvalidControl;
    } else if (request.code == setCur) {
        reply = write(found->second, request.data);
    } else {
        reply = read(found->second, request);
    }
    m_lastError = reply.error;
    return reply;
}

UnitReply ControlSet::readErrorCode(UnitRequest const& request) const
{
    if (request.selector != errorCodeSelector || request.code != getCur) {
        return {UvcError::InvalidControl, {}};
    }
    return {UvcError::None, {static_cast<std::uint8_t>(m_lastError)}};
}

UnitReply ControlSet::read(Control const& control, UnitRequest const& request) const
{
    ControlDefinition const& definition = control.definition;
    switch (request.code) {
    case getCur:
        return {UvcError::None, control.current};
    case getMin:
        return {UvcError::None, pack(definition, &ControlField::minimum)};
    case getMax:
        return {UvcError::None, pack(definition, &ControlField::maximum)};
    case getRes:
        return {UvcError::None, pack(definition, &ControlField::step)};
    case getDef:
        return {UvcError::None, pack(definition, &ControlField::initial)};
    case getInfo:
        return {UvcError::None, {definition.info}};
    case getLen: {
        auto const absurd = m_faults.lengths.find({request.unit, request.selector});
        std::size_t const length =
            absurd == m_faults.lengths.end() ? control.current.size() : absurd->second;
        return {UvcError::None, little(length, 2)};
    }
    default:
        return {UvcError::InvalidRequest, {}};
    }
}

UnitReply ControlSet::write(Control& control, Bytes const& data)
{
    if ((control.definition.info & canSet) == 0) {
        return {UvcError::InvalidRequest, {}};
    }
    if (data.size() != control.current.size() || !isInRange(control.definition, data)) {
        return {UvcError::OutOfRange, {}};
    }
    control.current = data;
    return {UvcError::None, data};
}

Bytes ControlSet::current(std::uint8_t unit, std::uint8_t selector) const
{
    auto const found = m_controls.find({unit, selector});
    if (found == m_controls.end()) {
        throw std::invalid_argument("the camera has no such control");
    }
    return found->second.current;
}

void ControlSet::change(std::uint8_t unit, std::uint8_t selector, Bytes const& data)
{
    if (data.size() != current(unit, selector).size()) {
        throw std::invalid_argument("the control has another length");
    }
    m_controls[{unit, selector}].current = data;
}

void ControlSet::reset()
{
    for (auto& entry : m_controls) {
        entry.second.current = pack(entry.second.definition, &ControlField::initial);
    }
    m_lastError = UvcError::None;
}

} // namespace UsbCamera
