// SPDX-License-Identifier: MIT
#include "Bytes.h"

#include <stdexcept>

namespace UsbCamera
{

Bytes fromHex(std::string const& text)
{
    if (text.size() % 2 != 0 || text.find_first_not_of("0123456789abcdefABCDEF") != text.npos) {
        throw std::invalid_argument("not a sequence of hexadecimal bytes: " + text);
    }
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

} // namespace UsbCamera
