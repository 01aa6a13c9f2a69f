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
nlohmann::json asUser(unsigned user, std::function<nlohmann::json()> const& work);

/// Runs iacq as such a user.
CommandResult runToolAsUser(unsigned user, std::string const& arguments);

/// The node that libusb opens.
std::string usbNode(EmulatedCameras const& cameras, unsigned camera = 1);

void openToAll(std::string const& node);

/// Whether everybody may read the kernel's log; Debian reserves it for root.
class ReadableLog
{
public:
    explicit ReadableLog(bool isReadable);
    ~ReadableLog();
    ReadableLog(ReadableLog const&) = delete;
    ReadableLog& operator=(ReadableLog const&) = delete;

private:
    std::string m_file = "/proc/sys/kernel/dmesg_restrict";
    std::string m_before = readFile(m_file);
};

} // namespace KernelTest
