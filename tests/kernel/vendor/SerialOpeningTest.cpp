// SPDX-License-Identifier: MIT
#include "DescriptorCount.h"
#include "EmulatedCameras.h"
#include "FuserFolder.h"
#include "LibraryCamera.h"
#include "ProcessCensus.h"
#include "Shell.h"
#include "Tool.h"

#include <gtest/gtest.h>

#include <fcntl.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// Which nodes of cameras this process has open.
std::vector<std::string> openNodes()
{
    std::vector<std::string> nodes;
    for (std::string const& target : descriptorTargets()) {
        if (target.rfind("/dev/video", 0) == 0 || target.rfind("/dev/ttyACM", 0) == 0 ||
            target.rfind("/dev/bus/usb", 0) == 0) {
            nodes.push_back(target);
        }
    }
    return nodes;
}

/// A camera that is reset when it does not open.
class SerialOpeningTest : public testing::Test
{
protected:
    void start(std::string const& model, EmulatedCameras::Texts const& commands = {})
    {
        m_cameras = std::make_unique<EmulatedCameras>(EmulatedCameras::Texts{model}, commands);
        m_plugs = m_cameras->status()["plugs"];
    }

    void awaitReset()
    {
        ++m_plugs;
        EXPECT_TRUE(waitFor([&] { return m_cameras->status()["plugs"] == m_plugs; }));
        EXPECT_TRUE(m_cameras->waitUntilReady());
    }

    void expectRefusal()
    {
        EXPECT_EQ(openListed(m_cameras->videoNode()), nullptr);
        EXPECT_EQ(openNodes(), std::vector<std::string>{});
        EXPECT_EQ(childrenOfThisProcess(), m_children);
        awaitReset();
    }

    /// How many packets asked for this; the driver asks too, when the camera comes back.
    int serialRequests(std::string const& name) const
    {
        int count = 0;
        for (EmulatedCameras::Json const& request : m_cameras->requests(name)) {
            count += request["kind"] == "serial" ? 1 : 0;
        }
        return count;
    }

    FuserFolder const m_folder;
    std::unique_ptr<EmulatedCameras> m_cameras;
    unsigned m_plugs = 0;
    int m_children = 0;
};

TEST_F(SerialOpeningTest, OfAHeldPortResetsTheCamera)
{
    start("vendor-new");
    std::string const node = m_cameras->serialNode();
    int const holder = ::open(node.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_NE(holder, -1);
    m_cameras->mark();
    EXPECT_EQ(openListed(m_cameras->videoNode()), nullptr);
    EXPECT_EQ(openNodes().size(), 1U);
    EXPECT_EQ(serialRequests("GET_LEN"), 0);
    awaitReset();
    // The name of a terminal that is held is not given anew.
    EXPECT_NE(m_cameras->serialNode(), node);
    ::close(holder);
}

TEST_F(SerialOpeningTest, OfACameraThatDoesNotAnswerEndsAtItsFirstControl)
{
    start("vendor-new", {"1 serial silent"});
    m_children = childrenOfThisProcess();
    m_cameras->mark();
    double const begin = monotonicSeconds();
    expectRefusal();
    EXPECT_LT(monotonicSeconds() - begin, 10);
    // Of the length and of the flags, five attempts each.
    EXPECT_EQ(serialRequests("GET_LEN"), 5);
    EXPECT_EQ(serialRequests("GET_INFO"), 5);
    EXPECT_EQ(serialRequests("GET_MAX"), 0);

    CommandResult const shown = runTool("show 0");
    EXPECT_EQ(shown.status, 1);
    EXPECT_NE(shown.output.find("could not be initialised; the camera was reset"),
              std::string::npos)
        << shown.output;
    awaitReset();
}

TEST_F(SerialOpeningTest, OfACameraWithoutAPortResetsIt)
{
    start("vendor-new,serial-port=no");
    m_children = childrenOfThisProcess();
    EXPECT_EQ(m_cameras->serialNode(), "");
    expectRefusal();
    CommandResult const shown = runTool("list");
    EXPECT_EQ(shown.status, 0);
    EXPECT_NE(shown.output.find(m_cameras->videoNode().substr(5)), std::string::npos)
        << shown.output;
}

} // namespace
