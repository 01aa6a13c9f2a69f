// SPDX-License-Identifier: MIT
#include "ImageEncoding.h"

#include "Failure.h"
#include "Names.h"

#include <png.h>

namespace Iacq
{

using ImageAcquisition::Session::equalIgnoringCase;
using ImageAcquisition::Session::Picture;

OutputFormat outputFormatOf(std::string const& named, std::string const& path)
{
    auto const dot = path.find_last_of("./");
    std::string const extension =
        dot != std::string::npos && path[dot] == '.' ? path.substr(dot + 1) : "";
    std::string const& wanted = named.empty() ? extension : named;
    if (equalIgnoringCase(wanted, "png")) {
        return OutputFormat::Png;
    }
    if (equalIgnoringCase(wanted, "ppm")) {
        return OutputFormat::Ppm;
    }
    if (equalIgnoringCase(wanted, "raw")) {
        return OutputFormat::Raw;
    }
    if (!named.empty()) {
        throw Failure(BadUsage,
                      "--output-format is '" + named + "', but has to be png, ppm or raw");
    }
    throw Failure(BadUsage, "cannot tell the output format from '" + path +
                                "'; use --output-format png, ppm or raw");
}

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

} // namespace Iacq
