// SPDX-License-Identifier: MIT
// Runs a program on a machine that has virtual cameras.
#include "CameraModel.h"
#include "ChildProcess.h"
#include "HotPlug.h"
#include "PreloadPath.h"
#include "VirtualMachine.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <sstream>
#include <system_error>

namespace
{

using namespace VirtualCamera;

struct Options
{
    std::vector<std::string> models;
    std::string configuration;
    bool modelsListed = false;
    int plugAfter = -1;
    int unplugAfter = -1;
    std::vector<std::string> command;
};

void listModels()
{
    for (CameraModel const& model : cameraModels())
        std::printf("%-14s %s\n", model.name.c_str(), model.description.c_str());
}

std::vector<HostCamera> camerasOf(Options const& options)
{
    std::vector<HostCamera> cameras;
    if (!options.configuration.empty()) {
        std::ifstream file(options.configuration);
        if (!file)
            throw std::runtime_error(options.configuration + ": cannot be read");
        std::stringstream text;
        text << file.rdbuf();
        cameras = hostCamerasFromJson(text.str());
    }
    std::vector<std::string> models = options.models;
    if (models.empty() && options.configuration.empty())
        models = {"webcam", "vendor"};
    for (std::string const& name : models) {
        CameraModel const* const model = cameraModel(name);
        if (model == nullptr)
            throw std::runtime_error("there is no model \"" + name + "\" (see --list-models)");
        cameras.push_back(cameraBehind(cameras, *model));
    }
    return cameras;
}

int run(Options const& options, std::string const& preload)
{
    HeldSignals const held;
    VirtualMachine machine(camerasOf(options));
    std::vector<HotPlug> changes;
    if (options.plugAfter >= 0) {
        machine.unplugLast();
        changes.push_back({options.plugAfter, [&machine] { machine.plugLast(); }});
    }
    if (options.unplugAfter >= 0)
        changes.push_back({options.unplugAfter, [&machine] { machine.unplugLast(); }});
    setenv("VIRTUALCAMERA_CONFIG", machine.configurationFile().c_str(), 1);
    char const* const path = std::getenv("PATH");
    setenv("PATH", (machine.toolFolder() + ":" + (path == nullptr ? "" : path)).c_str(), 1);
    setenv("LD_PRELOAD", preload.c_str(), 1);
    ChildProcess child(options.command, held);
    unsetenv("LD_PRELOAD");
    performWhileRunning(child, std::move(changes));
    return child.exitStatus();
}

int parseAndRun(int argc, char** argv)
{
    CLI::App app{"Runs PROGRAM on a machine with virtual cameras: by default an ordinary webcam "
                 "(video0) and one of the vendor's cameras (video2)."};
    Options options;
    app.add_option("--model", options.models, "Adds a camera of this model; may be repeated")
        ->take_all()
        ->allow_extra_args(false);
    app.add_option("--config", options.configuration, "Adds the cameras of a JSON file");
    app.add_flag("--list-models", options.modelsListed, "Lists the models and ends");
    app.add_option("--plug-after", options.plugAfter,
                   "Plugs the last camera in only after so many milliseconds");
    app.add_option("--unplug-after", options.unplugAfter,
                   "Unplugs the last camera after so many milliseconds");
    app.prefix_command();
    CLI11_PARSE(app, argc, argv);
    if (options.modelsListed) {
        listModels();
        return EXIT_SUCCESS;
    }
    options.command = app.remaining();
    if (!options.command.empty() && options.command.front() == "--")
        options.command.erase(options.command.begin());
    if (options.command.empty()) {
        std::fprintf(stderr, "with-virtual-camera: no program given\n");
        return EXIT_FAILURE;
    }
    return run(options, restartInTestbed(argv));
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return parseAndRun(argc, argv);
    } catch (std::system_error const& failure) {
        std::fprintf(stderr, "with-virtual-camera: %s\n", failure.what());
        return failure.code() == std::errc::no_such_file_or_directory ? 127 : 126;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "with-virtual-camera: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
