// SPDX-License-Identifier: MIT
#include "FramePainter.h"

#include "ImageLayout.h"
#include "PatternRenderer.h"
#include "TestPattern.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <cstring>

namespace VirtualCamera
{

FramePainter::FramePainter() = default;
FramePainter::~FramePainter() = default;

std::size_t FramePainter::paint(v4l2_pix_format const& pixels, FormatScript const* script,
                                std::uint32_t number, unsigned char* target, std::size_t capacity)
{
    if (script != nullptr && !script->frameBytes.empty()) {
        std::size_t const bytes = std::min(capacity, script->frameBytes.size());
        std::memcpy(target, script->frameBytes.data(), bytes);
        return bytes;
    }
    if (!m_renderer ||
        !m_renderer->fits(pixels.pixelformat, pixels.width, pixels.height, pixels.bytesperline)) {
        m_renderer = std::make_unique<PatternRenderer>(pixels.pixelformat, pixels.width,
                                                       pixels.height, pixels.bytesperline);
    }
    return m_renderer->render(number, target, capacity);
}

std::vector<std::uint8_t> testPattern(std::uint32_t pixelFormat, std::uint32_t width,
                                      std::uint32_t height, std::uint32_t frameNumber)
{
    ImageLayout const layout = imageLayout(pixelFormat, width, height);
    std::vector<std::uint8_t> image(layout.sizeImage);
    PatternRenderer renderer(pixelFormat, width, height, layout.bytesPerLine);
    image.resize(renderer.render(frameNumber, image.data(), image.size()));
    return image;
}

} // namespace VirtualCamera
