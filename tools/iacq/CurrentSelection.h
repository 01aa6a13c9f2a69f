// SPDX-License-Identifier: MIT
#pragma once

#include <ICamera.h>
#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <string>

namespace Iacq
{

/// What is set on the camera; the invalid objects where that is nothing that it lists.
struct CurrentSelection
{
    ImageAcquisition::IImageFormat const* format;
    ImageAcquisition::IFrameSize const* size;
    ImageAcquisition::IFramePeriod const* period;
};

CurrentSelection currentSelection(ImageAcquisition::ICamera const& camera);

/// Parts of a selection that the user named; empty texts mean that it does not matter.
struct WantedSelection
{
    std::string format;
    std::string size;
    std::string interval;

    bool isEmpty() const { return format.empty() && size.empty() && interval.empty(); }
};

/// Sets what the user named and keeps or completes the rest.
/// @throws Failure when the camera does not offer it, or refuses.
void select(ImageAcquisition::ICamera& camera, WantedSelection const& wanted);

} // namespace Iacq
