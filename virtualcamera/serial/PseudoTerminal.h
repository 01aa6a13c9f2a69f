// SPDX-License-Identifier: MIT
#pragma once

#include "SerialControl.h"

#include <string>

namespace VirtualCamera
{

/// The camera's end of a tty. Opens nothing on the client's end: a tool that looks who holds the
/// tty finds the client only.
class PseudoTerminal
{
public:
    /// @throws std::system_error
    PseudoTerminal();
    PseudoTerminal(PseudoTerminal const&) = delete;
    PseudoTerminal& operator=(PseudoTerminal const&) = delete;
    ~PseudoTerminal();

    /// The client's end, such as "/dev/pts/7".
    std::string const& path() const { return m_path; }
    /// The camera's end, for poll(); it reports a hang-up while no client is there.
    int descriptor() const { return m_descriptor; }
    /// What has come in; empty when there is nothing.
    SerialBytes read();
    /// What no client takes is lost.
    void write(SerialBytes const& bytes);

private:
    int m_descriptor;
    std::string m_path;
};

} // namespace VirtualCamera
