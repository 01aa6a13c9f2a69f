// SPDX-License-Identifier: MIT
#include "input/InputMethod.h"

#include "system/DescriptorSet.h"
#include "system/Pause.h"

#include <cerrno>
#include <chrono>

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
    return m_wakeUp.open() ? 0 : -1;
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

bool InputMethod::dataAvailable(int seconds, int microseconds) const
{
    int const device = m_node.descriptor();
    if (device < 0) {
        return false;
    }
    DescriptorSet descriptors;
    descriptors.add(device);
    descriptors.add(m_wakeUp.readingEnd());
    timeval timeout{};
    timeout.tv_sec = seconds;
    timeout.tv_usec = microseconds;
    int ready;
    do {
        ready = descriptors.waitReadable(&timeout);
    } while (ready == -1 && errno == EINTR);
    return ready >= 1;
}

bool InputMethod::stopPending() const
{
    DescriptorSet pipe;
    pipe.add(m_wakeUp.readingEnd());
    timeval noTime{};
    return pipe.waitReadable(&noTime) >= 1;
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
