// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

namespace Iacq
{

/// Exit statuses of the tool.
enum ExitStatus : int {
    Success = 0,
    CameraFailed = 1, ///< The camera, the driver or the system refused.
    BadUsage = 2,     ///< The command line does not make sense.
    NoSuchCamera = 3, ///< No camera of that description.
    NoFrame = 4       ///< The camera delivered no usable frame.
};

/// What goes wrong ends here: one line for the user, and the exit status.
class Failure : public std::runtime_error
{
public:
    Failure(ExitStatus status, std::string const& message)
        : std::runtime_error(message), m_status(status)
    {
    }

    ExitStatus status() const { return m_status; }

private:
    ExitStatus m_status;
};

} // namespace Iacq
