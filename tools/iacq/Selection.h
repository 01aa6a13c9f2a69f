// SPDX-License-Identifier: MIT
#pragma once

#include <ICamera.h>

#include <string>

namespace Iacq
{

/// Parts of a selection that the user named; empty texts mean that it does not matter.
struct WantedSelection
{
    std::string format;
    std::string size;
    std::string interval;
    std::string frameRate; ///< Frames a second, in place of the interval.

    bool isEmpty() const
    {
        return format.empty() && size.empty() && interval.empty() && frameRate.empty();
    }
};

/// Sets what the user named. The rest stays as it is set; where that does not go together, the
/// first in the camera's order that does is taken.
/// @throws Failure when the camera does not offer it, or refuses.
void select(ImageAcquisition::ICamera& camera, WantedSelection const& wanted);

} // namespace Iacq
