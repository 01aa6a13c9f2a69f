// SPDX-License-Identifier: MIT
// What a camera is set to by a text.
#include "ErrorOf.h"
#include "OpenedCamera.h"

#include <IBlockingCamera.h>
#include <gmock/gmock.h>
#include <linux/videodev2.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition::Session;
using testing::ElementsAre;
using testing::HasSubstr;
using VirtualCamera::aCamera;
using VirtualCamera::CameraBuilder;

CameraBuilder listedCamera()
{
    return aCamera()
        .withFormat("YUYV")
        .withSize(640, 480)
        .withInterval(1, 30)
        .withInterval(1, 15)
        .withSize(320, 240)
        .withInterval(1, 30)
        .withFormat("MJPG")
        .withSize(320, 240)
        .withInterval(1, 60)
        .withSize(1280, 720)
        .withInterval(1001, 30000)
        .withInterval(1, 30)
        .withInterval(3, 25);
}

CameraBuilder rangedCamera()
{
    VirtualCamera::SizeRangeScript range;
    range.minimumWidth = 64;
    range.maximumWidth = 1920;
    range.stepWidth = 16;
    range.minimumHeight = 32;
    range.maximumHeight = 1080;
    range.stepHeight = 8;
    return aCamera().withFormat("YUYV").withSteppedSizes(range).withContinuousIntervals({1, 60},
                                                                                        {1, 5});
}

struct SelectTest : public testing::Test
{
    static std::string refusal(Camera& camera, std::string const& text, Match match = Match::Exact)
    {
        auto const error = errorOf([&] { camera.select(text, match); });
        return error ? std::string(toText(error->kind())) + ": " + error->reason() : "none";
    }
};

TEST_F(SelectTest, TellsWhatIsSet)
{
    OpenedCamera opened(listedCamera());
    EXPECT_EQ(opened.camera.selection().text(), "YUYV 640x480@30");
    EXPECT_EQ(opened.camera.select("mjpg 1280X720@29.97").text(), "MJPG 1280x720@29.97");
    EXPECT_EQ(opened.camera.selection().text(), "MJPG 1280x720@29.97");
    EXPECT_EQ(opened.camera.selection().rate, (FrameRate{30000, 1001}));
}

TEST_F(SelectTest, KeepsWhatIsLeftOut)
{
    OpenedCamera opened(listedCamera());
    EXPECT_EQ(opened.camera.select("@15").text(), "YUYV 640x480@15");
    EXPECT_EQ(opened.camera.select("640x480").text(), "YUYV 640x480@15");
    EXPECT_EQ(opened.camera.select("320x240").text(), "YUYV 320x240@30")
        << "15 does not go with it";
    EXPECT_EQ(opened.camera.select("MJPG").text(), "MJPG 320x240@60");
}

TEST_F(SelectTest, TakesTheFirstThatGoesWithTheWish)
{
    OpenedCamera opened(listedCamera());
    EXPECT_EQ(opened.camera.select("1280x720").text(), "MJPG 1280x720@30");
    EXPECT_EQ(opened.camera.select("@60").text(), "MJPG 320x240@60");
}

TEST_F(SelectTest, SetsNothingWithoutAWish)
{
    OpenedCamera opened(listedCamera());
    opened.video.clearLog();
    EXPECT_EQ(opened.camera.select("").text(), "YUYV 640x480@30");
    EXPECT_EQ(opened.video.countOf(VIDIOC_S_FMT), 0u);
}

TEST_F(SelectTest, TellsTelevisionsRatesFromWholeOnes)
{
    OpenedCamera opened(listedCamera());
    EXPECT_EQ(opened.camera.select("1280x720@30").rate, (FrameRate{30, 1}));
    EXPECT_EQ(opened.camera.select("1280x720@30000/1001").rate, (FrameRate{30000, 1001}));
    EXPECT_EQ(opened.camera.select("1280x720@8.33").rate, (FrameRate{25, 3}));
    EXPECT_THAT(refusal(opened.camera, "1280x720@29.9"), HasSubstr("has no frame rate 29.9"));
}

