// SPDX-License-Identifier: MIT
#pragma once

namespace ImageAcquisition
{

// What is taken from a driver at most. Real ones stay far below; the bounds end the enumeration of
// one that never says that it has no more.

/// Entries of one list of a camera's catalogue: of formats, of one format's sizes, of one size's
/// intervals.
constexpr unsigned int maximumEnumerated = 4096;

/// Entries of the whole catalogue of a camera: the lists nest, and so would their bounds multiply.
constexpr unsigned int maximumCatalogueEntries = 65536;

/// Controls of a camera, and as many answers more that make none, such as class headings.
constexpr unsigned int maximumControls = 4096;

/// Numbers that a menu's items are looked for at.
constexpr unsigned int maximumMenuIndices = 4096;

/// The same for all menus of a camera; the one that exceeds it is its last control.
constexpr long long maximumMenuIndicesOfCamera = 65536;

/// Buffers that are mapped, of those that the driver grants.
constexpr unsigned int maximumBuffers = 1024;

} // namespace ImageAcquisition
