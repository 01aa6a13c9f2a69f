// SPDX-License-Identifier: MIT
#include "PreloadPath.h"

#include "Testbed.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace VirtualCamera
{

namespace
{

constexpr char const* handover = "WITH_VIRTUAL_CAMERA_PRELOAD";

// A sanitizer's runtime insists on being first.
std::string afterSanitizer(std::string const& libraries)
{
    std::string const runtime = VIRTUALCAMERA_SANITIZER_RUNTIME;
    return runtime.empty() ? libraries : runtime + ":" + libraries;
}

} // namespace

std::string restartInTestbed(char** arguments)
{
    char const* const found = std::getenv(handover);
    if (found != nullptr) {
        std::string path = found;
        unsetenv(handover);
        if (!Testbed::visible()) {
            throw std::runtime_error("umockdev's preload library cannot be loaded");
        }
        return path;
    }
    setenv(handover, preloadPath().c_str(), 1);
    setenv("LD_PRELOAD", afterSanitizer("libumockdev-preload.so.0").c_str(), 1);
    execv("/proc/self/exe", arguments);
    throw std::system_error(errno, std::generic_category(), "/proc/self/exe");
}

std::string preloadPath()
{
    namespace files = std::filesystem;
    files::path const folder = files::read_symlink("/proc/self/exe").parent_path();
    files::path library = folder / VIRTUALCAMERA_LIBRARY;
    if (!files::exists(library)) {
        library =
            (folder / VIRTUALCAMERA_LIBRARY_FOLDER / VIRTUALCAMERA_LIBRARY).lexically_normal();
    }
    if (!files::exists(library)) {
        throw std::runtime_error(library.string() + " is missing");
    }
    std::string path = afterSanitizer("libumockdev-preload.so.0:" + library.string());
    char const* const earlier = std::getenv("LD_PRELOAD");
    if (earlier != nullptr && *earlier != '\0') {
        path += std::string(":") + earlier;
    }
    return path;
}

} // namespace VirtualCamera
