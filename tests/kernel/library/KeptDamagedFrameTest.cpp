// SPDX-License-Identifier: MIT
#include "DamagedFrames.h"

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

class KeptDamagedFrameTest : public DamagedFrames
{
protected:
    KeptDamagedFrameTest() : DamagedFrames(true) {}
};

TEST_F(KeptDamagedFrameTest, AreToldFromGoodOnes)
{
    Stream const stream(*m_camera, 16);
    for (unsigned number = 0; number < 6; ++number) {
        IFrame* const frame = next(number);
        EXPECT_EQ(frame->isCorrupted(), number == 1 || number == 3);
        EXPECT_EQ(frame->bytesUsed(), number == 3 ? 10000U : wholeFrame);
        EXPECT_EQ(m_camera->releaseFrame(frame), 0);
    }
}

TEST_F(KeptDamagedFrameTest, AreNamedAndLeftOutByTheTool)
{
    m_camera.reset();
    CommandResult const result = captureByTool();
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("frame 1 is corrupted"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("frame 3 is corrupted"), std::string::npos) << result.output;
    expectGoodFiles();
}

} // namespace
