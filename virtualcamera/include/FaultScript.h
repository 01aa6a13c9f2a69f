// SPDX-License-Identifier: MIT
#pragma once

#include "CallId.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace VirtualCamera
{

/// Makes a call fail without any effect. Uses are counted from 1; a use that fails counts.
/// A failing `close` gives the descriptor up all the same, unless the error is EINTR.
struct Fault
{
    CallId call = Call::Open;
    int error = 0;
    unsigned use = 1;        ///< The use that fails ...
    bool fromThenOn = false; ///< ... or the first of all those that do.
};

/// What goes wrong with one frame; frames are counted from 0 with each start of streaming.
struct FrameFault
{
    std::uint32_t frame = 0;
    bool fromThenOn = false; ///< True: this frame and all later ones.
    std::uint32_t lateMilliseconds = 0;
    bool corrupted = false;                 ///< Delivered with V4L2_BUF_FLAG_ERROR.
    bool missing = false;                   ///< Never delivered; the sequence number is skipped.
    std::optional<std::uint32_t> bytesUsed; ///< Cut short to so many bytes.
    /// Delivered whole, but said to have so many bytes: mostly more than its buffer, as a broken
    /// driver says. With read, what the call returns that begins the frame.
    std::optional<std::uint32_t> claimedBytes;
    std::optional<std::uint32_t> index;        ///< Dequeued under this buffer index.
    std::optional<std::uintptr_t> userPointer; ///< Dequeued with this user pointer.
    std::optional<std::uint32_t> length;       ///< Dequeued with this buffer length.
};

} // namespace VirtualCamera
