// SPDX-License-Identifier: MIT
#pragma once

#include "CameraModel.h"
#include "UvcRequests.h"
#include "VideoFormats.h"

#include <optional>

namespace UsbCamera
{

/// The stream that host and camera have agreed on.
struct StreamChoice
{
    std::size_t format = 0; ///< position in videoFormats()
    std::size_t size = 0;   ///< position in the format's sizes
    std::uint32_t interval = 0;

    VideoFormat const& videoFormat() const { return videoFormats()[format]; }
    VideoSize const& videoSize() const { return videoFormat().sizes[size]; }
};

/// The probe and commit controls of the video streaming interface.
class StreamNegotiation
{
public:
    StreamNegotiation(Speed speed, bool hasIntervalRanges);

    /// The reply's data to a get request; nothing when it is to stall.
    std::optional<Bytes> read(std::uint8_t selector, std::uint8_t code) const;

    /// Takes a SET_CUR; what can't be had becomes what is nearest to it. False: stall.
    bool write(std::uint8_t selector, Bytes const& data);

    StreamChoice const& committed() const { return m_committed; }
    std::size_t payloadSize() const { return m_payloadSize; }

private:
    Bytes describe(StreamChoice const& choice) const;
    StreamChoice choiceFrom(Bytes const& record) const;

    bool m_hasIntervalRanges;
    std::size_t m_payloadSize;
    StreamChoice m_probed;
    StreamChoice m_committed;
};

constexpr std::uint8_t probeSelector = 1;
constexpr std::uint8_t commitSelector = 2;

} // namespace UsbCamera
