// SPDX-License-Identifier: MIT
#include "TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string_view>

namespace Iacq
{

namespace
{

struct CodePoint
{
    char32_t value;
    std::size_t length; ///< In bytes.
};

bool isScalar(char32_t value)
{
    return value <= 0x10ffff && (value < 0xd800 || value > 0xdfff);
}

/// What stands at the start of a text that is not empty; nothing when that is no UTF-8: a stray
/// byte, a sequence that is cut short or longer than it need be, half of a surrogate pair.
std::optional<CodePoint> firstOf(std::string_view text)
{
    struct Form
    {
        unsigned char mask;
        unsigned char lead;
        char32_t smallest;
    };
    static constexpr Form forms[] = {
        {0x80, 0x00, 0}, {0xe0, 0xc0, 0x80}, {0xf0, 0xe0, 0x800}, {0xf8, 0xf0, 0x10000}};
    auto const lead = static_cast<unsigned char>(text.front());
    auto const* const form =
        std::find_if(std::begin(forms), std::end(forms), [lead](Form const& candidate) {
            return (lead & candidate.mask) == candidate.lead;
        });
    auto const length = static_cast<std::size_t>(form - std::begin(forms)) + 1;
    if (form == std::end(forms) || text.size() < length) {
        return std::nullopt;
    }
    auto value = static_cast<char32_t>(lead & ~form->mask & 0xff);
    for (std::size_t i = 1; i < length; ++i) {
        auto const byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xc0) != 0x80) {
            return std::nullopt;
        }
        value = value << 6 | (byte & 0x3f);
    }
    return value >= form->smallest && isScalar(value)
               ? std::optional<CodePoint>(CodePoint{value, length})
               : std::nullopt;
}

bool actsOnTerminal(char32_t value)
{
    struct Range
    {
        char32_t first;
        char32_t last;
    };
    static constexpr Range ranges[] = {{0x00, 0x1f},     {0x7f, 0x9f},     {0x61c, 0x61c},
                                       {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069}};
    return std::any_of(std::begin(ranges), std::end(ranges), [value](Range const& range) {
        return value >= range.first && value <= range.last;
    });
}

std::string escaped(char32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned int>(value));
    return text;
}

/// Copies a text; what acts on a terminal, and a byte that is no UTF-8 (as nothing), goes through
/// @p replace.
template <typename Replace>
std::string copied(std::string_view text, Replace replace)
{
    std::string result;
    while (!text.empty()) {
        auto const character = firstOf(text);
        std::size_t const length = character ? character->length : 1;
        result += character && !actsOnTerminal(character->value)
                      ? std::string(text.substr(0, length))
                      : replace(character);
        text.remove_prefix(length);
    }
    return result;
}

} // namespace

std::string printable(std::string const& text)
{
    return copied(text, [](std::optional<CodePoint> const&) { return std::string("?"); });
}

std::string jsonText(nlohmann::ordered_json const& value, int indent)
{
    // Inside of texts there are no line feeds any more, and no bytes that are no UTF-8.
    return copied(value.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace),
                  [](std::optional<CodePoint> const& character) {
                      return character->value == '\n' ? std::string("\n")
                                                      : escaped(character->value);
                  });
}

void tell(std::string const& message)
{
    std::fprintf(stderr, "iacq: %s\n", printable(message).c_str());
}

} // namespace Iacq
