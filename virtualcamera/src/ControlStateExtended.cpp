// SPDX-License-Identifier: MIT
#include "ControlState.h"

#include "ControlClass.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace VirtualCamera
{

namespace
{

// Bytes of a payload that the caller points to; 0 for values that travel in the structure itself.
std::size_t payloadSize(ControlNode const& control, v4l2_ext_control const& transfer)
{
    if (transfer.size == 0) {
        return 0;
    }
    switch (control.type()) {
    case V4L2_CTRL_TYPE_U8:
        return 1;
    case V4L2_CTRL_TYPE_U16:
        return 2;
    case V4L2_CTRL_TYPE_U32:
        return 4;
    default:
        return 0;
    }
}

void storeValue(ControlNode const& control, v4l2_ext_control& transfer, std::int64_t value)
{
    if (std::size_t const bytes = payloadSize(control, transfer)) {
        // Little-endian machines only, as all of this library's.
        std::memcpy(transfer.ptr, &value, bytes);
    } else if (control.type() == V4L2_CTRL_TYPE_INTEGER64) {
        transfer.value64 = value;
    } else {
        transfer.value = static_cast<__s32>(value);
    }
}

std::int64_t loadValue(ControlNode const& control, v4l2_ext_control const& transfer)
{
    std::int64_t value = 0;
    if (std::size_t const bytes = payloadSize(control, transfer)) {
        std::memcpy(&value, transfer.ptr, bytes);
    } else if (control.type() == V4L2_CTRL_TYPE_INTEGER64) {
        value = transfer.value64;
    } else if (control.type() == V4L2_CTRL_TYPE_U32) {
        value = static_cast<__u32>(transfer.value);
    } else {
        value = transfer.value;
    }
    return value;
}

// The text as the kernel takes it over: up to the terminating zero or the given size.
std::string loadText(v4l2_ext_control const& transfer)
{
    return std::string(transfer.string, strnlen(transfer.string, transfer.size));
}

} // namespace

int ControlState::checkClass(v4l2_ext_controls& controls) const
{
    if (controls.count == 0) {
        return 0;
    }
    if (controls.controls == nullptr) {
        return -EFAULT;
    }
    std::uint32_t const which = controls.which;
    if (which == V4L2_CTRL_WHICH_CUR_VAL || which == V4L2_CTRL_WHICH_DEF_VAL) {
        return 0;
    }
    for (std::uint32_t index = 0; index < controls.count; ++index) {
        if (controlClassOf(controls.controls[index].id) != which) {
            controls.error_idx = index;
            return -EINVAL;
        }
    }
    return 0;
}

int ControlState::checkTransfer(v4l2_ext_control& transfer) const
{
    ControlNode const* const found = find(transfer.id);
    if (found == nullptr) {
        return -EINVAL;
    }
    std::size_t const bytes = payloadSize(*found, transfer);
    if (bytes == 0) {
        return 0;
    }
    if (transfer.size < bytes) {
        transfer.size = static_cast<__u32>(bytes);
        return -ENOSPC;
    }
    return transfer.ptr == nullptr ? -EFAULT : 0;
}

int ControlState::getOne(v4l2_ext_control& transfer, bool defaults) const
{
    if (int const unsuitable = checkTransfer(transfer)) {
        return unsuitable;
    }
    ControlNode const& control = at(transfer.id);
    if (int const refused = checkReadable(control)) {
        return refused;
    }
    std::int64_t value = 0;
    if (int const failed = control.read(value)) {
        return failed;
    }
    if (control.type() != V4L2_CTRL_TYPE_STRING) {
        storeValue(control, transfer, defaults ? control.range().defaultValue : value);
        return 0;
    }
    ScriptedControl const& scripted = scriptedAt(transfer.id);
    std::string const text = defaults ? std::string() : scripted.text();
    if (transfer.size < text.size() + 1) {
        bool const exact = scripted.script().exactSizeNamed;
        transfer.size = static_cast<__u32>(
            exact ? text.size() + 1 : static_cast<std::size_t>(scripted.range().maximum + 1));
        return -ENOSPC;
    }
    if (transfer.string == nullptr) {
        return -EFAULT;
    }
    std::memcpy(transfer.string, text.c_str(), text.size() + 1);
    return 0;
}

int ControlState::getExtended(v4l2_ext_controls& controls) const
{
    if (int const mixed = checkClass(controls)) {
        return mixed;
    }
    bool const defaults = controls.which == V4L2_CTRL_WHICH_DEF_VAL;
    for (std::uint32_t index = 0; index < controls.count; ++index) {
        if (int const result = getOne(controls.controls[index], defaults)) {
            controls.error_idx = index;
            return result;
        }
    }
    return 0;
}

int ControlState::validateOne(v4l2_ext_control& transfer) const
{
    if (int const unsuitable = checkTransfer(transfer)) {
        return unsuitable;
    }
    ControlNode const& control = at(transfer.id);
    if (int const refused = checkWritable(control)) {
        return refused;
    }
    if (control.type() == V4L2_CTRL_TYPE_STRING) {
        if (transfer.size == 0) {
            return -ERANGE;
        }
        if (transfer.string == nullptr) {
            return -EFAULT;
        }
        return scriptedAt(transfer.id).validateText(loadText(transfer));
    }
    std::int64_t value = loadValue(control, transfer);
    int const result = control.validate(value);
    if (result == 0) {
        storeValue(control, transfer, value);
    }
    return result;
}

int ControlState::storeOne(v4l2_ext_control const& transfer)
{
    ControlNode& control = at(transfer.id);
    if (control.type() != V4L2_CTRL_TYPE_STRING) {
        return control.write(loadValue(control, transfer));
    }
    ScriptedControl& scripted = scriptedAt(transfer.id);
    if (int const failed = scripted.write(0)) {
        return failed;
    }
    scripted.setText(loadText(transfer));
    return 0;
}

int ControlState::setExtended(v4l2_ext_controls& controls, bool stored)
{
    if (int const mixed = checkClass(controls)) {
        return mixed;
    }
    if (controls.which == V4L2_CTRL_WHICH_DEF_VAL) {
        return -EINVAL;
    }
    for (std::uint32_t index = 0; index < controls.count; ++index) {
        if (int const result = validateOne(controls.controls[index])) {
            // A set that was refused before anything was written names no single culprit.
            controls.error_idx = stored ? controls.count : index;
            return result;
        }
    }
    for (std::uint32_t index = 0; stored && index < controls.count; ++index) {
        if (int const result = storeOne(controls.controls[index])) {
            controls.error_idx = index;
            return result;
        }
    }
    return 0;
}

} // namespace VirtualCamera
