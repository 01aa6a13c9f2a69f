// SPDX-License-Identifier: MIT
#include "ControlState.h"

#include "FixedText.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>

namespace VirtualCamera
{

namespace
{

constexpr std::uint32_t enumerationFlags = V4L2_CTRL_FLAG_NEXT_CTRL | V4L2_CTRL_FLAG_NEXT_COMPOUND;

bool plainlyTransferable(std::uint32_t type)
{
    switch (type) {
    case V4L2_CTRL_TYPE_INTEGER:
    case V4L2_CTRL_TYPE_BOOLEAN:
    case V4L2_CTRL_TYPE_MENU:
    case V4L2_CTRL_TYPE_BUTTON:
    case V4L2_CTRL_TYPE_BITMASK:
    case V4L2_CTRL_TYPE_INTEGER_MENU:
        return true;
    default:
        return false;
    }
}

} // namespace

ControlState::ControlState(CameraScript const& script) : m_script(script)
{
    for (ControlScript const& control : script.controls) {
        add(std::make_unique<ScriptedControl>(control));
    }
}

void ControlState::add(std::unique_ptr<ControlNode> control)
{
    auto const before = [](auto const& left, auto const& right) {
        return left->id() < right->id();
    };
    auto const place = std::upper_bound(m_controls.begin(), m_controls.end(), control, before);
    m_controls.insert(place, std::move(control));
}

ControlNode* ControlState::find(std::uint32_t id) const
{
    for (auto const& control : m_controls) {
        if (control->id() == id) {
            return control.get();
        }
    }
    return nullptr;
}

ControlNode& ControlState::at(std::uint32_t id) const
{
    ControlNode* const found = find(id);
    if (found == nullptr) {
        throw std::out_of_range("the camera has no such control");
    }
    return *found;
}

ScriptedControl& ControlState::scriptedAt(std::uint32_t id) const
{
    auto* const scripted = dynamic_cast<ScriptedControl*>(&at(id));
    if (scripted == nullptr) {
        throw std::out_of_range("the control is one of the extension unit's");
    }
    return *scripted;
}

ControlNode* ControlState::following(std::uint32_t id) const
{
    if (m_script.stuckControlId == id) {
        return find(id);
    }
    for (auto const& control : m_controls) {
        if (control->id() > id) {
            return control.get();
        }
    }
    return nullptr;
}

int ControlState::select(std::uint32_t requested, ControlNode*& found) const
{
    if ((requested & V4L2_CTRL_FLAG_NEXT_CTRL) != 0) {
        if (!m_script.nextControlSupported) {
            return -EINVAL;
        }
        found = following(requested & V4L2_CTRL_ID_MASK);
    } else if ((requested & V4L2_CTRL_FLAG_NEXT_COMPOUND) != 0) {
        // Compound controls alone were asked for, and there are none.
        return -EINVAL;
    } else {
        found = find(requested & ~enumerationFlags);
    }
    return found == nullptr ? -EINVAL : 0;
}

std::uint32_t ControlState::flagsOf(ControlNode const& control) const
{
    std::uint32_t flags = control.flags();
    auto const* const scripted = dynamic_cast<ScriptedControl const*>(&control);
    if (scripted == nullptr || scripted->script().masterId == 0) {
        return flags;
    }
    ControlNode const* const master = find(scripted->script().masterId);
    std::int64_t value = 0;
    if (master != nullptr && master->read(value) == 0 && value != scripted->script().masterValue) {
        flags |= V4L2_CTRL_FLAG_INACTIVE;
    }
    return flags;
}

template <typename Answer>
int ControlState::describe(Answer& answer, ControlNode*& found) const
{
    if (int const result = select(answer.id, found)) {
        return result;
    }
    answer = {};
    answer.id = found->id();
    answer.type = found->type();
    copyFixedText(answer.name, found->name());
    answer.flags = flagsOf(*found);
    return 0;
}

int ControlState::query(v4l2_queryctrl& answer) const
{
    ControlNode* found = nullptr;
    if (int const result = describe(answer, found)) {
        return result;
    }
    auto const* const scripted = dynamic_cast<ScriptedControl const*>(found);
    if (scripted != nullptr && !scripted->script().rangeShown) {
        return 0;
    }
    ControlRange const range = found->range();
    answer.minimum = static_cast<__s32>(range.minimum);
    answer.maximum = static_cast<__s32>(range.maximum);
    answer.step = static_cast<__s32>(range.step);
    answer.default_value = static_cast<__s32>(range.defaultValue);
    return 0;
}

int ControlState::queryExtended(v4l2_query_ext_ctrl& answer) const
{
    ControlNode* found = nullptr;
    if (int const result = describe(answer, found)) {
        return result;
    }
    ControlRange const range = found->range();
    answer.minimum = range.minimum;
    answer.maximum = range.maximum;
    answer.step = static_cast<__u64>(range.step);
    answer.default_value = range.defaultValue;
    answer.elems = 1;
    switch (found->type()) {
    case V4L2_CTRL_TYPE_STRING:
        answer.elem_size = static_cast<__u32>(range.maximum + 1);
        break;
    case V4L2_CTRL_TYPE_INTEGER64:
        answer.elem_size = 8;
        break;
    case V4L2_CTRL_TYPE_U8:
        answer.elem_size = 1;
        break;
    case V4L2_CTRL_TYPE_U16:
        answer.elem_size = 2;
        break;
    default:
        answer.elem_size = 4;
        break;
    }
    return 0;
}

int ControlState::queryMenu(v4l2_querymenu& item) const
{
    ControlNode const* const found = find(item.id);
    return found == nullptr ? -EINVAL : found->menuItem(item);
}

bool ControlState::hiddenFromPlainCalls(std::uint32_t id) const
{
    return id >= V4L2_CID_PRIVATE_BASE && !m_script.privateControlsPlain;
}

int ControlState::checkReadable(ControlNode const& control) const
{
    std::uint32_t const flags = flagsOf(control);
    if ((flags & V4L2_CTRL_FLAG_DISABLED) != 0) {
        return -EINVAL;
    }
    return (flags & V4L2_CTRL_FLAG_WRITE_ONLY) != 0 ? -EACCES : 0;
}

int ControlState::checkWritable(ControlNode const& control) const
{
    std::uint32_t const flags = flagsOf(control);
    if ((flags & V4L2_CTRL_FLAG_DISABLED) != 0) {
        return -EINVAL;
    }
    if ((flags & (V4L2_CTRL_FLAG_READ_ONLY | V4L2_CTRL_FLAG_INACTIVE)) != 0) {
        return -EACCES;
    }
    return (flags & V4L2_CTRL_FLAG_GRABBED) != 0 ? -EBUSY : 0;
}

int ControlState::findPlain(std::uint32_t id, int (ControlState::*check)(ControlNode const&) const,
                            ControlNode*& found) const
{
    found = find(id);
    if (found == nullptr || hiddenFromPlainCalls(id)) {
        return -EINVAL;
    }
    if (int const refused = (this->*check)(*found)) {
        return refused;
    }
    return plainlyTransferable(found->type()) ? 0 : -EINVAL;
}

int ControlState::get(v4l2_control& control) const
{
    ControlNode* found = nullptr;
    if (int const refused = findPlain(control.id, &ControlState::checkReadable, found)) {
        return refused;
    }
    std::int64_t value = 0;
    int const result = found->read(value);
    if (result == 0) {
        control.value = static_cast<__s32>(value);
    }
    return result;
}

int ControlState::set(v4l2_control& control)
{
    ControlNode* found = nullptr;
    if (int const refused = findPlain(control.id, &ControlState::checkWritable, found)) {
        return refused;
    }
    std::int64_t value = control.value;
    int result = found->validate(value);
    if (result == 0) {
        result = found->write(value);
    }
    if (result == 0) {
        control.value = static_cast<__s32>(value);
    }
    return result;
}

} // namespace VirtualCamera
