// SPDX-License-Identifier: MIT
#pragma once

#include "session/Picture.h"

#include <optional>
#include <string>

namespace ImageAcquisition::Session
{

/// Bytes and lines of untrusted layouts: wide enough for every product of two of their numbers.
using Count = unsigned long long;

/// A plane of samples within the bytes of a picture.
struct Plane
{
    Count start;
    Count stride;
    Count bytesPerSample;
    Count samples; ///< In a line.
    Count lines;

    /// Up to the last sample; the last line need not be padded.
    Count end() const { return start + stride * (lines - 1) + samples * bytesPerSample; }
};

/// How much of a plane there is.
struct Present
{
    unsigned int lines;   ///< That are whole.
    unsigned int samples; ///< Of the line behind them.
};

/// Where the parts of an uncompressed picture lie.
struct PictureShape
{
    Plane first;
    Plane u, v;                ///< Only of 4:2:0 pictures; the same one where they are paired.
    unsigned int samplePixels; ///< Pixels next to each other that a sample of last() is for.
    unsigned int sampleLines;  ///< Lines below each other that it is for.
    bool isPlanar;

    /// The plane whose bytes come last: where they are, those of the others are too.
    Plane const& last() const;
    Present presentIn(Count bytes) const;
};

/// The shape of a picture whose numbers are beyond suspicion; nothing where isPlausible() is not
/// true, and for formats that are compressed or not known.
std::optional<PictureShape> shapeOf(PictureLayout const& layout);

/// Whether a camera may have such a picture, and an `int` can count its bytes.
bool isPlausible(PictureLayout const& layout) noexcept;

bool isUncompressed(std::string const& format) noexcept;
bool isJpeg(std::string const& format) noexcept;
bool isBayer(std::string const& format) noexcept;

} // namespace ImageAcquisition::Session
