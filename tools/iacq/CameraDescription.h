// SPDX-License-Identifier: MIT
#pragma once

#include <session/Camera.h>
#include <session/Found.h>

#include <nlohmann/json_fwd.hpp>

namespace Iacq
{

/// A camera's record.
nlohmann::ordered_json describeDevice(ImageAcquisition::Session::Found const& camera);

/// The formats with their sizes and intervals, and which of them is set.
nlohmann::ordered_json describeFormats(ImageAcquisition::Session::Camera const& camera);

} // namespace Iacq
