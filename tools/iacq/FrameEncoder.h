// SPDX-License-Identifier: MIT
#pragma once

#include "ImageEncoding.h"

#include <session/Picture.h>

#include <vector>

namespace Iacq
{

/// Makes of a frame's bytes what is to be written.
class FrameEncoder
{
public:
    /// @param layout what every frame of the stream has in common.
    /// @throws Failure when the pixel format cannot be converted to the output format.
    FrameEncoder(ImageAcquisition::Session::PictureLayout layout, OutputFormat format);

    /// @throws Failure when the frame is no picture, or not a whole one.
    std::vector<unsigned char> encode(std::vector<unsigned char> const& bytes);

private:
    void convert(std::vector<unsigned char> const& bytes);

    ImageAcquisition::Session::PictureLayout m_layout;
    OutputFormat m_format;
    ImageAcquisition::Session::Picture m_picture;
};

} // namespace Iacq
