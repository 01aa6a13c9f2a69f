// SPDX-License-Identifier: MIT
#pragma once

#include <linux/videodev2.h>

#include <cstdint>
#include <string>

namespace VirtualCamera
{

struct ControlRange
{
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    std::int64_t step = 1;
    std::int64_t defaultValue = 0;
};

/// One control of a device, whatever keeps its value. Results are 0 or a negative errno.
class ControlNode
{
public:
    virtual ~ControlNode() = default;

    virtual std::uint32_t id() const = 0;
    virtual std::uint32_t type() const = 0;
    virtual std::string const& name() const = 0;
    virtual std::uint32_t flags() const = 0;
    virtual ControlRange range() const = 0;
    virtual int menuItem(v4l2_querymenu& item) const = 0;

    virtual int read(std::int64_t& value) const = 0;
    /// Brings `value` to what the device would store, or refuses it.
    virtual int validate(std::int64_t& value) const = 0;
    virtual int write(std::int64_t value) = 0;
    /// Stores a value that nobody checked.
    virtual void force(std::int64_t value) = 0;
};

} // namespace VirtualCamera
