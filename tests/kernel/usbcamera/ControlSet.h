// SPDX-License-Identifier: MIT
#pragma once

#include "ControlTable.h"
#include "Faults.h"

#include <map>
#include <utility>

namespace UsbCamera
{

/// One UVC request to a unit, however it arrived.
struct UnitRequest
{
    std::uint8_t code = 0;
    std::uint8_t unit = 0;
    std::uint8_t selector = 0;
    std::size_t length = 0;
    Bytes data; ///< of SET_CUR
};

struct UnitReply
{
    UvcError error = UvcError::None;
    Bytes data;

    bool isRefused() const { return error != UvcError::None; }
};

/// The state behind a camera's controls, which the control endpoint and the serial port share.
class ControlSet
{
public:
    ControlSet(CameraModel const& model, Faults& faults);

    UnitReply execute(UnitRequest const& request);

    /// Direct access for the user of the emulation: no faults, no range check, and read-only
    /// controls change too. Throws std::invalid_argument for a control that there isn't.
    Bytes current(std::uint8_t unit, std::uint8_t selector) const;
    void change(std::uint8_t unit, std::uint8_t selector, Bytes const& data);

    /// Back to the values of a camera that was just switched on.
    void reset();

private:
    struct Control
    {
        ControlDefinition definition;
        Bytes current;
    };
    using Key = std::pair<std::uint8_t, std::uint8_t>;

    UnitReply read(Control const& control, UnitRequest const& request) const;
    UnitReply write(Control& control, Bytes const& data);
    UnitReply readErrorCode(UnitRequest const& request) const;

    std::map<Key, Control> m_controls;
    Faults& m_faults;
    UvcError m_lastError = UvcError::None;
};

} // namespace UsbCamera
