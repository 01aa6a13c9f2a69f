// SPDX-License-Identifier: MIT
#pragma once

#include <session/Picture.h>

#include <string>
#include <vector>

namespace ImageAcquisition::Session
{
class Frame;
}

namespace Iacq
{

enum class OutputFormat { Png, Ppm, Raw };

/// The format that the user named, or else that the file's extension means.
/// @throws Failure when neither tells.
OutputFormat outputFormatOf(std::string const& named, std::string const& path);

ImageAcquisition::Session::PictureLayout layoutOf(ImageAcquisition::Session::Frame const& frame);

/// Makes of a frame's bytes what is to be written.
class FrameEncoder
{
public:
    /// @throws Failure when the pixel format cannot be converted to the output format.
    FrameEncoder(std::string const& pixelFormat, OutputFormat format);

    /// @throws Failure when the frame is no picture, or not a whole one.
    std::vector<unsigned char> encode(std::vector<unsigned char> const& bytes,
                                      ImageAcquisition::Session::PictureLayout const& layout);

private:
    void convert(std::vector<unsigned char> const& bytes,
                 ImageAcquisition::Session::PictureLayout const& layout);

    OutputFormat m_format;
    ImageAcquisition::Session::Picture m_picture;
};

} // namespace Iacq
