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
    if (!isKnownCall(call)) {
        return {};
    }
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

RecordedCall::RecordedCall(CallLog& log, CallId const& call, int descriptor) : m_log(log)
{
    m_record.call = call;
    m_record.descriptor = descriptor;
}

void RecordedCall::sent(void const* argument)
{
    std::uint32_t const request = m_record.call.request;
    if (!m_log.recording() || argument == nullptr || (_IOC_DIR(request) & _IOC_WRITE) == 0) {
        return;
    }
    m_record.sent = bytesOf(m_record.call, argument);
    switch (request) {
    case VIDIOC_G_CTRL:
    case VIDIOC_S_CTRL: {
        auto const& control = *static_cast<v4l2_control const*>(argument);
        m_record.controls.push_back({control.id, 0, control.value, {}});
        break;
    }
    case VIDIOC_S_EXT_CTRLS:
    case VIDIOC_TRY_EXT_CTRLS:
    case VIDIOC_G_EXT_CTRLS: {
        auto const& controls = *static_cast<v4l2_ext_controls const*>(argument);
        m_record.controlClass = controls.which;
        for (std::uint32_t index = 0; controls.controls != nullptr && index < controls.count;
             ++index) {
            v4l2_ext_control control = controls.controls[index];
            // A reader's buffer holds nothing yet.
            if (request == VIDIOC_G_EXT_CTRLS && control.size != 0) {
                control.string = nullptr;
            }
            m_record.controls.push_back(transferOf(control));
        }
        break;
    }
    default:
        break;
    }
}

int RecordedCall::end(int result, void const* argument)
{
    if (!m_log.recording()) {
        return result;
    }
    m_record.result = result < 0 ? -1 : result;
    m_record.error = result < 0 ? -result : 0;
    if (argument != nullptr) {
        m_record.received = bytesOf(m_record.call, argument);
    }
    m_log.record(std::move(m_record));
    return result;
}

} // namespace VirtualCamera
