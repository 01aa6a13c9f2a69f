// SPDX-License-Identifier: MIT
#pragma once

#include "CameraBuilder.h"

namespace VirtualCamera
{

/// What most webcams offer.
void addUsualControls(CameraBuilder& camera);
/// One control of each V4L2 type, menus with holes among them, and one for most flags.
void addControlOfEveryType(CameraBuilder& camera);

} // namespace VirtualCamera
