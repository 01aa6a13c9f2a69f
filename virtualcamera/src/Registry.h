// SPDX-License-Identifier: MIT
#pragma once

#include "CameraDriver.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace VirtualCamera
{

/// All virtual cameras of the process, and which descriptor and mapping belongs to which.
class Registry
{
public:
    /// Made on first use, when it plugs in the cameras of the configuration file, if one is named
    /// in the environment; never destroyed, since clients may close their cameras very late.
    static Registry& instance();

    void plug(std::shared_ptr<CameraDriver> const& device);
    void unplug(std::shared_ptr<CameraDriver> const& device);
    void reset();

    /// Null for what isn't virtual.
    std::shared_ptr<CameraDriver> byNode(std::string const& node);
    std::shared_ptr<CameraDriver> byDescriptor(int descriptor);

    /// libv4l2 has room for so many openings in one process, whatever they open.
    static constexpr std::size_t mostDescriptors = 16;
    bool isFull();
    void addDescriptor(int descriptor, std::shared_ptr<CameraDriver> const& device);
    void removeDescriptor(int descriptor);
    void addMapping(MappingTicket const& ticket, std::shared_ptr<CameraDriver> const& device);
    bool findMapping(void* address, MappingTicket& ticket, std::shared_ptr<CameraDriver>& device);
    void removeMapping(void* address);

    Accounting accounting();

private:
    struct Mapping
    {
        MappingTicket ticket;
        std::shared_ptr<CameraDriver> device;
    };

    Registry();

    std::mutex m_mutex;
    std::map<std::string, std::shared_ptr<CameraDriver>> m_nodes;
    std::unordered_map<int, std::shared_ptr<CameraDriver>> m_descriptors;
    std::unordered_map<void*, Mapping> m_mappings;
    std::vector<std::weak_ptr<CameraDriver>> m_known;
};

} // namespace VirtualCamera
