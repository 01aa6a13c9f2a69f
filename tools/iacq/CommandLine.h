// SPDX-License-Identifier: MIT
#pragma once

#include "commands/Commands.h"

#include <memory>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace Iacq
{

/// The commands with their options, and what was given for them.
class CommandLine
{
public:
    CommandLine();
    ~CommandLine();
    CommandLine(CommandLine const&) = delete;
    CommandLine& operator=(CommandLine const&) = delete;

    /// Does what the arguments say.
    /// @throws Failure when they make no sense, or when it cannot be done.
    void run(int argc, char const* const* argv);

    CLI::App const& app() const { return *m_app; }

private:
    std::string m_camera;
    std::vector<std::string> m_names;
    std::string m_topic;
    bool m_json = false;
    CaptureOptions m_capture;
    MonitorOptions m_monitor;
    std::unique_ptr<CLI::App> m_app;
};

} // namespace Iacq
