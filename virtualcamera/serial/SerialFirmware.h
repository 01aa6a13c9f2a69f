// SPDX-License-Identifier: MIT
#pragma once

#include "SerialAnswer.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace VirtualCamera
{

/// What answers at the far end of the serial port of one of the vendor's cameras: UVC control
/// requests, laid out as USB SETUP packets, are carried out on the controls given, in a thread of
/// its own behind a pseudo-terminal. A reply is the request's header and the control's data.
///
/// It says nothing to a request that it cannot carry out: for a control that it lacks, to a write
/// of one that can only be read, to the reading of one that can only be written. A value that is
/// written is kept as it came, out of range or not. Every member but unplug() may
/// be called from any thread.
class SerialFirmware
{
public:
    static constexpr unsigned always = ~0U;

    explicit SerialFirmware(std::vector<SerialControl> controls = vendorSerialControls());
    SerialFirmware(SerialFirmware const&) = delete;
    SerialFirmware& operator=(SerialFirmware const&) = delete;
    ~SerialFirmware();

    /// The tty for clients, such as "/dev/pts/7".
    std::string const& ttyPath() const;
    /// Takes the tty away from its clients. For one thread.
    void unplug();

    /// Scripts the answer to the next requests that @p requests cover; the oldest script that
    /// covers a request and is not used up counts. All others are answered promptly.
    void answer(SerialAnswer const& how, SerialRequests const& requests = {}, unsigned times = 1);
    void answerAllPromptly();
    /// From now on no answer overtakes another: one that is late holds up all that follow, and each
    /// leaves so long after the one before it.
    void answerInOrder(std::chrono::milliseconds apart);
    /// Bytes that nobody asked for.
    void say(SerialBytes const& bytes);

    /// Every request that came in, oldest first; also what was no request.
    std::vector<SerialPacket> packets() const;
    /// The bytes of all of them.
    std::vector<SerialBytes> packetBytes() const;
    void clearPackets();
    /// Waits until so many packets are in; false when they do not come within 5 s.
    bool awaitPackets(std::size_t count) const;

    /// A control's data and size, behind the client's back. Unknown ones throw std::out_of_range.
    SerialBytes data(std::uint8_t unit, std::uint8_t selector) const;
    void setData(std::uint8_t unit, std::uint8_t selector, SerialBytes const& bytes);
    void setInfo(std::uint8_t unit, std::uint8_t selector, std::uint8_t info);
    void claimLength(std::uint8_t unit, std::uint8_t selector, std::uint16_t length);

private:
    struct State;

    std::unique_ptr<State> m_state;
};

} // namespace VirtualCamera
