// SPDX-License-Identifier: MIT
#pragma once

#include "VideoEvents.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

namespace KernelTest
{

/// The module comes and goes, with everybody watching.
class Watched
{
public:
    explicit Watched(int cameras) : m_cameras(static_cast<std::size_t>(cameras))
    {
        m_asking.beginToAsk();
    }

    void comeAndGo();

    VideoEvents fromUdevadm;
    VideoEvents fromBlocking;
    VideoEvents fromContinuous;
    VideoEvents afterLoad; ///< of a monitor that was asked only when all had come
    std::size_t othersFromUdevadm = 0;

private:
    std::size_t m_cameras;
    UdevadmWatch m_udevadm;
    ContinuousWatch m_continuous;
    BlockingWatch m_asking;
    BlockingWatch m_late;
};

/// The same events at the same times. Their order is each listener's own: several processes of
/// udev's send at once, and the kernel hands a message to one listener after the other.
void expectSameEvents(VideoEvents const& events, VideoEvents const& wanted, double tolerance);

/// Every node from video0 on once with this action, and no other.
void expectEachNodeOnce(VideoEvents const& events, std::string const& action, int count);

} // namespace KernelTest
