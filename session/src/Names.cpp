// SPDX-License-Identifier: MIT
#include "Names.h"

#include "session/Control.h"

#include <algorithm>
#include <cctype>

namespace ImageAcquisition::Session
{

std::string shortName(std::string const& name)
{
    std::string result;
    bool separate = false;
    for (char const character : name) {
        auto const code = static_cast<unsigned char>(character);
        if (std::isalnum(code) == 0) {
            separate = true;
            continue;
        }
        if (separate && !result.empty()) {
            result += '_';
        }
        separate = false;
        result += static_cast<char>(std::tolower(code));
    }
    return result;
}

bool equalIgnoringCase(std::string const& a, std::string const& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char left, char right) {
        return std::tolower(static_cast<unsigned char>(left)) ==
               std::tolower(static_cast<unsigned char>(right));
    });
}

bool startsWith(std::string const& text, std::string const& beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

} // namespace ImageAcquisition::Session