TEST_F(SelectTest, TakesTheNearestRateWithinItsTolerance)
{
    // 30; 29.97 rounded down to units of 100 ns, and exactly; 23.976; 59.94; 119.88; 8.333
    OpenedCamera opened(aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 30)
                            .withInterval(333666, 10000000)
                            .withInterval(1001, 30000)
                            .withInterval(1001, 24000)
                            .withInterval(1001, 60000)
                            .withInterval(1001, 120000)
                            .withInterval(3, 25));
    for (auto const& [wanted, found] : {std::pair<char const*, FrameRate>{"@30", {30, 1}},
                                        {"@29.97", {30000, 1001}},
                                        {"@29.97003", {30000, 1001}},
                                        {"@2997007/100000", {10000000, 333666}},
                                        {"@29.98", {10000000, 333666}},
                                        {"@23.976", {24000, 1001}},
                                        {"@23.98", {24000, 1001}},
                                        {"@59.94", {60000, 1001}},
                                        {"@119.9", {120000, 1001}},
                                        {"@8.33", {25, 3}}}) {
        EXPECT_EQ(opened.camera.select(wanted).rate, found) << wanted;
    }
    for (char const* const absent : {"24", "60", "120", "29.95", "8.3"}) {
        EXPECT_EQ(refusal(opened.camera, std::string("@") + absent),
                  std::string("unsupported: the camera has no frame rate ") + absent +
                      "; it has 30 29.97 23.976 59.94 119.88 8.333 frames a second");
    }
}

TEST_F(SelectTest, SaysWhatThereIs)
{
    OpenedCamera opened(listedCamera());
    EXPECT_EQ(refusal(opened.camera, "NV12"),
              "unsupported: the camera has no format 'NV12'; it has YUYV MJPG");
    EXPECT_EQ(refusal(opened.camera, "YUYV 1x1"),
              "unsupported: the format YUYV has no size 1x1; it has 640x480 320x240");
    EXPECT_EQ(refusal(opened.camera, "YUYV 640x480@7"),
              "unsupported: the size 640x480 has no frame rate 7; it has 30 15 frames a second");
    EXPECT_EQ(opened.camera.selection().text(), "YUYV 640x480@30") << "nothing was set";
}

TEST_F(SelectTest, ComesNearOnRequest)
{
    OpenedCamera opened(listedCamera());
    EXPECT_EQ(opened.camera.select("YUYV 600x500@20", nearest).text(), "YUYV 640x480@15");
    EXPECT_EQ(opened.camera.select("MJPG 2000x2000@1", nearest).text(), "MJPG 1280x720@8.333");
    EXPECT_EQ(opened.camera.select("YUYV 480x360", nearest).text(), "YUYV 640x480@30")
        << "both sizes are as far away, and the earlier one is taken";
    EXPECT_EQ(opened.camera.select("YUYV 640x480@22.5", nearest).rate, (FrameRate{30, 1}))
        << "both rates are as far away, and the faster one is taken";
    EXPECT_EQ(refusal(opened.camera, "NV12", nearest),
              "unsupported: the camera has no format 'NV12'; it has YUYV MJPG");
}

TEST_F(SelectTest, TakesStepsOfARange)
{
    OpenedCamera opened(rangedCamera());
    EXPECT_EQ(opened.camera.select("640x480@12.5").text(), "YUYV 640x480@12.5");
    EXPECT_EQ(opened.camera.selection().text(), "YUYV 640x480@12.5");
    EXPECT_EQ(opened.camera.select("@30").text(), "YUYV 640x480@30");
    EXPECT_EQ(refusal(opened.camera, "650x480"),
              "unsupported: the camera has no size 650x480; it has 64x32..1920x1080 in steps of "
              "16x8");
    EXPECT_THAT(refusal(opened.camera, "640x480@61"), HasSubstr("has no frame rate 61"));
    EXPECT_EQ(opened.camera.select("650x5000@100", nearest).text(), "YUYV 656x1080@60");
}

TEST_F(SelectTest, OffersListsAndRanges)
{
    OpenedCamera listed(listedCamera());
    std::vector<FormatOffer> const list = listed.camera.offers();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[1].format, "MJPG");
    EXPECT_FALSE(list[1].sizes.at(0).isRange());
    EXPECT_THAT(list[1].sizes.at(1).rates,
                ElementsAre(FrameRate{30000, 1001}, FrameRate{30, 1}, FrameRate{25, 3}));
}

