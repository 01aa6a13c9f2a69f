// SPDX-License-Identifier: MIT
#pragma once

#include "FormatScript.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct v4l2_pix_format;

namespace VirtualCamera
{

class PatternRenderer;

/// Puts a device's pictures into its clients' buffers.
class FramePainter
{
public:
    FramePainter();
    ~FramePainter();

    /// Paints frame `number`, at most `capacity` bytes; the result is the bytes used.
    std::size_t paint(v4l2_pix_format const& pixels, FormatScript const* script,
                      std::uint32_t number, unsigned char* target, std::size_t capacity);

private:
    std::unique_ptr<PatternRenderer> m_renderer; ///< For the format and size painted last.
};

} // namespace VirtualCamera
