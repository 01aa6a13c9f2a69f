// SPDX-License-Identifier: MIT
#pragma once

#include <ICamera.h>
#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

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

} // namespace Iacq
