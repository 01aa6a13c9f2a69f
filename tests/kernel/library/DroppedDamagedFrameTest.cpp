// SPDX-License-Identifier: MIT
#include "DamagedFrames.h"

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

class DroppedDamagedFrameTest : public DamagedFrames
{
protected:
    DroppedDamagedFrameTest() : DamagedFrames(false) {}
};

TEST_F(DroppedDamagedFrameTest, AreGapsInTheNumbers)
{
    Stream const stream(*m_camera, 16);
    for (unsigned const number : {0U, 2U, 4U, 5U}) {
        IFrame* const frame = next(number);
        EXPECT_FALSE(frame->isCorrupted());
        EXPECT_EQ(frame->bytesUsed(), wholeFrame);
        EXPECT_EQ(m_camera->releaseFrame(frame), 0);
    }
}

TEST_F(DroppedDamagedFrameTest, AreUnknownToTheTool)
{
    m_camera.reset();
    CommandResult const result = captureByTool();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.find("corrupted"), std::string::npos) << result.output;
    expectGoodFiles();
}

} // namespace
