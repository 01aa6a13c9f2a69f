// SPDX-License-Identifier: MIT
#include "input/InputMethod.h"

#include "system/Pause.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace ImageAcquisition
{

namespace
{

constexpr std::chrono::milliseconds leaveWait{10};

} // namespace

IFrame::~IFrame() = default;

IFrame* IFrame::invalid()
{
    return &InputMethod::InvalidFrame::getUniqueInstance();
}

InputMethod::InputMethod(Type type, NodeReference node) : m_type(type), m_node(node) {}

InputMethod::~InputMethod()
{
    // A setup that failed half-way leaves the pipe open, and its caller may never clean up.
    m_wakeUp.close();
}

int InputMethod::setup(int /*bufferCount*/, unsigned int /*imageSize*/)
{
    bool const opened = m_wakeUp.open();
    ErrnoKept const reason;
    // Here, so that no frame has to wait for memory.
    watchDevice();
    return opened ? 0 : -1;
}

int InputMethod::stopCapture()
{
    m_wakeUp.write();
    pauseFor(leaveWait);
    return 0;
}

int InputMethod::cleanup()
{
    m_wakeUp.close();
    return 0;
}

void InputMethod::watch(int device, int wakeUp) const
{
    // Aside, so that a set for which there was no memory is not taken for the one of now.
    DescriptorSet watched;
    watched.add(device);
    watched.add(wakeUp);
    m_watched = std::move(watched);
    m_watchedDevice = device;
    m_watchedWakeUp = wakeUp;
}

bool InputMethod::stopPending() const
{
    return m_watched.isReady(m_watchedWakeUp);
}

unsigned int InputMethod::BaseFrame::size() const
{
    return bytesUsed();
}

unsigned long long InputMethod::BaseFrame::counter() const
{
    return 0;
}

FrameTimeStamp InputMethod::BaseFrame::timeStamp() const
{
    return {};
}

InputMethod::InvalidFrame& InputMethod::InvalidFrame::getUniqueInstance()
{
    static InvalidFrame instance(1);
    return instance;
}

} // namespace ImageAcquisition
