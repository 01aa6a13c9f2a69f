// SPDX-License-Identifier: MIT
#pragma once

#include "CameraDevice.h"

#include <functional>
#include <map>

namespace UsbCamera
{

using Words = std::vector<std::string>;

/// Carries out what a user orders at run time: one line, one answer.
class CommandInterpreter
{
public:
    CommandInterpreter(std::vector<std::unique_ptr<CameraDevice>>& cameras, RequestLog& log);

    /// `line` is a camera's number, a command and its arguments. The answer is "ok", perhaps with
    /// a result behind it, or "error" and the reason.
    std::string execute(std::string const& line);

    bool isQuitting() const { return m_isQuitting; }

private:
    using Handler = std::function<std::string(CameraDevice&, Words const&)>;

    void addPlugCommands();
    void addStreamCommands();
    void addControlCommands();
    void addOtherCommands();
    std::string executeWords(unsigned number, Words const& words);

    std::vector<std::unique_ptr<CameraDevice>>& m_cameras;
    RequestLog& m_log;
    std::map<std::string, Handler> m_handlers;
    unsigned m_current = 0; ///< number of the camera that the command is for
    bool m_isQuitting = false;
};

} // namespace UsbCamera
