// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ImageAcquisition::Session
{

/// Whether two texts are equal but for the case of their letters.
bool equalIgnoringCase(std::string const& a, std::string const& b);

bool startsWith(std::string const& text, std::string const& beginning);

} // namespace ImageAcquisition::Session
