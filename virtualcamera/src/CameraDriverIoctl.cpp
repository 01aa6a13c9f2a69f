// SPDX-License-Identifier: MIT
#include "CameraDriver.h"

#include "FixedText.h"
#include "RecordedCall.h"

#include <cerrno>

namespace VirtualCamera
{

namespace
{

template <typename Argument>
Argument& as(void* argument)
{
    return *static_cast<Argument*>(argument);
}

std::uint32_t usualCapabilities(CameraScript const& script)
{
    std::uint32_t capabilities = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_EXT_PIX_FORMAT;
    if (script.mmapOffered || script.userPointersOffered) {
        capabilities |= V4L2_CAP_STREAMING;
    }
    if (script.readOffered) {
        capabilities |= V4L2_CAP_READWRITE;
    }
    return capabilities;
}

} // namespace

int CameraDriver::ioctl(int file, std::uint32_t request, void* argument)
{
    Lock lock(m_mutex);
    catchUp();
    Announcement const announcement(*this);
    CallId const id(static_cast<unsigned long>(request));
    RecordedCall call(m_log, id, file);
    call.sent(argument);
    if (int const scripted = m_log.countUse(id)) {
        return call.end(-scripted, argument);
    }
    if (argument == nullptr) {
        return call.end(m_gone ? -ENODEV : -EFAULT);
    }
    if (settledByLibrary(file, request)) {
        return call.end(0, argument);
    }
    if (m_gone) {
        return call.end(-ENODEV, argument);
    }
    int const result = answer(lock, file, request, argument);
    return call.end(result, argument);
}

// libv4l2 remembers which descriptors stream, and calls it a success to start one that does or to
// stop one that doesn't, without a look at the device.
bool CameraDriver::settledByLibrary(int file, std::uint32_t request) const
{
    return m_gone && ((request == VIDIOC_STREAMON && m_queue.streamsTo(file)) ||
                      (request == VIDIOC_STREAMOFF && !m_queue.streamsTo(file)));
}

int CameraDriver::answer(Lock& lock, int file, std::uint32_t request, void* argument)
{
    int result = answerStream(lock, file, request, argument);
    if (result == -ENOTTY) {
        result = answerControl(request, argument);
    }
    if (result == -ENOTTY) {
        result = answerFormat(request, argument);
    }
    if (result == -ENOTTY) {
        result = answerDevice(request, argument);
    }
    return result;
}

int CameraDriver::answerDevice(std::uint32_t request, void* argument)
{
    switch (request) {
    case VIDIOC_QUERYCAP:
        return queryCapabilities(as<v4l2_capability>(argument));
    case VIDIOC_ENUMINPUT: {
        auto& input = as<v4l2_input>(argument);
        if (input.index != 0) {
            return -EINVAL;
        }
        input = {};
        copyFixedText(input.name, "Camera 1");
        input.type = V4L2_INPUT_TYPE_CAMERA;
        return 0;
    }
    case VIDIOC_G_INPUT:
        as<int>(argument) = 0;
        return 0;
    case VIDIOC_S_INPUT:
        return as<int>(argument) == 0 ? 0 : -EINVAL;
    default:
        return -ENOTTY;
    }
}

int CameraDriver::queryCapabilities(v4l2_capability& capability) const
{
    std::uint32_t const usual = usualCapabilities(m_script);
    capability = {};
    copyFixedText(capability.driver, m_script.driver);
    copyFixedText(capability.card, m_script.card);
    copyFixedText(capability.bus_info, m_script.busInfo);
    capability.version = m_script.driverVersion;
    capability.device_caps = m_script.deviceCapabilities.value_or(usual);
    capability.capabilities =
        m_script.capabilities.value_or(capability.device_caps | V4L2_CAP_DEVICE_CAPS);
    return 0;
}

int CameraDriver::answerFormat(std::uint32_t request, void* argument)
{
    switch (request) {
    case VIDIOC_ENUM_FMT:
        return m_formats.enumerateFormats(as<v4l2_fmtdesc>(argument));
    case VIDIOC_ENUM_FRAMESIZES:
        return m_formats.enumerateSizes(as<v4l2_frmsizeenum>(argument));
    case VIDIOC_ENUM_FRAMEINTERVALS:
        return m_formats.enumerateIntervals(as<v4l2_frmivalenum>(argument));
    case VIDIOC_G_FMT:
        return m_formats.currentFormat(as<v4l2_format>(argument));
    case VIDIOC_TRY_FMT:
        return m_formats.tryFormat(as<v4l2_format>(argument));
    case VIDIOC_S_FMT:
        // Like uvcvideo: allocated buffers have the present format's size.
        return m_queue.count() != 0 ? -EBUSY : m_formats.setFormat(as<v4l2_format>(argument));
    case VIDIOC_G_PARM:
        return m_formats.currentParameters(as<v4l2_streamparm>(argument));
    case VIDIOC_S_PARM:
        return m_queue.streaming() ? -EBUSY
                                   : m_formats.setParameters(as<v4l2_streamparm>(argument));
    default:
        return -ENOTTY;
    }
}

int CameraDriver::answerStream(Lock& lock, int file, std::uint32_t request, void* argument)
{
    switch (request) {
    case VIDIOC_REQBUFS:
        return m_queue.request(file, as<v4l2_requestbuffers>(argument),
                               m_formats.pixels().sizeimage);
    case VIDIOC_QUERYBUF:
        return m_queue.query(as<v4l2_buffer>(argument));
    case VIDIOC_QBUF:
        return m_queue.queue(file, as<v4l2_buffer>(argument));
    case VIDIOC_DQBUF:
        return dequeue(lock, file, as<v4l2_buffer>(argument));
    case VIDIOC_STREAMON:
        return streamOn(file, as<int>(argument));
    case VIDIOC_STREAMOFF:
        return m_queue.streamOff(file, as<int>(argument));
    default:
        return -ENOTTY;
    }
}

int CameraDriver::answerControl(std::uint32_t request, void* argument)
{
    switch (request) {
    case VIDIOC_QUERYCTRL:
        return m_controls.query(as<v4l2_queryctrl>(argument));
    case VIDIOC_QUERY_EXT_CTRL:
        return m_controls.queryExtended(as<v4l2_query_ext_ctrl>(argument));
    case VIDIOC_QUERYMENU:
        return m_controls.queryMenu(as<v4l2_querymenu>(argument));
    case VIDIOC_G_CTRL:
        return m_controls.get(as<v4l2_control>(argument));
    case VIDIOC_S_CTRL:
        return m_controls.set(as<v4l2_control>(argument));
    case VIDIOC_G_EXT_CTRLS:
        return m_controls.getExtended(as<v4l2_ext_controls>(argument));
    case VIDIOC_S_EXT_CTRLS:
        return m_controls.setExtended(as<v4l2_ext_controls>(argument), true);
    case VIDIOC_TRY_EXT_CTRLS:
        return m_controls.setExtended(as<v4l2_ext_controls>(argument), false);
    case UVCIOC_CTRL_MAP:
        return mapControl(as<uvc_xu_control_mapping>(argument));
    default:
        return -ENOTTY;
    }
}

int CameraDriver::mapControl(uvc_xu_control_mapping const& mapping)
{
    if (m_script.driver != "uvcvideo") {
        return -ENOTTY;
    }
    std::unique_ptr<ControlNode> added;
    int const result = m_extensionUnit.map(mapping, added);
    if (result == 0) {
        m_controls.add(std::move(added));
    }
    return result;
}

} // namespace VirtualCamera
