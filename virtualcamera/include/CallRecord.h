// SPDX-License-Identifier: MIT
#pragma once

#include "CallId.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// One control inside a logged transfer, plain or extended.
struct ControlTransfer
{
    std::uint32_t id = 0;
    std::uint32_t size = 0; ///< Size field of an extended control as sent; 0 for a plain one.
    std::int64_t value = 0; ///< As sent: 64 bits for 64-bit controls, else the 32-bit value.
    std::string text;       ///< Text sent to a string control, without the terminating zero.
};

/// One call that a virtual camera answered.
struct CallRecord
{
    CallId call = Call::Open;
    int descriptor = -1;
    int result = 0;          ///< What the call returned; a mapping or descriptor counts as 0.
    int error = 0;           ///< errno when the call failed, else 0.
    std::string path;        ///< For `Call::Open`.
    int openFlags = 0;       ///< For `Call::Open`.
    std::size_t length = 0;  ///< For read, mmap and munmap.
    std::int64_t offset = 0; ///< For mmap.
    std::uint32_t controlClass = 0;        ///< `ctrl_class` (`which`) of an extended transfer.
    std::vector<ControlTransfer> controls; ///< For plain and extended control transfers.
    std::vector<std::uint8_t> sent;        ///< The ioctl's argument as the caller passed it.
    std::vector<std::uint8_t> received;    ///< The ioctl's argument as the caller got it back.

    bool succeeded() const { return error == 0; }

    /// The ioctl's argument before the call, e.g. `record.argument<v4l2_buffer>().index`.
    template <typename Struct>
    Struct argument() const
    {
        return copyOf<Struct>(sent);
    }
    /// The ioctl's argument after the call.
    template <typename Struct>
    Struct answer() const
    {
        return copyOf<Struct>(received);
    }

private:
    template <typename Struct>
    static Struct copyOf(std::vector<std::uint8_t> const& bytes)
    {
        Struct copy{};
        std::memcpy(static_cast<void*>(&copy), bytes.data(),
                    bytes.size() < sizeof copy ? bytes.size() : sizeof copy);
        return copy;
    }
};

} // namespace VirtualCamera
