// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace VirtualCamera
{

/// A name of the form "ttyACM3" that no other virtual camera on this computer bears meanwhile,
/// whoever runs it: serial libraries keep one lock file for each name, whatever device is behind
/// it.
class TtyName
{
public:
    /// Takes the lowest free one; waits for one when there is none, and throws
    /// `std::runtime_error` in the end.
    TtyName();
    TtyName(TtyName&& other) noexcept;
    TtyName& operator=(TtyName&&) = delete;
    /// Takes the lock of a client that was killed away as well.
    ~TtyName();

    std::string text() const;
    /// Where serial libraries keep the lock.
    std::string lockFile() const;

private:
    bool reserve(int digit);

    int m_digit = 0;
    int m_reservation = -1;
};

} // namespace VirtualCamera
