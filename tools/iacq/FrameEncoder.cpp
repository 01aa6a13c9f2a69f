// SPDX-License-Identifier: MIT
#include "FrameEncoder.h"

#include "Failure.h"

#include <session/Error.h>
#include <session/Frame.h>

#include <png.h>
#include <strings.h>

namespace Iacq
{

using namespace ImageAcquisition::Session;

namespace
{

std::vector<unsigned char> encodePng(Picture const& picture)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = picture.width();
    png.height = picture.height();
    png.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = 0;
    std::vector<unsigned char> bytes;
    if (png_image_write_to_memory(&png, nullptr, &size, 0, picture.rgb().data(), 0, nullptr) != 0) {
        bytes.resize(size);
        if (png_image_write_to_memory(&png, bytes.data(), &size, 0, picture.rgb().data(), 0,
                                      nullptr) != 0) {
            bytes.resize(size);
            return bytes;
        }
    }
    throw Failure(CameraFailed, std::string("cannot make a PNG picture: ") + png.message);
}

std::vector<unsigned char> encodePpm(Picture const& picture)
{
    std::string const header = "P6\n" + std::to_string(picture.width()) + " " +
                               std::to_string(picture.height()) + "\n255\n";
    std::vector<unsigned char> bytes(header.begin(), header.end());
    bytes.insert(bytes.end(), picture.rgb().begin(), picture.rgb().end());
    return bytes;
}

} // namespace

OutputFormat outputFormatOf(std::string const& named, std::string const& path)
{
    auto const dot = path.find_last_of("./");
    std::string const extension =
        dot != std::string::npos && path[dot] == '.' ? path.substr(dot + 1) : "";
    std::string const& wanted = named.empty() ? extension : named;
    for (auto const& [name, format] : {std::pair{"png", OutputFormat::Png},
                                       {"ppm", OutputFormat::Ppm},
                                       {"raw", OutputFormat::Raw}}) {
        if (strcasecmp(wanted.c_str(), name) == 0) {
            return format;
        }
    }
    if (!named.empty()) {
        throw Failure(BadUsage,
                      "--output-format is '" + named + "', but has to be png, ppm or raw");
    }
    throw Failure(BadUsage, "cannot tell the output format from '" + path +
                                "'; use --output-format png, ppm or raw");
}

PictureLayout layoutOf(Frame const& frame)
{
    Selection const& selection = frame.selection();
    return {selection.format, selection.width, selection.height, frame.bytesPerLine()};
}

FrameEncoder::FrameEncoder(std::string const& pixelFormat, OutputFormat format) : m_format(format)
{
    if (format != OutputFormat::Raw && !Picture::converts(pixelFormat)) {
        throw Failure(BadUsage,
                      "cannot convert " + pixelFormat + " to a picture; use --output-format raw");
    }
}

std::vector<unsigned char> FrameEncoder::encode(std::vector<unsigned char> const& bytes,
                                                PictureLayout const& layout)
{
    if (m_format == OutputFormat::Raw) {
        return bytes;
    }
    convert(bytes, layout);
    return m_format == OutputFormat::Png ? encodePng(m_picture) : encodePpm(m_picture);
}

/// A file with a part of a picture would be taken for a whole one.
void FrameEncoder::convert(std::vector<unsigned char> const& bytes, PictureLayout const& layout)
{
    bool const hasSize = layout.width != 0 && layout.height != 0;
    if (hasSize && bytes.size() < bytesOf(layout)) {
        throw Failure(NoFrame, "the frame has " + std::to_string(bytes.size()) + " bytes, but " +
                                   layout.format + " " + std::to_string(layout.width) + "x" +
                                   std::to_string(layout.height) + " needs " +
                                   std::to_string(bytesOf(layout)));
    }
    try {
        m_picture.convert({bytes.data(), bytes.size()}, layout);
    } catch (Error const& error) {
        throw Failure(NoFrame, error.reason());
    }
}

} // namespace Iacq
