// SPDX-License-Identifier: MIT
// Opening a camera by a text or a record.
#include "ErrorOf.h"
#include "Machine.h"
#include "OpenedCamera.h"
#include "ScratchFolder.h"

#include <IBlockingCamera.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition::Session;
using testing::HasSubstr;
using VirtualCamera::aCamera;
using VirtualCamera::aUsbDevice;

/// While it lives, the process has no more rights than anybody.
class OrdinaryUser
{
public:
    OrdinaryUser() { EXPECT_TRUE(m_own != 0 || seteuid(nobody) == 0); }
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;
    ~OrdinaryUser() { EXPECT_EQ(seteuid(m_own), 0); }

private:
    static constexpr uid_t nobody = 65534;
    uid_t m_own = geteuid();
};

class OpenCameraTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    Machine m_machine;
};

TEST_F(OpenCameraTest, TakesTheCameraThatATextMeans)
{
    m_machine.add(0, m_machine.plug(aUsbDevice("1-1").withSerial("A")));
    m_machine.add(1, m_machine.plug(aUsbDevice("1-2").withSerial("B")),
                  aCamera("/dev/video1").withFormat("GREY").withSize(8, 8).withInterval(1, 5));
    Camera const camera = Camera::open("serial:B");
    EXPECT_EQ(camera.found().node(), "/dev/video1");
    EXPECT_EQ(camera.selection().text(), "GREY 8x8@5");
    EXPECT_EQ(errorOf([] { Camera::open("serial:C"); })->kind(), ErrorKind::NotFound);
}

TEST_F(OpenCameraTest, OpensEachOfTwinsForWhatItIs)
{
    m_machine.add(0, m_machine.plug(vendorUsbDevice("1-1").withFirmware("TJ8-1.2.4")));
    m_machine.add(1, m_machine.plug(vendorUsbDevice("1-2").withFirmware("TJ8-1.2.8")));
    EXPECT_STREQ(Camera::open("port:1-1").interface().device()->firmwareVersion(), "TJ8-1.2.4");
    EXPECT_STREQ(Camera::open("port:1-2").interface().device()->firmwareVersion(), "TJ8-1.2.8");
}

TEST_F(OpenCameraTest, TellsThatItIsGoneSinceItWasFound)
{
    auto const usb = m_machine.plug(aUsbDevice());
    auto& video = m_machine.add(0, usb);
    Found const found = findCamera("0");
    video.unplug();
    auto const error = errorOf([&] { Camera::open(found); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Unplugged);
    EXPECT_EQ(error->operation(), "open the camera");
}

TEST_F(OpenCameraTest, TellsWhoMayOpenTheNode)
{
    auto& video = m_machine.add(0, m_machine.plug(aUsbDevice()));
    Found const found = findCamera("0");
    video.failFrom(VirtualCamera::Call::Open, EACCES);
    auto const error = errorOf([&] { Camera::open(found); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NoPermission);
    EXPECT_THAT(error->hint(), HasSubstr("/dev/video0 belongs to group "));
}

TEST_F(OpenCameraTest, TellsThatTheNodesRightsForbidIt)
{
    ScratchFolder const folder;
    std::string const node = folder.write("video0", "");
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(node.c_str(), 0), 0);
    DeviceStub record;
    record.node = node.c_str();
    auto const error = [&record] {
        OrdinaryUser const user;
        return errorOf([&record] { Camera::open(Found(record)); });
    }();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NoPermission);
    EXPECT_EQ(error->systemError(), EACCES);
    EXPECT_THAT(error->what(), HasSubstr("open the camera: " + node + ": "));
    EXPECT_THAT(error->hint(), HasSubstr(", which may not use it, and you are "));
}

TEST_F(OpenCameraTest, TellsWhatStandsInTheWayOfTheSerialLink)
{
    m_machine.add(0, m_machine.plug(vendorUsbDevice().withFirmware("TJ8-1.3.0")));
    auto const error = errorOf([] { Camera::open("0"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Refused);
    EXPECT_EQ(error->reason(), "could not be initialised; the camera was reset");
    EXPECT_THAT(error->hint(), HasSubstr("serial port"));
}

TEST_F(OpenCameraTest, ClosesTheNodeWithTheLastHandle)
{
    auto& video = m_machine.add(
        0, m_machine.plug(aUsbDevice()),
        aCamera("/dev/video0").withControl(VirtualCamera::booleanControl(0x00980914, "Flip")));
    {
        Camera camera = Camera::open("0");
        Control const control = camera["flip"];
        Camera const moved = std::move(camera);
        EXPECT_EQ(moved.found().index(), 0);
        EXPECT_EQ(video.accounting().openDescriptors, 1);
    }
    EXPECT_TRUE(video.accounting().nothingHeld());
}

} // namespace
