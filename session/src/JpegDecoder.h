// SPDX-License-Identifier: MIT
#pragma once

#include "session/Bytes.h"

#include <memory>
#include <vector>

namespace ImageAcquisition::Session
{

/**
 * Decodes JPEG pictures, as cameras send them one by one. Only a frame of the size that is set on
 * the camera is waited for, so a picture that claims more is not decoded; where that size is not
 * known, its bytes tell how large it may be.
 */
class JpegDecoder
{
public:
    struct Size
    {
        unsigned int width;
        unsigned int height;
    };

    /// @throws std::bad_alloc
    JpegDecoder();

    /// @param most 0 and 0 where it is not known.
    /// @throws Error Refused when the bytes are no picture, or would take more than one does.
    Size decode(Bytes bytes, Size most, std::vector<unsigned char>& rgb);

private:
    struct Deleter
    {
        void operator()(void* decoder) const;
    };

    Size sizeOf(Bytes bytes) const;

    std::unique_ptr<void, Deleter> m_decoder;
};

} // namespace ImageAcquisition::Session
