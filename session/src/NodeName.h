// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ImageAcquisition::Session
{

/// The short name of a node given as video0 or /dev/video0, or by a link as udev makes them in
/// /dev/v4l; empty for other texts.
std::string nodeName(std::string const& text);

} // namespace ImageAcquisition::Session
