// SPDX-License-Identifier: MIT
#include "Registry.h"

#include "ConfigurationFile.h"

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

Registry& Registry::instance()
{
    static Registry* const registry = new Registry;
    return *registry;
}

Registry::Registry()
{
    for (CameraScript& script : camerasOfEnvironment()) {
        plug(std::make_shared<CameraDriver>(std::move(script)));
    }
}

void Registry::plug(std::shared_ptr<CameraDriver> const& device)
{
    std::shared_ptr<CameraDriver> replaced;
    {
        std::lock_guard const lock(m_mutex);
        auto const expired = [](auto const& known) { return known.expired(); };
        m_known.erase(std::remove_if(m_known.begin(), m_known.end(), expired), m_known.end());
        m_known.push_back(device);
        replaced = std::exchange(m_nodes[device->node()], device);
    }
    if (replaced) {
        replaced->unplug();
    }
}

void Registry::unplug(std::shared_ptr<CameraDriver> const& device)
{
    {
        std::lock_guard const lock(m_mutex);
        auto const found = m_nodes.find(device->node());
        if (found != m_nodes.end() && found->second == device) {
            m_nodes.erase(found);
        }
    }
    device->unplug();
}

void Registry::reset()
{
    std::map<std::string, std::shared_ptr<CameraDriver>> removed;
    {
        std::lock_guard const lock(m_mutex);
        removed.swap(m_nodes);
    }
    for (auto const& [node, device] : removed) {
        device->unplug();
    }
}

std::shared_ptr<CameraDriver> Registry::byNode(std::string const& node)
{
    std::shared_ptr<CameraDriver> device;
    {
        std::lock_guard const lock(m_mutex);
        auto const found = m_nodes.find(node);
        if (found != m_nodes.end()) {
            device = found->second;
        }
    }
    if (!device || !device->gone()) {
        return device;
    }
    if (device->script().presenceFile.empty() || !device->present()) {
        return nullptr;
    }
    // Plugged in again by another process, with the state of a fresh camera.
    auto fresh = std::make_shared<CameraDriver>(device->script());
    plug(fresh);
    return fresh;
}

std::shared_ptr<CameraDriver> Registry::byDescriptor(int descriptor)
{
    std::lock_guard const lock(m_mutex);
    auto const found = m_descriptors.find(descriptor);
    return found == m_descriptors.end() ? nullptr : found->second;
}

bool Registry::isFull()
{
    std::lock_guard const lock(m_mutex);
    return m_descriptors.size() >= mostDescriptors;
}

void Registry::addDescriptor(int descriptor, std::shared_ptr<CameraDriver> const& device)
{
    std::shared_ptr<CameraDriver> stale;
    {
        std::lock_guard const lock(m_mutex);
        stale = std::exchange(m_descriptors[descriptor], device);
    }
    // The number is new, so the earlier descriptor was closed behind the library's back.
    if (stale && stale != device) {
        stale->forgetFile(descriptor);
    }
}

void Registry::removeDescriptor(int descriptor)
{
    std::shared_ptr<CameraDriver> released;
    std::lock_guard const lock(m_mutex);
    auto const found = m_descriptors.find(descriptor);
    if (found == m_descriptors.end()) {
        return;
    }
    released = std::move(found->second);
    m_descriptors.erase(found);
}

void Registry::addMapping(MappingTicket const& ticket, std::shared_ptr<CameraDriver> const& device)
{
    std::lock_guard const lock(m_mutex);
    m_mappings[ticket.address] = {ticket, device};
}

bool Registry::findMapping(void* address, MappingTicket& ticket,
                           std::shared_ptr<CameraDriver>& device)
{
    std::lock_guard const lock(m_mutex);
    auto const found = m_mappings.find(address);
    if (found == m_mappings.end()) {
        return false;
    }
    ticket = found->second.ticket;
    device = found->second.device;
    return true;
}

void Registry::removeMapping(void* address)
{
    std::lock_guard const lock(m_mutex);
    m_mappings.erase(address);
}

Accounting Registry::accounting()
{
    std::vector<std::shared_ptr<CameraDriver>> devices;
    {
        std::lock_guard const lock(m_mutex);
        for (auto const& known : m_known) {
            if (auto device = known.lock()) {
                devices.push_back(std::move(device));
            }
        }
    }
    Accounting total;
    for (auto const& device : devices) {
        Accounting const account = device->accounting();
        total.openDescriptors += account.openDescriptors;
        total.liveMappings += account.liveMappings;
        total.allocatedBuffers += account.allocatedBuffers;
        total.queuedBuffers += account.queuedBuffers;
        total.streaming = total.streaming || account.streaming;
        total.totalOpens += account.totalOpens;
        total.totalMappings += account.totalMappings;
        total.totalFrames += account.totalFrames;
        total.droppedFrames += account.droppedFrames;
    }
    return total;
}

} // namespace VirtualCamera
