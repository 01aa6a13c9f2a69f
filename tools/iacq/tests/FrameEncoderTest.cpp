// SPDX-License-Identifier: MIT
#include "FrameEncoder.h"

#include "Failure.h"

#include <gmock/gmock.h>

namespace
{

using ImageAcquisition::Session::PictureLayout;
using Bytes = std::vector<unsigned char>;
using Iacq::OutputFormat;

struct Fault
{
    int status;
    std::string text;
};

Fault faultOf(PictureLayout const& layout, Bytes const& bytes, OutputFormat format)
{
    try {
        Iacq::FrameEncoder(layout.format, format).encode(bytes, layout);
    } catch (Iacq::Failure const& failure) {
        return {failure.status(), failure.what()};
    }
    return {Iacq::Success, ""};
}

TEST(FrameEncoderTest, WritesOneFrameAfterTheOther)
{
    Iacq::FrameEncoder encoder("GREY", OutputFormat::Ppm);
    std::string const header = "P6\n2 1\n255\n";
    for (unsigned char const grey : Bytes{1, 2}) {
        Bytes const written = encoder.encode({grey, 9}, {"GREY", 2, 1, 0});
        EXPECT_EQ(std::string(written.begin(), written.end()),
                  header + std::string(3, static_cast<char>(grey)) + std::string(3, 9));
    }
}

TEST(FrameEncoderTest, LeavesRawFramesAlone)
{
    EXPECT_EQ(Iacq::FrameEncoder("H264", OutputFormat::Raw).encode({1, 2}, {"H264", 0, 0, 0}),
              (Bytes{1, 2}));
}

TEST(FrameEncoderTest, RefusesAFrameThatIsCut)
{
    for (auto const& [format, needed] : std::vector<std::pair<char const*, std::size_t>>{
             {"YUYV", 32}, {"RGB3", 48}, {"GREY", 16}, {"NV12", 24}, {"YU12", 24}, {"BA81", 16}}) {
        PictureLayout const layout = {format, 4, 4, 0};
        EXPECT_EQ(faultOf(layout, Bytes(needed, 1), OutputFormat::Png).status, Iacq::Success);
        Fault const fault = faultOf(layout, Bytes(needed - 1, 1), OutputFormat::Png);
        EXPECT_EQ(fault.status, Iacq::NoFrame);
        EXPECT_EQ(fault.text, "the frame has " + std::to_string(needed - 1) + " bytes, but " +
                                  format + " 4x4 needs " + std::to_string(needed));
    }
}

TEST(FrameEncoderTest, TellsWhatCannotBeConverted)
{
    Fault const unknown = faultOf({"H264", 2, 1, 0}, {1, 2}, OutputFormat::Png);
    EXPECT_EQ(unknown.status, Iacq::BadUsage);
    EXPECT_EQ(unknown.text, "cannot convert H264 to a picture; use --output-format raw");
    Fault const sizeless = faultOf({"GREY", 0, 0, 0}, {1, 2}, OutputFormat::Png);
    EXPECT_EQ(sizeless.status, Iacq::NoFrame);
    EXPECT_EQ(sizeless.text, "the camera does not tell the size of its frames");
    Fault const broken = faultOf({"MJPG", 2, 1, 0}, {1, 2}, OutputFormat::Ppm);
    EXPECT_EQ(broken.status, Iacq::NoFrame);
    EXPECT_EQ(broken.text, "the frame is no JPEG picture");
}

} // namespace
