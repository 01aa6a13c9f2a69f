// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ImageAcquisition::Session
{

/// Whether two texts are equal but for the case of their letters.
bool equalIgnoringCase(std::string const& a, std::string const& b);

} // namespace ImageAcquisition::Session
