// SPDX-License-Identifier: MIT
#include "ExtensionUnitState.h"

#include "MappedControl.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <utility>

namespace VirtualCamera
{

namespace
{

// What uvcvideo allows for one menu.
constexpr std::uint32_t mostMenuItems = 32;

void complete(SelectorScript& selector)
{
    if (selector.maximum.empty()) {
        for (unsigned byte = 0; byte < selector.size; ++byte) {
            selector.maximum.push_back(byte % 2 == 1 ? 0x7f : 0xff);
        }
    }
    if (selector.current.empty()) {
        selector.current = selector.defaults;
    }
    for (auto* bytes :
         {&selector.current, &selector.minimum, &selector.maximum, &selector.defaults}) {
        bytes->resize(selector.size);
    }
}

} // namespace

ExtensionUnitState::ExtensionUnitState(std::optional<ExtensionUnitScript> const& script)
    : m_script(script)
{
    if (m_script) {
        for (SelectorScript& selector : m_script->selectors) {
            complete(selector);
        }
    }
}

SelectorScript const* ExtensionUnitState::find(std::uint8_t number) const
{
    if (!m_script) {
        return nullptr;
    }
    for (SelectorScript const& selector : m_script->selectors) {
        if (selector.selector == number) {
            return &selector;
        }
    }
    return nullptr;
}

SelectorScript const& ExtensionUnitState::selector(std::uint8_t number) const
{
    SelectorScript const* found = find(number);
    if (found == nullptr) {
        throw std::out_of_range("the camera has no such selector");
    }
    return *found;
}

SelectorScript& ExtensionUnitState::selector(std::uint8_t number)
{
    return const_cast<SelectorScript&>(std::as_const(*this).selector(number));
}

int ExtensionUnitState::check(uvc_xu_control_mapping const& mapping) const
{
    switch (mapping.v4l2_type) {
    case V4L2_CTRL_TYPE_INTEGER:
    case V4L2_CTRL_TYPE_BOOLEAN:
    case V4L2_CTRL_TYPE_BUTTON:
        break;
    case V4L2_CTRL_TYPE_MENU:
        if (mapping.menu_count == 0 || mapping.menu_count > mostMenuItems) {
            return -EINVAL;
        }
        if (mapping.menu_info == nullptr) {
            return -EFAULT;
        }
        break;
    default:
        return -ENOTTY;
    }
    if ((mapping.id & ~V4L2_CTRL_ID_MASK) != 0) {
        return -EINVAL;
    }
    if (!m_script || !std::equal(m_script->guid.begin(), m_script->guid.end(), mapping.entity)) {
        return -ENOENT;
    }
    SelectorScript const* target = find(mapping.selector);
    if (target == nullptr) {
        return -ENOENT;
    }
    if (mapping.size == 0 || mapping.size > 32 ||
        mapping.offset + mapping.size > target->size * 8) {
        return -EINVAL;
    }
    for (ControlMapping const& earlier : m_mappings) {
        if (earlier.error == 0 && earlier.mapping.id == mapping.id) {
            return -EEXIST;
        }
    }
    return 0;
}

int ExtensionUnitState::map(uvc_xu_control_mapping const& mapping,
                            std::unique_ptr<ControlNode>& added)
{
    ControlMapping kept;
    kept.mapping = mapping;
    kept.mapping.menu_info = nullptr;
    if (mapping.menu_info != nullptr && mapping.menu_count <= mostMenuItems) {
        kept.menu.assign(mapping.menu_info, mapping.menu_info + mapping.menu_count);
    }
    int const result = check(mapping);
    kept.error = -result;
    if (result == 0) {
        added = std::make_unique<MappedControl>(kept, selector(mapping.selector));
    }
    m_mappings.push_back(std::move(kept));
    return result;
}

} // namespace VirtualCamera
