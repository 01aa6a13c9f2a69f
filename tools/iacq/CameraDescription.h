// SPDX-License-Identifier: MIT
#pragma once

#include <ICamera.h>
#include <IDevice.h>

#include <nlohmann/json_fwd.hpp>

namespace Iacq
{

nlohmann::ordered_json describeDevice(ImageAcquisition::IDevice const& device);

/// The formats with their sizes and intervals, and which of them is set.
nlohmann::ordered_json describeFormats(ImageAcquisition::ICamera const& camera);

} // namespace Iacq
