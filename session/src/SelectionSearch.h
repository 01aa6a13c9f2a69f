// SPDX-License-Identifier: MIT
#pragma once

#include "Connection.h"

#include "session/Selection.h"

#include <vector>

namespace ImageAcquisition::Session
{

/// What the camera offers, ranges of sizes and rates included.
std::vector<FormatOffer> offersOf(Connection const& connection);

/// Sets what fits the wish and reads it back; as Camera::select().
/// @throws Error
Selection selectOn(Connection& connection, Selection const& wish, Match match);

} // namespace ImageAcquisition::Session
