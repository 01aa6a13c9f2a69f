// SPDX-License-Identifier: MIT
// For the shared library.
#include "factory/SerialModule.h"

#include "IDevice.h"
#include "camera/Camera.h"
#include "system/Text.h"

#include <dlfcn.h>

#include <cstdio>
#include <string>

namespace ImageAcquisition
{

namespace
{

constexpr char moduleName[] = IMAGEACQUISITION_SERIAL_MODULE;
constexpr char entryName[] = "imageAcquisitionMakeSerialCamera";

using MakeCamera = Camera*(IDevice const*);

/// Beside the library itself, wherever that was installed or moved to; empty when the dynamic
/// linker does not tell.
std::string modulePath()
{
    Dl_info library{};
    if (dladdr(moduleName, &library) == 0 || library.dli_fname == nullptr) {
        return {};
    }
    std::string const path = library.dli_fname;
    return path.substr(0, path.rfind('/') + 1) + moduleName;
}

/// What makes the camera; null, and the reason in @p problem, when the module cannot be used.
MakeCamera* load(std::string& problem)
{
    // Never closed: its classes may be in use until the process ends.
    void* const module = dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
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
