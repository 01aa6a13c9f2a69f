// SPDX-License-Identifier: MIT
#include "DescriptorCount.h"
#include "EmulatedCameras.h"
#include "FuserFolder.h"
#include "LibraryCamera.h"
#include "ProcessCensus.h"
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
class SerialOpening : public testing::Test
{
protected:
    void start(std::string const& model, EmulatedCameras::Texts const& commands = {})
    {
        cameras = std::make_unique<EmulatedCameras>(EmulatedCameras::Texts{model}, commands);
        plugs = cameras->status()["plugs"];
    }

    void awaitReset()
    {
        ++plugs;
        EXPECT_TRUE(waitFor([&] { return cameras->status()["plugs"] == plugs; }));
        EXPECT_TRUE(cameras->waitUntilReady());
    }

    void expectRefusal()
    {
        EXPECT_EQ(openListed(cameras->videoNode()), nullptr);
        EXPECT_EQ(openNodes(), std::vector<std::string>{});
        EXPECT_EQ(childrenOfThisProcess(), children);
        awaitReset();
    }

    /// How many packets asked for this; the driver asks too, when the camera comes back.
    int serialRequests(std::string const& name) const
    {
        int count = 0;
        for (EmulatedCameras::Json const& request : cameras->requests(name)) {
            count += request["kind"] == "serial" ? 1 : 0;
        }
        return count;
    }

    FuserFolder const folder;
    std::unique_ptr<EmulatedCameras> cameras;
    unsigned plugs = 0;
    int children = 0;
};

} // namespace

TEST_F(SerialOpening, OfAHeldPortResetsTheCamera)
{
    start("vendor-new");
    std::string const node = cameras->serialNode();
    int const holder = ::open(node.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_NE(holder, -1);
    cameras->mark();
    EXPECT_EQ(openListed(cameras->videoNode()), nullptr);
    EXPECT_EQ(openNodes().size(), 1U);
    EXPECT_EQ(serialRequests("GET_LEN"), 0);
    awaitReset();
    // The name of a terminal that is held is not given anew.
    EXPECT_NE(cameras->serialNode(), node);
    ::close(holder);
}

TEST_F(SerialOpening, OfACameraThatDoesNotAnswerEndsAtItsFirstControl)
{
    start("vendor-new", {"1 serial silent"});
    children = childrenOfThisProcess();
    cameras->mark();
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

TEST_F(SerialOpening, OfACameraWithoutAPortResetsIt)
{
    start("vendor-new,serial-port=no");
    children = childrenOfThisProcess();
    EXPECT_EQ(cameras->serialNode(), "");
    expectRefusal();
    CommandResult const shown = runTool("list");
    EXPECT_EQ(shown.status, 0);
    EXPECT_NE(shown.output.find(cameras->videoNode().substr(5)), std::string::npos) << shown.output;
}
