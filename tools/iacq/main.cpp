// SPDX-License-Identifier: MIT
#include "Failure.h"
#include "Output.h"
#include "TerminalText.h"
#include "commands/Commands.h"

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <sstream>

namespace Iacq
{

namespace
{

constexpr char cameraHelp[] =
    "Index in the list, node (video0 or /dev/video0), or serial number; an index comes first";

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
        ->add_option("NAME=VALUE", assignments,
                     "A menu takes a label or a position, a Boolean on or off, a button its NAME "
                     "alone")
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

int fail(ExitStatus status, std::string const& message)
{
    tell(message);
    return status;
}

/// Fills what was closed from the start, or a camera might be opened in its place and be written
/// to. Writing to the stand-in for standard output fails, as it should.
void occupyStandardDescriptors()
{
    while (true) {
        int const descriptor = ::open("/dev/null", O_RDONLY);
        if (descriptor == -1 || descriptor > STDERR_FILENO) {
            ::close(descriptor);
            return;
        }
    }
}

int run(int argc, char** argv)
{
    CLI::App app{"Lists, shows, sets and captures from USB video cameras", "iacq"};
    app.footer("Exit status: 0 done; 1 refused by the camera, the driver or the system; 2 the "
               "command line makes no sense; 3 no such camera; 4 no usable frame");
    app.require_subcommand(1);
    std::string camera;
    std::vector<std::string> names;
    bool json = false;
    CaptureOptions captureOptions;
    MonitorOptions monitorOptions;
    addList(app, json);
    addShow(app, camera, json);
    addCapture(app, captureOptions);
    addGet(app, camera, names, json);
    addSet(app, camera, names);
    addMonitor(app, monitorOptions);
    addReset(app, camera);
    try {
        app.parse(argc, argv);
        return Success;
    } catch (CLI::CallForHelp const& help) {
        std::ostringstream text;
        app.exit(help, text);
        print(text.str());
        return Success;
    } catch (CLI::ParseError const& error) {
        return fail(BadUsage, std::string(error.what()) + " (see iacq --help)");
    }
}

} // namespace

} // namespace Iacq

int main(int argc, char** argv)
{
    Iacq::occupyStandardDescriptors();
    // A closed pipe is an error to be told like any other.
    std::signal(SIGPIPE, SIG_IGN);
    // The library tells how it finds a serial port; a user of the tool need not know.
    ::setenv("QT_LOGGING_RULES", "default.info=false", 0);
    try {
        int const status = Iacq::run(argc, argv);
        Iacq::closeStandardOutput();
        return status;
    } catch (Iacq::Failure const& failure) {
        return Iacq::fail(failure.status(), failure.what());
    } catch (std::exception const& error) {
        return Iacq::fail(Iacq::CameraFailed, error.what());
    }
}
