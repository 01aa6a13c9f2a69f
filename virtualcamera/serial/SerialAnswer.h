// SPDX-License-Identifier: MIT
#pragma once

#include "SerialControl.h"

#include <chrono>
#include <optional>

namespace VirtualCamera
{

/// UVC's request codes.
enum SerialRequestCode : std::uint8_t {
    SetCur = 0x01,
    GetCur = 0x81,
    GetMin = 0x82,
    GetMax = 0x83,
    GetLen = 0x85,
    GetInfo = 0x86,
    GetDef = 0x87
};

/// A request as it came in: 8 bytes of header, and the data of a write.
struct SerialPacket
{
    static constexpr std::size_t headerLength = 8;

    SerialBytes bytes;

    bool complete() const;
    std::uint8_t code() const { return bytes[1]; }
    std::uint8_t selector() const { return bytes[3]; }
    std::uint8_t unit() const { return bytes[5]; }
    /// The data length in the header.
    std::size_t length() const { return bytes[6] + 256U * bytes[7]; }
    SerialBytes header() const;
    SerialBytes data() const;
};

/// Which requests a scripted answer is for: those that agree in every member that is set.
struct SerialRequests
{
    std::optional<std::uint8_t> code;
    std::optional<std::uint8_t> unit;
    std::optional<std::uint8_t> selector;

    bool cover(SerialPacket const& packet) const;
};

/// How the camera answers a request. The request is carried out in any case: what goes wrong is
/// the way back.
class SerialAnswer
{
public:
    using Milliseconds = std::chrono::milliseconds;

    /// A part of an answer, and how long after the request it leaves.
    struct Piece
    {
        SerialBytes bytes;
        Milliseconds delay;
    };

    static SerialAnswer prompt();
    static SerialAnswer late(Milliseconds delay);
    /// In two pieces: so many bytes at once, the rest after the delay.
    static SerialAnswer split(std::size_t firstBytes, Milliseconds delay);
    /// Its first bytes only.
    static SerialAnswer cutTo(std::size_t bytes);
    static SerialAnswer silence();
    /// These bytes, whatever was asked.
    static SerialAnswer wrong(SerialBytes bytes);

    /// The same answer sent twice.
    SerialAnswer doubled() const;
    /// The same answer behind these bytes.
    SerialAnswer behind(SerialBytes bytes) const;
    /// The same answer with zeros in place of the request's header.
    SerialAnswer withoutHeader() const;

    std::vector<Piece> pieces(SerialBytes reply) const;

private:
    SerialBytes bytesFor(SerialBytes reply) const;

    Milliseconds m_delay{0};
    std::optional<std::size_t> m_splitAt;
    std::optional<std::size_t> m_cutAt;
    std::optional<SerialBytes> m_instead;
    SerialBytes m_before;
    bool m_twice = false;
    bool m_headerless = false;
};

} // namespace VirtualCamera
