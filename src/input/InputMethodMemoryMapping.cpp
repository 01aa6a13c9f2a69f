// SPDX-License-Identifier: MIT
#include "input/InputMethodMemoryMapping.h"

#include "system/DriverBounds.h"
#include "system/EarlierErrno.h"

#include <libv4l2.h>
#include <sys/mman.h>

#include <algorithm>

namespace ImageAcquisition
{

namespace
{

constexpr int maximumAttempts = 10;
constexpr int waitSeconds = 2;

} // namespace

InputMethodMemoryMapping::~InputMethodMemoryMapping()
{
    for (Mapping& mapping : m_mappings) {
        static_cast<void>(mapping.release());
    }
}

void InputMethodMemoryMapping::Unmapper::operator()(void* address) const
{
    // Mostly this follows a failure, whose errno is the caller's to see.
    ErrnoKept const earlier;
    v4l2_munmap(address, length);
}

int InputMethodMemoryMapping::setup(int bufferCount, unsigned int imageSize)
{
    v4l2_requestbuffers request;
    if (InputMethod::setup(bufferCount, imageSize) != 0 ||
        requestBuffers(node(), bufferCount, request) != 0 || request.count == 0) {
        return -1;
    }
    // Those of an earlier setup that was not cleaned up: the driver has let go of them by now.
    unmapAll();
    // The driver may grant more buffers than were asked for, or fewer.
    try {
        if (mapBuffers(std::min(request.count, maximumBuffers))) {
            return 0;
        }
    } catch (...) {
        giveBuffersBack();
        throw;
    }
    giveBuffersBack();
    return -1;
}

bool InputMethodMemoryMapping::mapBuffers(unsigned int count)
{
    for (unsigned int index = 0; index < count; ++index) {
        if (!mapBuffer(index)) {
            return false;
        }
    }
    createInvalidFrame(m_frames.front()->allocSize());
    return true;
}

bool InputMethodMemoryMapping::mapBuffer(unsigned int index)
{
    v4l2_buffer buffer = bufferRecord(index);
    if (node().xioctl(VIDIOC_QUERYBUF, &buffer) == -1) {
        return false;
    }
    void* const address = v4l2_mmap(nullptr, buffer.length, PROT_READ | PROT_WRITE, MAP_SHARED,
                                    node().descriptor(), buffer.m.offset);
    if (address == MAP_FAILED) {
        return false;
    }
    m_mappings.push_back(Mapping(address, {buffer.length}));
    m_frames.push_back(std::make_unique<Frame>(buffer.length, address));
    return true;
}

void InputMethodMemoryMapping::unmapAll()
{
    m_frames.clear();
    m_mappings.clear();
}

void InputMethodMemoryMapping::giveBuffersBack()
{
    unmapAll();
    releaseBuffers();
}

StreamedFrame* InputMethodMemoryMapping::frameOf(v4l2_buffer const& buffer) const
{
    return buffer.index < m_frames.size() ? m_frames[buffer.index].get() : nullptr;
}

IFrame* InputMethodMemoryMapping::acquireFrame()
{
    if (!isSetUp() || !watchDevice()) {
        return invalidFrame();
    }
    EarlierErrno const earlier;
    v4l2_buffer buffer;
    Attempt attempt = Attempt::CameTooEarly;
    int ready = 0;
    // One more wait than attempts: the outcome of the last one does not matter.
    for (int attempts = 0; attempt == Attempt::CameTooEarly &&
                           (ready = waitForData(waitSeconds, 0)) > 0 && attempts < maximumAttempts;
         ++attempts) {
        attempt = dequeue(watchedDevice(), buffer);
    }
    if (attempt != Attempt::Failed && ready != -1) {
        earlier.restore();
    }
    bool const isOwn = attempt == Attempt::Succeeded && buffer.index < m_frames.size();
    return isOwn ? lend(*m_frames[buffer.index], buffer) : invalidFrame();
}

int InputMethodMemoryMapping::cleanup()
{
    giveBuffersBack();
    destroyInvalidFrame();
    return InputMethod::cleanup();
}

} // namespace ImageAcquisition
