// SPDX-License-Identifier: MIT
#pragma once

#define VIRTUALCAMERA_EXPORT __attribute__((visibility("default")))
