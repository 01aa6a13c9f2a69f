// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the session library exports. Everything else is hidden.
#define IMAGEACQUISITION_SESSION_EXPORT __attribute__((visibility("default")))
