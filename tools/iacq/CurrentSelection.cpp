// SPDX-License-Identifier: MIT
#include "CurrentSelection.h"

#include <stdexcept>

namespace Iacq
{

using namespace ImageAcquisition;

CurrentSelection currentSelection(ICamera const& camera)
{
    try {
        return {camera.currentImageFormat(), camera.currentFrameSize(),
                camera.currentFrameInterval()};
    } catch (std::out_of_range const&) {
        // The device is set to a format that it does not list.
        return {IImageFormat::invalid(), IFrameSize::invalid(), IFramePeriod::invalid()};
    }
}

} // namespace Iacq
