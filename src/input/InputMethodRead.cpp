// SPDX-License-Identifier: MIT
#include "input/InputMethodRead.h"

#include "system/EarlierErrno.h"

#include <libv4l2.h>

#include <algorithm>
#include <cerrno>

namespace ImageAcquisition
{

namespace
{

constexpr int waitSeconds = 2;

} // namespace

InputMethodRead::InputMethodRead(NodeReference node) : InputMethod(Read, node) {}

InputMethodRead::~InputMethodRead() = default;

int InputMethodRead::setup(int bufferCount, unsigned int imageSize)
{
    EarlierErrno const earlier;
    if (InputMethod::setup(bufferCount, imageSize) == 0) {
        return -1;
    }
    earlier.restore();
    // Aside, so that whatever allocation fails the pool holds whole frames only.
    std::vector<std::unique_ptr<InputMethod::BaseFrame>> pool(
        static_cast<std::size_t>(std::max(bufferCount, 0)));
    for (auto& frame : pool) {
        frame = std::make_unique<Frame>(imageSize);
    }
    std::lock_guard const lock(m_poolLock);
    m_pool.swap(pool);
    return 0;
}

int InputMethodRead::startCapture()
{
    return 0;
}

bool InputMethodRead::acquire(InputMethod::BaseFrame* frame) const
{
    EarlierErrno const earlier;
    ssize_t const result = v4l2_read(node().descriptor(), frame->bytePtr(), frame->allocSize());
    bool const cameTooEarly = result == -1 && errno == EAGAIN;
    if (cameTooEarly || result != -1) {
        earlier.restore();
    }
    return !cameTooEarly;
}

std::unique_ptr<InputMethod::BaseFrame> InputMethodRead::takeFromPool()
{
    std::lock_guard const lock(m_poolLock);
    if (m_pool.empty()) {
        return nullptr;
    }
    std::unique_ptr<InputMethod::BaseFrame> frame = std::move(m_pool.back());
    m_pool.pop_back();
    return frame;
}

IFrame* InputMethodRead::acquireFrame()
{
    std::unique_ptr<InputMethod::BaseFrame> frame = takeFromPool();
    if (!frame) {
        return IFrame::invalid();
    }
    // A pending stop keeps the wait from ever waiting again, so it has to end the loop as well.
    while (dataAvailable(waitSeconds, 0) && !acquire(frame.get()) && !stopPending()) {
    }
    return frame.release();
}

int InputMethodRead::releaseFrame(IFrame* frame)
{
    if (frame != nullptr && frame->isInvalid()) {
        return 0;
    }
    std::lock_guard const lock(m_poolLock);
    auto const inPool = [frame](auto const& one) { return frame != nullptr && one.get() == frame; };
    if (std::any_of(m_pool.begin(), m_pool.end(), inPool)) {
        return 0;
    }
    // Whatever is no frame of this kind leaves an empty place: the pool must not own it.
    m_pool.emplace_back(dynamic_cast<Frame*>(frame));
    return 0;
}

int InputMethodRead::stopCapture()
{
    return InputMethod::stopCapture();
}

int InputMethodRead::cleanup()
{
    {
        std::lock_guard const lock(m_poolLock);
        m_pool.clear();
    }
    return InputMethod::cleanup();
}

} // namespace ImageAcquisition
