// SPDX-License-Identifier: MIT
#pragma once

#include <IBlockingCamera.h>
#include <ICameraControlNumeric.h>
#include <IFrame.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace KernelTest
{

/// A capture by three threads: one takes frames, one looks at them and gives them back, one writes
/// and reads a control.
class ThreeHands
{
public:
    using IsGood = std::function<bool(ImageAcquisition::IFrame&)>;

    /// @p isGood is asked by the second thread.
    ThreeHands(ImageAcquisition::IBlockingCamera& camera,
               ImageAcquisition::ICameraControlNumeric<int>& control, IsGood isGood);

    /// Takes so many frames with so many buffers, from setup() to cleanup().
    void run(unsigned int count, int buffers);

    unsigned int taken() const { return m_taken; }
    unsigned int good() const { return m_good; }
    unsigned int givenBack() const { return m_givenBack; }
    /// Writes of the control that were read again as they were written, and those that were not.
    unsigned int controlled() const { return m_controlled; }
    unsigned int uncontrolled() const { return m_uncontrolled; }

private:
    void take(unsigned int count);
    void giveBack();
    void control();
    void end();
    bool ended();

    ImageAcquisition::IBlockingCamera& m_camera;
    ImageAcquisition::ICameraControlNumeric<int>& m_control;
    IsGood const m_isGood;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<ImageAcquisition::IFrame*> m_waiting;
    bool m_ended = false;
    // Each belongs to one of the threads while it runs.
    unsigned int m_taken = 0;
    unsigned int m_good = 0;
    unsigned int m_givenBack = 0;
    unsigned int m_controlled = 0;
    unsigned int m_uncontrolled = 0;
};

} // namespace KernelTest
