// SPDX-License-Identifier: MIT
#include "ThreeHands.h"

#include "LibraryCamera.h"

#include <thread>
#include <utility>

using namespace ImageAcquisition;

namespace KernelTest
{

ThreeHands::ThreeHands(IBlockingCamera& camera, ICameraControlNumeric<int>& control, IsGood isGood)
    : m_camera(camera), m_control(control), m_isGood(std::move(isGood))
{
}

void ThreeHands::run(unsigned int count, int buffers)
{
    Stream const stream(m_camera, buffers);
    std::thread givingBack([this] { giveBack(); });
    std::thread controlling([this] { control(); });
    std::thread taking([this, count] { take(count); });
    taking.join();
    givingBack.join();
    controlling.join();
}

void ThreeHands::take(unsigned int count)
{
    while (m_taken < count) {
        IFrame* const frame = m_camera.acquireFrame();
        if (frame->isInvalid()) {
            break;
        }
        ++m_taken;
        std::lock_guard const lock(m_lock);
        m_waiting.push_back(frame);
        m_changed.notify_one();
    }
    end();
}

void ThreeHands::giveBack()
{
    for (;;) {
        std::unique_lock lock(m_lock);
        m_changed.wait(lock, [this] { return m_ended || !m_waiting.empty(); });
        if (m_waiting.empty()) {
            return;
        }
        IFrame* const frame = m_waiting.front();
        m_waiting.pop_front();
        lock.unlock();
        m_good += m_isGood(*frame) ? 1 : 0;
        m_givenBack += m_camera.releaseFrame(frame) == 0 ? 1 : 0;
    }
}

void ThreeHands::control()
{
    int const minimum = m_control.minimum();
    for (int value = minimum; !ended(); value = minimum + (value - minimum + 1) % 20) {
        bool const kept = m_control.setValue(value) && m_control.value() == value;
        ++(kept ? m_controlled : m_uncontrolled);
    }
}

void ThreeHands::end()
{
    std::lock_guard const lock(m_lock);
    m_ended = true;
    m_changed.notify_one();
}

bool ThreeHands::ended()
{
    std::lock_guard const lock(m_lock);
    return m_ended;
}

} // namespace KernelTest
