// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "ThreadState.h"
#include "Victim.h"

#include <ICameraControlNumeric.h>

#include <gtest/gtest.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// Of fifty in all; the rest is the serial link's.
constexpr int rounds = 11;

using Numeric = ICameraControlNumeric<int>;

Numeric& numberOf(IBlockingCamera& camera, char const* name)
{
    return dynamic_cast<Numeric&>(*camera.control(name));
}

class UnplugTest : public testing::Test
{
protected:
    template <typename Round>
    void repeat(Round round)
    {
        m_victim.repeat(rounds, round);
    }

    Victim m_victim{"ordinary"};
};

TEST_F(UnplugTest, WhileAFrameIsAwaitedEndsTheWait)
{
    repeat([this] {
        m_victim.device().command("hold 2");
        m_victim.startCapture(4);
        IFrame* const held = m_victim.camera().acquireFrame();
        ASSERT_FALSE(held->isInvalid());
        ASSERT_FALSE(m_victim.camera().acquireFrame()->isInvalid());
        IFrame const* last = nullptr;
        double ended = 0;
        WatchedThread reader([&] {
            last = m_victim.camera().acquireFrame();
            ended = monotonicSeconds();
        });
        EXPECT_TRUE(reader.awaitSelect());
        double const begin = monotonicSeconds();
        m_victim.device().command("unplug");
        reader.join();
        EXPECT_TRUE(last->isInvalid());
        // Before the 2 s are over after which a wait ends by itself.
        EXPECT_GT(ended, begin);
        EXPECT_LT(ended - begin, 1.5);
        // The memory outlives the device.
        EXPECT_EQ(bytesOf(*held).size(), 160U * 120 * 2);
        EXPECT_EQ(m_victim.camera().releaseFrame(held), -1);
        m_victim.expectDead(true);
    });
}

TEST_F(UnplugTest, WhileFramesFlowEndsThemWithTheInvalidOne)
{
    repeat([this] {
        m_victim.device().command("unplug frame 5");
        m_victim.startCapture(4);
        int frames = 0;
        double last = monotonicSeconds();
        for (IFrame* frame; !(frame = m_victim.camera().acquireFrame())->isInvalid(); ++frames) {
            EXPECT_FALSE(frame->isCorrupted());
            last = monotonicSeconds();
            m_victim.camera().releaseFrame(frame);
        }
        EXPECT_LT(monotonicSeconds() - last, patience);
        EXPECT_GT(frames, 0);
        EXPECT_LE(frames, 5);
        m_victim.expectDead(true);
    });
}

TEST_F(UnplugTest, InTheMiddleOfAControlRequestMakesItFail)
{
    int number = 0;
    repeat([this, &number] {
        bool const isRead = ++number % 2 == 0;
        Numeric& contrast = numberOf(m_victim.camera(), "Contrast");
        m_victim.device().command("unplug control 1");
        double const begin = monotonicSeconds();
        if (isRead) {
            EXPECT_EQ(contrast.value(), 0);
        } else {
            EXPECT_FALSE(contrast.setValue(contrast.maximum()));
        }
        EXPECT_LT(monotonicSeconds() - begin, patience);
        EXPECT_EQ(m_victim.device().status()["plugged"], false);
        EXPECT_FALSE(numberOf(m_victim.camera(), "Brightness").setValue(0));
        EXPECT_EQ(numberOf(m_victim.camera(), "Brightness").value(), 0);
        // The flags stay what they were.
        EXPECT_TRUE(contrast.updateState());
        EXPECT_FALSE(contrast.isDisabled());
        m_victim.expectDead(false);
    });
}

TEST_F(UnplugTest, BetweenListAndOpenGivesAnEmptyCamera)
{
    repeat([this] {
        CameraPointer const camera = m_victim.openFromStaleList();
        ASSERT_NE(camera, nullptr);
        EXPECT_EQ(camera->formatNumber(), 0);
        EXPECT_EQ(camera->controlNumber(), 0);
        EXPECT_EQ(camera->setup(4), -1);
        EXPECT_TRUE(camera->acquireFrame()->isInvalid());
        EXPECT_EQ(listDevices()->size(), 0);
    });
}

} // namespace
