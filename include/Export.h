// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the shared library exports. Everything else is hidden.
#define IMAGEACQUISITION_EXPORT __attribute__((visibility("default")))
