// SPDX-License-Identifier: MIT
// For the shared library.
#include "factory/SerialModule.h"

#include "IDevice.h"
#include "camera/Camera.h"
#include "system/Text.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

namespace ImageAcquisition
{

namespace
{

constexpr char moduleName[] = IMAGEACQUISITION_SERIAL_MODULE;
constexpr char entryName[] = "imageAcquisitionMakeSerialCamera";

using MakeCamera = Camera*(IDevice const*);

/// Never closed: its classes may be in use until the process ends.
void* openModule(std::string const& path)
{
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

/// The folder that the library's file really is in, where it was found through a link; empty when
/// that is not known for certain, as of a relative path, which the process may have left since.
std::string realFolder()
{
    Dl_info library{};
    if (dladdr(moduleName, &library) == 0 || library.dli_fname == nullptr ||
        library.dli_fname[0] != '/') {
        return {};
    }
    std::error_code error;
    auto const path = std::filesystem::canonical(library.dli_fname, error);
    return error ? std::string() : path.parent_path().string();
}

/// Looks beside the library, wherever that was installed or moved to, and nowhere else.
void* openModule()
{
    if (void* const module = openModule(std::string("$ORIGIN/") + moduleName)) {
        return module;
    }
    std::string const folder = realFolder();
    return folder.empty() ? nullptr : openModule(folder + "/" + moduleName);
}

/// What makes the camera; null, and the reason in @p problem, when the module cannot be used.
MakeCamera* load(std::string& problem)
{
    void* const module = openModule();
    void* const entry = module == nullptr ? nullptr : dlsym(module, entryName);
    if (entry == nullptr) {
        char const* const reason = dlerror();
        problem = reason == nullptr ? "it has no entry" : reason;
    }
    return reinterpret_cast<MakeCamera*>(entry);
}

} // namespace

std::unique_ptr<Camera> makeSerialCamera(IDevice const* device)
{
    // Loading again what is loaded finds it as it is; a module that was missing may have come.
    std::string problem;
    if (MakeCamera* const make = load(problem)) {
        return std::unique_ptr<Camera>(make(device));
    }
    std::string node = "The camera";
    assignUnlessNull(node, device->systemName());
    std::fprintf(stderr, "WARNING: %s is opened without the controls on its serial port: %s\n",
                 node.c_str(), problem.c_str());
    return nullptr;
}

} // namespace ImageAcquisition