TEST_F(SelectTest, OffersRangesAsSuch)
{
    OpenedCamera ranged(rangedCamera());
    SizeOffer const size = ranged.camera.offers().at(0).sizes.at(0);
    EXPECT_TRUE(size.isRange());
    EXPECT_EQ(size.width.step, 16u);
    EXPECT_EQ(size.height.maximum, 1080u);
    EXPECT_TRUE(size.anyRate);
    EXPECT_THAT(size.rates, ElementsAre(FrameRate{5, 1}, FrameRate{60, 1}));
}

TEST_F(SelectTest, TellsAFormatThatIsSetButNotOffered)
{
    OpenedCamera opened(listedCamera().currently("NV12", 160, 120));
    EXPECT_EQ(opened.camera.selection().format, "NV12");
    EXPECT_EQ(opened.camera.selection().width, 160u);
}

TEST_F(SelectTest, NoticesWhatTheDriverSetsInstead)
{
    // The driver takes the interval and forgets it at once.
    OpenedCamera opened(listedCamera());
    V4l2Hook const hook([&](int fd, unsigned long request, void* argument) {
        int const result = V4l2Hook::realIoctl(fd, request, argument);
        if (request == VIDIOC_S_PARM) {
            opened.video.setCurrentInterval(1, 30);
        }
        return result;
    });
    EXPECT_EQ(refusal(opened.camera, "640x480@15"),
              "refused: asked for YUYV 640x480@15, the driver set YUYV 640x480@30");
    EXPECT_EQ(opened.camera.select("640x480@15", nearest).text(), "YUYV 640x480@30");
}

TEST_F(SelectTest, IsBusyWhileSomebodyStreams)
{
    OpenedCamera opened(listedCamera());
    ASSERT_EQ(opened.camera.interface().setup(2), 0);
    ASSERT_EQ(opened.camera.interface().startCapture(), 0);
    auto const error = errorOf([&] { opened.camera.select("@15"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Busy);
    EXPECT_EQ(error->systemError(), EBUSY);
    EXPECT_EQ(error->operation(), "select @15");
    opened.camera.interface().stopCapture();
    opened.camera.interface().cleanup();
}

// The library's descriptor may be the one that a driver lets choose formats.
TEST_F(SelectTest, HasARangeSetByADescriptorThatMayNotYet)
{
    OpenedCamera opened(rangedCamera());
    opened.video.fail(VIDIOC_S_PARM, EBUSY);
    opened.video.clearLog();
    EXPECT_EQ(opened.camera.select("640x480@25").text(), "YUYV 640x480@25");
    EXPECT_GT(opened.video.countOf(VIDIOC_REQBUFS), 0U);

    Stream stream = opened.camera.stream();
    opened.video.clearLog();
    opened.video.fail(VIDIOC_S_FMT, EBUSY);
    auto const error = errorOf([&] { opened.camera.select("320x240"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Busy);
    EXPECT_EQ(opened.video.countOf(VIDIOC_REQBUFS), 0U) << "the stream has need of its buffers";
}

TEST_F(SelectTest, TellsThatTheCameraIsGone)
{
    OpenedCamera opened(listedCamera());
    opened.video.unplug();
    EXPECT_EQ(errorOf([&] { opened.camera.select("YUYV 640x480@15"); })->kind(),
              ErrorKind::Unplugged);
    EXPECT_EQ(errorOf([&] { opened.camera.selection(); })->kind(), ErrorKind::Unplugged);
}

TEST_F(SelectTest, TellsThatTheDriverRefused)
{
    OpenedCamera opened(listedCamera());
    opened.video.fail(VIDIOC_S_FMT, EIO);
    auto const error = errorOf([&] { opened.camera.select("YUYV 320x240"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Refused);
    EXPECT_EQ(error->systemError(), EIO);
    EXPECT_THAT(error->what(), HasSubstr("the camera refused YUYV 320x240@30"));
}

} // namespace
