// SPDX-License-Identifier: MIT
#pragma once

namespace ImageAcquisition
{

/// The rank of a firmware revision text of the form "TJ8-1.3.0": major x 100 + minor x 10 + patch.
/// Numbers that the text does not supply count as 0, and so does a text that is null.
long long firmwareRank(char const* text);

/// Whether a firmware of this rank controls the camera over its serial port.
bool hasSerialControls(long long rank);

} // namespace ImageAcquisition
