// SPDX-License-Identifier: MIT
#include "WatchedCameras.h"

#include "Shell.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>
#include <iterator>

namespace KernelTest
{

namespace
{

constexpr std::chrono::minutes loadLimit(2);

/// Loads vivid with so many cameras, without the other kinds of nodes.
void loadModule(int cameras)
{
    std::string types;
    std::string counts;
    std::string inputs;
    for (int i = 0; i < cameras; ++i) {
        char const* const separator = i == 0 ? "" : ",";
        types += separator + std::string("0x1");
        counts += separator + std::string("1");
        inputs += separator + std::string("0");
    }
    CommandResult const result =
        runShell("modprobe vivid n_devs=" + std::to_string(cameras) + " node_types=" + types +
                 " num_inputs=" + counts + " input_types=" + inputs);
    ASSERT_EQ(result.status, 0) << result.output;
}

/// udev looks at new nodes for a moment, which keeps the module in use.
void unloadModule()
{
    ASSERT_TRUE(waitFor([] { return runShell("rmmod vivid").status == 0; }, loadLimit));
}

} // namespace

void Watched::comeAndGo()
{
    loadModule(static_cast<int>(m_cameras));
    ASSERT_TRUE(waitFor([&] { return m_udevadm.events().size() >= m_cameras; }, loadLimit));
    m_late.beginToAsk();
    waitFor([&] { return m_late.events().size() >= m_cameras; });
    afterLoad = m_late.events();
    unloadModule();
    ASSERT_TRUE(waitFor([&] { return m_udevadm.events().size() >= 2 * m_cameras; }, loadLimit));
    waitFor([&] {
        return std::min(m_asking.events().size(), m_continuous.events().size()) >= 2 * m_cameras;
    });
    fromUdevadm = m_udevadm.events();
    othersFromUdevadm = m_udevadm.otherEvents();
    fromBlocking = m_asking.events();
    fromContinuous = m_continuous.events();
}

void expectSameEvents(VideoEvents const& events, VideoEvents const& wanted, double tolerance)
{
    ASSERT_EQ(events.size(), wanted.size());
    double furthest = 0;
    for (VideoEvent const& one : wanted) {
        auto const match = std::find_if(events.begin(), events.end(), [&](VideoEvent const& event) {
            return event.isSameAs(one);
        });
        ASSERT_NE(match, events.end()) << one.action << " " << one.node;
        EXPECT_EQ(match->subsystem, "video4linux");
        furthest = std::max(furthest, std::fabs(match->seconds - one.seconds));
    }
    std::cout << "furthest from udevadm: " << furthest << " s\n";
    EXPECT_LT(furthest, tolerance);
}

void expectEachNodeOnce(VideoEvents const& events, std::string const& action, int count)
{
    VideoEvents some;
    std::copy_if(events.begin(), events.end(), std::back_inserter(some),
                 [&](VideoEvent const& event) { return event.action == action; });
    EXPECT_EQ(some.size(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        std::string const node = "/dev/video" + std::to_string(i);
        EXPECT_EQ(std::count_if(some.begin(), some.end(),
                                [&](VideoEvent const& event) { return event.node == node; }),
                  1)
            << action << " " << node;
    }
}

} // namespace KernelTest
