// SPDX-License-Identifier: MIT
#include "PngPicture.h"

#include <png.h>

Picture readPng(std::string const& bytes)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    Picture picture;
    if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) != 0) {
        png.format = PNG_FORMAT_RGB;
        picture.width = png.width;
        picture.height = png.height;
        picture.pixels.resize(PNG_IMAGE_SIZE(png));
        png_image_finish_read(&png, nullptr, picture.pixels.data(), 0, nullptr);
    }
    return picture;
}
