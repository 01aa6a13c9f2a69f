// SPDX-License-Identifier: MIT
// Selection by text, held against what v4l2-ctl says is set.
#include "ErrorOf.h"
#include "SessionCamera.h"

using namespace KernelTest;

namespace
{

/// A wish and what it comes to.
struct Wish
{
    char const* text;
    char const* result;
    ia::Match match = ia::Match::Exact;
};

void expectSelected(ia::Camera& camera, std::vector<Wish> const& wishes)
{
    for (Wish const& wish : wishes) {
        SCOPED_TRACE(wish.text);
        auto const error =
            errorOf([&] { EXPECT_EQ(camera.select(wish.text, wish.match).text(), wish.result); });
        EXPECT_FALSE(error) << error->what();
        EXPECT_EQ(camera.selection().text(), wish.result);
        EXPECT_EQ(selectedByV4l2Ctl(camera.found().node()), wish.result);
    }
}

TEST(SessionSelectTest, OnAnEmulatedCameraSetsWhatItReturns)
{
    EmulatedCameras const device({"ordinary"});
    ia::Camera camera = openEmulated(device);
    expectSelected(camera, {{"YUYV 640x480@30", "YUYV 640x480@30"},
                            {"@15", "YUYV 640x480@15"},
                            {"mjpg", "MJPG 640x480@15"},
                            {"1280x720@10", "MJPG 1280x720@10"},
                            {"160x120 yuyv @60", "YUYV 160x120@60"},
                            {"@30/1", "YUYV 160x120@30"},
                            {"MJPG 1000x700@29.97", "MJPG 1280x720@30", ia::nearest},
                            {"YUYV 200x200@25", "YUYV 160x120@30", ia::nearest}});
    auto const television = errorOf([&] { camera.select("YUYV 640x480@29.97"); });
    ASSERT_TRUE(television);
    EXPECT_EQ(television->kind(), ia::ErrorKind::Unsupported);
    EXPECT_EQ(selectedByV4l2Ctl(camera.found().node()), "YUYV 160x120@30");
    Pictures pictures(camera.selection());
    ia::Frame const frame = camera.stream().next(20s);
    ASSERT_TRUE(frame);
    EXPECT_TRUE(pictures.areIn(frame));
}

TEST(SessionSelectTest, OnACameraWithRangesOfRatesSetsAnyOfThem)
{
    EmulatedCameras const device({"ordinary,interval-ranges=yes"});
    ia::Camera camera = openEmulated(device);
    expectSelected(camera, {{"YUYV 160x120@40", "YUYV 160x120@40"},
                            {"@59.94", "YUYV 160x120@59.94"},
                            {"@29.97", "YUYV 640x480@29.97"},
                            {"@12.5", "YUYV 640x480@12.5"},
                            {"MJPG @20", "MJPG 640x480@20"},
                            {"@25", "MJPG 640x480@25"}});
    Pictures pictures(camera.selection());
    for (int round = 0; round < 2; ++round) {
        ia::Frame const frame = camera.stream().next(20s);
        ASSERT_TRUE(frame);
        EXPECT_TRUE(pictures.areIn(frame));
    }
}

TEST(SessionSelectTest, OnVividsWebcamSetsWhatItReturns)
{
    ia::Camera camera = openVivid(vividNode());
    expectSelected(camera, {{"YUYV 640x360@25", "YUYV 640x360@25"},
                            {"@12.5", "YUYV 640x360@12.5"},
                            {"grey 320x180@2", "GREY 320x180@2"},
                            {"RGB3", "RGB3 320x180@2"},
                            {"YUYV 600x400@27", "YUYV 640x360@25", ia::nearest}});
}

} // namespace
