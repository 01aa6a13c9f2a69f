// SPDX-License-Identifier: MIT
#pragma once

#include "Connection.h"

#include "session/Selection.h"

namespace ImageAcquisition::Session
{

/// How the frames lie that the camera would deliver now.
struct FrameLayout
{
    Selection selection;           ///< Parts that the camera does not tell are left out.
    unsigned int bytesPerLine = 0; ///< 0 for compressed formats and where it is not known.
};

/// Asks the camera. Throws nothing; a camera that does not answer leaves all of it out.
FrameLayout currentLayout(Connection const& connection);

} // namespace ImageAcquisition::Session
