// SPDX-License-Identifier: MIT
#pragma once

#include "session/Bytes.h"
#include "session/SessionExport.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ImageAcquisition::Session
{

class Frame;

/// How the bytes of a picture lie.
struct PictureLayout
{
    std::string format;            ///< Four-character code.
    unsigned int width = 0;        ///< Pixels.
    unsigned int height = 0;       ///< Lines.
    unsigned int bytesPerLine = 0; ///< 0: without gaps.
};

/// The fewest bytes that hold a whole picture: the last line need not be padded. 0 for formats that
/// are compressed or not converted; more than any frame has where the numbers are absurd.
IMAGEACQUISITION_SESSION_EXPORT unsigned long long bytesOf(PictureLayout const& layout) noexcept;

/**
 * @brief A picture of red, green and blue bytes, made from what cameras deliver.
 *
 * A value; kept from frame to frame it allocates only when the size grows, but for what the JPEG
 * decoder takes. Formats: YUYV, UYVY, NV12, YU12, YV12, MJPG, GREY, RGB3, BGR3 and the 8-bit Bayer
 * orders BA81, GBRG, GRBG and RGGB. YUV is taken for BT.601 of limited range, as cameras send it,
 * and MJPG for what its header says.
 *
 * Threads: as any value.
 */
class IMAGEACQUISITION_SESSION_EXPORT Picture
{
public:
    Picture();
    /// Copies the pixels.
    Picture(Picture const& other);
    /// Takes the pixels over.
    Picture(Picture&& other) noexcept;
    /// Copies the pixels.
    Picture& operator=(Picture const& other);
    /// Takes the pixels over.
    Picture& operator=(Picture&& other) noexcept;
    ~Picture();

    /// Whether pictures of this format can be made.
    static bool converts(std::string const& format) noexcept;

    /**
     * @brief Becomes the picture of a frame.
     *
     * What a cut frame lacks stays black, and of a compressed one is what the decoder makes of it.
     * A compressed frame whose header claims to be larger than the selection is not decoded; a
     * smaller one decides about the size. Where the selection has no size, the number of its bytes
     * tells how large it may be.
     * @throws Error Unsupported for a format that is not converted; Refused for data that is no
     * picture, for numbers that no camera has, and for Bayer pictures below 4x4 pixels. The picture
     * is empty then.
     */
    void convert(Frame const& frame);
    /// The same of bytes that lie as @p layout says.
    void convert(Bytes bytes, PictureLayout const& layout);

    /// In pixels.
    unsigned int width() const noexcept { return m_width; }
    /// In pixels.
    unsigned int height() const noexcept { return m_height; }
    /// Whether there is no picture.
    bool empty() const noexcept { return m_width == 0; }
    /// Red, green and blue of each pixel, line by line from the top, without gaps.
    Bytes rgb() const noexcept;

private:
    struct Decoder;

    unsigned int m_width = 0;
    unsigned int m_height = 0;
    std::vector<unsigned char> m_rgb;
    std::unique_ptr<Decoder> m_decoder; ///< Made when it is first needed; never copied.
};

} // namespace ImageAcquisition::Session
