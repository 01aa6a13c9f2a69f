// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Iacq
{

/// A text from elsewhere as it may stand in a line on a terminal. Question marks replace whatever
/// would end the line, act on the terminal or change the direction of writing: control characters
/// (U+0000 to U+001F, U+007F to U+009F), separators of lines and paragraphs (U+2028, U+2029), marks
/// of direction (U+061C, U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069), and each byte that is
/// no part of well-formed UTF-8.
std::string printable(std::string const& text);

/// JSON in UTF-8, a line for each value if @p indent is not negative. What printable() replaces is
/// escaped, so that the texts stay as they are; U+FFFD stands for bytes that are no UTF-8, which
/// JSON cannot hold.
std::string jsonText(nlohmann::ordered_json const& value, int indent = -1);

/// One line on standard error, in the name of the tool.
void tell(std::string const& message);

} // namespace Iacq
