// SPDX-License-Identifier: MIT
#include "RecordedCall.h"

#include "ControlClass.h"

#include <linux/videodev2.h>

#include <cstring>
#include <utility>

namespace VirtualCamera
{

namespace
{

std::vector<std::uint8_t> bytesOf(CallId const& call, void const* argument)
{
    // The size that an unknown request claims may be anything.
    if (!isKnownCall(call))
        return {};
    auto const* const bytes = static_cast<std::uint8_t const*>(argument);
    return std::vector<std::uint8_t>(bytes, bytes + _IOC_SIZE(call.request));
}

ControlTransfer transferOf(v4l2_ext_control const& control)
{
    ControlTransfer transfer;
    transfer.id = control.id;
    transfer.size = control.size;
    if (control.size == 0) {
        transfer.value = control.value64;
    } else if (control.string != nullptr) {
        transfer.text.assign(control.string, strnlen(control.string, control.size));
    }
    return transfer;
}

} // namespace

RecordedCall::RecordedCall(CallLog& log, CallId const& call, int descriptor) : _log(log)
{
    _record.call = call;
    _record.descriptor = descriptor;
}

void RecordedCall::sent(void const* argument)
{
    std::uint32_t const request = _record.call.request;
    if (!_log.recording() || argument == nullptr || (_IOC_DIR(request) & _IOC_WRITE) == 0)
        return;
    _record.sent = bytesOf(_record.call, argument);
    switch (request) {
    case VIDIOC_G_CTRL:
    case VIDIOC_S_CTRL: {
        auto const& control = *static_cast<v4l2_control const*>(argument);
        _record.controls.push_back({control.id, 0, control.value, {}});
        break;
    }
    case VIDIOC_S_EXT_CTRLS:
    case VIDIOC_TRY_EXT_CTRLS:
    case VIDIOC_G_EXT_CTRLS: {
        auto const& controls = *static_cast<v4l2_ext_controls const*>(argument);
        _record.controlClass = controls.which;
        for (std::uint32_t index = 0; controls.controls != nullptr && index < controls.count;
             ++index) {
            v4l2_ext_control control = controls.controls[index];
            // A reader's buffer holds nothing yet.
            if (request == VIDIOC_G_EXT_CTRLS && control.size != 0)
                control.string = nullptr;
            _record.controls.push_back(transferOf(control));
        }
        break;
    }
    default:
        break;
    }
}

int RecordedCall::end(int result, void const* argument)
{
    if (!_log.recording())
        return result;
    _record.result = result < 0 ? -1 : result;
    _record.error = result < 0 ? -result : 0;
    if (argument != nullptr)
        _record.received = bytesOf(_record.call, argument);
    _log.record(std::move(_record));
    return result;
}

} // namespace VirtualCamera
