// SPDX-License-Identifier: MIT
#pragma once

#include "session/SessionExport.h"

#include <string>
#include <vector>

namespace ImageAcquisition::Session
{

/// Frames a second as a fraction: 30000/1001 is 29.97. The frame interval is its inverse.
struct IMAGEACQUISITION_SESSION_EXPORT FrameRate
{
    unsigned int frames = 0;  ///< 0: not said.
    unsigned int seconds = 1; ///< Never 0.

    /// Frames in one second.
    double perSecond() const noexcept { return static_cast<double>(frames) / seconds; }
    /// Whether there is a rate.
    bool isSaid() const noexcept { return frames != 0; }

    /// "30", or "29.97": with three digits after the point at most, enough to be found again by.
    std::string text() const;
};

/// Equal as fractions: 60/2 is 30/1.
IMAGEACQUISITION_SESSION_EXPORT bool operator==(FrameRate a, FrameRate b) noexcept;
/// Different as fractions.
IMAGEACQUISITION_SESSION_EXPORT bool operator!=(FrameRate a, FrameRate b) noexcept;

/// Whether a wish must be met, or only be come near to.
enum class Match { Exact, Nearest };

/// For `camera.select(text, nearest)`.
inline constexpr Match nearest = Match::Nearest;

/// A pixel format, a picture size and a frame rate: what is wished, or what is set. In a wish any
/// part may be left out.
struct IMAGEACQUISITION_SESSION_EXPORT Selection
{
    std::string format = {}; ///< Four-character code, such as "YUYV". Empty: left out.
    unsigned int width = 0;  ///< Pixels. 0, with height: left out.
    unsigned int height = 0; ///< Pixels.
    FrameRate rate = {};     ///< `frames` 0: left out.

    /**
     * @brief Reads "YUYV 640x480@30".
     *
     * Parts are separated by spaces and come in any order, letters in any case; the rate begins
     * with "@", and is a whole or decimal number, or a fraction such as 30000/1001.
     * @throws Error (BadRequest) for anything else.
     */
    static Selection parse(std::string const& text);

    /// "YUYV 640x480@30", without the parts that are left out.
    std::string text() const;
};

/// Whether all parts are equal.
IMAGEACQUISITION_SESSION_EXPORT bool operator==(Selection const& a, Selection const& b) noexcept;
/// Whether a part is not.
IMAGEACQUISITION_SESSION_EXPORT bool operator!=(Selection const& a, Selection const& b) noexcept;

/// Lengths in pixels: all from `minimum` to `maximum` that are `step` apart.
struct LengthRange
{
    unsigned int minimum = 0; ///< The shortest.
    unsigned int maximum = 0; ///< The longest.
    unsigned int step = 1;    ///< Never 0.
};

/// A picture size that a camera offers, or a range of sizes, with its frame rates.
struct SizeOffer
{
    LengthRange width;  ///< One width, or a range.
    LengthRange height; ///< One height, or a range.
    /// In the driver's order; the slowest and the fastest where `anyRate` is set. Empty when the
    /// driver tells none.
    std::vector<FrameRate> rates;
    bool anyRate = false; ///< Every rate between the two that `rates` holds.

    /// Whether it is a range, not one size.
    bool isRange() const noexcept
    {
        return width.minimum != width.maximum || height.minimum != height.maximum;
    }
};

/// A pixel format that a camera offers.
struct FormatOffer
{
    std::string format;           ///< Four-character code.
    std::string description;      ///< The driver's words.
    bool compressed = false;      ///< Pictures vary in their number of bytes.
    bool emulated = false;        ///< Converted in software; not the camera's own.
    std::vector<SizeOffer> sizes; ///< In the driver's order.
};

} // namespace ImageAcquisition::Session
