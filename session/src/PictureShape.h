// SPDX-License-Identifier: MIT
#pragma once

#include "session/Picture.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace ImageAcquisition::Session
{

/// Bytes and lines of untrusted layouts: wide enough for every product of two of their numbers.
using Count = unsigned long long;

/// A plane of samples within the bytes of a picture.
struct Plane
{
    Count start;
    Count stride;
    Count lineBytes; ///< Without the gap to the next line; no more than `stride`.
    Count lines;     ///< 0: there is no such plane.
    std::array<unsigned char, 2> black; ///< What its even and odd bytes are where it is black.

    /// The last line need not be padded.
    Count end() const { return lines == 0 ? 0 : start + stride * (lines - 1) + lineBytes; }
};

/// Where the parts of an uncompressed picture lie: all of it, or luma, blue and red. Where chroma
/// is paired, the second has both.
struct PictureShape
{
    std::array<Plane, 3> planes;

    /// The fewest bytes that hold it.
    Count size() const;
};

/// The shape of a picture whose numbers are beyond suspicion: a camera may have such a one, and an
/// `int` can count its bytes. Nothing for others, and for formats that are compressed or not known.
std::optional<PictureShape> shapeOf(PictureLayout const& layout);

/// A copy of a picture of which bytes are missing: without gaps between its lines, and black where
/// nothing is.
/// @param shape becomes the copy's.
void complete(Bytes bytes, PictureShape& shape, std::vector<unsigned char>& copy);

bool isUncompressed(std::string const& format) noexcept;
bool isJpeg(std::string const& format) noexcept;
bool isBayer(std::string const& format) noexcept;

} // namespace ImageAcquisition::Session
