// SPDX-License-Identifier: MIT
#include "ScriptedControl.h"

#include "FixedText.h"
#include "Rounding.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace VirtualCamera
{

ScriptedControl::ScriptedControl(ControlScript script)
    : m_script(std::move(script)), m_value(m_script.value.value_or(m_script.defaultValue))
{
}

ControlRange ScriptedControl::range() const
{
    return {m_script.minimum, m_script.maximum, m_script.step, m_script.defaultValue};
}

bool ScriptedControl::hasItem(std::int64_t index) const
{
    auto const sameIndex = [index](MenuItem const& item) { return item.index == index; };
    return std::any_of(m_script.items.begin(), m_script.items.end(), sameIndex);
}

int ScriptedControl::menuItem(v4l2_querymenu& item) const
{
    if (m_script.type != V4L2_CTRL_TYPE_MENU && m_script.type != V4L2_CTRL_TYPE_INTEGER_MENU) {
        return -EINVAL;
    }
    if (item.index < m_script.minimum || item.index > m_script.maximum) {
        return -EINVAL;
    }
    for (MenuItem const& candidate : m_script.items) {
        if (candidate.index != item.index) {
            continue;
        }
        item.reserved = 0;
        if (m_script.type == V4L2_CTRL_TYPE_INTEGER_MENU) {
            item.value = candidate.value;
        } else {
            // The structure is packed: its text is filled through a plain array.
            __u8 label[sizeof item.name];
            copyFixedText(label, candidate.label);
            std::copy(std::begin(label), std::end(label), item.name);
        }
        return 0;
    }
    return -EINVAL;
}

int ScriptedControl::read(std::int64_t& value) const
{
    if (m_script.readError != 0) {
        return -m_script.readError;
    }
    value = m_value;
    return 0;
}

int ScriptedControl::validate(std::int64_t& value) const
{
    switch (m_script.type) {
    case V4L2_CTRL_TYPE_BOOLEAN:
        value = value != 0 ? 1 : 0;
        return 0;
    case V4L2_CTRL_TYPE_MENU:
    case V4L2_CTRL_TYPE_INTEGER_MENU:
        if (value < m_script.minimum || value > m_script.maximum) {
            return -ERANGE;
        }
        return hasItem(value) ? 0 : -EINVAL;
    case V4L2_CTRL_TYPE_BITMASK:
        value &= m_script.maximum & 0xffffffffLL;
        return 0;
    case V4L2_CTRL_TYPE_BUTTON:
        value = 0;
        return 0;
    default:
        value = roundToRange(value, range());
        return 0;
    }
}

int ScriptedControl::write(std::int64_t value)
{
    if (m_script.writeError != 0) {
        return -m_script.writeError;
    }
    m_value = value;
    return 0;
}

void ScriptedControl::force(std::int64_t value)
{
    m_value = value;
}

int ScriptedControl::validateText(std::string const& text) const
{
    auto const length = static_cast<std::int64_t>(text.size());
    if (length < m_script.minimum || length > m_script.maximum) {
        return -ERANGE;
    }
    if (m_script.step > 1 && (length - m_script.minimum) % m_script.step != 0) {
        return -ERANGE;
    }
    return 0;
}

void ScriptedControl::setText(std::string text)
{
    m_script.text = std::move(text);
}

} // namespace VirtualCamera
