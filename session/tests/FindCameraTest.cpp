// SPDX-License-Identifier: MIT
#include "ErrorOf.h"
#include "Machine.h"
#include "session/Found.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>

namespace
{

using namespace ImageAcquisition::Session;
using testing::HasSubstr;
using VirtualCamera::aCamera;
using VirtualCamera::aUsbDevice;

/// Three cameras: two of one make, and one that has a port for a serial number.
class FindCameraTest : public testing::Test
{
protected:
    FindCameraTest()
    {
        add(0, aUsbDevice("1-1").withIds("7a76", "ca02").withSerial("VC1001"), "Cam");
        add(1, aUsbDevice("1-2.4").withIds("7a76", "ca02").withSerial("VC1002"), "Cam");
        add(4, aUsbDevice("2-1").withIds("046d", "0825").withSerial("1-1"), "Other: Cam");
    }
    void SetUp() override { ASSERT_TRUE(VirtualCamera::Testbed::visible()); }

    void add(int number, VirtualCamera::UsbDeviceScript const& usb, std::string const& name)
    {
        m_machine.add(number, m_machine.plug(usb), aCamera(Machine::nodeOf(number)).named(name));
    }

    static std::string nodeOf(std::string const& text)
    {
        auto const error = errorOf([&] { findCamera(text); });
        return error ? toText(error->kind()) : findCamera(text).node();
    }

    Machine m_machine;
};

TEST_F(FindCameraTest, TakesAnIndex)
{
    EXPECT_EQ(nodeOf("0"), "/dev/video0");
    EXPECT_EQ(nodeOf("2"), "/dev/video4");
    EXPECT_EQ(nodeOf("3"), "not found");
    EXPECT_EQ(nodeOf("-1"), "not found");
    EXPECT_EQ(findCamera("2").index(), 2);
}

TEST_F(FindCameraTest, TakesANode)
{
    EXPECT_EQ(nodeOf("video4"), "/dev/video4");
    EXPECT_EQ(nodeOf("/dev/video1"), "/dev/video1");
    EXPECT_EQ(nodeOf("/dev/video9"), "not found");
    EXPECT_EQ(nodeOf("/dev/null"), "not found");
}

TEST_F(FindCameraTest, TakesALinkToANode)
{
    std::string const folder = m_machine.testbed.rootDirectory();
    std::filesystem::create_directories(folder + "/dev/v4l");
    std::filesystem::create_symlink("../video4", folder + "/dev/v4l/camera");
    EXPECT_EQ(nodeOf("/dev/v4l/camera"), "/dev/video4");
}

TEST_F(FindCameraTest, OpensNoOtherNodeWhenOneIsNamed)
{
    auto const& other = m_machine.add(7, m_machine.plug(aUsbDevice("3-1")), aCamera("/dev/video7"));
    EXPECT_EQ(nodeOf("/dev/video1"), "/dev/video1");
    EXPECT_EQ(other.accounting().totalOpens, 0u);
}

TEST_F(FindCameraTest, TakesEachFeatureByItsPrefix)
{
    EXPECT_EQ(nodeOf("serial:VC1002"), "/dev/video1");
    EXPECT_EQ(nodeOf("serial:vc1002"), "not found");
    EXPECT_EQ(nodeOf("port:1-2.4"), "/dev/video1");
    EXPECT_EQ(nodeOf("name:Other: Cam"), "/dev/video4");
    EXPECT_EQ(nodeOf("id:046D:0825"), "/dev/video4");
    EXPECT_EQ(nodeOf("serial:0"), "not found") << "a prefix takes no index";
}

TEST_F(FindCameraTest, TriesOtherTextsInOrder)
{
    EXPECT_EQ(nodeOf("VC1001"), "/dev/video0");
    EXPECT_EQ(nodeOf("1-1"), "/dev/video4") << "a serial number comes before a port";
    EXPECT_EQ(nodeOf("port:1-1"), "/dev/video0");
    EXPECT_EQ(nodeOf("1-2.4"), "/dev/video1");
    EXPECT_EQ(nodeOf("Other: Cam"), "/dev/video4");
    EXPECT_EQ(nodeOf("046d:0825"), "/dev/video4");
}

TEST_F(FindCameraTest, TakesANumberBeyondTheListForASerialNumber)
{
    add(5, aUsbDevice("2-2").withSerial("20417"), "Cam");
    EXPECT_EQ(nodeOf("20417"), "/dev/video5");
}

TEST_F(FindCameraTest, ListsThoseThatFit)
{
    for (char const* const text : {"name:Cam", "Cam", "id:7a76:ca02"}) {
        auto const error = errorOf([&] { findCamera(text); });
        ASSERT_TRUE(error) << text;
        EXPECT_EQ(error->kind(), ErrorKind::Ambiguous);
        EXPECT_THAT(error->what(), HasSubstr("/dev/video0 'Cam' serial:VC1001 port:1-1, "
                                             "/dev/video1 'Cam' serial:VC1002 port:1-2.4"));
        EXPECT_THAT(error->what(), Not(HasSubstr("video4")));
    }
}

TEST_F(FindCameraTest, TellsWhatThereIsWhenNothingFits)
{
    m_machine.addWithoutUsb(5);
    auto const error = errorOf([] { findCamera("serial:X"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NotFound);
    EXPECT_THAT(error->what(),
                HasSubstr("find camera 'serial:X': no camera fits (there are /dev/video0"));
    EXPECT_THAT(error->hint(), HasSubstr("; left out: /dev/video5 has no USB device behind it"));
}

TEST_F(FindCameraTest, TellsWhyTheNodeThatIsNamedIsNone)
{
    m_machine.addWithoutUsb(5);
    auto const error = errorOf([] { findCamera("video5"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Unsupported);
    EXPECT_EQ(error->node(), "/dev/video5");
    EXPECT_EQ(error->reason(), "has no USB device behind it");
}

TEST_F(FindCameraTest, TellsWhoMayOpenTheNodeThatIsNamed)
{
    m_machine.add(6, m_machine.plug(aUsbDevice("2-3")),
                  aCamera("/dev/video6").failing(VirtualCamera::Call::Open, EACCES));
    auto const error = errorOf([] { findCamera("/dev/video6"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NoPermission);
    EXPECT_EQ(error->systemError(), EACCES);
    EXPECT_THAT(error->what(), HasSubstr("belongs to group"));
}

TEST_F(FindCameraTest, RefusesTextsWithoutSense)
{
    EXPECT_EQ(nodeOf(""), "bad request");
    EXPECT_EQ(nodeOf("id:7a76"), "bad request");
}

TEST_F(FindCameraTest, FindsACameraAgainByItsOwnText)
{
    for (Found const& camera : findCameras().cameras) {
        EXPECT_EQ(nodeOf(camera.text()), camera.node()) << camera.text();
    }
    EXPECT_EQ(findCamera("0").text(), "serial:VC1001");
}

} // namespace
