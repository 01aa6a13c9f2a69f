// SPDX-License-Identifier: MIT
#include "ScriptNames.h"

#include <linux/videodev2.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace VirtualCamera
{

namespace
{

/// The decimal numbers of a text, which `separator` stands between; none when there is anything
/// else in it, or a number above `highest`.
std::vector<std::uint32_t> numbersByText(std::string const& text, char separator,
                                         std::uint32_t highest)
{
    std::vector<std::uint32_t> numbers;
    char const* at = text.data();
    char const* const end = at + text.size();
    for (;;) {
        std::uint32_t number = 0;
        auto const [rest, error] = std::from_chars(at, end, number);
        if (error != std::errc() || number > highest) {
            return {};
        }
        numbers.push_back(number);
        if (rest == end) {
            return numbers;
        }
        if (*rest != separator) {
            return {};
        }
        at = rest + 1;
    }
}

} // namespace

NameTable const& capabilityNames()
{
    static NameTable const names{{"VIDEO_CAPTURE", V4L2_CAP_VIDEO_CAPTURE},
                                 {"VIDEO_CAPTURE_MPLANE", V4L2_CAP_VIDEO_CAPTURE_MPLANE},
                                 {"VIDEO_OUTPUT", V4L2_CAP_VIDEO_OUTPUT},
                                 {"META_CAPTURE", V4L2_CAP_META_CAPTURE},
                                 {"READWRITE", V4L2_CAP_READWRITE},
                                 {"ASYNCIO", V4L2_CAP_ASYNCIO},
                                 {"STREAMING", V4L2_CAP_STREAMING},
                                 {"EXT_PIX_FORMAT", V4L2_CAP_EXT_PIX_FORMAT},
                                 {"DEVICE_CAPS", V4L2_CAP_DEVICE_CAPS}};
    return names;
}

NameTable const& formatFlagNames()
{
    static NameTable const names{{"compressed", V4L2_FMT_FLAG_COMPRESSED},
                                 {"emulated", V4L2_FMT_FLAG_EMULATED}};
    return names;
}

NameTable const& controlTypeNames()
{
    static NameTable const names{{"integer", V4L2_CTRL_TYPE_INTEGER},
                                 {"boolean", V4L2_CTRL_TYPE_BOOLEAN},
                                 {"menu", V4L2_CTRL_TYPE_MENU},
                                 {"button", V4L2_CTRL_TYPE_BUTTON},
                                 {"integer64", V4L2_CTRL_TYPE_INTEGER64},
                                 {"class", V4L2_CTRL_TYPE_CTRL_CLASS},
                                 {"string", V4L2_CTRL_TYPE_STRING},
                                 {"bitmask", V4L2_CTRL_TYPE_BITMASK},
                                 {"integerMenu", V4L2_CTRL_TYPE_INTEGER_MENU},
                                 {"unsigned8", V4L2_CTRL_TYPE_U8},
                                 {"unsigned16", V4L2_CTRL_TYPE_U16},
                                 {"unsigned32", V4L2_CTRL_TYPE_U32}};
    return names;
}

NameTable const& controlFlagNames()
{
    static NameTable const names{{"disabled", V4L2_CTRL_FLAG_DISABLED},
                                 {"grabbed", V4L2_CTRL_FLAG_GRABBED},
                                 {"readOnly", V4L2_CTRL_FLAG_READ_ONLY},
                                 {"update", V4L2_CTRL_FLAG_UPDATE},
                                 {"inactive", V4L2_CTRL_FLAG_INACTIVE},
                                 {"slider", V4L2_CTRL_FLAG_SLIDER},
                                 {"writeOnly", V4L2_CTRL_FLAG_WRITE_ONLY},
                                 {"volatile", V4L2_CTRL_FLAG_VOLATILE},
                                 {"hasPayload", V4L2_CTRL_FLAG_HAS_PAYLOAD},
                                 {"executeOnWrite", V4L2_CTRL_FLAG_EXECUTE_ON_WRITE}};
    return names;
}

NameTable const& paceNames()
{
    static NameTable const names{{"interval", static_cast<std::uint32_t>(Pace::Interval)},
                                 {"immediate", static_cast<std::uint32_t>(Pace::Immediate)},
                                 {"onDemand", static_cast<std::uint32_t>(Pace::OnDemand)}};
    return names;
}

NameTable const& rangeKindNames()
{
    static NameTable const names{{"discrete", static_cast<std::uint32_t>(RangeKind::Discrete)},
                                 {"stepwise", static_cast<std::uint32_t>(RangeKind::Stepwise)},
                                 {"continuous", static_cast<std::uint32_t>(RangeKind::Continuous)}};
    return names;
}

std::uint32_t numberOf(NameTable const& table, std::string const& name)
{
    std::string known;
    for (auto const& [candidate, number] : table) {
        if (name == candidate) {
            return number;
        }
        known += known.empty() ? "" : ", ";
        known += candidate;
    }
    throw std::invalid_argument("\"" + name + "\" is none of " + known);
}

std::string nameOf(NameTable const& table, std::uint32_t number)
{
    for (auto const& [name, candidate] : table) {
        if (number == candidate) {
            return name;
        }
    }
    throw std::invalid_argument("no name for number " + std::to_string(number));
}

int errorByName(std::string const& name)
{
    constexpr int lastError = 133;
    for (int error = 1; error <= lastError; ++error) {
        char const* const candidate = strerrorname_np(error);
        if (candidate != nullptr && name == candidate) {
            return error;
        }
    }
    throw std::invalid_argument("\"" + name + "\" is no errno name");
}

std::string errorName(int error)
{
    char const* const name = strerrorname_np(error);
    if (name == nullptr) {
        throw std::invalid_argument("no errno name for " + std::to_string(error));
    }
    return name;
}

std::vector<std::uint8_t> bytesByHex(std::string const& digits)
{
    bool const odd = digits.size() % 2 != 0;
    if (odd || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
        throw std::invalid_argument("bytes are pairs of hexadecimal digits");
    }
    std::vector<std::uint8_t> bytes;
    for (std::size_t place = 0; place < digits.size(); place += 2) {
        bytes.push_back(
            static_cast<std::uint8_t>(std::stoul(digits.substr(place, 2), nullptr, 16)));
    }
    return bytes;
}

std::string hexOf(std::vector<std::uint8_t> const& bytes)
{
    std::string text;
    char digits[3];
    for (std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text;
}

Interval intervalByText(std::string const& text)
{
    auto const numbers = numbersByText(text, '/', UINT32_MAX);
    if (numbers.size() != 2) {
        throw std::invalid_argument("an interval is written as \"1/30\", unlike \"" + text + "\"");
    }
    return {numbers[0], numbers[1]};
}

std::uint32_t versionByText(std::string const& text)
{
    auto const numbers = numbersByText(text, '.', 0xffff);
    if (numbers.size() != 3 || numbers[1] > 0xff || numbers[2] > 0xff) {
        throw std::invalid_argument("a version is written as \"6.1.0\", up to \"65535.255.255\", "
                                    "unlike \"" +
                                    text + "\"");
    }
    return numbers[0] << 16 | numbers[1] << 8 | numbers[2];
}

} // namespace VirtualCamera
