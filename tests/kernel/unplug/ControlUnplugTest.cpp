// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "Victim.h"

#include <ICameraControlNumeric.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

using Numeric = ICameraControlNumeric<int>;

TEST(ControlUnplugTest, InAPrivateControlMakesItFail)
{
    Victim victim("vendor-old");
    victim.open();
    for (bool const isRead : {false, true}) {
        SCOPED_TRACE(isRead);
        victim.close();
        RemainsCheck const remains;
        victim.open();
        auto& light = dynamic_cast<Numeric&>(*victim.camera().lightIntensityControl());
        victim.device().command("unplug control 1");
        double const begin = monotonicSeconds();
        if (isRead) {
            EXPECT_EQ(light.value(), 0);
        } else {
            EXPECT_FALSE(light.setValue(7));
        }
        EXPECT_LT(monotonicSeconds() - begin, patience);
        EXPECT_EQ(victim.device().status()["plugged"], false);
        EXPECT_FALSE(victim.camera().softwareReset());
        victim.expectDead(false);
        victim.replug();
    }
    victim.open();
}

TEST(ControlUnplugTest, WhileFramesFlowEndsTheControlsThatAreSetBetweenThem)
{
    Victim victim("ordinary");
    victim.open();
    for (char const* const when : {"frame 4", "control 7"}) {
        SCOPED_TRACE(when);
        victim.close();
        RemainsCheck const remains;
        victim.open();
        auto& contrast = dynamic_cast<Numeric&>(*victim.camera().control("Contrast"));
        victim.startCapture(4);
        victim.device().command(std::string("unplug ") + when);
        double longest = 0;
        double begin = monotonicSeconds();
        int number = 0;
        for (IFrame* frame; !(frame = victim.camera().acquireFrame())->isInvalid(); ++number) {
            contrast.setValue(contrast.minimum() + number % 2);
            victim.camera().releaseFrame(frame);
            longest = std::max(longest, monotonicSeconds() - begin);
            begin = monotonicSeconds();
        }
        EXPECT_GT(number, 0);
        EXPECT_LT(std::max(longest, monotonicSeconds() - begin), patience);
        EXPECT_EQ(victim.device().status()["plugged"], false);
        EXPECT_FALSE(contrast.setValue(contrast.maximum()));
        victim.expectDead(true);
        victim.replug();
    }
    victim.open();
}

} // namespace
