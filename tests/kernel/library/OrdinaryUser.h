// SPDX-License-Identifier: MIT
#pragma once

#include "EmulatedCameras.h"
#include "Shell.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>

namespace KernelTest
{

/// A user with no rights of his own, and his group.
constexpr unsigned nobody = 65534;

/// What the work returns when a user without further groups does it, in a process of its own.
/// Throws nlohmann::json's exception when it returns nothing.
nlohmann::json asUser(unsigned user, const std::function<nlohmann::json()>& work);

/// What the library makes of the camera at a node.
nlohmann::json describeCamera(const std::string& node);

/// Runs iacq as such a user.
CommandResult runToolAsUser(unsigned user, const std::string& arguments);

/// The node that libusb opens.
std::string usbNode(const EmulatedCameras& cameras, unsigned camera = 1);

void openToAll(const std::string& node);

/// Whether everybody may read the kernel's log; Debian reserves it for root.
class ReadableLog
{
public:
    explicit ReadableLog(bool isReadable);
    ~ReadableLog();
    ReadableLog(const ReadableLog&) = delete;
    ReadableLog& operator=(const ReadableLog&) = delete;

private:
    std::string _file = "/proc/sys/kernel/dmesg_restrict";
    std::string _before = readFile(_file);
};

} // namespace KernelTest
