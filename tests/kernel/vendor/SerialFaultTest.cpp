// SPDX-License-Identifier: MIT
#include "SerialControls.h"
#include "Shell.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>

using namespace ImageAcquisition;
using namespace KernelTest;

using Numeric = ICameraControlNumeric<int>;

namespace
{

/// The data of requests, in their order.
std::vector<std::string> dataOf(std::vector<EmulatedCameras::Json> const& requests)
{
    std::vector<std::string> data;
    for (EmulatedCameras::Json const& request : requests) {
        data.push_back(request["data"]);
    }
    return data;
}

std::vector<std::string> fiveOf(std::string const& first, std::string const& second = "")
{
    std::vector<std::string> all(5, first);
    all.resize(second.empty() ? 5 : 10, second);
    return all;
}

using SerialFaultTest = SerialControls;

TEST_F(SerialFaultTest, FailAfterFiveAttemptsOnASilentLine)
{
    auto& focus = dynamic_cast<Numeric&>(*camera->focusControl());
    auto& keepAlive = dynamic_cast<ICameraControlBoolean&>(*camera->keepAliveControl());
    EXPECT_TRUE(keepAlive.setValue(true));
    cameras->command("set 3 6 00");
    cameras->command("serial silent");
    cameras->mark();
    double const begin = monotonicSeconds();
    EXPECT_EQ(focus.value(), -1);
    double const took = monotonicSeconds() - begin;
    EXPECT_GE(took, 0.5);
    EXPECT_LT(took, 2);
    EXPECT_EQ(cameras->requests("GET_CUR").size(), 5U);
    // Of a switch the value last written stands in.
    EXPECT_TRUE(keepAlive.value());
    cameras->command("serial normal");
    EXPECT_FALSE(keepAlive.value());
    EXPECT_GE(focus.value(), 0);
}

TEST_F(SerialFaultTest, TakeRepliesThatAreInTimeAndNoOthers)
{
    auto& focus = dynamic_cast<Numeric&>(*camera->focusControl());
    auto& light = dynamic_cast<Numeric&>(*camera->lightIntensityControl());
    ASSERT_TRUE(light.setValue(500));
    ASSERT_TRUE(focus.setValue(321));
    for (auto const& [mode, wanted] : {std::pair{"serial short 6", -1},
                                       {"serial slow 40", 321},
                                       {"serial split 20", 321},
                                       {"serial slow 900", -1},
                                       {"serial split 900", -1}}) {
        cameras->command(mode);
        EXPECT_EQ(focus.value(), wanted) << mode;
        cameras->command("serial normal");
        // What comes too late is not taken for the answer to the next question.
        EXPECT_TRUE(waitFor([] { return cameras->status()["serialPending"] == 0; }));
        EXPECT_EQ(light.value(), 500) << mode;
    }
}

TEST_F(SerialFaultTest, WithoutAnAnswerCountAsFailedThoughTheyArrived)
{
    auto& light = dynamic_cast<Numeric&>(*camera->lightIntensityControl());
    auto& edge = dynamic_cast<Numeric&>(*camera->focusWindowX2Control());
    cameras->command("set 3 20 0100020003000400");
    ASSERT_TRUE(light.setValue(500));
    cameras->command("serial silent");
    EXPECT_FALSE(light.setValue(7));
    EXPECT_EQ(light.value(), -1);
    EXPECT_FALSE(light.updateState());
    cameras->mark();
    EXPECT_FALSE(edge.setValue(9));
    // When the whole can't be read it is written with the value alone.
    EXPECT_EQ(cameras->requests("GET_CUR").size(), 5U);
    EXPECT_EQ(dataOf(cameras->requests("SET_CUR")), fiveOf("0900000000000000"));
    EXPECT_EQ(edge.value(), 9);
    cameras->command("serial normal");
    EXPECT_EQ(edge.value(), 0);
    EXPECT_EQ(light.value(), 7);
    EXPECT_TRUE(light.updateState());
}

TEST_F(SerialFaultTest, OutOfRangeAreSentAndRefusedByTheCamera)
{
    auto& light = dynamic_cast<Numeric&>(*camera->lightIntensityControl());
    ASSERT_TRUE(light.setValue(500));
    cameras->mark();
    EXPECT_FALSE(light.setValue(light.maximum() + 1));
    EXPECT_EQ(dataOf(cameras->requests("SET_CUR")), fiveOf("e903"));
    EXPECT_EQ(light.value(), 500);

    auto& edge = dynamic_cast<Numeric&>(*camera->focusWindowX2Control());
    cameras->command("set 3 20 0100020003000400");
    cameras->mark();
    EXPECT_FALSE(edge.setValue(edge.maximum() + 1));
    EXPECT_EQ(dataOf(cameras->requests("SET_CUR")), fiveOf("0100001003000400", "0010000000000000"));
    EXPECT_EQ(cameras->command("get 3 20"), "0100020003000400");
    EXPECT_EQ(edge.value(), 2);
}

} // namespace
