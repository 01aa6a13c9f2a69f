// SPDX-License-Identifier: MIT
#include "SystemFailure.h"

#include "UsbNeighbours.h"
#include "session/Found.h"

#include <IDevice.h>
#include <dirent.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

namespace ImageAcquisition::Session
{

namespace
{

struct DirectoryCloser
{
    void operator()(DIR* directory) const { closedir(directory); }
};

std::vector<std::string> entriesOf(std::string const& path)
{
    std::vector<std::string> entries;
    std::unique_ptr<DIR, DirectoryCloser> const directory(opendir(path.c_str()));
    while (dirent const* const entry = directory ? readdir(directory.get()) : nullptr) {
        entries.emplace_back(entry->d_name);
    }
    return entries;
}

/// Whether both are the same device, or else the same file.
bool isSame(struct stat const& a, struct stat const& b)
{
    return S_ISCHR(a.st_mode) && S_ISCHR(b.st_mode) ? a.st_rdev == b.st_rdev
                                                    : a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool holds(std::string const& process, struct stat const& node, std::string const& name)
{
    std::string const descriptors = "/proc/" + process + "/fd/";
    std::vector<std::string> const entries = entriesOf(descriptors);
    return std::any_of(entries.begin(), entries.end(), [&](std::string const& entry) {
        // Others are not even asked for: they may lie on a disk that does not answer.
        std::filesystem::path const descriptor = descriptors + entry;
        std::error_code error;
        bool const isDevice = std::filesystem::read_symlink(descriptor, error).filename() == name;
        struct stat target
        {
        };
        return isDevice && stat(descriptor.c_str(), &target) == 0 && isSame(target, node);
    });
}

std::string commandOf(std::string const& process)
{
    std::string name;
    std::ifstream file("/proc/" + process + "/comm");
    std::getline(file, name);
    return name;
}

std::string groupName(gid_t group)
{
    std::vector<char> buffer(1U << 16);
    struct group entry
    {
    };
    struct group* found = nullptr;
    getgrgid_r(group, &entry, buffer.data(), buffer.size(), &found);
    return found == nullptr ? std::to_string(group) : found->gr_name;
}

bool isInGroup(gid_t group)
{
    int const number = getgroups(0, nullptr);
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(number, 0)));
    int const filled = getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(filled, 0)));
    return getegid() == group || std::find(groups.begin(), groups.end(), group) != groups.end();
}

std::string hintFor(ErrorKind kind, Found const& camera)
{
    switch (kind) {
    case ErrorKind::Busy:
        return holdersOf(camera.node());
    case ErrorKind::NoPermission:
        return accessHint(camera.node());
    default:
        return "";
    }
}

char const* linkText(UsbSpeed speed)
{
    switch (speed) {
    case UsbSpeedLow:
        return "low speed, 1.5 Mbit/s";
    case UsbSpeedFull:
        return "full speed, 12 Mbit/s";
    case UsbSpeedHigh:
        return "high speed, 480 Mbit/s";
    case UsbSpeedSuper:
        return "super speed, 5 Gbit/s";
    default:
        return "of unknown speed";
    }
}

} // namespace

ErrorKind kindOf(int systemError)
{
    switch (systemError) {
    case EBUSY:
        return ErrorKind::Busy;
    case EACCES:
    case EPERM:
        return ErrorKind::NoPermission;
    case ENODEV:
    case ENXIO:
    case ENOENT:
        return ErrorKind::Unplugged;
    case ENOTTY:
    case EOPNOTSUPP:
        return ErrorKind::Unsupported;
    case ETIMEDOUT:
        return ErrorKind::TimedOut;
    default:
        return ErrorKind::Refused;
    }
}

Error systemFailure(std::string const& operation, Found const& camera, int systemError,
                    std::string const& reason)
{
    ErrorKind const kind = kindOf(systemError);
    return Error({kind, operation, kind == ErrorKind::Unplugged ? "the camera is gone" : reason,
                  camera.node(), systemError, hintFor(kind, camera)});
}

Error streamingFailure(std::string const& operation, Found const& camera, int systemError,
                       std::string const& wanted, std::string const& reason)
{
    if (systemError != ENOSPC) {
        return systemFailure(operation, camera, systemError, reason);
    }
    std::string const neighbours = usbNeighboursOf(camera.port());
    return Error(
        {ErrorKind::NoBandwidth, operation,
         "the bus has no room for " + wanted + "; the link is " +
             linkText(camera.device().usbSpeed()),
         camera.node(), systemError,
         neighbours.empty() ? "nothing else is on the bus" : "also on the bus: " + neighbours});
}

std::string holdersOf(std::string const& node)
{
    struct stat file
    {
    };
    std::string holders;
    std::string const name = std::filesystem::path(node).filename();
    if (stat(node.c_str(), &file) != 0) {
        return holders;
    }
    for (std::string const& process : entriesOf("/proc")) {
        bool const isProcess = process.find_first_not_of("0123456789") == std::string::npos;
        if (isProcess && holds(process, file, name)) {
            holders += (holders.empty() ? "held by " : ", ") + process + " (" +
                       (process == std::to_string(getpid()) ? "this program" : commandOf(process)) +
                       ")";
        }
    }
    return holders;
}

std::string accessHint(std::string const& node)
{
    struct stat file
    {
    };
    if (stat(node.c_str(), &file) != 0) {
        return "";
    }
    bool const groupMay = (file.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP);
    return node + " belongs to group " + groupName(file.st_gid) +
           (groupMay ? "" : ", which may not use it") + ", and you are " +
           (isInGroup(file.st_gid) ? "" : "not ") + "in it";
}

} // namespace ImageAcquisition::Session
