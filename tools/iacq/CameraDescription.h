// SPDX-License-Identifier: MIT
#pragma once

#include <ICamera.h>
#include <IDevice.h>

#include <nlohmann/json_fwd.hpp>

namespace Iacq
{

/// A camera's record; @p index is its position in the list.
nlohmann::ordered_json describeDevice(ImageAcquisition::IDevice const& device, int index);

/// The formats with their sizes and intervals, and which of them is set.
nlohmann::ordered_json describeFormats(ImageAcquisition::ICamera const& camera);

} // namespace Iacq
