// SPDX-License-Identifier: MIT
#include "UvcRequests.h"

#include "Bytes.h"

#include <map>
#include <stdexcept>

namespace UsbCamera
{

namespace
{

std::map<std::uint8_t, std::string> const& names()
{
    static std::map<std::uint8_t, std::string> const table{
        {setCur, "SET_CUR"}, {getCur, "GET_CUR"}, {getMin, "GET_MIN"},   {getMax, "GET_MAX"},
        {getRes, "GET_RES"}, {getLen, "GET_LEN"}, {getInfo, "GET_INFO"}, {getDef, "GET_DEF"}};
    return table;
}

} // namespace

std::string requestName(std::uint8_t code)
{
    auto const found = names().find(code);
    return found == names().end() ? toHex({code}) : found->second;
}

std::uint8_t requestCode(std::string const& name)
{
    for (auto const& entry : names()) {
        if (entry.second == name) {
            return entry.first;
        }
    }
    throw std::invalid_argument("no such UVC request: " + name);
}

} // namespace UsbCamera
