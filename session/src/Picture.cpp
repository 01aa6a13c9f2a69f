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

    /// Converts as much as there is.
    void convert(Bytes bytes, PictureLayout const& layout, PictureShape const& shape,
                 Present const& present, unsigned char* rgb)
    {
        unsigned int const lines = std::min(layout.height, present.lines * shape.sampleLines);
        if (isBayer(layout.format)) {
            convertBayer(bytes, layout, shape, lines, rgb);
            return;
        }
        PictureArea const whole = {0, lines, layout.width};
        PictureArea const rest = {lines, std::min(layout.height - lines, shape.sampleLines),
                                  std::min(layout.width, present.samples * shape.samplePixels)};
        for (PictureArea const& area : {whole, rest}) {
            if (area.lines != 0 && area.pixels != 0 &&
                !convertWithLibyuv(layout, shape, bytes.data(), area, rgb, m_scratch)) {
                fail(ErrorKind::Refused, layout, "the frame cannot be converted");
            }
        }
    }

private:
    /// Of a line that is cut, the colours cannot be told.
    void convertBayer(Bytes bytes, PictureLayout const& layout, PictureShape const& shape,
                      unsigned int lines, unsigned char* rgb)
    {
        if (!m_bayer) {
            m_bayer.emplace();
        }
        if (layout.width < BayerConverter::leastWidth || lines < BayerConverter::leastLines ||
            !m_bayer->convert({codeOf(layout.format), layout.width, lines,
                               static_cast<unsigned int>(shape.first.stride), bytes.data()},
                              rgb)) {
            fail(ErrorKind::Refused, layout,
                 "the colours of " + std::to_string(layout.width) + "x" + std::to_string(lines) +
                     " Bayer pixels cannot be told");
        }
    }

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
    return shape ? shape->last().end() : std::numeric_limits<unsigned long long>::max();
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
    Present const present = shape.presentIn(bytes.size());
    if (present.lines == 0 && present.samples == 0) {
        fail(ErrorKind::Refused, layout,
             "the frame has " + std::to_string(bytes.size()) + " bytes, but " + sizeText(layout) +
                 " needs " + std::to_string(bytesOf(layout)));
    }
    std::size_t const size = std::size_t{3} * layout.width * layout.height;
    m_rgb.resize(std::max(m_rgb.size(), size));
    if (present.lines < shape.last().lines) {
        std::fill_n(m_rgb.data(), size, static_cast<unsigned char>(0));
    }
    m_decoder->convert(bytes, layout, shape, present, m_rgb.data());
    m_width = layout.width;
    m_height = layout.height;
}

Bytes Picture::rgb() const noexcept
{
    return empty() ? Bytes() : Bytes(m_rgb.data(), std::size_t{3} * m_width * m_height);
}

} // namespace ImageAcquisition::Session
