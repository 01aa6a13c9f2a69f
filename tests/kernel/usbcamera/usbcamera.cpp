// SPDX-License-Identifier: MIT
#include "CommandServer.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <set>
#include <sys/signalfd.h>

using namespace UsbCamera;

namespace
{

struct Options
{
    std::vector<std::string> cameras{"ordinary"};
    std::vector<std::string> commands;
    std::string log;
    std::string socket = "/run/usbcamera.sock";
    bool isUnplugged = false;
};

using Cameras = std::vector<std::unique_ptr<CameraDevice>>;

/// Cameras without a port of their own get the next one on their hub that nobody asked for.
void choosePorts(std::vector<CameraModel>& models)
{
    using Place = std::tuple<unsigned, bool, unsigned>;
    auto const placeOf = [](CameraModel const& model, unsigned port) {
        return Place{model.controller, model.speed == Speed::Super, port};
    };
    std::set<Place> taken;
    for (CameraModel const& model : models) {
        if (model.port != 0 && !taken.insert(placeOf(model, model.port)).second) {
            throw std::invalid_argument("two cameras on the port " + std::to_string(model.port));
        }
    }
    for (CameraModel& model : models) {
        for (unsigned port = 1; model.port == 0; ++port) {
            if (taken.insert(placeOf(model, port)).second) {
                model.port = port;
            }
        }
    }
}

Cameras makeCameras(std::vector<std::string> const& texts, RequestLog& log)
{
    std::vector<CameraModel> models;
    for (std::string const& text : texts) {
        models.push_back(parseModel(text));
    }
    choosePorts(models);
    Cameras cameras;
    for (CameraModel const& model : models) {
        auto const number = static_cast<unsigned>(cameras.size() + 1);
        cameras.push_back(std::make_unique<CameraDevice>(number, model, log));
    }
    return cameras;
}

int openSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return ::signalfd(-1, &signals, SFD_CLOEXEC);
}

timespec remaining(Clock::time_point due)
{
    auto const wait = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::max(due - Clock::now(), Clock::duration::zero()));
    return {static_cast<time_t>(wait.count() / 1000000000),
            static_cast<long>(wait.count() % 1000000000)};
}

void waitForWork(Cameras const& cameras, std::vector<pollfd>& descriptors)
{
    std::optional<Clock::time_point> due;
    for (auto const& camera : cameras) {
        auto const next = camera->nextDue();
        if (next && (!due || *next < *due)) {
            due = next;
        }
    }
    timespec wait{};
    if (due) {
        wait = remaining(*due);
    }
    if (::ppoll(descriptors.data(), descriptors.size(), due ? &wait : nullptr, nullptr) < 0) {
        std::for_each(descriptors.begin(), descriptors.end(),
                      [](pollfd& descriptor) { descriptor.revents = 0; });
    }
}

void run(Cameras& cameras, CommandServer& server, CommandInterpreter const& interpreter)
{
    int const signals = openSignals();
    while (!interpreter.isQuitting()) {
        std::vector<pollfd> descriptors{{signals, POLLIN, 0}};
        for (auto const& camera : cameras) {
            descriptors.push_back({camera->descriptor(), POLLIN, 0});
        }
        std::size_t const own = descriptors.size();
        server.addDescriptors(descriptors);
        waitForWork(cameras, descriptors);
        if (descriptors[0].revents != 0) {
            break;
        }
        for (std::size_t i = 1; i < own; ++i) {
            if (descriptors[i].revents != 0) {
                cameras[i - 1]->receive();
            }
        }
        server.handle({descriptors.begin() + static_cast<std::ptrdiff_t>(own), descriptors.end()});
        for (auto const& camera : cameras) {
            camera->serve(Clock::now());
        }
    }
    ::close(signals);
}

void start(Options const& options)
{
    RequestLog log(options.log);
    Cameras cameras = makeCameras(options.cameras, log);
    CommandInterpreter interpreter(cameras, log);
    for (std::string const& command : options.commands) {
        std::string const answer = interpreter.execute(command);
        if (answer.compare(0, 2, "ok") != 0) {
            throw std::invalid_argument(command + ": " + answer);
        }
    }
    CommandServer server(options.socket, interpreter);
    if (!options.isUnplugged) {
        for (auto const& camera : cameras) {
            camera->plug();
            camera->serve(Clock::now());
        }
    }
    std::cout << "ready" << std::endl;
    run(cameras, server, interpreter);
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app{"Emulates USB cameras on the kernel's virtual host controller"};
    app.add_option("--camera", options.cameras,
                   "KIND[,PROPERTY=VALUE...]; KIND is ordinary, vendor-old or vendor-new (repeat)");
    app.add_option("--do", options.commands,
                   "A command to begin with: 'CAMERA COMMAND...' (repeat)");
    app.add_option("--log", options.log, "Write every request to this file, as JSON lines");
    app.add_option("--socket", options.socket, "Where usbcamera-ctl sends its commands");
    app.add_flag("--unplugged", options.isUnplugged, "Don't plug the cameras in yet");
    CLI11_PARSE(app, argc, argv);
    try {
        start(options);
    } catch (std::exception const& error) {
        std::cerr << "usbcamera: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
