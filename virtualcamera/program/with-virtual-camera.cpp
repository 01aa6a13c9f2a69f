// SPDX-License-Identifier: MIT
// Runs a program on a machine that has virtual cameras.
#include "CameraModel.h"
#include "ChildProcess.h"
#include "CommandLine.h"
#include "HotPlug.h"
#include "PreloadPath.h"
#include "VirtualMachine.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <sstream>
#include <system_error>

namespace
{

using namespace VirtualCamera;

void listModels()
{
    for (CameraModel const& model : cameraModels()) {
        std::printf("%-14s %s\n", model.name.c_str(), model.description.c_str());
    }
}

std::vector<HostCamera> camerasOf(CommandLine const& line)
{
    std::vector<HostCamera> cameras;
    if (!line.configuration.empty()) {
        std::ifstream file(line.configuration);
        if (!file) {
            throw std::runtime_error(line.configuration + ": cannot be read");
        }
        std::stringstream text;
        text << file.rdbuf();
        cameras = hostCamerasFromJson(text.str());
    }
    std::vector<std::string> models = line.models;
    if (models.empty() && line.configuration.empty()) {
        models = {"webcam", "vendor"};
    }
    for (std::string const& name : models) {
        CameraModel const* const model = cameraModel(name);
        if (model == nullptr) {
            throw std::runtime_error("there is no model \"" + name + "\" (see --list-models)");
        }
        cameras.push_back(cameraBehind(cameras, *model));
    }
    return cameras;
}

int run(CommandLine const& line, std::string const& preload)
{
    BlockedSignals const blocked;
    VirtualMachine machine(camerasOf(line));
    std::vector<HotPlug> changes;
    if (line.plugAfter >= 0) {
        machine.unplugLast();
        changes.push_back({line.plugAfter, [&machine] { machine.plugLast(); }});
    }
    if (line.unplugAfter >= 0) {
        changes.push_back({line.unplugAfter, [&machine] { machine.unplugLast(); }});
    }
    setenv("VIRTUALCAMERA_CONFIG", machine.configurationFile().c_str(), 1);
    char const* const path = std::getenv("PATH");
    setenv("PATH", (machine.toolFolder() + ":" + (path == nullptr ? "" : path)).c_str(), 1);
    setenv("LD_PRELOAD", preload.c_str(), 1);
    ChildProcess child(line.command, blocked);
    unsetenv("LD_PRELOAD");
    performWhileRunning(child, std::move(changes));
    return child.exitStatus();
}

int parseAndRun(int argc, char** argv)
{
    std::optional<CommandLine> const line = parseCommandLine(argc, argv);
    if (!line) {
        return EXIT_SUCCESS;
    }
    if (line->modelsListed) {
        listModels();
        return EXIT_SUCCESS;
    }
    return run(*line, restartInTestbed(argv));
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
