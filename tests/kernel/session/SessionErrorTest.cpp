// SPDX-License-Identifier: MIT
// Errors as the kernel's drivers make them. Only what a controller that counts bandwidth says is
// not among them: neither the emulated one nor vivid does.
#include "BackgroundCommand.h"
#include "ErrorOf.h"
#include "OrdinaryUser.h"
#include "SessionCamera.h"

#include <gmock/gmock.h>

#include <cerrno>

using namespace KernelTest;
using testing::HasSubstr;

namespace
{

class SessionErrorTest : public testing::Test
{
protected:
    template <typename Action>
    static void expectError(ia::ErrorKind kind, Action const& action, char const* part = "",
                            int systemError = 0)
    {
        auto const error = errorOf(action);
        ASSERT_TRUE(error);
        EXPECT_EQ(error->kind(), kind) << error->what();
        EXPECT_EQ(error->systemError(), systemError) << error->what();
        EXPECT_THAT(error->what(), HasSubstr(part));
    }

    EmulatedCameras const m_device{{"ordinary"}};
    std::string const m_node = m_device.videoNode();
    ia::Camera m_camera = openEmulated(m_device);
};

TEST_F(SessionErrorTest, OfACameraThatAnotherProgramUsesNamesTheProgram)
{
    BackgroundCommand const other("v4l2-ctl -d " + m_node + " --stream-mmap");
    ASSERT_TRUE(waitFor([this] { return m_device.status()["streaming"] == true; }));
    std::string const holder = std::to_string(other.process()) + " (v4l2-ctl)";
    expectError(
        ia::ErrorKind::Busy, [this] { m_camera.stream(); }, holder.c_str(), EBUSY);
    expectError(
        ia::ErrorKind::Busy, [this] { m_camera.select("YUYV 640x480"); }, holder.c_str(), EBUSY);
    ASSERT_EQ(m_device.status()["streaming"], true) << other.output();
}

TEST_F(SessionErrorTest, OfANodeThatMayNotBeOpenedNamesItsGroup)
{
    std::string const hint = m_node + " belongs to group video, and you are not in it";
    nlohmann::json const seen = asUser(nobody, [this] {
        auto const opening = errorOf([this] { ia::Camera::open(m_node); });
        auto const opened = errorOf([this] { ia::Camera::open(m_camera.found()); });
        ia::CameraList const list = ia::findCameras();
        nlohmann::json reasons = nlohmann::json::array();
        for (ia::LeftOut const& one : list.leftOut) {
            reasons.push_back(one.node + " " + one.reason);
        }
        return nlohmann::json{{"kinds", {ia::toText(opening->kind()), ia::toText(opened->kind())}},
                              {"texts", {opening->what(), opened->what()}},
                              {"cameras", list.cameras.size()},
                              {"leftOut", reasons}};
    });
    for (std::size_t const i : {0U, 1U}) {
        EXPECT_EQ(seen["kinds"][i], ia::toText(ia::ErrorKind::NoPermission));
        EXPECT_THAT(seen["texts"][i].get<std::string>(), HasSubstr(hint));
    }
    EXPECT_EQ(seen["cameras"], 0);
    EXPECT_THAT(seen["leftOut"].dump(), HasSubstr(hint));
}

TEST_F(SessionErrorTest, OfACameraThatIsGoneSaysSo)
{
    ia::Found const found = m_camera.found();
    ia::Control const contrast = m_camera["contrast"];
    m_device.command("unplug");
    ASSERT_TRUE(m_device.waitUntilGone());
    auto const unplugged = ia::ErrorKind::Unplugged;
    expectError(
        unplugged, [&] { contrast = 7; }, "", ENODEV);
    expectError(
        unplugged, [&] { contrast.value(); }, "", ENODEV);
    expectError(
        unplugged, [&] { m_camera.stream(); }, "", ENODEV);
    expectError(
        unplugged, [&] { m_camera.select("YUYV 160x120"); }, "", ENODEV);
    expectError(
        unplugged, [&] { ia::Camera::open(found); }, "", ENOENT);
    expectError(ia::ErrorKind::NotFound, [&] { ia::Camera::open(found.text()); });
}

TEST_F(SessionErrorTest, OfWhatTheCameraDoesNotOfferSaysWhatItOffers)
{
    auto const unsupported = ia::ErrorKind::Unsupported;
    expectError(
        unsupported, [this] { m_camera.select("YUYV 641x480"); }, "160x120");
    expectError(
        unsupported, [this] { m_camera.select("H264"); }, "MJPG");
    expectError(
        unsupported, [this] { m_camera.select("YUYV 640x480@29"); }, "30 20 15 5");
    expectError(
        ia::ErrorKind::NotFound, [this] { m_camera["contrats"]; }, "nearest: contrast");
    expectError(ia::ErrorKind::BadRequest, [this] { m_camera.select("640 by 480"); });
}

TEST_F(SessionErrorTest, OfAValueThatIsRefusedTellsWhy)
{
    auto const refused = ia::ErrorKind::Refused;
    expectError(
        refused, [this] { m_camera["exposure_time_absolute"] = 7; }, "inactive");
    expectError(
        refused, [this] { m_camera["contrast"] = 96; }, "0..95");
    expectError(
        refused, [this] { m_camera["privacy"] = true; }, "read-only");
    expectError(
        ia::ErrorKind::BadRequest, [this] { m_camera["auto_exposure"] = "Sometimes"; },
        "Manual Mode");
    m_device.command("stall 2 3 SET_CUR");
    expectError(
        refused, [this] { m_camera["contrast"] = 7; }, "refused by the driver", EBUSY);
    m_camera["contrast"] = 7;
    EXPECT_EQ(m_camera["contrast"].number(), 7);
}

TEST_F(SessionErrorTest, OfACameraThatStallsEndsTheLoop)
{
    m_device.command("hold 3");
    m_camera.select("YUYV 160x120@30");
    ia::StreamOptions options;
    options.timeout = 1s;
    int frames = 0;
    expectError(ia::ErrorKind::TimedOut, [&] {
        for (ia::Frame const& frame : m_camera.stream(options)) {
            frames += frame ? 1 : 0;
        }
    });
    EXPECT_EQ(frames, 3);
}

TEST_F(SessionErrorTest, OfACameraThatGoesEndsTheLoop)
{
    m_device.command("unplug frame 3");
    m_camera.select("YUYV 160x120@30");
    ia::Stream stream = m_camera.stream();
    expectError(
        ia::ErrorKind::Unplugged,
        [&] {
            for (ia::Frame const& frame : stream) {
                EXPECT_TRUE(frame);
            }
        },
        "", ENODEV);
    ASSERT_TRUE(m_device.waitUntilGone());
}

} // namespace
