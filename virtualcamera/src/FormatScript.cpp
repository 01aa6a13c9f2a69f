// SPDX-License-Identifier: MIT
#include "FormatScript.h"

#include <stdexcept>

namespace VirtualCamera
{

std::uint32_t pixelFormatByName(std::string const& name)
{
    if (name.size() != 4) {
        throw std::invalid_argument("a pixel format has four characters, unlike \"" + name + "\"");
    }
    std::uint32_t code = 0;
    for (unsigned byte = 0; byte < 4; ++byte) {
        code |= std::uint32_t{static_cast<unsigned char>(name[byte])} << (8 * byte);
    }
    return code;
}

std::string pixelFormatName(std::uint32_t pixelFormat)
{
    std::string name;
    for (unsigned byte = 0; byte < 4; ++byte) {
        name += static_cast<char>(pixelFormat >> (8 * byte) & 0xff);
    }
    return name;
}

} // namespace VirtualCamera
