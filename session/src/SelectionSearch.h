// SPDX-License-Identifier: MIT
#pragma once

#include "Connection.h"

#include "session/Selection.h"

#include <vector>

namespace ImageAcquisition::Session
{

/// Whether a rate that may have been written by a person means the other.
bool isSameRate(FrameRate a, FrameRate b);

/// Whether a format that may have been written by a person, in letters of any case and without the
/// space at the end of some codes, means the other.
bool isSameFormat(std::string const& written, std::string const& format);

/// What the camera offers, ranges of sizes and rates included.
std::vector<FormatOffer> offersOf(Connection const& connection);

/// Sets what fits the wish and reads it back; as Camera::select().
/// @throws Error
Selection selectOn(Connection& connection, Selection const& wish, Match match);

} // namespace ImageAcquisition::Session
