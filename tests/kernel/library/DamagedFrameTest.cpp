// SPDX-License-Identifier: MIT
#include "FramePainter.h"
#include "OrdinaryCamera.h"
#include "Tool.h"

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::FramePainter;

namespace
{

constexpr unsigned whole = 160 * 120 * 2;

/// The driver throws damaged frames away unless it was told not to when the camera was plugged in.
class DriversHabit
{
public:
    explicit DriversHabit(bool keepsDamaged) { set(keepsDamaged); }
    ~DriversHabit() { set(false); }
    DriversHabit(DriversHabit const&) = delete;
    DriversHabit& operator=(DriversHabit const&) = delete;

private:
    static void set(bool keepsDamaged)
    {
        std::ofstream("/sys/module/uvcvideo/parameters/nodrop") << (keepsDamaged ? "1" : "0");
        EXPECT_EQ(readFile("/sys/module/uvcvideo/parameters/nodrop"), keepsDamaged ? "1" : "0");
    }
};

class DamagedFrames : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        ASSERT_NE(m_camera, nullptr);
        ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    }

    /// The next frame, checked for its bytes, which are the beginning of its picture's.
    IFrame* next(unsigned number)
    {
        IFrame* const frame = m_camera->acquireFrame();
        EXPECT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        Bytes wanted = m_painter.paint(number);
        wanted.resize(frame->bytesUsed());
        EXPECT_TRUE(bytesOf(*frame) == wanted) << number;
        return frame;
    }

    static CommandResult captureByTool()
    {
        return runTool("capture 0 --format YUYV --size 160x120 -n 3 --buffers 16 "
                       "-o /tmp/good-%d.raw");
    }

    /// The files that the tool wrote are the frames 0, 2 and 4.
    void expectGoodFiles()
    {
        for (unsigned const file : {1U, 2U, 3U}) {
            Bytes const bytes = fileBytes("/tmp/good-" + std::to_string(file) + ".raw");
            EXPECT_TRUE(bytes == m_painter.paint(2 * (file - 1))) << file;
        }
    }

    DriversHabit const m_habit{GetParam()};
    EmulatedCameras const m_cameras{{"ordinary"}, {"1 corrupt 1", "1 cut 3 10000"}};
    CameraPointer m_camera = openListed(m_cameras.videoNode());
    FramePainter m_painter{160, 120};
};

class KeptDamagedFrames : public DamagedFrames
{
};

class DroppedDamagedFrames : public DamagedFrames
{
};

} // namespace

TEST_P(KeptDamagedFrames, AreToldFromGoodOnes)
{
    Stream const stream(*m_camera, 16);
    for (unsigned number = 0; number < 6; ++number) {
        IFrame* const frame = next(number);
        EXPECT_EQ(frame->isCorrupted(), number == 1 || number == 3);
        EXPECT_EQ(frame->bytesUsed(), number == 3 ? 10000U : whole);
        EXPECT_EQ(m_camera->releaseFrame(frame), 0);
    }
}

TEST_P(KeptDamagedFrames, AreNamedAndLeftOutByTheTool)
{
    m_camera.reset();
    CommandResult const result = captureByTool();
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("frame 1 is corrupted"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("frame 3 is corrupted"), std::string::npos) << result.output;
    expectGoodFiles();
}

INSTANTIATE_TEST_SUITE_P(WithNoDrop, KeptDamagedFrames, testing::Values(true));

TEST_P(DroppedDamagedFrames, AreGapsInTheNumbers)
{
    Stream const stream(*m_camera, 16);
    for (unsigned const number : {0U, 2U, 4U, 5U}) {
        IFrame* const frame = next(number);
        EXPECT_FALSE(frame->isCorrupted());
        EXPECT_EQ(frame->bytesUsed(), whole);
        EXPECT_EQ(m_camera->releaseFrame(frame), 0);
    }
}

TEST_P(DroppedDamagedFrames, AreUnknownToTheTool)
{
    m_camera.reset();
    CommandResult const result = captureByTool();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.find("corrupted"), std::string::npos) << result.output;
    expectGoodFiles();
}

INSTANTIATE_TEST_SUITE_P(WithoutNoDrop, DroppedDamagedFrames, testing::Values(false));
