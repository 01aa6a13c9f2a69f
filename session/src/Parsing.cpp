// SPDX-License-Identifier: MIT
#include "Parsing.h"

#include "Names.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace ImageAcquisition::Session
{

namespace
{

template <typename Pair>
std::optional<Pair> parsePair(std::string const& text, char separator)
{
    auto const middle = text.find(separator);
    if (middle == std::string::npos) {
        return std::nullopt;
    }
    auto const first = parseCount(text.substr(0, middle));
    auto const second = parseCount(text.substr(middle + 1));
    if (!first || !second || *first == 0 || *second == 0) {
        return std::nullopt;
    }
    return Pair{*first, *second};
}

} // namespace

std::optional<long long> parseInteger(std::string const& text)
{
    bool const negative = !text.empty() && text.front() == '-';
    std::string const digits = text.substr(negative ? 1 : 0);
    bool const hexadecimal = digits.size() > 2 && digits[0] == '0' && (digits[1] | 0x20) == 'x';
    if (digits.empty() || digits.front() == '-' || digits.front() == '+') {
        return std::nullopt;
    }
    std::string const number = (negative ? "-" : "") + digits.substr(hexadecimal ? 2 : 0);
    long long value = 0;
    auto const [end, error] =
        std::from_chars(number.data(), number.data() + number.size(), value, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != number.data() + number.size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<unsigned int> parseCount(std::string const& text)
{
    unsigned int value = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

std::optional<bool> parseSwitch(std::string const& text)
{
    for (char const* const word : {"on", "true", "yes", "1"}) {
        if (equalIgnoringCase(text, word)) {
            return true;
        }
    }
    for (char const* const word : {"off", "false", "no", "0"}) {
        if (equalIgnoringCase(text, word)) {
            return false;
        }
    }
    return std::nullopt;
}

std::optional<Size> parseSize(std::string const& text)
{
    return parsePair<Size>(text, 'x');
}

std::optional<Interval> parseInterval(std::string const& text)
{
    return parsePair<Interval>(text, '/');
}

std::optional<double> parseFrameRate(std::string const& text)
{
    double value = 0;
    auto const [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value) ||
        value <= 0) {
        return std::nullopt;
    }
    return value;
}

} // namespace ImageAcquisition::Session
