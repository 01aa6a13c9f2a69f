// SPDX-License-Identifier: MIT
#include "ScriptFields.h"

#include <cstdio>
#include <cstdlib>

namespace VirtualCamera
{

std::uint32_t ScriptFields::idOf(Json const& json)
{
    if (!json.is_string()) {
        return JsonNumber<std::uint32_t>::from(json);
    }
    std::string const text = json.get<std::string>();
    char* end = nullptr;
    // Takes what does not fit as the largest number.
    unsigned long long const number = std::strtoull(text.c_str(), &end, 0);
    bool const whole = end == text.c_str() + text.size();
    if (!whole || text.find_first_of("0123456789") != 0) {
        throw std::invalid_argument("\"" + text + "\" is no number");
    }
    if (number > UINT32_MAX) {
        throw std::invalid_argument("\"" + text + "\" is above 0xffffffff");
    }
    return static_cast<std::uint32_t>(number);
}

Json ScriptFields::idText(std::uint32_t id)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", id);
    return text;
}

std::uint32_t ScriptFields::flagsOf(Json const& json, NameTable const& names)
{
    std::uint32_t flags = 0;
    for (std::string const& name : json.get<std::vector<std::string>>()) {
        flags |= numberOf(names, name);
    }
    return flags;
}

Json ScriptFields::flagTexts(std::uint32_t flags, NameTable const& names)
{
    Json texts = Json::array();
    for (auto const& [name, bit] : names) {
        if ((flags & bit) != 0) {
            texts.push_back(name);
        }
    }
    return texts;
}

Json ScriptFields::intervalText(Interval const& value)
{
    return std::to_string(value.numerator) + "/" + std::to_string(value.denominator);
}

std::vector<Interval> ScriptFields::intervalList(Json const& json)
{
    std::vector<Interval> values;
    for (std::string const& text : json.get<std::vector<std::string>>()) {
        values.push_back(intervalByText(text));
    }
    return values;
}

Json ScriptFields::intervalTexts(std::vector<Interval> const& values)
{
    Json texts = Json::array();
    for (Interval const& value : values) {
        texts.push_back(intervalText(value));
    }
    return texts;
}

} // namespace VirtualCamera
