// SPDX-License-Identifier: MIT
#include "session/Selection.h"

#include "Parsing.h"
#include "session/Error.h"

#include <limits>
#include <numeric>
#include <sstream>

namespace ImageAcquisition::Session
{

namespace
{

[[noreturn]] void throwBad(std::string const& text, std::string const& reason)
{
    throw Error({ErrorKind::BadRequest, "select '" + text + "'", reason});
}

/// 29.97 as 2997/100. Three digits after the point are all that rates are told by.
std::optional<FrameRate> rateOf(std::string const& text)
{
    if (auto const fraction = parseInterval(text)) {
        return FrameRate{fraction->numerator, fraction->denominator};
    }
    auto const rate = parseFrameRate(text);
    double const thousands = rate.value_or(0) * 1000 + 0.5;
    if (thousands < 1 || thousands >= std::numeric_limits<unsigned int>::max()) {
        return std::nullopt;
    }
    auto const frames = static_cast<unsigned int>(thousands);
    unsigned int const divisor = std::gcd(frames, 1000U);
    return FrameRate{frames / divisor, 1000U / divisor};
}

std::string lowerX(std::string text)
{
    for (char& character : text) {
        character = character == 'X' ? 'x' : character;
    }
    return text;
}

} // namespace

std::string FrameRate::text() const
{
    // By whole numbers, for a program's locale may have another sign than a point.
    unsigned long long const thousandths = (2000ULL * frames / seconds + 1) / 2;
    std::string text = std::to_string(thousandths / 1000);
    if (thousandths % 1000 != 0) {
        std::string const digits = std::to_string(1000 + thousandths % 1000).substr(1);
        text += "." + digits.substr(0, digits.find_last_not_of('0') + 1);
    }
    return text;
}

bool operator==(FrameRate a, FrameRate b) noexcept
{
    return 1ULL * a.frames * b.seconds == 1ULL * b.frames * a.seconds;
}

bool operator!=(FrameRate a, FrameRate b) noexcept
{
    return !(a == b);
}

Selection Selection::parse(std::string const& text)
{
    Selection wish;
    std::string separated;
    for (char const character : text) {
        separated += character == '@' ? " @" : std::string(1, character);
    }
    std::istringstream parts(separated);
    for (std::string part; parts >> part;) {
        auto const size = parseSize(lowerX(part));
        if (part.front() == '@') {
            auto const rate = rateOf(part.substr(1));
            if (!rate || wish.rate.isSaid()) {
                throwBad(text,
                         rate ? "it has two rates" : "'" + part + "' is no rate; give it like @30");
            }
            wish.rate = *rate;
        } else if (size) {
            if (wish.width != 0) {
                throwBad(text, "it has two sizes");
            }
            wish.width = size->width;
            wish.height = size->height;
        } else {
            if (!wish.format.empty() || part.size() > 4) {
                throwBad(text, "'" + part + "' is neither a format nor a size nor a rate; give " +
                                   "them like YUYV 640x480@30");
            }
            wish.format = part;
        }
    }
    return wish;
}

std::string Selection::text() const
{
    std::string text = format;
    if (width != 0 || height != 0) {
        text += (text.empty() ? "" : " ") + std::to_string(width) + "x" + std::to_string(height);
    }
    return rate.isSaid() ? text + "@" + rate.text() : text;
}

bool operator==(Selection const& a, Selection const& b) noexcept
{
    return a.format == b.format && a.width == b.width && a.height == b.height && a.rate == b.rate;
}

bool operator!=(Selection const& a, Selection const& b) noexcept
{
    return !(a == b);
}

} // namespace ImageAcquisition::Session
