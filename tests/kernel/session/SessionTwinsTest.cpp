// SPDX-License-Identifier: MIT
// Cameras that differ in their firmware only.
#include "ErrorOf.h"
#include "FuserFolder.h"
#include "SerialRows.h"
#include "SessionCamera.h"

#include <IDevice.h>

#include <gmock/gmock.h>

using namespace KernelTest;
using testing::HasSubstr;

namespace
{

/// Two of the vendor's cameras that differ in nothing but the firmware.
class SessionTwinsTest : public testing::Test
{
protected:
    std::string port(unsigned camera) const
    {
        std::string const folder = m_device.usbFolder(camera);
        return "port:" + folder.substr(folder.rfind('/') + 1);
    }

    FuserFolder const m_folder;
    EmulatedCameras const m_device{{"vendor-old,serial=T", "vendor-new,serial=T"}};
};

TEST_F(SessionTwinsTest, AreEachOpenedForWhatTheyAre)
{
    ia::Camera const older = ia::Camera::open(port(1));
    ia::Camera const newer = ia::Camera::open(port(2));
    EXPECT_EQ(older.found().node(), m_device.videoNode(1));
    EXPECT_EQ(newer.found().node(), m_device.videoNode(2));
    EXPECT_STREQ(older.found().device().firmwareVersion(), "TJ8-1.2.9");
    EXPECT_STREQ(newer.found().device().firmwareVersion(), "TJ8-1.3.0");
    EXPECT_EQ(newer.controls().size(), serialRows().size());
    EXPECT_GT(older.controls().size(), 29U);
    m_device.mark();
    older["light"] = 111;
    newer["light"] = 222;
    auto const written = m_device.requests("SET_CUR");
    ASSERT_EQ(written.size(), 2U);
    EXPECT_EQ(written[0]["kind"], "unit");
    EXPECT_EQ(written[0]["camera"], 1);
    EXPECT_EQ(written[1]["kind"], "serial");
    EXPECT_EQ(written[1]["camera"], 2);
}

TEST_F(SessionTwinsTest, AreNotToldApartByTheirSerialNumber)
{
    auto const error = errorOf([] { ia::findCamera("serial:T"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ia::ErrorKind::Ambiguous);
    for (unsigned const camera : {1U, 2U}) {
        EXPECT_THAT(error->what(), HasSubstr(m_device.videoNode(camera) + " '"));
        EXPECT_THAT(error->what(), HasSubstr(port(camera)));
    }
}

} // namespace
