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
    : _script(std::move(script)), _value(_script.value.value_or(_script.defaultValue))
{
}

ControlRange ScriptedControl::range() const
{
    return {_script.minimum, _script.maximum, _script.step, _script.defaultValue};
}

bool ScriptedControl::hasItem(std::int64_t index) const
{
    auto const sameIndex = [index](MenuItem const& item) { return item.index == index; };
    return std::any_of(_script.items.begin(), _script.items.end(), sameIndex);
}

int ScriptedControl::menuItem(v4l2_querymenu& item) const
{
    if (_script.type != V4L2_CTRL_TYPE_MENU && _script.type != V4L2_CTRL_TYPE_INTEGER_MENU)
        return -EINVAL;
    if (item.index < _script.minimum || item.index > _script.maximum)
        return -EINVAL;
    for (MenuItem const& candidate : _script.items) {
        if (candidate.index != item.index)
            continue;
        item.reserved = 0;
        if (_script.type == V4L2_CTRL_TYPE_INTEGER_MENU) {
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
    if (_script.readError != 0)
        return -_script.readError;
    value = _value;
    return 0;
}

int ScriptedControl::validate(std::int64_t& value) const
{
    switch (_script.type) {
    case V4L2_CTRL_TYPE_BOOLEAN:
        value = value != 0 ? 1 : 0;
        return 0;
    case V4L2_CTRL_TYPE_MENU:
    case V4L2_CTRL_TYPE_INTEGER_MENU:
        if (value < _script.minimum || value > _script.maximum)
            return -ERANGE;
        return hasItem(value) ? 0 : -EINVAL;
    case V4L2_CTRL_TYPE_BITMASK:
        value &= _script.maximum & 0xffffffffLL;
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
    if (_script.writeError != 0)
        return -_script.writeError;
    _value = value;
    return 0;
}

void ScriptedControl::force(std::int64_t value)
{
    _value = value;
}

int ScriptedControl::validateText(std::string const& text) const
{
    auto const length = static_cast<std::int64_t>(text.size());
    if (length < _script.minimum || length > _script.maximum)
        return -ERANGE;
    if (_script.step > 1 && (length - _script.minimum) % _script.step != 0)
        return -ERANGE;
    return 0;
}

void ScriptedControl::setText(std::string text)
{
    _script.text = std::move(text);
}

} // namespace VirtualCamera
