// SPDX-License-Identifier: MIT
#include "MappedControl.h"

#include "Rounding.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace VirtualCamera
{

namespace
{

std::string fieldText(__u8 const* text, std::size_t size)
{
    auto const* characters = reinterpret_cast<char const*>(text);
    return std::string(characters, strnlen(characters, size));
}

} // namespace

MappedControl::MappedControl(ControlMapping mapping, SelectorScript& selector)
    : m_mapping(std::move(mapping)), m_selector(selector),
      m_name(fieldText(m_mapping.mapping.name, sizeof m_mapping.mapping.name))
{
}

std::uint32_t MappedControl::flags() const
{
    std::uint32_t flags = 0;
    if (!m_selector.readable) {
        flags |= V4L2_CTRL_FLAG_WRITE_ONLY;
    }
    if (!m_selector.writable) {
        flags |= V4L2_CTRL_FLAG_READ_ONLY;
    }
    return flags;
}

std::int64_t MappedControl::extract(std::vector<std::uint8_t> const& bytes) const
{
    std::uint32_t value = 0;
    for (unsigned bit = 0; bit < m_mapping.mapping.size; ++bit) {
        unsigned const position = m_mapping.mapping.offset + bit;
        if ((bytes[position / 8] >> (position % 8) & 1) != 0) {
            value |= 1u << bit;
        }
    }
    unsigned const width = m_mapping.mapping.size;
    bool const extended = m_mapping.mapping.data_type == UVC_CTRL_DATA_TYPE_SIGNED;
    if (extended && width > 0 && width < 32 && (value >> (width - 1) & 1) != 0) {
        value |= ~0u << width;
    }
    // Controls are signed to V4L2: a 32-bit field of ones shows as -1.
    return static_cast<std::int32_t>(value);
}

std::int64_t MappedControl::positionOf(std::int64_t menuValue) const
{
    for (std::size_t position = 0; position < m_mapping.menu.size(); ++position) {
        if (m_mapping.menu[position].value == static_cast<std::uint32_t>(menuValue)) {
            return static_cast<std::int64_t>(position);
        }
    }
    return menuValue;
}

ControlRange MappedControl::range() const
{
    switch (type()) {
    case V4L2_CTRL_TYPE_MENU:
        return {0, static_cast<std::int64_t>(m_mapping.menu.size()) - 1, 1,
                positionOf(extract(m_selector.defaults))};
    case V4L2_CTRL_TYPE_BOOLEAN:
        return {0, 1, 1, extract(m_selector.defaults)};
    case V4L2_CTRL_TYPE_BUTTON:
        return {0, 0, 0, 0};
    default:
        return {extract(m_selector.minimum), extract(m_selector.maximum), 1,
                extract(m_selector.defaults)};
    }
}

int MappedControl::menuItem(v4l2_querymenu& item) const
{
    if (type() != V4L2_CTRL_TYPE_MENU || item.index >= m_mapping.menu.size()) {
        return -EINVAL;
    }
    item.reserved = 0;
    auto const& label = m_mapping.menu[item.index].name;
    std::copy(std::begin(label), std::end(label), item.name);
    item.name[sizeof item.name - 1] = 0;
    return 0;
}

int MappedControl::read(std::int64_t& value) const
{
    value = extract(m_selector.current);
    if (type() == V4L2_CTRL_TYPE_MENU) {
        value = positionOf(value);
    }
    return 0;
}

int MappedControl::validate(std::int64_t& value) const
{
    ControlRange const limits = range();
    switch (type()) {
    case V4L2_CTRL_TYPE_MENU:
        return value < 0 || value > limits.maximum ? -ERANGE : 0;
    case V4L2_CTRL_TYPE_BOOLEAN:
        value = std::clamp<std::int64_t>(value, 0, 1);
        return 0;
    case V4L2_CTRL_TYPE_BUTTON:
        return 0;
    default:
        break;
    }
    if (m_mapping.mapping.data_type == UVC_CTRL_DATA_TYPE_SIGNED) {
        value = roundToRange(value, limits);
        return 0;
    }
    auto const bits = [](std::int64_t number) { return static_cast<std::uint32_t>(number); };
    std::uint32_t const lowest = bits(limits.minimum);
    std::uint32_t const highest = std::max(lowest, bits(limits.maximum));
    value = static_cast<std::int32_t>(std::clamp(bits(value), lowest, highest));
    return 0;
}

int MappedControl::write(std::int64_t value)
{
    bool const listed = type() == V4L2_CTRL_TYPE_MENU;
    force(listed ? m_mapping.menu[static_cast<std::size_t>(value)].value : value);
    return 0;
}

void MappedControl::force(std::int64_t value)
{
    for (unsigned bit = 0; bit < m_mapping.mapping.size; ++bit) {
        unsigned const position = m_mapping.mapping.offset + bit;
        unsigned const mask = 1u << (position % 8);
        std::uint8_t& byte = m_selector.current[position / 8];
        bool const set = (static_cast<std::uint64_t>(value) >> bit & 1) != 0;
        byte = static_cast<std::uint8_t>(set ? byte | mask : byte & ~mask);
    }
}

} // namespace VirtualCamera
