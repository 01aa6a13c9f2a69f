// SPDX-License-Identifier: MIT
#include "input/InputMethodUserPointers.h"

#include "system/EarlierErrno.h"

#include <algorithm>

namespace ImageAcquisition
{

namespace
{

constexpr int waitSeconds = 2;

unsigned long driverAddress(StreamedFrame& frame)
{
    return reinterpret_cast<unsigned long>(frame.bytePtr());
}

} // namespace

InputMethodUserPointers::~InputMethodUserPointers() = default;

int InputMethodUserPointers::setup(int bufferCount, unsigned int imageSize)
{
    EarlierErrno const earlier;
    if (InputMethod::setup(bufferCount, imageSize) == 0) {
        return -1;
    }
    earlier.restore();
    int const count = std::max(bufferCount, 0);
    v4l2_requestbuffers request;
    if (requestBuffers(node(), count, request) != 0) {
        return -1;
    }
    try {
        makeFrames(count, imageSize);
    } catch (...) {
        releaseBuffers();
        throw;
    }
    return 0;
}

void InputMethodUserPointers::makeFrames(int count, unsigned int imageSize)
{
    // Aside, so that whatever allocation fails the list holds whole frames only.
    std::vector<std::unique_ptr<StreamedFrame>> frames(static_cast<std::size_t>(count));
    for (auto& frame : frames) {
        frame = std::make_unique<Frame>(imageSize);
    }
    createInvalidFrame(imageSize);
    m_frames.swap(frames);
}

void InputMethodUserPointers::describe(StreamedFrame& frame, v4l2_buffer& buffer) const
{
    buffer.m.userptr = driverAddress(frame);
    buffer.length = frame.allocSize();
}

StreamedFrame* InputMethodUserPointers::frameOf(v4l2_buffer const& buffer) const
{
    StreamedFrame* match = nullptr;
    for (auto const& frame : m_frames) {
        if (driverAddress(*frame) == buffer.m.userptr && frame->allocSize() == buffer.length) {
            match = frame.get();
        }
    }
    return match;
}

IFrame* InputMethodUserPointers::acquireFrame()
{
    if (!isSetUp()) {
        return invalidFrame();
    }
    InputMethod::BaseFrame* result = nullptr;
    while (dataAvailable(waitSeconds, 0)) {
        // A pending stop keeps the wait from ever waiting again, so it has to end the loop as well.
        if (acquire(result) || stopPending()) {
            return result;
        }
    }
    return invalidFrame();
}

int InputMethodUserPointers::cleanup()
{
    // The driver first: it must not keep the address of memory that is gone.
    releaseBuffers();
    m_frames.clear();
    destroyInvalidFrame();
    return InputMethod::cleanup();
}

} // namespace ImageAcquisition
