// SPDX-License-Identifier: MIT
#include "session/Picture.h"

#include "BayerConverter.h"
#include "JpegDecoder.h"
#include "PictureLibyuv.h"
#include "PictureShape.h"

#include "session/Error.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

[[noreturn]] void fail(ErrorKind kind, PictureLayout const& layout, std::string const& reason)
{
    throw Error({kind, "convert " + layout.format, reason});
}

std::string sizeText(PictureLayout const& layout)
{
    return std::to_string(layout.width) + "x" + std::to_string(layout.height);
}

unsigned int codeOf(std::string const& format)
{
    unsigned int code = 0;
    for (std::size_t i = 4; i-- > 0;) {
        code = code << 8U | static_cast<unsigned char>(format[i]);
    }
    return code;
}

PictureShape demandShape(PictureLayout const& layout)
{
    if (layout.width == 0 || layout.height == 0) {
        fail(ErrorKind::Refused, layout, "the camera does not tell the size of its frames");
    }
    std::optional<PictureShape> const shape = shapeOf(layout);
    if (!shape) {
        fail(ErrorKind::Refused, layout, "no camera has pictures of " + sizeText(layout));
    }
    return *shape;
}

} // namespace

/// What is kept from frame to frame besides the picture, each part made when it is first needed.
struct Picture::Decoder
{
    /// Returns what the header says, which is no more than the layout has.
    JpegDecoder::Size decode(Bytes bytes, PictureLayout const& layout,
                             std::vector<unsigned char>& rgb)
    {
        if (!m_jpeg) {
            m_jpeg.emplace();
        }
        return m_jpeg->decode(bytes, {layout.width, layout.height}, rgb);
    }

    void convert(Bytes bytes, PictureLayout const& layout, PictureShape shape, unsigned char* rgb)
    {
        if (bytes.size() < shape.size()) {
            complete(bytes, shape, m_copy);
            bytes = Bytes(m_copy.data(), m_copy.size());
        }
        bool const isConverted =
            isBayer(layout.format) ? convertBayer(bytes, layout, shape, rgb)
                                   : convertWithLibyuv(layout, shape, bytes.data(), rgb, m_scratch);
        if (!isConverted) {
            fail(ErrorKind::Refused, layout,
                 "pictures of " + sizeText(layout) + " are not converted");
        }
    }

private:
    bool convertBayer(Bytes bytes, PictureLayout const& layout, PictureShape const& shape,
                      unsigned char* rgb)
    {
        if (!m_bayer) {
            m_bayer.emplace();
        }
        return layout.width >= BayerConverter::leastWidth &&
               layout.height >= BayerConverter::leastLines &&
               m_bayer->convert({codeOf(layout.format), layout.width, layout.height,
                                 static_cast<unsigned int>(shape.planes[0].stride), bytes.data()},
                                rgb);
    }

    std::vector<unsigned char> m_copy; ///< Of frames that were cut.
    std::vector<unsigned char> m_scratch;
    std::optional<JpegDecoder> m_jpeg;
    std::optional<BayerConverter> m_bayer;
};

unsigned long long bytesOf(PictureLayout const& layout) noexcept
{
    if (!isUncompressed(layout.format)) {
        return 0;
    }
    std::optional<PictureShape> const shape = shapeOf(layout);
    return shape ? shape->size() : std::numeric_limits<unsigned long long>::max();
}

Picture::Picture() = default;
Picture::~Picture() = default;

Picture::Picture(Picture const& other)
    : m_width(other.m_width), m_height(other.m_height),
      m_rgb(other.rgb().begin(), other.rgb().end())
{
}

Picture::Picture(Picture&& other) noexcept
    : m_width(std::exchange(other.m_width, 0)), m_height(std::exchange(other.m_height, 0)),
      m_rgb(std::move(other.m_rgb)), m_decoder(std::move(other.m_decoder))
{
}

Picture& Picture::operator=(Picture const& other)
{
    if (this != &other) {
        m_rgb.assign(other.rgb().begin(), other.rgb().end());
        m_width = other.m_width;
        m_height = other.m_height;
    }
    return *this;
}

Picture& Picture::operator=(Picture&& other) noexcept
{
    if (this != &other) {
        m_width = std::exchange(other.m_width, 0);
        m_height = std::exchange(other.m_height, 0);
        m_rgb = std::move(other.m_rgb);
        m_decoder = std::move(other.m_decoder);
    }
    return *this;
}

bool Picture::converts(std::string const& format) noexcept
{
    return isJpeg(format) || isUncompressed(format);
}

void Picture::convert(Bytes bytes, PictureLayout const& layout)
{
    m_width = 0;
    m_height = 0;
    if (!converts(layout.format)) {
        fail(ErrorKind::Unsupported, layout, "pictures of this format are not converted");
    }
    if (!m_decoder) {
        m_decoder = std::make_unique<Decoder>();
    }
    if (isJpeg(layout.format)) {
        JpegDecoder::Size const size = m_decoder->decode(bytes, layout, m_rgb);
        m_width = size.width;
        m_height = size.height;
        return;
    }
    PictureShape const shape = demandShape(layout);
    if (bytes.empty()) {
        fail(ErrorKind::Refused, layout, "the frame is empty");
    }
    m_rgb.resize(std::max(m_rgb.size(), std::size_t{3} * layout.width * layout.height));
    m_decoder->convert(bytes, layout, shape, m_rgb.data());
    m_width = layout.width;
    m_height = layout.height;
}

Bytes Picture::rgb() const noexcept
{
    return empty() ? Bytes() : Bytes(m_rgb.data(), std::size_t{3} * m_width * m_height);
}

} // namespace ImageAcquisition::Session
