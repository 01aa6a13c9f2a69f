// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the serial module needs of the library. exports.map gives it a symbol version of its
/// own, which changes with every release: the two go together, and nobody else is meant to use it.
#define IMAGEACQUISITION_MODULE_EXPORT __attribute__((visibility("default")))
