// SPDX-License-Identifier: MIT
#pragma once

#include "session/SessionExport.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace ImageAcquisition::Session
{

/// Why a call failed.
enum class ErrorKind {
    NotFound,     ///< There is no such camera or control.
    Ambiguous,    ///< Several cameras or controls are meant; the text lists them.
    Busy,         ///< Another program, or a stream of this one, holds what is needed.
    NoPermission, ///< The process may not open the node.
    Unplugged,    ///< The camera is gone.
    Unsupported,  ///< The camera does not offer it; the text says what it offers.
    Refused,      ///< The driver or the camera refused, or the control takes no such value now.
    NoBandwidth,  ///< The bus has no room for the stream.
    TimedOut,     ///< Nothing came in time.
    BadRequest    ///< The request makes no sense for any camera.
};

/// The kind in words, such as "not found".
IMAGEACQUISITION_SESSION_EXPORT char const* toText(ErrorKind kind) noexcept;

/// What an Error tells. Texts that do not apply are empty.
struct ErrorDetails
{
    ErrorKind kind = ErrorKind::Refused; ///< Why, for the program.
    std::string operation;               ///< What was tried, such as "select YUYV 640x480".
    std::string reason;                  ///< Why it failed, in words.
    std::string node = {};               ///< The camera's node, such as /dev/video0.
    int systemError = 0;   ///< `errno` of the system call that failed; 0 when none did.
    std::string hint = {}; ///< What to do or to look at: who holds the node, which group may.
};

/**
 * @brief The one exception of the session layer.
 *
 * `what()` is one line for a person: operation, node, reason, the system's text and the hint.
 * Besides it only `std::bad_alloc` leaves the layer.
 *
 * Copying never throws. Threads: an error may be read from any thread.
 */
class IMAGEACQUISITION_SESSION_EXPORT Error : public std::runtime_error
{
public:
    /// Makes what() of the details.
    explicit Error(ErrorDetails details);
    /// Shares the details.
    Error(Error const&) noexcept;
    /// Shares the details.
    Error& operator=(Error const&) noexcept;
    ~Error() override;

    /// Why the call failed.
    ErrorKind kind() const noexcept { return m_details->kind; }
    /// What was tried.
    std::string const& operation() const noexcept { return m_details->operation; }
    /// Why it failed, in words.
    std::string const& reason() const noexcept { return m_details->reason; }
    /// The camera's node; may be empty.
    std::string const& node() const noexcept { return m_details->node; }
    /// What to do or to look at; may be empty.
    std::string const& hint() const noexcept { return m_details->hint; }

    /// `errno` of the system call that failed; 0 when none did.
    int systemError() const noexcept { return m_details->systemError; }

private:
    std::shared_ptr<ErrorDetails const> m_details;
};

} // namespace ImageAcquisition::Session
