// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace ImageAcquisition::Session
{

struct Size
{
    unsigned int width;
    unsigned int height;
};

struct Interval
{
    unsigned int numerator;
    unsigned int denominator;
};

// Each is empty when the whole text is not of its form.
std::optional<long long> parseInteger(std::string const& text);  ///< Decimal, or 0x hexadecimal.
std::optional<unsigned int> parseCount(std::string const& text); ///< Decimal digits only.
std::optional<bool> parseSwitch(std::string const& text);        ///< on, off, true, 1, ...
std::optional<Size> parseSize(std::string const& text);          ///< 640x480
std::optional<Interval> parseInterval(std::string const& text);  ///< 1/30, in seconds
std::optional<double> parseFrameRate(std::string const& text);   ///< 30 or 29.97, above 0

} // namespace ImageAcquisition::Session
