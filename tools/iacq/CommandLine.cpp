// SPDX-License-Identifier: MIT
#include "CommandLine.h"

#include "Failure.h"
#include "Output.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace Iacq
{

namespace
{

constexpr char cameraHelp[] =
    "Index in the list, node (video0 or /dev/video0), serial:NUMBER, port:1-2.3, name:NAME or "
    "id:7a76:ca01; another text is tried as a serial number first";

CLI::App* addCommand(CLI::App& app, char const* name, char const* help)
{
    CLI::App* const command = app.add_subcommand(name, help);
    command->fallthrough(false);
    return command;
}

void addList(CLI::App& app, bool& json)
{
    CLI::App* const command = addCommand(app, "list", "List the cameras");
    command->add_flag("--json", json, "Print JSON");
    command->callback([&json] { list(json); });
}

void addShow(CLI::App& app, std::string& camera, bool& json)
{
    CLI::App* const command = addCommand(app, "show", "Show a camera's formats and controls");
    command->add_option("CAMERA", camera, cameraHelp)->required();
    command->add_flag("--json", json, "Print JSON");
    command->callback([&camera, &json] { show(camera, json); });
}

void addCapture(CLI::App& app, CaptureOptions& options)
{
    CLI::App* const command = addCommand(app, "capture", "Capture frames into files");
    command->add_option("CAMERA", options.camera, cameraHelp)->required();
    command
        ->add_option("-o,--output", options.output,
                     "File (.png, .ppm or .raw), or - for standard output; with --count, %d or "
                     "%04d in it is the number, which else stands before the extension")
        ->required();
    command->add_option("--output-format", options.outputFormat,
                        "png, ppm, or raw for the driver's bytes; by default the extension tells");
    command->add_option("-n,--count", options.count, "Number of frames")
        ->check(CLI::Range(1, 1000000));
    command->add_option("--format", options.format, "Pixel format, such as YUYV");
    command->add_option("--size", options.size, "Size, such as 640x480");
    CLI::Option* const interval =
        command->add_option("--interval", options.interval, "Seconds between frames, such as 1/30");
    command->add_option("--fps", options.frameRate, "Frames a second, such as 30")
        ->excludes(interval);
    command->add_option("--buffers", options.buffers, "Frames in flight")->check(CLI::Range(1, 32));
    command->callback([&options] { capture(options); });
}

void addGet(CLI::App& app, std::string& camera, std::vector<std::string>& names, bool& json)
{
    CLI::App* const command = addCommand(app, "get", "Read controls");
    command->add_option("CAMERA", camera, cameraHelp)->required();
    command->add_option("NAME", names, "Names, or short forms such as exposure_time_absolute")
        ->required();
    command->add_flag("--json", json, "Print JSON");
    command->callback([&camera, &names, &json] { get(camera, names, json); });
}

void addSet(CLI::App& app, std::string& camera, std::vector<std::string>& assignments)
{
    CLI::App* const command = addCommand(app, "set", "Write controls");
    command->add_option("CAMERA", camera, cameraHelp)->required();
    command
        ->add_option("ASSIGNMENT", assignments,
                     "NAME=VALUE; a menu takes a label or a position, a Boolean on or off, and a "
                     "button is its NAME alone")
        ->required();
    command->callback([&camera, &assignments] { set(camera, assignments); });
}

void addMonitor(CLI::App& app, MonitorOptions& options)
{
    CLI::App* const command = addCommand(app, "monitor", "Tell of cameras that come and go");
    command->add_flag("--json", options.json, "Print one JSON object a line");
    command->add_option("-n,--count", options.count, "End after so many events")
        ->check(CLI::PositiveNumber);
    command->add_option("--timeout", options.timeout, "End after so many seconds")
        ->check(CLI::Range(0.001, 1e9));
    command->callback([&options] { monitor(options); });
}

void addReset(CLI::App& app, std::string& camera)
{
    CLI::App* const command = addCommand(app, "reset", "Make one of the vendor's cameras restart");
    command->add_option("CAMERA", camera, cameraHelp)->required();
    command->callback([&camera] { reset(camera); });
}

std::vector<CLI::App const*> commandsOf(CLI::App const& app)
{
    return app.get_subcommands([](CLI::App const*) { return true; });
}

/// The command of that name, or null.
CLI::App const* findCommand(CLI::App const& app, std::string const& name)
{
    for (CLI::App const* const command : commandsOf(app)) {
        if (command->get_name() == name) {
            return command;
        }
    }
    return nullptr;
}

Failure unknownCommand(CLI::App const& app, std::string const& word)
{
    std::string names;
    for (CLI::App const* const command : commandsOf(app)) {
        names += " " + command->get_name();
    }
    return {BadUsage, "there is no command '" + word + "'; the commands are" + names};
}

void printHelp(CLI::App const& app, std::string const& topic)
{
    if (topic.empty()) {
        // Asked of the formatter, since help() gives that of the command that is carried out.
        print(app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal));
        return;
    }
    CLI::App const* const command = findCommand(app, topic);
    if (command == nullptr) {
        throw unknownCommand(app, topic);
    }
    print(command->help(app.get_name()));
}

void addHelp(CLI::App& app, std::string& topic)
{
    CLI::App* const command = addCommand(app, "help", "Tell how a command is used");
    command->add_option("COMMAND", topic, "One of the commands");
    command->callback([&app, &topic] { printHelp(app, topic); });
}

} // namespace

CommandLine::CommandLine()
    : m_app(std::make_unique<CLI::App>("Lists, shows, sets and captures from USB video cameras",
                                       "iacq"))
{
    CLI::App& app = *m_app;
    app.footer("Exit status: 0 done; 1 refused by the camera, the driver or the system; 2 the "
               "command line makes no sense; 3 no such camera; 4 no usable frame");
    app.require_subcommand(1);
    app.set_version_flag("--version", "iacq " IACQ_VERSION, "Print the version and exit");
    addList(app, m_json);
    addShow(app, m_camera, m_json);
    addCapture(app, m_capture);
    addGet(app, m_camera, m_names, m_json);
    addSet(app, m_camera, m_names);
    addMonitor(app, m_monitor);
    addReset(app, m_camera);
    addHelp(app, m_topic);
}

CommandLine::~CommandLine() = default;

void CommandLine::run(int argc, char const* const* argv)
{
    // Else it would be told that a command is missing, not which one is misspelt.
    std::string const word = argc > 1 ? argv[1] : "";
    if (!word.empty() && word.front() != '-' && findCommand(*m_app, word) == nullptr) {
        throw unknownCommand(*m_app, word);
    }
    try {
        m_app->parse(argc, argv);
    } catch (CLI::Success const& wish) {
        // Help or the version.
        std::ostringstream text;
        m_app->exit(wish, text);
        print(text.str());
    } catch (CLI::ParseError const& error) {
        throw Failure(BadUsage, std::string(error.what()) + " (see iacq --help)");
    }
}

} // namespace Iacq
