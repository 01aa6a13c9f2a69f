// SPDX-License-Identifier: MIT
#include "FuserFolder.h"
#include "Shell.h"
#include "ThreadState.h"
#include "Victim.h"

#include <ICameraControlNumeric.h>

#include <gtest/gtest.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

class SerialUnplugTest : public testing::Test
{
protected:
    ICameraControlNumeric<int>& focus()
    {
        return dynamic_cast<ICameraControlNumeric<int>&>(*m_victim.camera().focusControl());
    }

    void expectDeadLink()
    {
        double const begin = monotonicSeconds();
        EXPECT_FALSE(focus().setValue(5));
        EXPECT_EQ(focus().value(), -1);
        EXPECT_FALSE(focus().updateState());
        EXPECT_LT(monotonicSeconds() - begin, patience);
    }

    /// Rounds of which each begins with a link, and a link at the end.
    template <typename Round>
    void repeat(int rounds, Round round)
    {
        m_victim.repeat(rounds, round);
        EXPECT_GT(focus().maximum(), 0);
        EXPECT_TRUE(focus().setValue(focus().maximum()));
        EXPECT_EQ(focus().value(), focus().maximum());
    }

    FuserFolder const m_folder;
    Victim m_victim{"vendor-new"};
};

TEST_F(SerialUnplugTest, InsteadOfAReplyEndsTheExchangeWithinItsAttempts)
{
    repeat(2, [this] {
        m_victim.device().command("unplug serial 1");
        double const begin = monotonicSeconds();
        EXPECT_EQ(focus().value(), -1);
        EXPECT_LT(monotonicSeconds() - begin, patience);
        EXPECT_EQ(m_victim.device().status()["plugged"], false);
        expectDeadLink();
        m_victim.expectDead(false);
    });
}

TEST_F(SerialUnplugTest, WhileAReplyIsAwaitedEndsTheExchangeWithinItsAttempts)
{
    repeat(2, [this] {
        m_victim.device().command("serial silent");
        int const before = m_victim.device().status()["serialPackets"];
        double ended = 0;
        int value = 0;
        double begin = 0;
        {
            WatchedThread const reader([&] {
                value = focus().value();
                ended = monotonicSeconds();
            });
            EXPECT_TRUE(
                waitFor([&] { return m_victim.device().status()["serialPackets"] > before; }));
            begin = monotonicSeconds();
            m_victim.device().command("unplug");
        }
        EXPECT_EQ(value, -1);
        EXPECT_LT(ended - begin, patience);
        expectDeadLink();
        m_victim.expectDead(false);
        m_victim.device().command("clear");
    });
}

TEST_F(SerialUnplugTest, BetweenListAndOpenGivesNoCamera)
{
    repeat(2, [this] { EXPECT_EQ(m_victim.openFromStaleList(), nullptr); });
}

} // namespace
