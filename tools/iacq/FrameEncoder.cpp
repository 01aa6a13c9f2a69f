// SPDX-License-Identifier: MIT
#include "FrameEncoder.h"

#include "Failure.h"

#include <session/Error.h>

#include <utility>

namespace Iacq
{

using namespace ImageAcquisition::Session;

FrameEncoder::FrameEncoder(PictureLayout layout, OutputFormat format)
    : m_layout(std::move(layout)), m_format(format)
{
    if (format != OutputFormat::Raw && !Picture::converts(m_layout.format)) {
        throw Failure(BadUsage, "cannot convert " + m_layout.format +
                                    " to a picture; use --output-format raw");
    }
}

std::vector<unsigned char> FrameEncoder::encode(std::vector<unsigned char> const& bytes)
{
    if (m_format == OutputFormat::Raw) {
        return bytes;
    }
    convert(bytes);
    return m_format == OutputFormat::Png ? encodePng(m_picture) : encodePpm(m_picture);
}

/// A file with a part of a picture would be taken for a whole one.
void FrameEncoder::convert(std::vector<unsigned char> const& bytes)
{
    unsigned long long const needed = bytesOf(m_layout);
    if (needed != 0 && (m_layout.width == 0 || m_layout.height == 0)) {
        throw Failure(CameraFailed, "the camera does not tell the size of its frames");
    }
    if (bytes.size() < needed) {
        throw Failure(NoFrame, "the frame has " + std::to_string(bytes.size()) + " bytes, but " +
                                   m_layout.format + " " + std::to_string(m_layout.width) + "x" +
                                   std::to_string(m_layout.height) + " needs " +
                                   std::to_string(needed));
    }
    try {
        m_picture.convert({bytes.data(), bytes.size()}, m_layout);
    } catch (Error const& error) {
        throw Failure(NoFrame, error.reason());
    }
}

} // namespace Iacq
