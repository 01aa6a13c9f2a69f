// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace VirtualCamera
{

/// A name of the form "ttyACM3" that no other virtual machine on this computer bears meanwhile:
/// serial libraries keep one lock file for each name, whatever device is behind it.
class TtyName
{
public:
    /// Takes the lowest free one; waits for one when there is none, and throws
    /// `std::runtime_error` in the end.
    TtyName();
    TtyName(TtyName&& other) noexcept;
    TtyName& operator=(TtyName&&) = delete;
    ~TtyName();

    std::string text() const { return "ttyACM" + std::to_string(_digit); }

private:
    bool reserve(int digit);

    int _digit = 0;
    int _reservation = -1;
};

} // namespace VirtualCamera
