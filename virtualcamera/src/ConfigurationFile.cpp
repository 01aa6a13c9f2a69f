// SPDX-License-Identifier: MIT
#include "ConfigurationFile.h"

#include "CameraJson.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace VirtualCamera
{

std::vector<CameraScript> camerasOfEnvironment()
{
    char const* const path = std::getenv("VIRTUALCAMERA_CONFIG");
    if (path == nullptr || *path == '\0') {
        return {};
    }
    try {
        std::ifstream file(path);
        if (!file) {
            throw std::runtime_error("cannot be read");
        }
        std::stringstream text;
        text << file.rdbuf();
        std::vector<CameraScript> cameras = camerasFromJson(text.str());
        // Nobody in the process asks for the calls of cameras that come from outside.
        for (CameraScript& camera : cameras) {
            camera.callsLogged = false;
        }
        return cameras;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "virtual camera: %s: %s\n", path, failure.what());
        return {};
    }
}

} // namespace VirtualCamera
