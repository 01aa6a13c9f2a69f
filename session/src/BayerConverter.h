// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

struct v4lconvert_data;

namespace ImageAcquisition::Session
{

/// Interpolates the colours of 8-bit Bayer pictures.
class BayerConverter
{
public:
    /// Smaller pictures have pixels without the neighbours that are asked for.
    static constexpr unsigned int leastWidth = 4;
    static constexpr unsigned int leastLines = 4;

    struct Picture
    {
        unsigned int pixelFormat; ///< The four-character code as V4L2 has it.
        unsigned int width;       ///< At least leastWidth.
        unsigned int lines;       ///< At least leastLines.
        unsigned int bytesPerLine;
        unsigned char const* data; ///< All lines; the last one need not be padded.
    };

    /// @throws std::bad_alloc
    BayerConverter();

    /// @param rgb room for three bytes of each pixel.
    /// @returns false when the library does not take it.
    bool convert(Picture const& picture, unsigned char* rgb) const;

private:
    struct Deleter
    {
        void operator()(v4lconvert_data* converter) const;
    };

    std::unique_ptr<v4lconvert_data, Deleter> m_converter;
};

} // namespace ImageAcquisition::Session
